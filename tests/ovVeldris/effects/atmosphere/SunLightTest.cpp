#include <ovVeldris/effects/atmosphere/SunLight.h>

#include <ovVeldris/effects/atmosphere/AtmosphereFixture.h>

namespace {

using namespace ovVeldris;
using atmosphereReference::Three;
using ovMaths::Vector;

class SunLightTest : public AtmosphereFixture {
protected:
    void SetUp() override {
        AtmosphereFixture::SetUp();
        _air = makeEffect();
    }
    void TearDown() override {
        _air.reset();
        AtmosphereFixture::TearDown();
    }
    /// The optical depth summed in many small steps, after the table's way of summing.
    Three reference(double height, double elevation) const {
        atmosphereReference::Air air{infoOf(*_air)};
        air.info.sunLutSampleCount = 200000;
        const double angle = elevation * std::numbers::pi / 180.0;
        return air.sunTransmittance({0.0, atmosphereReference::GROUND + height * 1e-3, 0.0},
                                    {std::cos(angle), std::sin(angle), 0.0});
    }
    static void expectNear(const Vector& actual, const Three& expected, double share) {
        EXPECT_NEAR(actual.x, expected[0], share * expected[0]);
        EXPECT_NEAR(actual.y, expected[1], share * expected[1]);
        EXPECT_NEAR(actual.z, expected[2], share * expected[2]);
    }

    ovMemory::UniquePtr<AtmosphereEffect> _air;
};

INSTANTIATE_TEST_SUITE_P(, SunLightTest, testing::Values(ovGraphics::SHADER_LANGUAGE::GLSL), languageName);

TEST_P(SunLightTest, straightUpItIsTheClosedForm) {
    const auto expected = [](double rayleigh, double ozone) {
        const double column = rayleigh * 8.0 * (1.0 - std::exp(-100.0 / 8.0)) + 8.396 * 1.2 + ozone * 15.0;
        return std::exp(-1e-3 * column);
    };
    // From 1 m, so that a thousandth of a kilometre is missing.
    expectNear(sunTransmittance(*_air, 0.0, 90.0),
               {expected(5.802, 0.65), expected(13.558, 1.881), expected(33.1, 0.085)}, 1e-4);
}

TEST_P(SunLightTest, itIsTheOpticalDepthSummedDirectly) {
    useStrangeAir(*_air);
    struct Case {
        double height, elevation;
    };
    for (const Case& current :
         {Case{2.0, 0.0}, Case{2.0, 1.0}, Case{50.0, 7.0}, Case{3000.0, 35.0}, Case{3000.0, -1.0},
          Case{20000.0, -4.0}, Case{90000.0, 12.0}, Case{2.0, 90.0}})
        expectNear(sunTransmittance(*_air, current.height, current.elevation),
                   reference(current.height, current.elevation), 1e-3);
}

TEST_P(SunLightTest, nothingComesThroughTheGround) {
    EXPECT_EQ(sunTransmittance(*_air, 2.0, -0.5), Vector());
    EXPECT_EQ(sunTransmittance(*_air, 2.0, -90.0), Vector());
    EXPECT_EQ(sunTransmittance(*_air, -50.0, -2.0), Vector());
    // The horizon of 10 km lies 3.21 degrees lower: acos(6360 / 6370).
    EXPECT_GT(sunTransmittance(*_air, 10000.0, -3.15).x, 0.0f);
    EXPECT_EQ(sunTransmittance(*_air, 10000.0, -3.26), Vector());
}

TEST_P(SunLightTest, strangeHeightsAreThoseOfTheEffect) {
    EXPECT_EQ(sunTransmittance(*_air, -500.0, 20.0), sunTransmittance(*_air, 1.0, 20.0));
    EXPECT_EQ(sunTransmittance(*_air, 0.0, 20.0), sunTransmittance(*_air, 1.0, 20.0));
    EXPECT_EQ(sunTransmittance(*_air, 400e3, 20.0), Vector(1.0f, 1.0f, 1.0f));
    EXPECT_EQ(sunTransmittance(*_air, 400e3, -80.0), Vector()) << "behind the planet";
}

TEST_P(SunLightTest, itIsRedderTheLowerTheSun) {
    float redness = 0.0f; // red over blue
    for (const double elevation : {90.0, 60.0, 30.0, 15.0, 8.0, 4.0, 2.0, 0.5}) {
        const Vector light = sunIrradiance(*_air, 2.0, elevation);
        EXPECT_GT(light.x / light.z, 1.02f * redness) << elevation;
        redness = light.x / light.z;
    }
    EXPECT_GT(redness, 100.0f);
}

TEST_P(SunLightTest, irradianceIsThatOfTheEffect) {
    _air->setSunIlluminanceFactor(8.0f);
    EXPECT_EQ(sunIrradiance(*_air, 2.0, 40.0), sunTransmittance(*_air, 2.0, 40.0) * 8.0f);
}

} // namespace
