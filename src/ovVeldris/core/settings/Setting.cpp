#include <ovVeldris/core/settings/Setting.h>

#include <algorithm>
#include <cmath>
#include <ovVeldris/core/settings/SettingText.h>

namespace ovVeldris {

namespace {

using ovMemory::String;

bool areAllIn(const SettingRange& range, const float* numbers, unsigned int count) {
    return std::all_of(numbers, numbers + count,
                       [&](float number) { return std::isfinite(number) && range.holds(number); });
}

bool isFinite(const ovMaths::Matrix& matrix) {
    return std::all_of(&matrix.m[0][0], &matrix.m[0][0] + 16,
                       [](float number) { return std::isfinite(number); });
}

/// Turns a value into one of the setting's kind where nothing is lost by it.
// Scripts and files do not tell 1 from 1.0, nor do people tell ACES from aces.
SettingValue converted(const Setting& setting, const SettingValue& value) {
    if (const int* integer = std::get_if<int>(&value); integer && setting.kind == SETTING_KIND::NUMBER)
        return static_cast<float>(*integer);
    if (const String* text = std::get_if<String>(&value); text && setting.kind == SETTING_KIND::ENUMERATION)
        return toSettingText(*text);
    return value;
}

bool isAccepted(const Setting& setting, const SettingValue& value) {
    // The default is of the right kind by construction, so it tells the kind.
    if (value.index() != setting.defaultValue.index())
        return false;
    switch (setting.kind) {
    case SETTING_KIND::INTEGER:
        return setting.range.holds(std::get<int>(value));
    case SETTING_KIND::NUMBER:
        return areAllIn(setting.range, &std::get<float>(value), 1);
    case SETTING_KIND::VECTOR:
        return areAllIn(setting.range, &std::get<ovMaths::Vector>(value).x, setting.components);
    case SETTING_KIND::MATRIX:
        return isFinite(std::get<ovMaths::Matrix>(value));
    case SETTING_KIND::ENUMERATION:
        return std::find(setting.choices.begin(), setting.choices.end(), std::get<String>(value)) !=
               setting.choices.end();
    default:
        return true;
    }
}

} // namespace

Setting Setting::in(const SettingRange& usefulRange, ovMemory::StringView unitName) && {
    range = usefulRange;
    unit = unitName;
    return std::move(*this);
}

Setting Setting::atLoad() && {
    waitsForLoad = true;
    return std::move(*this);
}

Setting Setting::with(ovMemory::StringView setting, ovMemory::StringView value) && {
    onlyWith = {setting, value};
    return std::move(*this);
}

ovMemory::Result acceptSettingValue(const Setting& setting, SettingValue& value) {
    SettingValue candidate = converted(setting, value);
    if (!isAccepted(setting, candidate))
        return ovMemory::failed(valueProblem(setting, toText(setting, value)), String(setting.name));
    value = std::move(candidate);
    return {};
}

String toSettingText(ovMemory::StringView enumerator) {
    String text(enumerator);
    for (char& character : text) {
        if (character == '_')
            character = '-';
        else if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character - 'A' + 'a');
    }
    return text;
}

} // namespace ovVeldris
