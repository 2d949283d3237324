#include "veldris/bake/EnvironmentPictures.h"
#include "veldris/commands/CommandTesting.h"
#include "veldris/commands/ModelFile.h"

#include <array>
#include <chrono>

namespace {

using ovImages::Image;
using ovMemory::String;

class RenderCommandTest : public testing::Test {
protected:
    Outcome render(const String& model, const String& output, const ovMemory::Buffer<String>& more = {}) {
        ovMemory::Buffer<String> arguments = {"render",
                                              model,
                                              "-o",
                                              output,
                                              "--size",
                                              "40x40",
                                              "--device",
                                              "software",
                                              "--cache",
                                              _folder.getPath("cache"),
                                              "--environment",
                                              "none",
                                              "--samples",
                                              "1",
                                              "--camera",
                                              "0,0"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return runVeldris(arguments);
    }
    /// The middle of a quarter of the picture, 0 to 255: 0 top left, 1 top right, 2 bottom left, 3 bottom
    /// right.
    static std::array<int, 3> quarter(const String& path, unsigned int index) {
        const ovImages::DecodeResult read = ovImages::CompositeEncoder().decodeFile(path);
        EXPECT_TRUE(read) << read.error;
        std::array<int, 3> pixel{};
        for (unsigned int channel = 0; read && channel < 3; ++channel)
            pixel[channel] = static_cast<int>(
                255.0f * read.image->getComponent(10 + 20 * (index % 2), 10 + 20 * (index / 2), channel) +
                0.5f);
        return pixel;
    }
    static String contentOf(const String& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    TemporaryFolder _folder;
};

TEST_F(RenderCommandTest, drawsTheModelUprightInBothLanguages) {
    const String model = writeQuad(_folder);
    for (const char* language : {"glsl", "hlsl"}) {
        const String output = _folder.getPath(String(language) + ".png");
        const Outcome outcome = render(model, output, {"--language", language, "--light", "0,0,-1"});
        ASSERT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.output, output + "\n");
        EXPECT_EQ(outcome.error, "");
        const auto brightest = [&](unsigned int index) {
            const std::array<int, 3> pixel = quarter(output, index);
            return std::max_element(pixel.begin(), pixel.end()) - pixel.begin();
        };
        EXPECT_EQ(brightest(0), 0) << "red is top left";
        EXPECT_EQ(brightest(1), 1) << "green is top right";
        EXPECT_EQ(brightest(2), 2) << "blue is bottom left";
        const std::array<int, 3> white = quarter(output, 3);
        EXPECT_GT(white[0], 150);
        EXPECT_EQ(white[0], white[1]);
    }
    EXPECT_EQ(contentOf(_folder.getPath("glsl.png")), contentOf(_folder.getPath("hlsl.png")));
}

TEST_F(RenderCommandTest, depthOfFieldFocusesOnTheModel) {
    const String model = writeQuad(_folder);
    const auto draw = [&](const char* name, const char* effects) {
        const String output = _folder.getPath(String(name) + ".exr");
        const Outcome outcome = render(model, output, {"--light", "0,0,-1", "--effects", effects});
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        ovImages::DecodeResult read = ovImages::CompositeEncoder().decodeFile(output);
        EXPECT_TRUE(read) << read.error;
        return read ? std::move(*read.image) : Image();
    };
    // How much neighbours differ in the middle, where the four colours of the quad meet.
    const auto sharpness = [](const Image& image) {
        float largest = 0.0f;
        for (unsigned int y = 15; y < 25; ++y)
            for (unsigned int x = 15; x < 25; ++x)
                largest = std::max(largest,
                                   std::abs(image.getComponent(x, y, 0) - image.getComponent(x + 1, y, 0)));
        return largest;
    };
    const Image plain = draw("plain", "texture-copy");
    const Image inFocus = draw("focus", "dof:near=0,focus=auto,thickness=0.5,far=1000,strength=4");
    const Image before = draw("before", "dof:near=0,focus=0.01,far=0.02,strength=4");
    EXPECT_GT(sharpness(plain), 0.0f);
    EXPECT_FLOAT_EQ(sharpness(inFocus), sharpness(plain)) << "the quad is in the sharp zone";
    EXPECT_LT(sharpness(before), 0.5f * sharpness(plain));
}

TEST_F(RenderCommandTest, lightComesFromWhereItIsToldTo) {
    const String model = writeQuad(_folder);
    const String front = _folder.getPath("front.png");
    const String back = _folder.getPath("back.png");
    ASSERT_EQ(render(model, front, {"--light", "0,0,-1"}).status, 0); // away from the viewer
    ASSERT_EQ(render(model, back, {"--light", "0,0,1"}).status, 0);
    EXPECT_GT(quarter(front, 3)[0], quarter(back, 3)[0] + 50);
}

TEST_F(RenderCommandTest, placesAreThoseOfTheFile) {
    const String model = writeQuad(_folder); // its front looks along +z, as glTF has it
    const String output = _folder.getPath("o.png");
    const auto renderFrom = [&](const char* camera) {
        return runVeldris({"render", model, "-o", output, "--size", "40x40", "--device", "software",
                           "--no-cache", "--environment", "none", "--samples", "1", "--background", "0,0,0",
                           "--light", "0,0,-1", "--camera", camera});
    };
    ASSERT_EQ(renderFrom("0,0,4,0,0,0").status, 0);
    EXPECT_GT(quarter(output, 3)[0], 150) << "the front, lit from the front";
    ASSERT_EQ(renderFrom("0,0,-4,0,0,0").status, 0);
    EXPECT_EQ(quarter(output, 3), (std::array<int, 3>{0, 0, 0})) << "the back, which has one side only";
    // Red is top left: seen from the left of the file, what lies at -x is near and to the left.
    ASSERT_EQ(renderFrom("-1,0,4,-1,0,0").status, 0);
    EXPECT_GT(quarter(output, 1)[0], 150);
    EXPECT_LT(quarter(output, 1)[1], 100);
}

ovImages::Image imageOf(const String& path) {
    ovImages::DecodeResult read = ovImages::CompositeEncoder().decodeFile(path);
    EXPECT_TRUE(read) << read.error;
    return read ? std::move(*read.image) : ovImages::Image();
}

/// A pixel's components, 0 to 255 or as floats; alpha 1 where there is none.
std::array<float, 4> pixelOf(const String& path, unsigned int x, unsigned int y) {
    const ovImages::Image image = imageOf(path);
    std::array<float, 4> pixel = {0, 0, 0, 1};
    for (unsigned int channel = 0; channel < image.getChannels(); ++channel)
        pixel[channel] = image.getComponent(x, y, channel);
    return pixel;
}

TEST_F(RenderCommandTest, aBackgroundIsDrawnExactlyAsGiven) {
    const String model = writeQuad(_folder);
    const float linear[3] = {0.25f, 0.5f, 1.0f};
    const float encoded[3] = {137.0f / 255.0f, 188.0f / 255.0f, 1.0f}; // IEC 61966-2-1, to 8 bits
    for (const char* environment : {"sky", "none"}) {
        for (const char* effects : {"tone-mapping:operator=aces", "tone-mapping:operator=reinhard"}) {
            for (const char* name : {"o.png", "o.exr"}) {
                const String output = _folder.getPath(name);
                const Outcome outcome =
                    runVeldris({"render", model, "-o", output, "--size", "40x20", "--device", "software",
                                "--cache", _folder.getPath("cache"), "--background", "0.25,0.5,1",
                                "--environment", environment, "--effects", effects, "--camera", "0,0"});
                ASSERT_EQ(outcome.status, 0) << outcome.error;
                const std::array<float, 4> corner = pixelOf(output, 1, 1);
                for (unsigned int i = 0; i < 3; ++i)
                    EXPECT_EQ(corner[i], output.ends_with("png") ? encoded[i] : linear[i])
                        << environment << name;
                EXPECT_NE(pixelOf(output, 20, 10), corner) << "the model";
            }
        }
    }
}

TEST_F(RenderCommandTest, aTransparentBackgroundIsAlpha) {
    const String model = writeQuad(_folder);
    const String output = _folder.getPath("o.png");
    const String opaque = _folder.getPath("opaque.png");
    const auto draw = [&](const String& path, const char* background) {
        return runVeldris({"render", model, "-o", path, "--size", "37x21", "--device", "software", "--cache",
                           _folder.getPath("cache"), "--background", background, "--camera", "10,0",
                           "--samples", "16"});
    };
    ASSERT_EQ(draw(output, "transparent").status, 0);
    ASSERT_EQ(draw(opaque, "1,0,0").status, 0);
    EXPECT_EQ(pixelOf(output, 0, 0), (std::array<float, 4>{0, 0, 0, 0}));
    EXPECT_EQ(pixelOf(output, 18, 10)[3], 1.0f);
    EXPECT_EQ(pixelOf(output, 18, 10)[0], pixelOf(opaque, 18, 10)[0]);
    // An edge is partly covered, and its colour is that of the model and not mixed with black.
    unsigned int x = 0;
    while (x < 18 && pixelOf(output, x, 10)[3] == 0.0f)
        ++x;
    const std::array<float, 4> edge = pixelOf(output, x, 10);
    EXPECT_GT(edge[3], 0.05f);
    EXPECT_LT(edge[3], 0.95f);
    EXPECT_NEAR(edge[0], pixelOf(output, x + 1, 10)[0], 0.04f);
}

TEST_F(RenderCommandTest, filesOfFloatsHoldSceneLightUnlessEffectsAreAskedFor) {
    const String model = writeQuad(_folder, R"(, "emissiveFactor": [1, 1, 1], "extensions":
        {"KHR_materials_emissive_strength": {"emissiveStrength": 1}})");
    const String light = _folder.getPath("light.exr");
    const String mapped = _folder.getPath("mapped.exr");
    ASSERT_EQ(render(model, light, {"--light", "0,0,-1", "--light-color", "9,9,9"}).status, 0);
    ASSERT_EQ(render(model, mapped,
                     {"--light", "0,0,-1", "--light-color", "9,9,9", "--effects",
                      "tone-mapping:operator=reinhard,max-white=6,6,6"})
                  .status,
              0);
    EXPECT_GT(pixelOf(light, 30, 30)[0], 5.0f) << "white under a light of 9";
    EXPECT_LE(pixelOf(mapped, 30, 30)[0], 1.5f);
}

TEST_F(RenderCommandTest, theFirstPictureStandsOnAGroundThatCatchesItsShadow) {
    const String model = writeQuad(_folder, R"(, "doubleSided": true)");
    const auto draw = [&](const char* name, const ovMemory::Buffer<String>& more) {
        const String output = _folder.getPath(name);
        ovMemory::Buffer<String> arguments = {
            "render",   model,      "-o",       output,    "--size",
            "48x48",    "--device", "software", "--cache", _folder.getPath("cache"),
            "--camera", "0,40,0.5", "--light",  "1,-1,-1"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        EXPECT_EQ(runVeldris(arguments).status, 0);
        return output;
    };
    const ovImages::Image plain = imageOf(draw("plain.png", {"--no-ground"}));
    const ovImages::Image first = imageOf(draw("first.png", {}));
    // Where no shadow falls the two pictures are one.
    unsigned int darker = 0;
    for (unsigned int i = 0; i < 48 * 48; ++i) {
        const float with = first.getComponent(i % 48, i / 48, 1);
        const float without = plain.getComponent(i % 48, i / 48, 1);
        EXPECT_LE(with, without);
        darker += with < 0.8f * without ? 1 : 0;
    }
    EXPECT_GT(darker, 20u);
    EXPECT_EQ(first.getComponent(1, 1, 1), plain.getComponent(1, 1, 1));
    EXPECT_EQ(first.getComponent(24, 46, 1), plain.getComponent(24, 46, 1));

    const auto countBlack = [&](const String& path) {
        const ovImages::Image image = imageOf(path);
        unsigned int count = 0;
        for (unsigned int i = 0; i < 48 * 48; ++i)
            count +=
                image.getComponent(i % 48, i / 48, 3) > 0.5f && image.getComponent(i % 48, i / 48, 1) == 0.0f
                    ? 1
                    : 0;
        return count;
    };
    // Before a background of one's own a ground is asked for.
    EXPECT_EQ(countBlack(draw("alpha.png", {"--background", "transparent"})), 0u);
    EXPECT_GT(countBlack(draw("alpha-ground.png", {"--background", "transparent", "--ground"})), 20u);
}

TEST_F(RenderCommandTest, anUnusableCacheIsToldOnce) {
    const String model = writeQuad(_folder);
    const Outcome outcome = runVeldris({"render", model, "-o", _folder.getPath("o.png"), "--size", "16x16",
                                        "--device", "software", "--cache", "/proc/nowhere"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(
        outcome.error.starts_with("veldris: warning: the cache folder '/proc/nowhere' cannot be used: "))
        << outcome.error;
    EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 1) << outcome.error;
}

TEST_F(RenderCommandTest, theBackOfASingleSidedSurfaceIsNotSeen) {
    const ovMemory::Buffer<String> behind = {"--camera", "180,0",   "--background",
                                             "0,0,0",    "--light", "0,0,1"};
    const auto withoutCamera = [&](const String& model, const String& output) {
        ovMemory::Buffer<String> arguments = {"render",    model,      "-o",        output,          "--size",
                                              "40x40",     "--device", "software",  "--environment", "none",
                                              "--samples", "1",        "--no-cache"};
        arguments.insert(arguments.end(), behind.begin(), behind.end());
        return runVeldris(arguments);
    };
    const String output = _folder.getPath("back.png");
    ASSERT_EQ(withoutCamera(writeQuad(_folder), output).status, 0);
    EXPECT_EQ(quarter(output, 2), (std::array<int, 3>{0, 0, 0}));
    ASSERT_EQ(withoutCamera(writeQuad(_folder, R"(, "doubleSided": true)"), output).status, 0);
    EXPECT_GT(quarter(output, 2)[0], 150) << "white, which is bottom right from the front";
}

TEST_F(RenderCommandTest, savedMaterialsDrawTheSamePictureBitForBit) {
    const String model = writeQuad(_folder, R"(, "emissiveFactor": [0.1234567891, 0.3, 0])");
    const String materials = _folder.getPath("quad.ovm");
    const Outcome written =
        runVeldris({"materials", model, "-o", materials, "--device", "software", "--no-cache"});
    ASSERT_EQ(written.status, 0) << written.error;
    const String own = _folder.getPath("own.exr");
    const String read = _folder.getPath("read.exr");
    ASSERT_EQ(render(model, own, {"--shadows"}).status, 0);
    const Outcome again = render(model, read, {"--shadows", "--materials", materials});
    ASSERT_EQ(again.status, 0) << again.error;
    EXPECT_EQ(again.error, "");
    EXPECT_EQ(contentOf(own), contentOf(read));
}

TEST_F(RenderCommandTest, anEditedMaterialIsDrawnAsEdited) {
    const String model = writeQuad(_folder);
    const String materials = _folder.getPath("quad.ovm");
    const String output = _folder.getPath("o.png");
    std::ofstream(materials)
        << R"json([{"name": "paint", "type": "PBS", "emissiveColor": "Vec(0, 9, 0, 0)"}])json";
    const Outcome outcome = render(model, output, {"--materials", materials, "--light", "0,0,-1"});
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_GT(quarter(output, 0)[1], quarter(output, 0)[0]) << "it glows green";
    EXPECT_GT(quarter(output, 0)[0], 100) << "over its red, which the file leaves as the model has it";

    std::ofstream(materials) << R"json([
        {"name": "paint", "type": "PBS", "albedoTexture": {"name": "nowhere.png", "packing": "rgb"}},
        {"name": "other", "type": "PBS"}, {"name": "pain", "type": "PBS"}])json";
    const Outcome odd = render(model, output, {"--materials", materials, "--light", "0,0,-1"});
    ASSERT_EQ(odd.status, 0) << odd.error;
    EXPECT_NE(odd.error.find("'nowhere.png'"), String::npos) << odd.error;
    EXPECT_NE(odd.error.find("the material 'other' of '" + materials + "' is none of the model's.\n"),
              String::npos)
        << odd.error;
    std::ofstream(materials) << R"json([{"name": "pain", "type": "PBS"}])json";
    const Outcome mistyped = render(model, output, {"--materials", materials});
    EXPECT_NE(mistyped.error.find("is none of the model's. Did you mean 'paint'?\n"), String::npos)
        << mistyped.error;
}

TEST_F(RenderCommandTest, picturesLieBesideTheFileOfMaterials) {
    ovImages::Image green(2, 2, 3, ovImages::COMPONENT_TYPE::UINT8, ovImages::COLOR_ENCODING::SRGB);
    for (unsigned int i = 0; i < 4; ++i)
        green.setComponent(i % 2, i / 2, 1, 1.0f);
    const String folder = _folder.getPath("elsewhere");
    std::filesystem::create_directory(folder);
    ASSERT_TRUE(ovImages::CompositeEncoder().encodeFile(folder + "/moss.png", green.view()));
    std::ofstream(folder + "/m.ovm")
        << R"json([{"name": "paint", "type": "PBS", "albedoTexture": {"name": "moss.png", "packing": "rgb"}}])json";
    const String output = _folder.getPath("moss.png");
    const Outcome outcome =
        render(writeQuad(_folder), output, {"--materials", folder + "/m.ovm", "--light", "0,0,-1"});
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.error, "");
    for (unsigned int index = 0; index < 4; ++index)
        EXPECT_GT(quarter(output, index)[1], 2 * quarter(output, index)[0]) << index;
}

TEST_F(RenderCommandTest, aLightIsAddedToAnEnvironmentOfOnesOwn) {
    ovImages::Image dim(16, 8, 3, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int i = 0; i < 16 * 8 * 3; ++i)
        dim.setComponent(i / 3 % 16, i / 48, i % 3, 0.05f);
    const String sky = _folder.getPath("dim.hdr");
    ASSERT_TRUE(ovImages::CompositeEncoder().encodeFile(sky, dim.view()));
    const String model = writeQuad(_folder);
    int brightness[2] = {};
    for (const bool isLit : {false, true}) {
        const String output = _folder.getPath(isLit ? "lit.png" : "unlit.png");
        ovMemory::Buffer<String> arguments = {
            "render",     model,           "-o", output,      "--size", "40x40",    "--device", "software",
            "--no-cache", "--environment", sky,  "--samples", "1",      "--camera", "0,0"};
        if (isLit)
            arguments.insert(arguments.end(), {"--light", "0,0,-1"});
        const Outcome outcome = runVeldris(arguments);
        ASSERT_EQ(outcome.status, 0) << outcome.error;
        brightness[isLit ? 1 : 0] = quarter(output, 3)[0];
    }
    EXPECT_GT(brightness[1], brightness[0] + 50);
}

// A cube that bake wrote shows and gives the light of the panorama that it was baked from.
TEST_F(RenderCommandTest, cubesOfFilesAreTheEnvironmentThatTheyWereBakedFrom) {
    const String model = writeQuad(_folder);
    const String panorama = _folder.getPath("panorama.exr");
    writeImage(panorama, directionPanorama(64));
    const String copy = _folder.getPath("cube.dds");
    const String prefiltered = _folder.getPath("prefiltered.ktx2");
    ASSERT_EQ(runVeldris({"bake", "cubemap", panorama, copy, "--size", "64"}).status, 0);
    ASSERT_EQ(runVeldris({"bake", "prefilter", panorama, prefiltered, "--size", "64"}).status, 0);
    const auto picture = [&](const String& environment) {
        const String output = _folder.getPath("o.exr");
        const Outcome outcome =
            runVeldris({"render", model, "-o", output, "--size", "64x32", "--device", "software",
                        "--no-cache", "--environment", environment, "--environment-rotation", "90",
                        "--samples", "1", "--camera", "15,20,0.5"});
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.error, "");
        return readImage(output);
    };
    const Image expected = picture(panorama);
    for (const String& cube : {copy, prefiltered}) {
        const Image drawn = picture(cube);
        double worst = 0.0;
        for (unsigned int i = 0; i < 64 * 32 * 3; ++i)
            worst = std::max(worst, std::abs(double(drawn.getComponent(i / 3 % 64, i / 192, i % 3)) -
                                             expected.getComponent(i / 3 % 64, i / 192, i % 3)));
        // Colours are parts of directions, which are straight over a texel to 0.0003; half floats below 1 are
        // 0.0005 apart.
        EXPECT_LT(worst, 0.001) << cube;
    }
}

