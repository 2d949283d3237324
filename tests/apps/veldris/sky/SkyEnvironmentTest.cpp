#include <veldris/sky/SkyEnvironment.h>

#include "ovVeldris/effects/atmosphere/AtmosphereFixture.h"
#include "veldris/sky/SkyReference.h"

#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>
#include <veldris/SessionTesting.h>
#include <veldris/effects/EffectChain.h>

namespace {

using namespace veldris;
using ovMemory::String;
using skyReference::Three;

TEST(SkyEnvironmentTest, itsNameIsAtmosphere) {
    for (const char* text : {"atmosphere", "atmosphere:", "atmosphere:sun=1,2"})
        EXPECT_TRUE(isSkyChoice(text)) << text;
    for (const char* text :
         {"", "sky", "none", "atmosphere.exr", "atmospheres:sun=1,2", "an/atmosphere:sun=1,2"})
        EXPECT_FALSE(isSkyChoice(text)) << text;
}

TEST(SkyEnvironmentTest, theSunAndTheAirAreRead) {
    SkyChoice choice;
    String error;
    ASSERT_TRUE(readSkyChoice("atmosphere:mie-g=0.5,sun=12.5,-30,mie-scattering=1,2,3", choice, error))
        << error;
    EXPECT_EQ(choice.sun.elevation, 12.5);
    EXPECT_EQ(choice.sun.azimuth, -30.0);
    ASSERT_EQ(choice.air.size(), 2u);
    EXPECT_EQ(choice.air[1].name, "mie-scattering");

    struct Case {
        const char* text;
        const char* error;
    };
    const char* const form =
        "' is not atmosphere:sun=ELEVATION,AZIMUTH, with settings of the air behind further commas.";
    const Case cases[] = {
        {"atmosphere", form},
        {"atmosphere:mie-g=0.5", form},
        {"atmosphere:sun=1,2;fxaa", form},
        {"atmosphere:sun=95,0", "the sun '95,0' is not ELEVATION,AZIMUTH in degrees with an elevation from "
                                "-90 to 90, such as 30,180."},
        {"atmosphere:sun=nan,0", "the sun 'nan,0' is not ELEVATION,AZIMUTH in degrees with an elevation from "
                                 "-90 to 90, such as 30,180."},
        {"atmosphere:sun=5,0,mie-g=3", "the environment atmosphere: '3' is no value of the setting 'mie-g'; "
                                       "it takes a number from -0.93 to 0.93."},
        {"atmosphere:sun=5,0,sun=6,0", "the environment atmosphere: "},
    };
    for (const Case& current : cases) {
        EXPECT_FALSE(readSkyChoice(current.text, choice, error)) << current.text;
        EXPECT_NE(error.find(current.error), String::npos) << error;
    }
}

TEST(SkyEnvironmentTest, theAirOverASceneIsThatOfTheSky) {
    Session session;
    ASSERT_NO_FATAL_FAILURE(openOnSoftware(session));
    SkyChoice choice;
    String error;
    ASSERT_TRUE(readSkyChoice("atmosphere:sun=30,0,mie-g=0.5", choice, error)) << error;
    const auto effect = makeEffect(session, planAirOverScene(choice));
    const auto& air = dynamic_cast<const ovVeldris::AtmosphereEffect&>(*effect);
    EXPECT_EQ(air.getSunIlluminanceFactor(), 10.0f);
    EXPECT_EQ(air.getMieG(), 0.5f);
    EXPECT_FALSE(air.getOnlyScatterOnObjects());
    EXPECT_NEAR(air.getSunPosition().x, std::sqrt(0.75), 1e-6);
    EXPECT_NEAR(air.getSunPosition().y, 0.5, 1e-6);
    ASSERT_TRUE(readSkyChoice("atmosphere:sun=30,0,sun-illuminance-factor=3", choice, error)) << error;
    const auto faint = makeEffect(session, planAirOverScene(choice));
    EXPECT_EQ(dynamic_cast<const ovVeldris::AtmosphereEffect&>(*faint).getSunIlluminanceFactor(), 3.0f);
}

TEST(SkyEnvironmentTest, aSceneGetsTheLightOfTheSunAndOfTheSky) {
    Session session;
    ASSERT_NO_FATAL_FAILURE(openOnSoftware(session));
    SkyChoice choice;
    String warning;
    String error;
    ASSERT_TRUE(readSkyChoice(
        "atmosphere:sun=25,60,multi-scattering-lut-width=16,multi-scattering-lut-height=16", choice, error))
        << error;
    const auto sky = SkyEnvironment::create(session, choice, 2.0f, warning, error);
    ASSERT_TRUE(sky) << error;
    EXPECT_EQ(warning, "");
    const ovMaths::Vector toSun = -sky->getSunDirection();
    EXPECT_NEAR(toSun.getLengthVec3(), 1.0f, 1e-6);
    EXPECT_NEAR(toSun.x, std::cos(M_PI * 25 / 180) * 0.5, 1e-6);
    EXPECT_LT(toSun.z, 0.0f) << "azimuths grow to -z";

    ovVeldris::AtmosphereEffectInfo info;
    info.sunIlluminanceFactor = 10.0f;
    info.multiScatteringLutWidth = info.multiScatteringLutHeight = 16;
    const skyReference::Sky reference(info, choice.sun, 2.0);
    skyReference::Air fine = reference.air;
    fine.info.sunLutSampleCount = 20000;
    const Three sun = fine.sunTransmittance({0.0, skyReference::GROUND + 2e-3, 0.0}, reference.toSun);
    const float color[3] = {sky->getSunColor().x, sky->getSunColor().y, sky->getSunColor().z};
    const Three level = reference.levelLight();
    const auto upwards = sky->getLight().getIrradiance()->convertToImage(2); // irradiance over pi
    for (unsigned int i = 0; i < 3; ++i) {
        EXPECT_NEAR(color[i], 10.0 * sun[i] / std::numbers::pi, 1e-3) << i;
        // Nine coefficients soften the step between the bright horizon and the ground.
        const double ofSky = (level[i] - 10.0 * sun[i] * reference.toSun[1]) / std::numbers::pi;
        EXPECT_NEAR(upwards->getComponent(16, 16, i), ofSky, 0.12 * ofSky) << i;
    }
}

TEST(SkyEnvironmentTest, atNightThereIsNoSun) {
    Session session;
    ASSERT_NO_FATAL_FAILURE(openOnSoftware(session));
    String warning;
    String error;
    const SkyChoice choice = {{-1.0, 0.0}, {}};
    const auto sky = SkyEnvironment::create(session, choice, 2.0f, warning, error);
    ASSERT_TRUE(sky) << error;
    EXPECT_EQ(sky->getSunColor(), ovMaths::Vector());
}

} // namespace
