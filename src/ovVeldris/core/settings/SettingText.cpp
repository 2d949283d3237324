#include <ovVeldris/core/settings/SettingText.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Node.h>
#include <ovVeldris/core/NearestName.h>

namespace ovVeldris {

namespace {

using ovMaths::Matrix;
using ovMaths::Vector;
using ovMemory::Buffer;
using ovMemory::BufferView;
using ovMemory::String;
using ovMemory::StringView;

constexpr StringView NO_RESOURCE = "none";
constexpr unsigned int MOST_COMPONENTS = 4;
constexpr std::array<StringView, 5> COUNT_TEXTS = {"no", "one", "two", "three", "four"};

StringView trimmed(StringView text) {
    while (text.starts_with(' '))
        text.remove_prefix(1);
    while (text.ends_with(' '))
        text.remove_suffix(1);
    return text;
}

// --- To text

template <typename Number>
String numberText(Number number) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof(text), number).ptr};
}

String join(const Buffer<String>& pieces, StringView separator) {
    String text;
    for (const String& piece : pieces)
        text.append(text.empty() ? StringView() : separator).append(piece);
    return text;
}

/// Writes a value of any alternative.
// The counterpart of the parsing below: what it writes reads back as the same value, with the fewest digits.
struct ValueWriter {
    unsigned int components;

    String operator()(bool flag) const { return flag ? "true" : "false"; }
    String operator()(int integer) const { return numberText(integer); }
    String operator()(float number) const { return numberText(number); }
    String operator()(const String& text) const { return text; }
    String operator()(const Vector& vector) const { return _numbers(&vector.x); }
    String operator()(const Matrix& matrix) const {
        Buffer<String> rows;
        for (unsigned int row = 0; row < components; ++row)
            rows.push_back(_numbers(matrix.m[row]));
        return join(rows, ",");
    }
    template <typename Resource>
    String operator()(Resource* resource) const {
        return String(resource ? resource->getName() : NO_RESOURCE);
    }

private:
    String _numbers(const float* numbers) const {
        Buffer<String> texts;
        for (unsigned int i = 0; i < components; ++i)
            texts.push_back(numberText(numbers[i]));
        return join(texts, ",");
    }
};

// --- From text

// By from_chars, which no locale changes: a German one would read 0.5 as 0.
template <typename Number>
bool parseNumber(StringView text, Number& number) {
    text = trimmed(text);
    const char* end = text.data() + text.size();
    const auto [stop, status] = std::from_chars(text.data(), end, number);
    return status == std::errc() && stop == end;
}

/// Reads exactly as many numbers, separated by commas.
bool parseNumbers(StringView text, unsigned int count, float* numbers) {
    for (unsigned int i = 0; i < count; ++i) {
        const std::size_t comma = text.find(',');
        const bool isLast = i + 1 == count;
        if (isLast != (comma == StringView::npos) || !parseNumber(text.substr(0, comma), numbers[i]))
            return false;
        text = isLast ? StringView() : text.substr(comma + 1);
    }
    return true;
}

template <typename Number>
bool parseInto(StringView text, SettingValue& value) {
    Number number = {};
    if (!parseNumber(text, number))
        return false;
    value = number;
    return true;
}

// 0 and 1 as well, which scripts and shells have at hand.
bool parseFlag(StringView text, SettingValue& value) {
    const bool isTrue = text == "true" || text == "1";
    value = isTrue;
    return isTrue || text == "false" || text == "0";
}

bool parseVector(StringView text, unsigned int components, SettingValue& value) {
    Vector vector;
    if (!parseNumbers(text, components, &vector.x))
        return false;
    value = vector;
    return true;
}

bool parseMatrix(StringView text, unsigned int side, SettingValue& value) {
    // Row by row, as matrices are written everywhere in the library.
    std::array<float, MOST_COMPONENTS * MOST_COMPONENTS> numbers;
    if (!parseNumbers(text, side * side, numbers.data()))
        return false;
    Matrix matrix;
    for (unsigned int row = 0; row < side; ++row)
        std::copy_n(numbers.data() + row * side, side, matrix.m[row]);
    value = matrix;
    return true;
}

