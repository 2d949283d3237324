// The settings of a class.
#pragma once

#include <ovVeldris/core/settings/Setting.h>

namespace ovVeldris {

/// Rows in the order that lists show them, found by name.
class OV_API SettingTable {
public:
    SettingTable() = default;
    SettingTable(std::initializer_list<Setting> settings)
        : _settings(settings) {}
    explicit SettingTable(ovMemory::Buffer<Setting> settings)
        : _settings(std::move(settings)) {}

    /// The table of a class without settings.
    static const SettingTable& none();

    /// The row of a name, or null. Rows stay where they are as long as the table.
    const Setting* find(ovMemory::StringView name) const;

    auto begin() const { return _settings.begin(); }
    auto end() const { return _settings.end(); }
    std::size_t size() const { return _settings.size(); }

private:
    ovMemory::Buffer<Setting> _settings;
};

} // namespace ovVeldris
