#include <ovVeldris/core/settings/SettingTable.h>

#include <algorithm>

namespace ovVeldris {

const SettingTable& SettingTable::none() {
    static const SettingTable NONE;
    return NONE;
}

const Setting* SettingTable::find(ovMemory::StringView name) const {
    const auto setting = std::find_if(_settings.begin(), _settings.end(),
                                      [&](const Setting& candidate) { return candidate.name == name; });
    return setting == _settings.end() ? nullptr : &*setting;
}

} // namespace ovVeldris