TEST_F(RenderCommandTest, surroundingsTurnToTheRight) {
    const String model = writeQuad(_folder);
    const String panorama = _folder.getPath("panorama.exr");
    writeImage(panorama, directionPanorama(64));
    // The longitude and the latitude of the file that a corner of the picture shows, in degrees.
    const auto seen = [&](const char* degrees) {
        const String output = _folder.getPath("o.exr");
        const Outcome outcome =
            runVeldris({"render", model, "-o", output, "--size", "64x32", "--device", "software",
                        "--no-cache", "--environment", panorama, "--environment-rotation", degrees,
                        "--samples", "1", "--camera", "15,20,0.5"});
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        const Image picture = readImage(output);
        const auto part = [&](unsigned int channel) {
            return 2.0 * picture.getComponent(0, 0, channel) - 1.0;
        };
        return std::array{std::atan2(part(2), part(0)) * 180.0 / lightTruth::PI,
                          std::asin(part(1)) * 180.0 / lightTruth::PI};
    };
    const auto straight = seen("0");
    const auto turned = seen("45"); // sixteen columns
    // What was to the left of the place is there now, and columns grow to the right.
    EXPECT_NEAR(std::remainder(turned[0] - straight[0] + 45.0, 360.0), 0.0, 0.3);
    EXPECT_NEAR(turned[1], straight[1], 0.3);
}