template <typename Resource, typename Manager>
bool parseResource(StringView name, const Manager* manager, SettingValue& value) {
    Resource* resource = manager && name != NO_RESOURCE ? manager->get(name) : nullptr;
    value = resource;
    return resource || (manager && name == NO_RESOURCE);
}

bool parseKind(const Setting& setting, StringView text, const ovGraphics::System* resources,
               SettingValue& value) {
    switch (setting.kind) {
    case SETTING_KIND::FLAG:
        return parseFlag(text, value);
    case SETTING_KIND::INTEGER:
        return parseInto<int>(text, value);
    case SETTING_KIND::NUMBER:
        return parseInto<float>(text, value);
    case SETTING_KIND::VECTOR:
        return parseVector(text, setting.components, value);
    case SETTING_KIND::MATRIX:
        return parseMatrix(text, setting.components, value);
    case SETTING_KIND::ENUMERATION:
    case SETTING_KIND::TEXT:
        value = String(text);
        return true;
    case SETTING_KIND::TEXTURE:
        return resources && parseResource<ovGraphics::Texture>(text, resources->getTextureManager(), value);
    case SETTING_KIND::SAMPLER:
        return resources && parseResource<ovGraphics::Sampler>(text, resources->getSamplerManager(), value);
    case SETTING_KIND::CAMERA:
        return resources && parseResource<ovGraphics::Camera>(text, resources->getCameraManager(), value);
    case SETTING_KIND::NODE:
        return resources && parseResource<ovGraphics::Node>(text, resources->getNodeManager(), value);
    }
    return false;
}

// --- What settings take, in words

String kindText(const Setting& setting) {
    switch (setting.kind) {
    case SETTING_KIND::FLAG:
        return "true or false";
    case SETTING_KIND::INTEGER:
        return "a whole number";
    case SETTING_KIND::NUMBER:
        return "a number";
    case SETTING_KIND::VECTOR:
        return String(COUNT_TEXTS[setting.components]) + " numbers";
    case SETTING_KIND::MATRIX:
        return setting.components == 3 ? "nine numbers, three rows of three"
                                       : "sixteen numbers, four rows of four";
    case SETTING_KIND::ENUMERATION:
        return "one of " + join(setting.choices, ", ");
    case SETTING_KIND::TEXT:
        return "a text";
    case SETTING_KIND::TEXTURE:
        return "the name of a texture, or none";
    case SETTING_KIND::SAMPLER:
        return "the name of a sampler, or none";
    case SETTING_KIND::CAMERA:
        return "the name of a camera, or none";
    case SETTING_KIND::NODE:
        return "the name of a node, or none";
    }
    return {};
}

String conditionProblem(const Setting& setting, StringView chosen) {
    String problem = "the setting '";
    problem.append(setting.name).append("' belongs to ").append(setting.onlyWith.setting).append("=");
    problem.append(setting.onlyWith.value).append(", and ").append(setting.onlyWith.setting).append("=");
    return problem.append(chosen).append(" was chosen.");
}

const SettingAssignment* findAssignment(const Buffer<SettingAssignment>& assignments, StringView name) {
    const auto found = std::find_if(assignments.begin(), assignments.end(),
                                    [&](const auto& assignment) { return assignment.name == name; });
    return found == assignments.end() ? nullptr : &*found;
}

/// Refuses the first setting that means nothing beside the others.
ovMemory::Result checkConditions(const SettingTable& settings, const Buffer<SettingAssignment>& assignments) {
    for (const SettingAssignment& assignment : assignments) {
        const Setting& setting = *settings.find(assignment.name);
        const Setting* decider = settings.find(setting.onlyWith.setting);
        if (!decider)
            continue;
        // A decider that is not given has its default.
        const SettingAssignment* given = findAssignment(assignments, decider->name);
        const String chosen = toText(*decider, given ? given->value : decider->defaultValue);
        if (chosen != setting.onlyWith.value)
            return ovMemory::failed(conditionProblem(setting, chosen), String(setting.name));
    }
    return {};
}

} // namespace

