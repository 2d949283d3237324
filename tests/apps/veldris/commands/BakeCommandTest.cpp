#include "support/TemporaryFolder.h"
#include "veldris/bake/EnvironmentPictures.h"
#include "veldris/commands/CommandTesting.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ovImages/Half.h>

namespace {

using ovImages::Image;
using ovMemory::Buffer;
using ovMemory::String;

Buffer<char> readBytes(const String& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return Buffer<char>(std::istreambuf_iterator<char>(file), {});
}

/// Panoramas whose colours are their directions have +z on the right, as the library has.
constexpr const char* LIBRARY = "--library-longitudes";

class BakeCommandTest : public testing::Test {
protected:
    Outcome bake(const char* what, const String& input, const String& output,
                 const Buffer<String>& more = {}) {
        Buffer<String> arguments = {"bake", what, input, output};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return runVeldris(arguments);
    }

    /// A panorama whose colours are its directions.
    String writePanorama() {
        const String path = _folder.getPath("panorama.exr");
        writeImage(path, directionPanorama(32));
        return path;
    }

    TemporaryFolder _folder;
};

TEST_F(BakeCommandTest, sunsBeyondHalfFloatsStayWhereFloatsAreWritten) {
    const char* names[] = {"px", "nx", "py", "ny", "pz", "nz"};
    for (unsigned int face = 0; face < 6; ++face) {
        Image image = floatImage(4, 4);
        image.setComponent(1, 2, 0, face == 0 ? 110000.0f : 1.0f);
        writeImage(_folder.getPath(String("in_") + names[face] + ".exr"), image);
    }
    for (const bool isFloat : {false, true}) {
        const Outcome outcome =
            bake("cubemap", _folder.getPath("in_{face}.exr"), _folder.getPath("out_{face}.exr"),
                 {"--size", "4", "--format", isFloat ? "float" : "half"});
        ASSERT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(readImage(_folder.getPath("out_px.exr")).getComponent(1, 2, 0),
                  isFloat ? 110000.0f : 65504.0f);
        EXPECT_EQ(outcome.error.empty(), isFloat) << outcome.error;
    }
}

TEST_F(BakeCommandTest, facesShowTheirDirections) {
    const String input = writePanorama();
    const Outcome outcome = bake("cubemap", input, _folder.getPath("{face}.exr"), {"--size", "16", LIBRARY});
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.error, "");
    const char* names[] = {"px", "nx", "py", "ny", "pz", "nz"};
    String expected;
    for (unsigned int face = 0; face < 6; ++face) {
        const String path = _folder.getPath(String(names[face]) + ".exr");
        expected += path + "\n";
        const Image image = readImage(path);
        ASSERT_EQ(image.getWidth(), 16u);
        for (unsigned int i = 0; i < 16 * 16; ++i)
            // The caps around the panorama's poles are flat, half a row of 5.6 degrees.
            EXPECT_LT(worstDirection(image, i % 16, i / 16, directionOfTexel(face, 16, i % 16, i / 16)),
                      0.026)
                << names[face] << ' ' << i;
    }
    EXPECT_EQ(outcome.output, expected);
}

TEST_F(BakeCommandTest, oneFileHoldsAllMips) {
    const String output = _folder.getPath("sky.dds");
    const Outcome outcome = bake("prefilter", writePanorama(), output, {"--size", "16", LIBRARY});
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    const Buffer<char> bytes = readBytes(output);
    constexpr std::size_t HEADER = 148;
    constexpr std::size_t FACE = (16 * 16 + 8 * 8 + 4 * 4) * 8; // half floats
    ASSERT_EQ(bytes.size(), HEADER + 6 * FACE);
    for (unsigned int face = 0; face < 6; ++face) {
        for (unsigned int i = 0; i < 16 * 16; ++i) {
            const Direction direction = directionOfTexel(face, 16, i % 16, i / 16);
            std::uint16_t texel[4];
            std::memcpy(texel, bytes.data() + HEADER + face * FACE + i * sizeof(texel), sizeof(texel));
            for (unsigned int channel = 0; channel < 3; ++channel)
                EXPECT_NEAR(ovImages::halfToFloat(texel[channel]), 0.5 + 0.5 * direction[channel], 0.026);
            EXPECT_EQ(ovImages::halfToFloat(texel[3]), 1.0f);
        }
    }
}

TEST_F(BakeCommandTest, theSameInputGivesTheSameBytes) {
    const String input = writePanorama();
    for (const char* what : {"prefilter", "irradiance", "cubemap"}) {
        const String first = _folder.getPath("first.dds");
        const String second = _folder.getPath("second.dds");
        ASSERT_EQ(bake(what, input, first, {"--size", "8", "--format", "float"}).status, 0);
        ASSERT_EQ(bake(what, input, second, {"--size", "8", "--format", "float"}).status, 0);
        EXPECT_EQ(readBytes(first), readBytes(second)) << what;
    }
}

