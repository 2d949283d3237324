// What holds of every table of settings, checked on an object that has one.
#pragma once

#include <cmath>
#include <gtest/gtest.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Node.h>
#include <ovVeldris/core/settings/Configurable.h>
#include <ovVeldris/core/settings/SettingText.h>
#include <set>

namespace settingTesting {

using namespace ovVeldris;

/// A number that a range holds and that is not the other one.
inline float numberInside(const SettingRange& range, float other) {
    for (const float candidate : {0.25f, 0.75f, 2.0f, 30.0f, 100.0f, -1.0f})
        if (range.holds(candidate) && candidate != other)
            return candidate;
    return (range.minimum + range.maximum) / 2.0f;
}

/// Numbers that a number, an integer or a vector's component must not take.
inline std::vector<float> numbersOutside(const SettingRange& range) {
    std::vector<float> outside = {NAN, INFINITY, -INFINITY};
    if (std::isfinite(range.minimum))
        outside.push_back(range.includesMinimum ? range.minimum - 1.0f : range.minimum);
    if (std::isfinite(range.maximum))
        outside.push_back(range.includesMaximum ? range.maximum + 1.0f : range.maximum);
    return outside;
}

/// Values that a setting must take, other than its default.
inline std::vector<SettingValue> otherValues(const Setting& setting, ovGraphics::System& graphics) {
    const auto inside = [&](float other) { return numberInside(setting.range, other); };
    switch (setting.kind) {
    case SETTING_KIND::FLAG:
        return {!std::get<bool>(setting.defaultValue)};
    case SETTING_KIND::INTEGER:
        for (const int candidate : {1, 2, 7, 40, -1})
            if (setting.range.holds(candidate) && candidate != std::get<int>(setting.defaultValue))
                return {candidate};
        return {};
    case SETTING_KIND::NUMBER:
        return {inside(std::get<float>(setting.defaultValue))};
    case SETTING_KIND::VECTOR: {
        ovMaths::Vector vector;
        const auto byDefault = std::get<ovMaths::Vector>(setting.defaultValue);
        for (unsigned int i = 0; i < setting.components; ++i)
            (&vector.x)[i] = inside((&byDefault.x)[i]);
        return {vector};
    }
    case SETTING_KIND::MATRIX: {
        ovMaths::Matrix matrix;
        for (unsigned int i = 0; i < setting.components; ++i)
            for (unsigned int j = 0; j < setting.components; ++j)
                matrix.m[i][j] = static_cast<float>(4 * i + j) + 0.5f;
        return {matrix};
    }
    case SETTING_KIND::ENUMERATION: {
        std::vector<SettingValue> choices(setting.choices.begin(), setting.choices.end());
        return choices;
    }
    case SETTING_KIND::TEXT:
        return {ovMemory::String("ANOTHER_TEXT")};
    case SETTING_KIND::TEXTURE:
        return {graphics.getTextureManager()->createOrRetrieve("a texture")};
    case SETTING_KIND::SAMPLER:
        return {graphics.getSamplerManager()->createOrRetrieve("a sampler")};
    case SETTING_KIND::CAMERA:
        return {graphics.getCameraManager()->createOrRetrieve("a camera")};
    case SETTING_KIND::NODE:
        return {graphics.getNodeManager()->createOrRetrieve("a node")};
    }
    return {};
}

/// The same value; a number that an object stores in other units may be off by its rounding.
inline ::testing::AssertionResult isSame(const SettingValue& actual, const SettingValue& expected) {
    if (std::holds_alternative<float>(actual) && std::holds_alternative<float>(expected)) {
        const float difference = std::abs(std::get<float>(actual) - std::get<float>(expected));
        if (difference <= 1e-6f * std::abs(std::get<float>(expected)))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "off by " << difference;
    }
    return actual == expected ? ::testing::AssertionSuccess() : ::testing::AssertionFailure();
}

inline void checkGoesInAndComesOut(Configurable& object, const Setting& setting,
                                   ovGraphics::System& graphics) {
    const auto others = otherValues(setting, graphics);
    EXPECT_FALSE(others.empty());
    for (const SettingValue& value : others) {
        EXPECT_EQ(object.setSetting(setting.name, value).error, "");
        EXPECT_TRUE(isSame(*object.getSetting(setting.name), value));
        const ovMemory::String text = object.getSettingAsText(setting.name);
        EXPECT_EQ(object.setSetting(setting.name, setting.defaultValue).error, "");
        EXPECT_EQ(object.getSetting(setting.name), setting.defaultValue);
        EXPECT_EQ(object.setSettingFromText(setting.name, text, &graphics).error, "");
        EXPECT_TRUE(isSame(*object.getSetting(setting.name), value)) << text;
    }
    EXPECT_EQ(object.setSetting(setting.name, setting.defaultValue).error, "");
}

/// A value of the setting's kind with that number in it, last component first; nothing where none fits.
inline std::optional<SettingValue> withNumber(const Setting& setting, float number) {
    switch (setting.kind) {
    case SETTING_KIND::INTEGER:
        return std::isfinite(number) ? std::optional<SettingValue>(static_cast<int>(number)) : std::nullopt;
    case SETTING_KIND::NUMBER:
        return number;
    case SETTING_KIND::VECTOR: {
        auto vector = std::get<ovMaths::Vector>(setting.defaultValue);
        (&vector.x)[setting.components - 1] = number;
        return vector;
    }
    default:
        return std::nullopt;
    }
}

inline void checkRefusesOutOfRange(Configurable& object, const Setting& setting) {
    const auto before = object.getSetting(setting.name);
    for (const float number : numbersOutside(setting.range)) {
        const auto value = withNumber(setting, number);
        if (!value)
            continue;
        ovMemory::String error = object.setSetting(setting.name, *value).error;
        EXPECT_NE(error.find("the setting '" + ovMemory::String(setting.name) + "'"), error.npos) << error;
        EXPECT_NE(error.find(rangeText(setting)), error.npos) << error;
        EXPECT_EQ(object.getSetting(setting.name), before);
    }
}

inline void checkDescription(const SettingTable& settings, const Setting& setting) {
    EXPECT_EQ(setting.name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-"), setting.name.npos);
    EXPECT_FALSE(setting.help.empty());
    EXPECT_FALSE(setting.help.ends_with('.'));
    EXPECT_EQ(settings.find(setting.name), &setting) << "the name is there twice";
    SettingValue byDefault = setting.defaultValue;
    EXPECT_EQ(acceptSettingValue(setting, byDefault).error, "");
    if (setting.onlyWith.setting.empty())
        return;
    const Setting* decider = settings.find(setting.onlyWith.setting);
    ASSERT_NE(decider, nullptr) << setting.onlyWith.setting;
    SettingValue value;
    EXPECT_EQ(parseSettingValue(*decider, setting.onlyWith.value, nullptr, value).error, "");
}

/// Whether a setting is used, and taken when settings are given together, beside its condition only.
inline void checkCondition(Configurable& object, const Setting& setting, ovGraphics::System& graphics) {
    const SettingTable& settings = object.getSettings();
    const Setting* decider = settings.find(setting.onlyWith.setting);
    if (!decider)
        return;
    auto deciding = otherValues(*decider, graphics);
    deciding.push_back(decider->defaultValue);
    for (const SettingValue& value : deciding) {
        const ovMemory::String text = toText(*decider, value);
        const bool isMet = text == setting.onlyWith.value;
        EXPECT_EQ(object.setSetting(decider->name, value).error, "");
        EXPECT_EQ(object.isSettingUsed(setting), isMet) << text;
        const SettingText texts[] = {
            {ovMemory::String(setting.name), toText(setting, setting.defaultValue)},
            {ovMemory::String(decider->name), text},
        };
        ovMemory::Buffer<SettingAssignment> assignments;
        const ovMemory::Result together = parseSettings(settings, texts, &graphics, assignments);
        EXPECT_EQ(!!together, isMet) << text << together.error;
        EXPECT_EQ(together.place, isMet ? "" : setting.name) << text;
    }
    EXPECT_EQ(object.setSetting(decider->name, decider->defaultValue).error, "");
}

/// Everything above of every setting of a new object. @param graphics has its managers
inline void checkSettingTable(Configurable& object, ovGraphics::System& graphics) {
    for (const Setting& setting : object.getSettings()) {
        SCOPED_TRACE(setting.name);
        EXPECT_EQ(object.getSetting(setting.name), setting.defaultValue) << "of a new object";
        checkDescription(object.getSettings(), setting);
        checkGoesInAndComesOut(object, setting, graphics);
        checkRefusesOutOfRange(object, setting);
        checkCondition(object, setting, graphics);
    }
}

} // namespace settingTesting
