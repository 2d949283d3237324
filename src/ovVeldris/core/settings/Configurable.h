// The base of everything that has a table of settings.
#pragma once

#include <optional>
#include <ovMemory/Borrowed.h>
#include <ovVeldris/core/settings/SettingTable.h>

namespace ovGraphics {
class System;
}

namespace ovVeldris {

/// Settings by name, for whoever learns of them at run time: command lines, files, scripts, panels. Setting
/// by name checks the ranges of the table; the setters of the class take everything, as they say.
///
/// All of them can hold such an object, so it tells its borrowers when it goes.
class OV_API Configurable : public ovMemory::Borrowable {
public:
    /// The table of the object's class.
    const SettingTable& getSettings() const { return *_settings; }

    /// The value of a setting, or nothing for an unknown name.
    std::optional<SettingValue> getSetting(ovMemory::StringView name) const;
    /// Its text, which setSettingFromText() reads; empty for an unknown name.
    ovMemory::String getSettingAsText(ovMemory::StringView name) const;

    /// Hands a value to its setter.
    /// @return a failure, whose place is the name, when there is no setting of that name, or when it does not
    ///         take that value (see acceptSettingValue()); nothing is set then
    ovMemory::Result setSetting(ovMemory::StringView name, SettingValue value);
    /// The same from text, see parseSettingValue(). @param resources see there
    ovMemory::Result setSettingFromText(ovMemory::StringView name, ovMemory::StringView text,
                                        const ovGraphics::System* resources = nullptr);

    /// Whether a setting of the table means anything beside the present values of the others.
    bool isSettingUsed(const Setting& setting) const;

protected:
    /// @param settings of the object's class; lives as long as the object
    explicit Configurable(const SettingTable& settings)
        : _settings(&settings) {}
    Configurable(const Configurable&) = default;
    Configurable& operator=(const Configurable&) = default;
    ~Configurable() = default;

private:
    const SettingTable* _settings;
};

} // namespace ovVeldris
