#include <ovVeldris/core/settings/SettingCombinations.h>

#include <algorithm>

namespace ovVeldris {

namespace {

using ovMemory::Buffer;
using Combination = Buffer<SettingAssignment>;

/// The values of a setting that is varied; empty for others.
Buffer<SettingValue> finiteValues(const Setting& setting) {
    if (!setting.waitsForLoad)
        return {};
    if (setting.kind == SETTING_KIND::FLAG)
        return {setting.defaultValue, !std::get<bool>(setting.defaultValue)};
    return {setting.choices.begin(), setting.choices.end()};
}

/// Whether a setting means something beside the values of a combination. What it depends on stands before it
/// in the table, or is not varied and has its default.
bool isUsed(const SettingTable& settings, const Setting& setting, const Combination& combination) {
    const Setting* decider = settings.find(setting.onlyWith.setting);
    if (!decider)
        return true;
    const auto given = std::find_if(combination.begin(), combination.end(),
                                    [&](const auto& assignment) { return assignment.name == decider->name; });
    return toText(*decider, given == combination.end() ? decider->defaultValue : given->value) ==
           setting.onlyWith.value;
}

/// The defaults, then each other value alone beside the defaults.
Buffer<Combination> variations(const SettingTable& settings) {
    Buffer<Combination> alone(1);
    for (const Setting& setting : settings)
        for (const SettingValue& value : finiteValues(setting))
            if (value != setting.defaultValue && isUsed(settings, setting, {}))
                alone.push_back({{setting.name, value}});
    return alone;
}

} // namespace

Buffer<Combination> finiteCombinations(const SettingTable& settings) {
    Buffer<Combination> combinations(1);
    for (const Setting& setting : settings) {
        const Buffer<SettingValue> values = finiteValues(setting);
        if (values.empty())
            continue;
        Buffer<Combination> longer;
        // A setting that means nothing beside a combination is left out of it, or the same program would be
        // made once for each of its values.
        for (const Combination& combination : combinations) {
            if (!isUsed(settings, setting, combination)) {
                longer.push_back(combination);
                continue;
            }
            for (const SettingValue& value : values) {
                longer.push_back(combination);
                longer.back().push_back({setting.name, value});
            }
        }
        if (longer.size() > MAX_COMBINATIONS)
            return variations(settings);
        combinations = std::move(longer);
    }
    return combinations;
}

} // namespace ovVeldris
