#include <veldris/sky/AirSettings.h>

#include <gtest/gtest.h>
#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>

namespace {

using namespace veldris;
using ovMemory::String;

TEST(AirSettingsTest, theProgramsOwnSettingsAreNotAmongThem) {
    for (const char* name :
         {"sun-position", "source-color-texture", "source-depth-texture", "shadow-texture", "shadow-camera",
          "shadow-debug", "shadow-depth-bias", "shadow-sampling-method", "only-scatter-on-objects"}) {
        EXPECT_NE(ovVeldris::AtmosphereEffect::settings().find(name), nullptr) << name;
        EXPECT_EQ(airSettings().find(name), nullptr) << name;
    }
    EXPECT_EQ(airSettings().size() + 9, ovVeldris::AtmosphereEffect::settings().size());
    EXPECT_EQ(std::get<float>(airSettings().find("sun-illuminance-factor")->defaultValue), 10.0f);
}

TEST(AirSettingsTest, valuesAreCheckedAgainstTheTable) {
    ovMemory::Buffer<ovVeldris::SettingAssignment> air;
    String error;
    ASSERT_TRUE(planAir("mie-scattering=1,2,3, mie-g=0.5,display-sun=false", air, error)) << error;
    ASSERT_EQ(air.size(), 3u);
    EXPECT_EQ(air[0].name, "mie-scattering");
    EXPECT_EQ(std::get<ovMaths::Vector>(air[0].value), ovMaths::Vector(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(std::get<float>(air[1].value), 0.5f);
    EXPECT_EQ(std::get<bool>(air[2].value), false);
    EXPECT_TRUE(planAir("", air, error));
    EXPECT_TRUE(air.empty());

    struct Case {
        const char* text;
        const char* message;
    };
    const Case cases[] = {
        {"mie-g=2", "the air: '2' is no value of the setting 'mie-g'; it takes a number from -0.93 to 0.93."},
        {"mie-scattering=1,2",
         "the air: '1,2' is no value of the setting 'mie-scattering'; it takes three numbers"},
        {"mie-scatering=1,2,3", "Did you mean 'mie-scattering'?"},
        {"sun-position=0,1,0", "the air: "},
        {"mie-g=0.5,mie-g=0.6", "the air: "},
        {"thick", "'thick' is no setting; write name=value."},
        {"mie-g=0.5;fxaa",
         "the settings of the air 'mie-g=0.5;fxaa' have a semicolon; separate them by commas."},
    };
    for (const Case& current : cases) {
        EXPECT_FALSE(planAir(current.text, air, error)) << current.text;
        EXPECT_NE(error.find(current.message), String::npos) << error;
    }
}

TEST(AirSettingsTest, theHelpHasEverySettingWithItsDefault) {
    const String help = airHelp();
    for (const ovVeldris::Setting& setting : airSettings())
        EXPECT_NE(help.find("  " + String(setting.name) + " "), String::npos) << setting.name;
    EXPECT_NE(help.find("how bright the sun is, in the air and as a disc, of at least 0 (default 10)"),
              String::npos)
        << help;
}

} // namespace