TEST_F(RenderCommandTest, aMissingPictureIsDrawnAsAStandInWithOneWarning) {
    const String model = writeQuad(_folder);
    std::filesystem::remove(_folder.getPath("quad.png"));
    const String output = _folder.getPath("o.png");
    const Outcome outcome = render(model, output, {"--light", "0,0,-1"});
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_NE(outcome.error.find("quad.png"), String::npos) << outcome.error;
    EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 1) << outcome.error;
    EXPECT_NEAR(quarter(output, 0)[1], quarter(output, 3)[1], 3) << "no colour of the picture";
}

TEST_F(RenderCommandTest, wrongOptionsAreToldBeforeAnythingIsRead) {
    struct Case {
        const char* option;
        const char* value;
        const char* message;
    };
    const Case cases[] = {
        {"--size", "40", "the size '40' is not WIDTHxHEIGHT in pixels, such as 1280x720."},
        {"--size", "0x40", "the size '0x40' is not WIDTHxHEIGHT in pixels, such as 1280x720."},
        {"--size", "40x40x40", "the size '40x40x40' is not WIDTHxHEIGHT in pixels, such as 1280x720."},
        {"--samples", "3", "--samples 3 is no square of a whole number; 1, 4, 9 and 16 are."},
        {"--light", "1,2", "--light '1,2' is not three numbers such as 0.5,-1,0.5."},
        {"--light", "0,0,0", "--light has no direction; give another vector than zero."},
        {"--light-color", "red", "--light-color 'red' is not three numbers such as 3,2.8,2.5."},
        {"--background", "blue",
         "--background 'blue' is not three numbers such as 0.2,0.4,0.6, or transparent."},
        {"--background", "transparant", "or transparent. Did you mean 'transparent'?"},
        {"--camera", "flie", "or file. Did you mean 'file'?"},
        {"--camera", "up", "the camera 'up' is not"},
        {"--effects", "nothing", "nothing"},
        {"--effects", "tone-mapping:operator=loud", "loud"},
        {"--effects", "tone-mapping;ssao", "'ssao' reads the scene"},
        {"--effects", "ssao:reads=colours", "it takes one of depth, positions, positions-and-normals"},
        {"--effects", "ssao", "tone-mapping"},
        {"--effects", "texture-copy", "tone-mapping"}, // scene light does not fit into a PNG as it is
    };
    for (const Case& current : cases) {
        ovMemory::Buffer<String> arguments = {"render",       "nowhere.glb", "-o", _folder.getPath("o.png"),
                                              current.option, current.value};
        const Outcome outcome = runVeldris(arguments);
        EXPECT_EQ(outcome.status, 1) << current.option;
        EXPECT_NE(outcome.error.find(current.message), String::npos) << outcome.error;
        EXPECT_EQ(outcome.error.find("nowhere.glb"), String::npos) << outcome.error;
    }
    EXPECT_FALSE(std::filesystem::exists(_folder.getPath("o.png")));
}

