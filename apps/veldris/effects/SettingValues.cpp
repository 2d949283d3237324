#include <veldris/effects/SettingValues.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace veldris {

namespace {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

/// Reads comma-separated finite numbers. @return false when a piece is none
bool parseNumbers(StringView text, Buffer<float>& numbers) {
    while (true) {
        const std::size_t comma = text.find(',');
        StringView piece = text.substr(0, comma);
        while (piece.starts_with(' '))
            piece.remove_prefix(1);
        while (piece.ends_with(' '))
            piece.remove_suffix(1);
        float number = 0.0f;
        const auto [end, status] = std::from_chars(piece.data(), piece.data() + piece.size(), number);
        if (status != std::errc() || end != piece.data() + piece.size() || !std::isfinite(number))
            return false;
        numbers.push_back(number);
        if (comma == StringView::npos)
            return true;
        text.remove_prefix(comma + 1);
    }
}

StringView kindText(SETTING_KIND kind) {
    switch (kind) {
    case SETTING_KIND::BOOLEAN:
        return "true or false";
    case SETTING_KIND::NUMBER:
        return "a number";
    case SETTING_KIND::VECTOR:
        return "three numbers, as in 2,2,2";
    case SETTING_KIND::MATRIX:
        return "nine numbers, three rows of three";
    case SETTING_KIND::ENUMERATION:
        break;
    }
    return "one of its choices";
}

template <typename Range, typename Name>
String joined(const Range& range, Name name) {
    String text;
    for (const auto& element : range)
        text.append(text.empty() ? "" : ", ").append(name(element));
    return text;
}

String expectedText(const SettingDescription& description) {
    if (description.kind != SETTING_KIND::ENUMERATION)
        return String(kindText(description.kind));
    return "one of " + joined(description.choices, [](StringView choice) { return choice; });
}

} // namespace

bool SettingValues::parse(const EffectSpec& effect, const Buffer<SettingDescription>& descriptions,
                          SettingValues& values, String& error) {
    values._values.clear();
    for (const SettingDescription& description : descriptions)
        _parseValue(description, description.defaultText, values._values[String(description.name)]);

    for (const SettingText& setting : effect.settings) {
        const auto description =
            std::find_if(descriptions.begin(), descriptions.end(),
                         [&](const auto& candidate) { return candidate.name == setting.name; });
        const String place = "effect '" + effect.name + "': ";
        if (description == descriptions.end()) {
            error =
                place + "there is no setting '" + setting.name + "'; it has " +
                (descriptions.empty() ? "none" : joined(descriptions, [](const auto& d) { return d.name; })) +
                ".";
            return false;
        }
        Value& value = values._values[setting.name];
        if (value.given) {
            error = place + "the setting '" + setting.name + "' is given twice; keep one.";
            return false;
        }
        if (!_parseValue(*description, setting.value, value)) {
            error = place + "'" + setting.value + "' is no value of the setting '" + setting.name +
                    "'; it takes " + expectedText(*description) + ".";
            return false;
        }
        value.given = true;
    }
    return true;
}

bool SettingValues::wasGiven(StringView name) const {
    return _get(name).given;
}
bool SettingValues::getBoolean(StringView name) const {
    return _get(name).numbers[0] != 0.0f;
}
float SettingValues::getNumber(StringView name) const {
    return _get(name).numbers[0];
}

ovMaths::Vector SettingValues::getVector(StringView name) const {
    const Buffer<float>& numbers = _get(name).numbers;
    return {numbers[0], numbers[1], numbers[2]};
}

ovMaths::Matrix SettingValues::getMatrix(StringView name) const {
    const Buffer<float>& n = _get(name).numbers;
    return ovMaths::Matrix::newMat3(n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7], n[8]);
}

const String& SettingValues::getText(StringView name) const {
    return _get(name).text;
}

bool SettingValues::_parseValue(const SettingDescription& description, StringView text, Value& value) {
    value.text = text;
    value.numbers.clear();
    switch (description.kind) {
    case SETTING_KIND::BOOLEAN:
        value.numbers.push_back(text == "true" || text == "1" ? 1.0f : 0.0f);
        return text == "true" || text == "1" || text == "false" || text == "0";
    case SETTING_KIND::NUMBER:
        return parseNumbers(text, value.numbers) && value.numbers.size() == 1;
    case SETTING_KIND::VECTOR:
        return parseNumbers(text, value.numbers) && value.numbers.size() == 3;
    case SETTING_KIND::MATRIX:
        return parseNumbers(text, value.numbers) && value.numbers.size() == 9;
    case SETTING_KIND::ENUMERATION:
        break;
    }
    return std::find(description.choices.begin(), description.choices.end(), text) !=
           description.choices.end();
}

const SettingValues::Value& SettingValues::_get(StringView name) const {
    return _values.find(name)->second;
}

} // namespace veldris
