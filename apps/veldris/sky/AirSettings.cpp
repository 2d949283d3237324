#include <veldris/sky/AirSettings.h>

#include <fmt/format.h>
#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>
#include <veldris/effects/EffectSpec.h>

namespace veldris {

using ovMemory::Buffer;
using ovMemory::String;
using ovVeldris::Setting;
using ovVeldris::SettingTable;

namespace {

constexpr ovMemory::StringView ATMOSPHERE = "atmosphere:";

SettingTable withoutOwn(const SettingTable& all) {
    Buffer<Setting> settings;
    for (const Setting& setting : all) {
        const bool isOwn = isResource(setting.kind) || setting.name == "sun-position" ||
                           setting.name == "only-scatter-on-objects" || setting.name.starts_with("shadow-");
        if (isOwn)
            continue;
        settings.push_back(setting);
        if (setting.name == "sun-illuminance-factor")
            settings.back().defaultValue = SKY_ILLUMINANCE;
    }
    return SettingTable(std::move(settings));
}

} // namespace

const SettingTable& airSettings() {
    static const SettingTable TABLE = withoutOwn(ovVeldris::AtmosphereEffect::settings());
    return TABLE;
}

bool planAir(ovMemory::StringView text, Buffer<ovVeldris::SettingAssignment>& air, String& error) {
    Buffer<EffectSpec> specs;
    if (!parseEffectList(String(ATMOSPHERE).append(text), specs, error))
        return false;
    if (specs.size() != 1) {
        error = "the settings of the air '" + String(text) + "' have a semicolon; separate them by commas.";
        return false;
    }
    error = parseSettings(airSettings(), specs.front().settings, nullptr, air).error;
    if (error.empty())
        return true;
    error = "the air: " + error;
    return false;
}

String airHelp() {
    constexpr int NAME_WIDTH = 40;
    String text = "Settings of --air \"SETTING=VALUE,...\":\n\n";
    for (const Setting& setting : airSettings()) {
        const String range = rangeText(setting);
        text += fmt::format("  {:<{}} {}{}{} (default {})\n", setting.name, NAME_WIDTH, setting.help,
                            range.empty() ? "" : ", ", range, toText(setting, setting.defaultValue));
    }
    return text;
}

} // namespace veldris