TEST_F(RenderCommandTest, whatCannotBeDrawnFailsWithOneLine) {
    const String output = _folder.getPath("o.png");
    const Outcome missing = render("nowhere.glb", output);
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.error.find("nowhere.glb"), String::npos) << missing.error;
    std::ofstream(_folder.getPath("broken.glb")) << "glTF";
    EXPECT_EQ(render(_folder.getPath("broken.glb"), output).status, 1);
    std::ofstream(_folder.getPath("empty.gltf")) << R"({"asset": {"version": "2.0"}})";
    const Outcome empty = render(_folder.getPath("empty.gltf"), output);
    EXPECT_EQ(empty.status, 1);
    EXPECT_NE(empty.error.find("has nothing to draw."), String::npos) << empty.error;
    const String model = writeQuad(_folder);
    const Outcome noMaterials = render(model, output, {"--materials", "nowhere.ovm"});
    EXPECT_EQ(noMaterials.status, 1);
    EXPECT_EQ(noMaterials.error,
              "veldris: Reading file 'nowhere.ovm' failed: No such file or directory; check the path\n");
    const Outcome picture = render(_folder.getPath("quad.png"), output);
    EXPECT_EQ(picture.status, 1);
    EXPECT_NE(
        picture.error.find("it begins neither as a binary file of glTF nor as JSON; give a .glb or .gltf "
                           "file"),
        String::npos)
        << picture.error;
    EXPECT_FALSE(std::filesystem::exists(output));
}