TEST_F(BakeCommandTest, everyFormUnwrapsToTheSamePanorama) {
    const String input = writePanorama();
    const struct {
        const char* name;
        Buffer<String> more;
    } forms[] = {{"cube.dds", {}}, {"{face}.exr", {}}, {"cross.exr", {"--layout", "cross"}}};
    for (const auto& form : forms) {
        Buffer<String> more = {"--size", "32", "--format", "float", LIBRARY};
        more.insert(more.end(), form.more.begin(), form.more.end());
        ASSERT_EQ(bake("cubemap", input, _folder.getPath(form.name), more).status, 0);
        const Outcome outcome =
            bake("spherical", _folder.getPath(form.name), _folder.getPath("back.exr"), {LIBRARY});
        ASSERT_EQ(outcome.status, 0) << outcome.error;
        const Image image = readImage(_folder.getPath("back.exr"));
        ASSERT_EQ(image.getWidth(), 128u);
        ASSERT_EQ(image.getHeight(), 64u);
        for (unsigned int i = 0; i < 128 * 64; ++i)
            EXPECT_LT(worstDirection(image, i % 128, i / 128, directionOfPixel(128, 64, i % 128, i / 128)),
                      0.027)
                << form.name << ' ' << i;
    }
}

TEST_F(BakeCommandTest, photographsReadRightInCubesAndBack) {
    // Red grows to the right, as letters do, from the picture's left edge to its right one.
    Image photograph = floatImage(64, 32);
    for (unsigned int i = 0; i < 64 * 32; ++i)
        photograph.setComponent(i % 64, i / 64, 0, (static_cast<float>(i % 64) + 0.5f) / 64.0f);
    const String input = _folder.getPath("photograph.exr");
    writeImage(input, photograph);
    ASSERT_EQ(bake("cubemap", input, _folder.getPath("{face}.exr"), {"--size", "16"}).status, 0);
    // The middle of the picture is along +X, its right quarter along -Z and its left one along +Z. Faces are
    // seen from inside with their rows running to the right.
    struct Case {
        const char* face;
        float middle;
    };
    for (const Case& row : {Case{"px", 0.5f}, {"nz", 0.75f}, {"pz", 0.25f}}) {
        const Image face = readImage(_folder.getPath(String(row.face) + ".exr"));
        for (unsigned int x = 0; x < 16; ++x) {
            const double angle = std::atan((2.0 * x + 1.0) / 16.0 - 1.0) / (2.0 * 3.14159265358979);
            // Colours are read at eight bits of a texel, which is 1 / 64 wide, and kept as half floats.
            EXPECT_NEAR(face.getComponent(x, 8, 0), row.middle + angle, 0.002) << row.face << ' ' << x;
        }
    }
    ASSERT_EQ(bake("spherical", _folder.getPath("{face}.exr"), _folder.getPath("back.exr"), {"--size", "32"})
                  .status,
              0);
    const Image back = readImage(_folder.getPath("back.exr"));
    // Where the edges meet, the step spreads over texels of the cube, each as wide as 1.3 columns.
    for (unsigned int x = 2; x < 62; ++x)
        EXPECT_NEAR(back.getComponent(x, 16, 0), photograph.getComponent(x, 16, 0), 0.01) << x;
}

TEST_F(BakeCommandTest, cubesThatStayCubesAreNotMirrored) {
    const String faces = _folder.getPath("in_{face}.exr");
    ASSERT_EQ(bake("cubemap", writePanorama(), faces, {"--size", "8", LIBRARY}).status, 0);
    for (const Buffer<String>& more : {Buffer<String>{"--size", "8"}, {"--size", "8", LIBRARY}}) {
        ASSERT_EQ(bake("cubemap", faces, _folder.getPath("out_{face}.exr"), more).status, 0);
        for (const char* name : {"px", "pz"})
            EXPECT_EQ(readBytes(_folder.getPath(String("in_") + name + ".exr")),
                      readBytes(_folder.getPath(String("out_") + name + ".exr")))
                << name;
    }
}

TEST_F(BakeCommandTest, irradianceGivesItsCoefficients) {
    const String json = _folder.getPath("sky.json");
    const Outcome outcome = bake("irradiance", writePanorama(), _folder.getPath("sky.png"),
                                 {"--size", "64", "--layout", "cross", "--coefficients", json, LIBRARY});
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.output, _folder.getPath("sky.png") + "\n" + json + "\n");
    const Buffer<char> bytes = readBytes(json);
    rapidjson::Document document;
    document.Parse(bytes.data(), bytes.size());
    ASSERT_FALSE(document.HasParseError());
    const auto& rows = document["coefficients"];
    ASSERT_EQ(rows.Size(), 9u);
    // The integrals of 0.5 Y over the sphere, and of 0.5 x Y for red and the function along x: sqrt(pi), and
    // 0.5 sqrt(3 / (4 pi)) 4 pi / 3. Texels count from their corners, which moves them by half of 1 / 64.
    EXPECT_NEAR(rows[0]["red"].GetDouble(), 1.7725, 0.03);
    EXPECT_NEAR(rows[1]["red"].GetDouble(), 1.0233, 0.03);
    EXPECT_NEAR(rows[1]["green"].GetDouble(), 0.0, 0.03);
    EXPECT_NEAR(rows[2]["green"].GetDouble(), 1.0233, 0.03);
    EXPECT_NEAR(rows[3]["blue"].GetDouble(), 1.0233, 0.03);
    EXPECT_STREQ(rows[3]["basis"].GetString(), "z");
    EXPECT_DOUBLE_EQ(rows[3]["factor"].GetDouble(), 2.0 / 3.0);
}

