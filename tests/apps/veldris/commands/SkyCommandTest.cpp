#include "veldris/commands/CommandTesting.h"
#include "veldris/sky/SkyReference.h"

#include <algorithm>
#include <filesystem>
#include <ovImages/CompositeEncoder.h>
#include <ovImages/cubes/CubeFile.h>
#include <ovVeldris/environment/light/EnvironmentTexels.h>
#include <support/TemporaryFolder.h>

namespace {

using ovImages::Image;
using ovMemory::Buffer;
using ovMemory::String;
using skyReference::Three;
using veldris::SkyPlace;

class SkyCommandTest : public testing::Test {
protected:
    /// With tables that are drawn fast, unless the air is described.
    Outcome sky(const Buffer<String>& options) {
        Buffer<String> arguments = {"sky", "--device", "software", "--cache", _folder.getPath("cache")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        if (std::ranges::find(options, "--air") == options.end())
            arguments.insert(arguments.end(), {"--air", skyReference::SMALL_TABLES});
        return runVeldris(arguments);
    }
    /// Draws into a file of the folder. @return it
    Image draw(const String& file, Buffer<String> options) {
        options.insert(options.end(), {"-o", _folder.getPath(file)});
        const Outcome outcome = sky(options);
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.error, "");
        return read(file);
    }
    Image read(const String& file) {
        ovImages::DecodeResult decoded = ovImages::CompositeEncoder().decodeFile(_folder.getPath(file));
        EXPECT_TRUE(decoded) << decoded.error;
        return decoded ? std::move(*decoded.image) : Image();
    }
    bool exists(const String& file) { return std::filesystem::exists(_folder.getPath(file)); }

