#include <ovVeldris/core/settings/Configurable.h>

#include <ovVeldris/core/settings/SettingText.h>

namespace ovVeldris {

using ovMemory::String;
using ovMemory::StringView;

std::optional<SettingValue> Configurable::getSetting(StringView name) const {
    const Setting* setting = _settings->find(name);
    return setting ? std::optional(setting->get(*this)) : std::nullopt;
}

String Configurable::getSettingAsText(StringView name) const {
    const Setting* setting = _settings->find(name);
    return setting ? toText(*setting, setting->get(*this)) : String();
}

ovMemory::Result Configurable::setSetting(StringView name, SettingValue value) {
    ovMemory::Result result;
    const Setting* setting = findSetting(*_settings, name, result);
    // Setters take any number, as C++ code may know why. Values by name come from files and users, so they
    // are checked here.
    if (setting)
        result = acceptSettingValue(*setting, value);
    if (result)
        setting->set(*this, value);
    return result;
}

ovMemory::Result Configurable::setSettingFromText(StringView name, StringView text,
                                                  const ovGraphics::System* resources) {
    ovMemory::Result result;
    SettingValue value;
    const Setting* setting = findSetting(*_settings, name, result);
    if (setting)
        result = parseSettingValue(*setting, text, resources, value);
    if (result)
        setting->set(*this, value);
    return result;
}

bool Configurable::isSettingUsed(const Setting& setting) const {
    return setting.onlyWith.setting.empty() ||
           getSettingAsText(setting.onlyWith.setting) == setting.onlyWith.value;
}

} // namespace ovVeldris