TEST_F(BakeCommandTest, reportsForMachines) {
    const auto report = parseJson(bake("prefilter", writePanorama(), _folder.getPath("sky_{mip}.png"),
                                       {"--size", "8", "--layout", "cross", "--json", "--timings"}));
    EXPECT_STREQ(report["bake"].GetString(), "prefilter");
    EXPECT_STREQ(report["inputKind"].GetString(), "panorama");
    EXPECT_EQ(report["width"].GetInt(), 8);
    EXPECT_EQ(report["mips"].GetInt(), 2);
    ASSERT_EQ(report["files"].Size(), 2u);
    EXPECT_EQ(report["files"][1].GetString(), _folder.getPath("sky_1.png"));
    String steps;
    for (const auto& step : report["steps"].GetArray())
        steps += String(step["step"].GetString()) + ";";
    EXPECT_EQ(steps, "starting;decoding;baking;writing;");
}

TEST_F(BakeCommandTest, oddPanoramasAreWarnedOf) {
    const String input = _folder.getPath("odd.exr");
    writeImage(input, floatImage(3, 2));
    const Outcome outcome = bake("cubemap", input, _folder.getPath("odd.dds"), {"--size", "4"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.error.find("veldris: warning: '" + input + "' has 3 x 2 pixels"), String::npos)
        << outcome.error;
}

TEST_F(BakeCommandTest, everyFailureIsOneLineAndWritesNothing) {
    const String input = writePanorama();
    const String output = _folder.getPath("never.dds");
    const struct {
        const char* what;
        String input;
        String output;
        Buffer<String> more;
        const char* part;
    } cases[] = {
        {"prefilter", _folder.getPath("missing.hdr"), output, {}, "missing.hdr"},
        {"prefilter", input, _folder.getPath("never.png"), {"--layout", "cross"}, "put {mip} into its name"},
        {"irradiance", input, _folder.getPath("never.png"), {}, "put {face} into its name"},
        {"cubemap", input, _folder.getPath("never_{face}.bmp"), {}, "names no image format"},
        {"spherical", input, _folder.getPath("never.png"), {}, "is a panorama already"},
        {"spherical", input, output, {}, "is for cubes"},
        {"cubemap", input, output, {"--size", "65536"}, "65536 texels are too many"},
        {"cubemap", input, _folder.getPath("none/never.dds"), {"--size", "4"}, "none"},
    };
    for (const auto& row : cases) {
        const Outcome outcome = bake(row.what, row.input, row.output, row.more);
        EXPECT_EQ(outcome.status, 1) << row.part;
        EXPECT_NE(outcome.error.find(row.part), String::npos) << outcome.error;
        EXPECT_EQ(std::ranges::count(outcome.error, '\n'), 1) << outcome.error;
        EXPECT_EQ(outcome.output, "");
    }
    for (const auto& entry : std::filesystem::directory_iterator(_folder.getPath()))
        EXPECT_EQ(entry.path().filename().native().find("never"), String::npos) << entry.path();
}

TEST_F(BakeCommandTest, wrongUsageIsStatusTwo) {
    const Buffer<Buffer<String>> cases = {{"bake"},
                                          {"bake", "sharpen", "a.exr", "b.dds"},
                                          {"bake", "prefilter", "a.exr"},
                                          {"bake", "prefilter", "a.exr", "b.dds", "--size", "3"},
                                          {"bake", "prefilter", "a.exr", "b.dds", "--format", "double"},
                                          {"bake", "prefilter", "a.exr", "b.dds", "--coefficients", "c.json"},
                                          {"bake", "spherical", "a.dds", "b.exr", "--layout", "cross"},
                                          // Nothing is drawn on a device.
                                          {"bake", "cubemap", "a.exr", "b.dds", "--device", "software"},
                                          {"bake", "cubemap", "a.exr", "b.dds", "--language", "glsl"},
                                          {"bake", "cubemap", "a.exr", "b.dds", "--no-cache"}};
    for (const auto& arguments : cases) {
        const Outcome outcome = runVeldris(arguments);
        EXPECT_EQ(outcome.status, 2) << arguments.back();
        EXPECT_FALSE(outcome.error.empty());
    }
}

} // namespace