    TemporaryFolder _folder;
};

/// The place of the brightest texel of a photographed panorama: azimuths grow to the right, 0 is the middle.
SkyPlace brightestOf(const Image& panorama) {
    unsigned int x = 0;
    unsigned int y = 0;
    for (unsigned int row = 0; row < panorama.getHeight(); ++row)
        for (unsigned int column = 0; column < panorama.getWidth(); ++column)
            if (panorama.getComponent(column, row, 0) > panorama.getComponent(x, y, 0)) {
                x = column;
                y = row;
            }
    return {90.0 - 180.0 * (y + 0.5) / panorama.getHeight(), 360.0 * (x + 0.5) / panorama.getWidth() - 180.0};
}

TEST_F(SkyCommandTest, aViewHoldsTheLightOfTheSlowMarch) {
    const Image picture = draw("view.exr", {"--sun", "12,30", "--camera-height", "500", "--size", "16x12",
                                            "--samples", "1", "--view", "5,35", "--field-of-view", "65",
                                            "--air", String("mie-g=0.7,") + skyReference::SMALL_TABLES});
    ovVeldris::AtmosphereEffectInfo info;
    info.mieG = 0.7f;
    info.sunIlluminanceFactor = 10.0f;
    info.multiScatteringLutWidth = info.multiScatteringLutHeight = 16;
    const skyReference::Sky reference(info, {12.0, 30.0}, 500.0);
    ASSERT_EQ(picture.getWidth(), 16u);
    skyReference::expectSeen(reference, {5.0, 35.0}, 65.0, picture);
}

TEST_F(SkyCommandTest, theSunStandsInThePanoramaWhereItWasPut) {
    constexpr double TEXEL = 360.0 / 128;
    for (const SkyPlace& sun :
         {SkyPlace{20.0, 0.0}, SkyPlace{35.0, 60.0}, SkyPlace{8.0, -135.0}, SkyPlace{50.0, 179.0}}) {
        const String place = std::to_string(sun.elevation) + "," + std::to_string(sun.azimuth);
        const SkyPlace found = brightestOf(draw(
            "sky.exr", {"--sun", place, "--panorama", "--size", "128x64", "--air", "sun-angular-radius=2"}));
        EXPECT_NEAR(found.elevation, sun.elevation, TEXEL) << place;
        EXPECT_NEAR(std::remainder(found.azimuth - sun.azimuth, 360.0), 0.0, TEXEL) << place;
        // bake turns it into a cube of the library, whose brightest texel looks towards the sun.
        ASSERT_EQ(runVeldris({"bake", "cubemap", _folder.getPath("sky.exr"), _folder.getPath("sky.dds"),
                              "--size", "64", "--format", "float"})
                      .status,
                  0);
        const ovImages::CubeReadResult cube = ovImages::readCubeFile(_folder.getPath("sky.dds"));
        ASSERT_TRUE(cube) << cube.error;
        const Image& faces = cube.cube.mips.front();
        const ovVeldris::EnvironmentTexels texels(faces.view(), true);
        ovVeldris::Direction direction = {};
        float brightest = 0.0f;
        for (unsigned int row = 0; row < texels.getHeight(); ++row)
            for (unsigned int column = 0; column < texels.getWidth(); ++column)
                if (texels.getLight(column, row)[0] > brightest) {
                    brightest = texels.getLight(column, row)[0];
                    direction = texels.getDirection(column, row);
                }
        EXPECT_GT(skyReference::dot(direction, skyReference::Sky::directionTo(sun)), std::cos(0.06)) << place;
    }
}

TEST_F(SkyCommandTest, theHorizonLiesInTheLowerThirdTowardsTheSun) {
    // Dark ground below a bright sky, and the sun in the middle column.
    const Image picture = draw("view.exr", {"--sun", "15,250", "--size", "48x48", "--camera-height", "1",
                                            "--air", "planet-albedo=0,0,0,sun-angular-radius=2"});
    for (unsigned int x = 0; x < 48; ++x) {
        EXPECT_GT(picture.getComponent(x, 30, 2), 0.1f) << x;
        EXPECT_LT(picture.getComponent(x, 33, 2), 0.01f) << x;
    }
    unsigned int brightest = 0;
    float most = 0.0f;
    for (unsigned int y = 0; y < 48; ++y)
        for (unsigned int x = 0; x < 48; ++x)
            if (picture.getComponent(x, y, 0) > most) {
                most = picture.getComponent(x, y, 0);
                brightest = x;
            }
    EXPECT_NEAR(brightest, 23.5, 1.0);
}

TEST_F(SkyCommandTest, sunsetIsRedderThanNoon) {
    const auto rednessOf = [&](const char* sun) {
        const Image picture = draw("view.png", {"--sun", sun, "--size", "20x20", "--view", "4,0"});
        return picture.getComponent(10, 9, 0) / picture.getComponent(10, 9, 2);
    };
    EXPECT_GT(rednessOf("2,0"), 1.5f * rednessOf("60,0"));
}

TEST_F(SkyCommandTest, bothLanguagesDrawOneSky) {
    const Image glsl = draw("glsl.exr", {"--sun", "9,0", "--size", "24x16", "--language", "glsl"});
    const Image hlsl = draw("hlsl.exr", {"--sun", "9,0", "--size", "24x16", "--language", "hlsl"});
    for (unsigned int y = 0; y < 16; ++y)
        for (unsigned int x = 0; x < 24; ++x)
            for (unsigned int i = 0; i < 3; ++i)
                EXPECT_NEAR(glsl.getComponent(x, y, i), hlsl.getComponent(x, y, i), 1e-4) << x << " " << y;
}

TEST_F(SkyCommandTest, aSequenceIsItsPicturesAndASheetOfThem) {
    const Outcome outcome =
        sky({"--from", "30,0", "--to", "10,40", "--frames", "3", "-o", _folder.getPath("s-{frame}.exr"),
             "--size", "24x16", "--contact-sheet", _folder.getPath("sheet.exr"), "--json", "--samples", "1",
             "--view", "10,20"});
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    const auto report = parseJson(outcome);
    ASSERT_EQ(report["frames"].Size(), 3u);
    EXPECT_EQ(report["frames"][1]["elevation"].GetDouble(), 20.0);
    EXPECT_EQ(report["frames"][1]["azimuth"].GetDouble(), 20.0);
    EXPECT_EQ(report["frames"][2]["output"].GetString(), _folder.getPath("s-0003.exr"));
    EXPECT_EQ(report["contactSheet"].GetString(), _folder.getPath("sheet.exr"));
    EXPECT_EQ(report["width"].GetInt(), 24);
    EXPECT_EQ(report["height"].GetInt(), 16);
    // Each frame is the picture of its sun, and the sheet shows them in rows of two.
    const Image sheet = read("sheet.exr");
    ASSERT_EQ(sheet.getWidth(), 2u * 28 + 4);
    ASSERT_EQ(sheet.getHeight(), 2u * 20 + 4);
    const char* suns[] = {"30,0", "20,20", "10,40"};
    for (unsigned int i = 0; i < 3; ++i) {
        const Image frame = read("s-000" + std::to_string(i + 1) + ".exr");
        const Image alone =
            draw("alone.exr", {"--sun", suns[i], "--size", "24x16", "--samples", "1", "--view", "10,20"});
        for (unsigned int y = 0; y < 16; ++y)
            for (unsigned int x = 0; x < 24; ++x) {
                EXPECT_EQ(frame.getComponent(x, y, 1), alone.getComponent(x, y, 1))
                    << i << " " << x << " " << y;
                EXPECT_EQ(sheet.getComponent(4 + i % 2 * 28 + x, 4 + i / 2 * 20 + y, 1),
                          frame.getComponent(x, y, 1));
            }
    }
}

TEST_F(SkyCommandTest, aDayFollowsTheTime) {
    const Outcome outcome =
        sky({"--from", "8:00", "--to", "16:00", "--frames", "3", "--latitude", "30", "--day", "172",
             "--contact-sheet", _folder.getPath("day.png"), "--size", "32x18", "--json"});
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    const auto report = parseJson(outcome);
    EXPECT_NEAR(report["frames"][1]["elevation"].GetDouble(), 90.0 - 30.0 + 23.45, 0.01);
    EXPECT_NEAR(report["frames"][0]["elevation"].GetDouble(), report["frames"][2]["elevation"].GetDouble(),
                1e-6);
    EXPECT_FALSE(report["frames"][0].HasMember("output"));
    EXPECT_TRUE(exists("day.png"));
}

TEST_F(SkyCommandTest, oneFrameNeedsNoField) {
    const Outcome outcome = sky({"--from", "30,0", "--to", "10,40", "--frames", "1", "-o",
                                 _folder.getPath("one.png"), "--size", "8x8"});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.output, _folder.getPath("one.png") + "\n");
    EXPECT_TRUE(exists("one.png"));
}

