#include <ovVeldris/effects/atmosphere/AtmosphereInfo.h>

#include <gtest/gtest.h>

using namespace ovVeldris;

TEST(AtmosphereInfoTest, namesItsPrograms) {
    EXPECT_EQ(AtmosphereNameGenerator()(), "ORVANE_ATMOSPHERE_PROGRAM_");
    EXPECT_EQ(AtmosphereLutNameGenerator()(), "ORVANE_ATMOSPHERE_LUT_PROGRAM_");
}

TEST(AtmosphereInfoTest, shadowsNeedAMapAndItsCamera) {
    AtmosphereEffectInfo info;
    EXPECT_FALSE(info.usesShadows());
    info.hasShadowTexture = true;
    EXPECT_FALSE(info.usesShadows());
    info.hasShadowCamera = true;
    EXPECT_TRUE(info.usesShadows());
    info.hasShadowTexture = false;
    EXPECT_FALSE(info.usesShadows());
}
