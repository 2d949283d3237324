#include <veldris/sky/SkyPlace.h>

#include <cmath>
#include <gtest/gtest.h>

namespace {

using namespace veldris;
using ovMemory::String;

TEST(SkyPlaceTest, azimuthsGrowClockwiseFromTheMiddleOfAPanorama) {
    struct Case {
        SkyPlace place;
        ovMaths::Vector direction;
    };
    const float half = std::sqrt(0.5f);
    const Case cases[] = {
        {{0.0, 0.0}, {1.0f, 0.0f, 0.0f}},           {{0.0, 90.0}, {0.0f, 0.0f, -1.0f}},
        {{0.0, 180.0}, {-1.0f, 0.0f, 0.0f}},        {{0.0, -90.0}, {0.0f, 0.0f, 1.0f}},
        {{90.0, 123.0}, {0.0f, 1.0f, 0.0f}},        {{-90.0, 5.0}, {0.0f, -1.0f, 0.0f}},
        {{45.0, 360.0}, {half, half, 0.0f}},        {{-45.0, 450.0}, {0.0f, -half, -half}},
        {{30.0, 30.0}, {0.75f, 0.5f, -0.4330127f}},
    };
    for (const Case& current : cases) {
        const ovMaths::Vector direction = directionOf(current.place);
        EXPECT_NEAR(direction.x, current.direction.x, 1e-6);
        EXPECT_NEAR(direction.y, current.direction.y, 1e-6);
        EXPECT_NEAR(direction.z, current.direction.z, 1e-6);
    }
}

TEST(SkyPlaceTest, placesAreTwoFiniteNumbers) {
    SkyPlace place;
    String error;
    ASSERT_TRUE(readSkyPlace("--sun", "-12.5,370", place, error)) << error;
    EXPECT_EQ(place.elevation, -12.5);
    EXPECT_EQ(place.azimuth, 370.0);
    EXPECT_TRUE(readSkyPlace("--sun", "90,0", place, error));
    EXPECT_TRUE(readSkyPlace("--sun", "-90,0", place, error));
    for (const char* text :
         {"", "5", "5,", "5,6,7", "nan,0", "0,nan", "inf,0", "0,-inf", "90.01,0", "-91,0", "high"}) {
        EXPECT_FALSE(readSkyPlace("--sun", text, place, error)) << text;
        EXPECT_EQ(error,
                  "--sun '" + String(text) +
                      "' is not ELEVATION,AZIMUTH in degrees with an elevation from -90 to 90, such as "
                      "30,180.");
    }
}

// What almanacs say of equinoxes and solstices: rising in the east at 6, the height at noon 90 - latitude +
// declination.
TEST(SkyPlaceTest, theSunFollowsTheTimeOfDay) {
    struct Case {
        double hours, latitude;
        unsigned int day;
        SkyPlace place;
    };
    const Case cases[] = {
        {6.0, 45.0, 81, {0.0, 90.0}},      {12.0, 45.0, 81, {45.0, 180.0}},
        {18.0, 45.0, 81, {0.0, 270.0}},    {12.0, 52.0, 172, {61.45, 180.0}},
        {12.0, 52.0, 355, {14.55, 180.0}}, {12.0, -35.0, 355, {78.45, 0.0}},
        {24.0, 80.0, 172, {13.45, 0.0}},   {0.0, 45.0, 81, {-45.0, 0.0}},
        {9.0, 0.0, 81, {45.0, 90.0}},
    };
    for (const Case& current : cases) {
        const SkyPlace place = sunAtTime(current.hours, current.latitude, current.day);
        EXPECT_NEAR(place.elevation, current.place.elevation, 0.01) << current.hours << " " << current.day;
        const double turn = std::remainder(place.azimuth - current.place.azimuth, 360.0);
        EXPECT_NEAR(turn, 0.0, 0.01) << current.hours << " " << current.day << ": " << place.azimuth;
        EXPECT_GE(place.azimuth, 0.0);
        EXPECT_LE(place.azimuth, 360.0);
    }
    // In the morning of June the sun of the north rises in the north-east: cos A = sin 23.45 / cos 52.
    const double sunrise =
        12.0 - std::acos(-std::tan(52.0 * M_PI / 180) * std::tan(23.45 * M_PI / 180)) * 12 / M_PI;
    const SkyPlace rising = sunAtTime(sunrise, 52.0, 172);
    EXPECT_NEAR(rising.elevation, 0.0, 0.01);
    EXPECT_NEAR(rising.azimuth,
                std::acos(std::sin(23.45 * M_PI / 180) / std::cos(52.0 * M_PI / 180)) * 180 / M_PI, 0.01);
}

ovMemory::Buffer<SkyPlace> planned(const SunWay& way) {
    ovMemory::Buffer<SkyPlace> places;
    String error;
    EXPECT_TRUE(planSunWay(way, places, error)) << error;
    return places;
}

TEST(SkyPlaceTest, waysHaveTheirEndsAndEvenSteps) {
    const auto places = planned({.from = "20,250", .to = "-10,280", .frames = 4});
    ASSERT_EQ(places.size(), 4u);
    for (unsigned int i = 0; i < 4; ++i) {
        EXPECT_NEAR(places[i].elevation, 20.0 - 10.0 * i, 1e-9);
        EXPECT_NEAR(places[i].azimuth, 250.0 + 10.0 * i, 1e-9);
    }
    const auto day = planned({.from = "6:00", .to = "18:00", .frames = 13, .latitude = 30.0});
    ASSERT_EQ(day.size(), 13u);
    EXPECT_NEAR(day[0].elevation, 0.0, 0.01);
    EXPECT_NEAR(day[6].elevation, 60.0, 0.01);
    EXPECT_NEAR(day[12].azimuth, 270.0, 0.01);
    EXPECT_EQ(planned({.from = "5:07", .to = "7:00"}).size(), 1u);
    // Past midnight the sun is lowest, half way from 22 to 2.
    const auto night = planned({.from = "22:00", .to = "2:00", .frames = 3});
    EXPECT_NEAR(night[1].elevation, -45.0, 0.01);
    EXPECT_NEAR(planned({.from = "6:30", .to = "6:30", .frames = 2})[1].elevation,
                sunAtTime(6.5, 45.0, 81).elevation, 1e-9);
}

TEST(SkyPlaceTest, whatIsNoWayIsTold) {
    struct Case {
        const char* from;
        const char* to;
        const char* error;
    };
    const Case cases[] = {
        {"6:00", "20,250", "--to '20,250' is no time as --from '6:00' is; give HH:MM from 0:00 to 24:00."},
        {"6:00", "24:01", "--to '24:01' is no time as --from '6:00' is; give HH:MM from 0:00 to 24:00."},
        {"6:00", "7:60", "--to '7:60' is no time as --from '6:00' is; give HH:MM from 0:00 to 24:00."},
        {"6:00", "7:00 pm", "--to '7:00 pm' is no time as --from '6:00' is; give HH:MM from 0:00 to 24:00."},
        {"20,250", "18:00",
         "--to '18:00' is not ELEVATION,AZIMUTH in degrees with an elevation from -90 to 90, such as "
         "30,180."},
        {"dawn", "18:00",
         "--from 'dawn' is not ELEVATION,AZIMUTH in degrees with an elevation from -90 to 90, such as "
         "30,180, "
         "and no time such as 6:30."},
        {"-6:30", "18:00",
         "--from '-6:30' is not ELEVATION,AZIMUTH in degrees with an elevation from -90 to 90, such as "
         "30,180, "
         "and no time such as 6:30."},
    };
    for (const Case& current : cases) {
        ovMemory::Buffer<SkyPlace> places;
        String error;
        EXPECT_FALSE(planSunWay({.from = current.from, .to = current.to, .frames = 3}, places, error));
        EXPECT_EQ(error, current.error);
    }
}

} // namespace
