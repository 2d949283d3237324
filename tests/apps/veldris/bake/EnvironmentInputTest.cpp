#include <veldris/bake/EnvironmentInput.h>

#include "support/TemporaryFolder.h"
#include "veldris/bake/EnvironmentPictures.h"

#include <fstream>
#include <limits>
#include <ovImages/Conversion.h>
#include <veldris/bake/CrossLayout.h>
#include <veldris/bake/CubeFile.h>

namespace {

using ovImages::Image;
using ovMemory::String;
using veldris::EnvironmentInput;

constexpr unsigned int SIDE = 4;

class EnvironmentInputTest : public testing::Test {
protected:
    /// Writes six faces of directions and gives their pattern.
    String writeFaces(const Image& faces) {
        const String pattern = _folder.getPath("face_{face}.exr");
        for (unsigned int face = 0; face < 6; ++face) {
            Image image = floatImage(SIDE, SIDE);
            std::ranges::copy(veldris::faceOf(faces, face).bytes, image.getBytes().begin());
            writeImage(veldris::fillField(pattern, "{face}", veldris::FACE_NAMES[face]), image);
        }
        return pattern;
    }

    String writeCube(const Image& faces, const char* name) {
        const String path = _folder.getPath(name);
        String error;
        EXPECT_TRUE(veldris::writeCubeFile(path, {.mips = {faces}}, error)) << error;
        return path;
    }

    EnvironmentInput read(const String& path) {
        EnvironmentInput input;
        String error = "old";
        EXPECT_TRUE(veldris::readEnvironment(path, input, error)) << error;
        EXPECT_EQ(error, "");
        return input;
    }

    String errorOf(const String& path) {
        EnvironmentInput input;
        String error;
        EXPECT_FALSE(veldris::readEnvironment(path, input, error)) << path;
        EXPECT_EQ(error.find('\n'), String::npos) << error;
        return error;
    }

    TemporaryFolder _folder;
};

TEST_F(EnvironmentInputTest, fieldsAreFilledWhereverTheyStand) {
    EXPECT_EQ(veldris::fillField("{face}/a_{face}.png", "{face}", "px"), "px/a_px.png");
    EXPECT_EQ(veldris::fillField("{mip}", "{mip}", "{mip}"), "{mip}");
    EXPECT_EQ(veldris::fillField("plain", "{mip}", "1"), "plain");
}

TEST_F(EnvironmentInputTest, readsEveryFormOfACubeAlike) {
    const Image faces = directionFaces(SIDE);
    const String cross = _folder.getPath("cross.exr");
    writeImage(cross, veldris::crossOfFaces(faces));
    struct Case {
        String path;
        ovMemory::StringView kind;
    };
    for (const Case& row : {Case{writeFaces(faces), "faces"},
                            {cross, "cross"},
                            {writeCube(faces, "cube.DDS"), "dds"},
                            {writeCube(faces, "cube.ktx2"), "ktx2"}}) {
        const EnvironmentInput input = read(row.path);
        EXPECT_EQ(input.kind, row.kind);
        EXPECT_TRUE(input.isCube);
        EXPECT_TRUE(input.warnings.empty());
        const auto colors = [](const Image& image) {
            return ovImages::convertImage(image.view(), ovImages::COMPONENT_TYPE::FLOAT, 3,
                                          ovImages::COLOR_ENCODING::LINEAR);
        };
        EXPECT_TRUE(std::ranges::equal(colors(input.image).getBytes(), colors(faces).getBytes())) << row.kind;
    }
}

TEST_F(EnvironmentInputTest, readsPanoramasOfAllFormatsAsLinearFloats) {
    for (const char* name : {"p.exr", "p.hdr", "p.png", "p.jpg"}) {
        const bool hasFloats = String(name).ends_with("r");
        Image image(4, 2, 3, hasFloats ? ovImages::COMPONENT_TYPE::FLOAT : ovImages::COMPONENT_TYPE::UINT8,
                    hasFloats ? ovImages::COLOR_ENCODING::LINEAR : ovImages::COLOR_ENCODING::SRGB);
        for (unsigned int i = 0; i < 4 * 2 * 3; ++i)
            image.setComponent(i / 3 % 4, i / 12, i % 3, 0.5f);
        writeImage(_folder.getPath(name), image);
        const EnvironmentInput input = read(_folder.getPath(name));
        EXPECT_EQ(input.kind, "panorama");
        EXPECT_FALSE(input.isCube);
        EXPECT_TRUE(input.warnings.empty());
        EXPECT_EQ(input.image.getComponentType(), ovImages::COMPONENT_TYPE::FLOAT);
        EXPECT_EQ(input.image.getChannels(), 3u); // as in the file: skies are large
        // 128 / 255 decoded from sRGB is 0.2158.
        EXPECT_NEAR(input.image.getComponent(2, 1, 1), hasFloats ? 0.5 : 0.2158, 1e-4) << name;
    }
}

TEST_F(EnvironmentInputTest, tellsWhatItChanged) {
    const String path = _folder.getPath("odd.exr");
    Image image = floatImage(5, 2);
    image.setComponent(1, 1, 0, std::numeric_limits<float>::quiet_NaN());
    image.setComponent(2, 1, 0, std::numeric_limits<float>::infinity());
    image.setComponent(3, 1, 0, 1e6f);
    image.setComponent(4, 1, 0, -1.0f);
    writeImage(path, image);
    const EnvironmentInput input = read(path);
    ASSERT_EQ(input.warnings.size(), 2u);
    EXPECT_NE(input.warnings[0].find("5 x 2 pixels"), String::npos) << input.warnings[0];
    EXPECT_NE(input.warnings[1].find("3 numbers"), String::npos) << input.warnings[1];
    const float expected[] = {0.0f, 65504.0f, 1e6f, 0.0f};
    for (unsigned int i = 0; i < 4; ++i)
        EXPECT_EQ(input.image.getComponent(i + 1, 1, 0), expected[i]) << i;
}

TEST_F(EnvironmentInputTest, whatIsNoEnvironmentIsOneLine) {
    const String pattern = writeFaces(directionFaces(SIDE));
    EXPECT_NE(errorOf(_folder.getPath("none.exr")).find("none.exr"), String::npos);
    EXPECT_NE(errorOf(_folder.getPath("none.dds")).find("none.dds"), String::npos);
    EXPECT_NE(errorOf(_folder.getPath("none_{face}.exr")).find("none_px.exr"), String::npos);
    EXPECT_FALSE(errorOf("").empty());
    EXPECT_FALSE(errorOf(_folder.getPath()).empty());

    writeImage(_folder.getPath("face_py.exr"), floatImage(3, 3));
    EXPECT_NE(errorOf(pattern).find("face_py.exr' has 3 pixels a side where the first has 4"), String::npos);
    writeImage(_folder.getPath("face_nx.exr"), floatImage(4, 2));
    EXPECT_NE(errorOf(pattern).find("face_nx.exr' has 4 x 2 pixels; faces of a cube are square"),
              String::npos);

    writeImage(_folder.getPath("one.exr"), floatImage(1, 1));
    EXPECT_NE(errorOf(_folder.getPath("one.exr")).find("has one pixel"), String::npos);
    std::ofstream(_folder.getPath("text.dds")) << "no picture at all";
    EXPECT_NE(errorOf(_folder.getPath("text.dds")).find("text.dds' cannot be read: it is no DDS file"),
              String::npos);
    std::ofstream(_folder.getPath("text.exr")) << "no picture at all";
    EXPECT_NE(errorOf(_folder.getPath("text.exr")).find("text.exr"), String::npos);
}

} // namespace