String toText(const Setting& setting, const SettingValue& value) {
    const bool isOfKind = value.index() == setting.defaultValue.index();
    return std::visit(ValueWriter{isOfKind ? setting.components : MOST_COMPONENTS}, value);
}

ovMemory::Result parseSettingValue(const Setting& setting, StringView text,
                                   const ovGraphics::System* resources, SettingValue& value) {
    SettingValue parsed;
    if (!parseKind(setting, text, resources, parsed))
        return ovMemory::failed(valueProblem(setting, text), String(setting.name));
    ovMemory::Result result = acceptSettingValue(setting, parsed);
    if (result)
        value = std::move(parsed);
    return result;
}

// Messages, help and later pages of scripts all use this text, so that they cannot differ.
String expectedText(const Setting& setting) {
    String text = kindText(setting);
    const String range = rangeText(setting);
    const bool isVector = setting.kind == SETTING_KIND::VECTOR;
    if (!range.empty())
        text.append(isVector ? ", each " : " ").append(range);
    if (isVector)
        text.append(", as in ").append(toText(setting, setting.defaultValue));
    return text;
}

String rangeText(const Setting& setting) {
    const SettingRange& range = setting.range;
    const bool hasMinimum = range.minimum > -std::numeric_limits<float>::infinity();
    const bool hasMaximum = range.maximum < std::numeric_limits<float>::infinity();
    String text;
    if (hasMinimum) {
        const StringView from = hasMaximum ? "from " : "of at least ";
        text.append(range.includesMinimum ? from : "above ").append(numberText(range.minimum));
    }
    if (hasMaximum) {
        const StringView upTo = hasMinimum ? " to " : "of at most ";
        const StringView below = hasMinimum ? " to below " : "below ";
        text.append(range.includesMaximum ? upTo : below).append(numberText(range.maximum));
    }
    if (!setting.unit.empty())
        text.append(text.empty() ? "of " : " ").append(setting.unit);
    return text;
}

String valueProblem(const Setting& setting, StringView value) {
    String problem = "'";
    problem.append(value).append("' is no value of the setting '").append(setting.name);
    return problem.append("'; it takes ")
        .append(expectedText(setting))
        .append(".")
        .append(nearestNameHint(value, {setting.choices.begin(), setting.choices.end()}));
}

const Setting* findSetting(const SettingTable& settings, StringView name, ovMemory::Result& result) {
    if (const Setting* setting = settings.find(name))
        return setting;
    // The list is short, and most mistakes are a name from memory.
    Buffer<String> names;
    for (const Setting& setting : settings)
        names.emplace_back(setting.name);
    const String known = names.empty() ? String("none") : join(names, ", ");
    result = ovMemory::failed("there is no setting '" + String(name) + "'; it has " + known + "." +
                                  nearestNameHint(name, {names.begin(), names.end()}),
                              String(name));
    return nullptr;
}

ovMemory::Result parseSettings(const SettingTable& settings, BufferView<const SettingText> texts,
                               const ovGraphics::System* resources, Buffer<SettingAssignment>& assignments) {
    assignments.clear();
    for (const SettingText& text : texts) {
        ovMemory::Result result;
        const Setting* setting = findSetting(settings, text.name, result);
        if (!setting)
            return result;
        if (findAssignment(assignments, setting->name))
            return ovMemory::failed("the setting '" + text.name + "' is given twice; keep one.", text.name);
        SettingValue value;
        result = parseSettingValue(*setting, text.value, resources, value);
        if (!result)
            return result;
        assignments.push_back({setting->name, std::move(value)});
    }
    // Last, because what a setting depends on may be given after it.
    return checkConditions(settings, assignments);
}

} // namespace ovVeldris
