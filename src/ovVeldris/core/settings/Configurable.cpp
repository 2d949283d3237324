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

bool Configurable::setSetting(StringView name, SettingValue value, String& error) {
    const Setting* setting = findSetting(*_settings, name, error);
    // Setters take any number, as C++ code may know why. Values by name come from files and users, so they
    // are checked here.
    if (!setting || !acceptSettingValue(*setting, value, error))
        return false;
    setting->set(*this, value);
    return true;
}

bool Configurable::setSettingFromText(StringView name, StringView text, String& error,
                                      const ovGraphics::System* resources) {
    SettingValue value;
    const Setting* setting = findSetting(*_settings, name, error);
    if (!setting || !parseSettingValue(*setting, text, resources, value, error))
        return false;
    setting->set(*this, value);
    return true;
}

bool Configurable::isSettingUsed(const Setting& setting) const {
    return setting.onlyWith.setting.empty() ||
           getSettingAsText(setting.onlyWith.setting) == setting.onlyWith.value;
}

} // namespace ovVeldris