TEST_F(SkyCommandTest, timesAreToldOnRequest) {
    const Outcome outcome =
        sky({"--sun", "30,0", "-o", _folder.getPath("o.png"), "--size", "8x8", "--timings", "--json"});
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    const auto report = parseJson(outcome);
    Buffer<String> passes;
    for (const auto& pass : report["passes"].GetArray())
        passes.emplace_back(pass["pass"].GetString());
    EXPECT_EQ(passes, (Buffer<String>{"ground", "sky", "average of samples",
                                      "tone-mapping:operator=reinhard,max-white=6,6,6"}));
    EXPECT_GT(report["steps"].Size(), 2u);
}

TEST_F(SkyCommandTest, aboveTheAirThereIsAWarning) {
    const Outcome outcome =
        sky({"--sun", "30,0", "-o", _folder.getPath("o.png"), "--size", "8x8", "--camera-height", "1e5"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.error,
              "veldris: warning: the camera stands above the air, which ends at 100 km; from there all "
              "but the sun is black.\n");
    EXPECT_EQ(
        sky({"--sun", "30,0", "-o", _folder.getPath("o.png"), "--size", "8x8", "--camera-height", "-50"})
            .error,
        "");
}

TEST_F(SkyCommandTest, wrongOptionsAreToldBeforeAnythingIsDrawn) {
    struct Case {
        Buffer<String> options;
        const char* message;
    };
    const String out = _folder.getPath("o.png");
    const Case cases[] = {
        {{"-o", out}, "there is no sun; give --sun ELEVATION,AZIMUTH, or --from, --to and --frames."},
        {{"--sun", "nan,0", "-o", out},
         "--sun 'nan,0' is not ELEVATION,AZIMUTH in degrees with an elevation from -90 to 90, such as "
         "30,180."},
        {{"--sun", "91,0", "-o", out},
         "--sun '91,0' is not ELEVATION,AZIMUTH in degrees with an elevation from -90 to 90, such as "
         "30,180."},
        {{"--sun", "1,0", "--from", "6:00", "-o", out},
         "--sun stands for one picture and --from, --to and --frames for a sequence; give one of them."},
        {{"--from", "6:00", "--to", "8:00", "-o", out},
         "a sequence takes all three of --from, --to and --frames."},
        {{"--from", "6:00", "--frames", "2", "-o", out},
         "a sequence takes all three of --from, --to and --frames."},
        {{"--frames", "2", "-o", out}, "a sequence takes all three of --from, --to and --frames."},
        {{"--from", "6:00", "--to", "8:00", "--frames", "2", "-o", "o.png"},
         "the name 'o.png' would be that of all 2 frames; put {frame} into it, such as sky-{frame}.png."},
        {{"--from", "6:00", "--to", "8:00", "--frames", "2", "-o", "png:-"},
         "the name 'png:-' would be that of all 2 frames; put {frame} into it, such as sky-{frame}.png."},
        {{"--sun", "1,0", "-o", "o-{frame}.png"},
         "the name 'o-{frame}.png' has a {frame}, and there is one picture; give --from, --to and --frames."},
        {{"--sun", "1,0"}, "there is nothing to write; give --output."},
        {{"--from", "6:00", "--to", "8:00", "--frames", "2"},
         "there is nothing to write; give --output with {frame} in its name, or --contact-sheet."},
        {{"--sun", "1,0", "-o", out, "--contact-sheet", out},
         "--contact-sheet shows a sequence; give --from, --to and --frames."},
        {{"--sun", "1,0", "-o", out, "--size", "0x5"},
         "the size '0x5' is not WIDTHxHEIGHT in pixels, such as 1280x720."},
        {{"--sun", "1,0", "-o", out, "--panorama", "--size", "100x51"},
         "a panorama is twice as wide as high; '100x51' is not."},
        {{"--sun", "1,0", "-o", out, "--samples", "5"},
         "--samples 5 is no square of a whole number; 1, 4, 9 and 16 are."},
        {{"--sun", "1,0", "-o", out, "--view", "up"},
         "--view 'up' is not ELEVATION,AZIMUTH in degrees with an elevation from -90 to 90, such as 30,180."},
        {{"--sun", "1,0", "-o", out, "--camera-height", "nan"}, "--camera-height nan is no finite number."},
        {{"--sun", "1,0", "-o", out, "--camera-height", "inf"}, "--camera-height inf is no finite number."},
        {{"--sun", "1,0", "-o", out, "--latitude", "nan"}, "--latitude nan is no finite number."},
        {{"--sun", "1,0", "-o", out, "--field-of-view", "nan"}, "--field-of-view nan is no finite number."},
        {{"--sun", "1,0", "-o", out, "--air", "fog=1"}, "the air: there is no setting 'fog'"},
        {{"--sun", "1,0", "-o", out, "--effects", "texture-copy"}, "put a tone-mapping between them"},
        {{"--sun", "1,0", "-o", "o.txt"}, "'o.txt' names no image format by its extension"},
        {{"--sun", "1,0", "-o", "/proc/nowhere/o.png"}, "/proc/nowhere"},
    };
    for (const Case& current : cases) {
        const Outcome outcome = sky(current.options);
        EXPECT_EQ(outcome.status, 1) << current.message;
        EXPECT_TRUE(outcome.error.starts_with("veldris: ")) << outcome.error;
        EXPECT_NE(outcome.error.find(current.message), String::npos) << outcome.error;
    }
    EXPECT_FALSE(exists("o.png"));
    EXPECT_FALSE(exists("cache")) << "no device was opened";
    for (const Buffer<String>& options :
         {Buffer<String>{"--frames", "0"}, Buffer<String>{"--frames", "10001"},
          Buffer<String>{"--samples", "0"}, Buffer<String>{"--field-of-view", "171"},
          Buffer<String>{"--latitude", "91"}, Buffer<String>{"--day", "0"}}) {
        const Outcome outcome = sky(options);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_NE(outcome.error.find(options[0]), String::npos) << outcome.error;
    }
}

TEST_F(SkyCommandTest, whatIsTooLargeIsToldInOneLine) {
    const Outcome view = sky({"--sun", "1,0", "-o", _folder.getPath("o.png"), "--size", "4000000000x2"});
    EXPECT_EQ(view.status, 1);
    EXPECT_NE(
        view.error.find("veldris: the picture of 4000000000 x 2 pixels with 4 samples takes 8000000000 x 4"),
        String::npos)
        << view.error;
    const Outcome panorama = sky(
        {"--sun", "1,0", "-o", _folder.getPath("o.exr"), "--panorama", "--size", "4000000000x2000000000"});
    EXPECT_EQ(panorama.status, 1);
    EXPECT_NE(panorama.error.find("veldris: the panorama of 4000000000 x 2000000000 pixels with 4 samples"),
              String::npos)
        << panorama.error;
    EXPECT_FALSE(exists("o.png"));
    EXPECT_FALSE(exists("o.exr"));
}

} // namespace