/// A model whose metalness varies, so that its pictures are converted.
String writeMetalQuad(const TemporaryFolder& folder) {
    const String model = writeQuad(folder, R"(, "normalTexture": {"index": 0, "scale": 0.5})");
    Image picture(512, 512, 3, ovImages::COMPONENT_TYPE::UINT8, ovImages::COLOR_ENCODING::SRGB);
    for (std::size_t i = 0; i < picture.getBytes().size(); ++i)
        picture.getBytes()[i] = static_cast<unsigned char>(i * i % 251);
    writeImage(folder.getPath("quad.png"), picture);
    return model;
}

// Half of a tenth of what the run takes may be told nowhere: what lies before the first step and behind the
// last.
TEST_F(RenderCommandTest, itsStepsAreAllThatItDoes) {
    const String sky = _folder.getPath("sky.exr");
    writeImage(sky, directionPanorama(64));
    const String model = writeMetalQuad(_folder);
    const auto start = std::chrono::steady_clock::now();
    const Outcome outcome =
        runVeldris({"render", model, "-o", _folder.getPath("o.png"), "--device", "software", "--no-cache",
                    "--environment", sky, "--size", "320x180", "--json", "--timings"});
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - start;
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    const auto report = parseJson(outcome);
    String names;
    double sum = 0.0;
    for (const auto& step : report["steps"].GetArray()) {
        names += String(step["step"].GetString()) + ";";
        sum += step["milliseconds"].GetDouble();
    }
    EXPECT_EQ(names,
              "starting;device;decoding;uploading;conversion;filtering;programs;drawing;writing;closing;");
    EXPECT_GE(sum, 0.95 * wall.count());
    EXPECT_LE(sum, wall.count());
}

