#include <gtest/gtest.h>
#include <ovVeldris/effects/EffectType.h>

using namespace ovVeldris;

namespace {

struct TypeCase {
    unsigned int value;
    ovMemory::StringView text;
};

constexpr TypeCase KINDS[] = {{1, "ATMOSPHERE"},        {2, "FILM_GRAIN"}, {3, "FXAA"},
                              {4, "IMAGE_ENVIRONMENT"}, {5, "SSAO"},       {6, "TEXTURE_COPY"},
                              {7, "TONE_MAPPING"}};

} // namespace

TEST(EffectTypeTest, kindsHaveTheirTexts) {
    for (const TypeCase& kind : KINDS) {
        EXPECT_EQ(EffectTypeUtils::enumToString(EFFECT_TYPE(kind.value)), kind.text);
        EXPECT_EQ(EffectTypeUtils::stringToEnum(kind.text), EFFECT_TYPE(kind.value));
    }
}

TEST(EffectTypeTest, otherValuesAreUnknown) {
    for (const unsigned int value : {0u, 8u, 99u, 0xffffffffu})
        EXPECT_EQ(EffectTypeUtils::enumToString(EFFECT_TYPE(value)), "UNKNOWN") << value;
}

TEST(EffectTypeTest, otherTextsAreUnknown) {
    for (const ovMemory::StringView text :
         {"", "UNKNOWN", "fxaa", "Fxaa", " FXAA", "FXAA ", "FXAA\n", "TONE MAPPING", "TONE_MAPPIN", "7"})
        EXPECT_EQ(EffectTypeUtils::stringToEnum(text), EFFECT_TYPE::UNKNOWN) << text;
    EXPECT_EQ(EffectTypeUtils::stringToEnum(ovMemory::StringView("FXAA\0", 5)), EFFECT_TYPE::UNKNOWN);
}