TEST_F(RenderCommandTest, reportsForMachines) {
    const auto report = parseJson(render(writeQuad(_folder), _folder.getPath("o.png"), {"--json"}));
    EXPECT_EQ(report["width"].GetInt(), 40);
    EXPECT_EQ(report["output"].GetString(), _folder.getPath("o.png"));
    EXPECT_FALSE(report.HasMember("passes"));
    const auto timed =
        parseJson(render(writeQuad(_folder), _folder.getPath("o.png"), {"--json", "--timings", "--shadows"}));
    ovMemory::String steps;
    for (const auto& step : timed["steps"].GetArray()) {
        steps += ovMemory::String(step["step"].GetString()) + ";";
        EXPECT_GT(step["milliseconds"].GetDouble(), 0.0);
    }
    EXPECT_EQ(steps, "starting;device;decoding;uploading;conversion;programs;drawing;writing;closing;");
    EXPECT_STREQ(timed["timingMethod"].GetString(), "wall clock");
    ovMemory::String passes;
    for (const auto& pass : timed["passes"].GetArray())
        passes += ovMemory::String(pass["pass"].GetString()) + ";";
    EXPECT_EQ(passes, "clear;shadow;shadow;clear;scene;blended scene;average of samples;check of samples;"
                      "tone-mapping:operator=reinhard,max-white=6,6,6;");
}

TEST_F(RenderCommandTest, effectsOfTheSceneAreDrawnAndTold) {
    const String model = writeQuad(_folder);
    const String plain = _folder.getPath("plain.exr");
    const String hazy = _folder.getPath("hazy.exr");
    ASSERT_EQ(render(model, plain, {}).status, 0);
    const auto timed = parseJson(
        render(model, hazy,
               {"--json", "--timings", "--effects", "ssao:reads=positions;atmosphere:distance-factor=5000"}));
    String passes;
    for (const auto& pass : timed["passes"].GetArray())
        passes += String(pass["pass"].GetString()) + ";";
    EXPECT_EQ(passes, "clear;positions and normals;clear;scene;blended scene;ssao:reads=positions;"
                      "atmosphere:distance-factor=5000;average of samples;check of samples;");
    EXPECT_LT(pixelOf(hazy, 30, 30)[2], pixelOf(plain, 30, 30)[2] - 0.5f) << "air dims what is bright";
    EXPECT_GT(pixelOf(hazy, 1, 1)[2], pixelOf(plain, 1, 1)[2] + 0.1f) << "and lights what is dark";
}

} // namespace
