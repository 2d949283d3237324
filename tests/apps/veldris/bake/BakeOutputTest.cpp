#include <veldris/bake/BakeOutput.h>

#include "support/TemporaryFolder.h"
#include "veldris/bake/EnvironmentPictures.h"

#include <algorithm>
#include <filesystem>
#include <ovImages/cubes/CubeFile.h>
#include <ovImages/cubes/CubeLayout.h>

namespace {

using ovImages::COMPONENT_TYPE;
using ovImages::Image;
using ovMemory::String;
using veldris::BAKE_FORM;
using veldris::BakeFiles;
using veldris::BakeOutput;

/// Mips of 4, 2 and 1 texels whose numbers half floats hold.
veldris::CubeMap smallCube() {
    veldris::CubeMap cube;
    for (const unsigned int side : {4u, 2u, 1u}) {
        Image& mip = cube.mips.emplace_back(floatImage(side, 6 * side));
        for (unsigned int i = 0; i < side * side * 6; ++i) {
            for (unsigned int channel = 0; channel < 3; ++channel)
                mip.setComponent(i % side, i / side, channel,
                                 static_cast<float>(side * 200 + i * 2 + channel));
            mip.setComponent(i % side, i / side, 3, 1.0f);
        }
    }
    return cube;
}

/// Whether the colours of a written picture are those of another, exactly.
bool hasColors(const Image& written, const ovImages::ImageView& expected) {
    if (written.getWidth() != expected.width || written.getHeight() != expected.height)
        return false;
    const auto* values = reinterpret_cast<const float*>(expected.bytes.data());
    for (unsigned int i = 0; i < expected.width * expected.height * 3; ++i) {
        const unsigned int pixel = i / 3;
        if (written.getComponent(pixel % expected.width, pixel / expected.width, i % 3) !=
            values[pixel * expected.channels + i % 3])
            return false;
    }
    return true;
}

class BakeOutputTest : public testing::Test {
protected:
    BakeFiles write(const BakeOutput& output, const veldris::CubeMap& cube) {
        BakeFiles files;
        String error;
        EXPECT_TRUE(veldris::writeCube(output, cube, files, error)) << error;
        return files;
    }

    TemporaryFolder _folder;
};

TEST_F(BakeOutputTest, thePathChoosesTheForm) {
    struct Case {
        const char* path;
        const char* layout;
        bool needsMips;
        BAKE_FORM form;
    };
    const Case cases[] = {
        {"a.dds", "", true, BAKE_FORM::CUBE_FILE},   {"a.KTX2", "", false, BAKE_FORM::CUBE_FILE},
        {"{face}.png", "", false, BAKE_FORM::FACES}, {"{mip}/{face}.exr", "faces", true, BAKE_FORM::FACES},
        {"a.hdr", "cross", false, BAKE_FORM::CROSS}, {"{mip}.exr", "cross", true, BAKE_FORM::CROSS}};
    for (const Case& row : cases) {
        BakeOutput output{.path = row.path};
        String error;
        EXPECT_TRUE(veldris::planCube(row.layout, row.needsMips, output, error)) << error;
        EXPECT_EQ(output.form, row.form) << row.path;
    }
    BakeOutput output{.path = "a.png"};
    String error;
    EXPECT_TRUE(veldris::planPanorama(output, error)) << error;
    EXPECT_EQ(output.form, BAKE_FORM::PANORAMA);
}

TEST_F(BakeOutputTest, pathsThatFitNothingAreToldWhy) {
    struct Case {
        const char* path;
        const char* layout;
        bool needsMips;
        const char* message;
    };
    const Case cases[] = {{"a_{face}.dds", "", false, "leave {face}, {mip} and --layout out"},
                          {"a_{mip}.dds", "", true, "leave {face}, {mip} and --layout out"},
                          {"a.dds", "cross", false, "leave {face}, {mip} and --layout out"},
                          {"{face}.png", "cross", false, "leave one out"},
                          {"a.png", "", false, "put {face} into its name"},
                          {"a.png", "faces", false, "put {face} into its name"},
                          {"{face}.png", "", true, "put {mip} into its name"},
                          {"a.png", "cross", true, "put {mip} into its name"},
                          {"{face}.bmp", "", false, "names no image format"},
                          {"", "", false, "put {face} into its name"}};
    for (const Case& row : cases) {
        BakeOutput output{.path = row.path};
        String error;
        EXPECT_FALSE(veldris::planCube(row.layout, row.needsMips, output, error)) << row.path;
        EXPECT_NE(error.find(row.message), String::npos) << error;
    }
    for (const char* path : {"a.dds", "{face}.png", "{mip}.png", "a.txt", ""}) {
        BakeOutput output{.path = path};
        String error;
        EXPECT_FALSE(veldris::planPanorama(output, error)) << path;
        EXPECT_FALSE(error.empty());
    }
}

TEST_F(BakeOutputTest, writesAFileForEachFaceAndMip) {
    const veldris::CubeMap cube = smallCube();
    const BakeFiles files =
        write({.path = _folder.getPath("{mip}_{face}.exr"), .form = BAKE_FORM::FACES}, cube);
    ASSERT_EQ(files.paths.size(), 18u);
    EXPECT_EQ(files.paths[6], _folder.getPath("1_px.exr"));
    for (unsigned int i = 0; i < 18; ++i)
        EXPECT_TRUE(hasColors(readImage(files.paths[i]), veldris::faceOf(cube.mips[i / 6], i % 6)))
            << files.paths[i];
}

TEST_F(BakeOutputTest, withoutAPlaceForMipsWritesTheFirst) {
    const veldris::CubeMap cube = smallCube();
    const BakeFiles files = write({.path = _folder.getPath("{face}.exr"), .form = BAKE_FORM::FACES}, cube);
    ASSERT_EQ(files.paths.size(), 6u);
    EXPECT_TRUE(hasColors(readImage(files.paths[3]), veldris::faceOf(cube.mips[0], 3)));
}

TEST_F(BakeOutputTest, crossesFoldBackToTheFaces) {
    const veldris::CubeMap cube = smallCube();
    const BakeFiles files = write({.path = _folder.getPath("{mip}.exr"), .form = BAKE_FORM::CROSS}, cube);
    ASSERT_EQ(files.paths.size(), 3u);
    for (unsigned int mip = 0; mip < 3; ++mip) {
        const Image cross = readImage(files.paths[mip]);
        EXPECT_TRUE(hasColors(ovImages::facesOfPicture(cross.view(), ovImages::CUBE_LAYOUT::CROSS),
                              cube.mips[mip].view()));
        EXPECT_EQ(cross.getComponent(0, 0, 0), 0.0f);
    }
}

TEST_F(BakeOutputTest, keepsTheComponentsThatWereAskedFor) {
    const veldris::CubeMap cube = smallCube();
    for (const COMPONENT_TYPE type : {COMPONENT_TYPE::HALF, COMPONENT_TYPE::FLOAT}) {
        write({.path = _folder.getPath("a.exr"), .form = BAKE_FORM::CROSS, .components = type}, cube);
        EXPECT_EQ(readImage(_folder.getPath("a.exr")).getComponentType(), type);
        write({.path = _folder.getPath("a.dds"), .form = BAKE_FORM::CUBE_FILE, .components = type}, cube);
        const ovImages::CubeReadResult read = ovImages::readCubeFile(_folder.getPath("a.dds"));
        ASSERT_TRUE(read) << read.error;
        const veldris::CubeMap& back = read.cube;
        ASSERT_EQ(back.mips.size(), 3u);
        EXPECT_EQ(back.mips[0].getComponentType(), type);
        for (unsigned int mip = 0; mip < 3; ++mip)
            EXPECT_TRUE(hasColors(back.mips[mip], cube.mips[mip].view()));
    }
}

TEST_F(BakeOutputTest, displayFormatsGetEncodedColors) {
    Image panorama = floatImage(2, 1);
    panorama.setComponent(0, 0, 0, 0.2158f);
    panorama.setComponent(1, 0, 1, 7.0f);
    BakeFiles files;
    String error;
    ASSERT_TRUE(veldris::writePanorama({.path = _folder.getPath("p.png"), .form = BAKE_FORM::PANORAMA},
                                       panorama.view(), files, error))
        << error;
    const Image image = readImage(_folder.getPath("p.png"));
    EXPECT_EQ(image.getChannels(), 3u);
    EXPECT_FLOAT_EQ(image.getComponent(0, 0, 0), 128.0f / 255.0f); // sRGB of 0.2158
    EXPECT_EQ(image.getComponent(1, 0, 1), 1.0f);
}

TEST_F(BakeOutputTest, halfFloatsClampWithAWarning) {
    veldris::CubeMap cube = smallCube();
    cube.mips[0].setComponent(0, 0, 0, 1e6f);
    EXPECT_FALSE(
        write({.path = _folder.getPath("a.dds"), .form = BAKE_FORM::CUBE_FILE}, cube).warning.empty());
    EXPECT_TRUE(write({.path = _folder.getPath("a.dds"),
                       .form = BAKE_FORM::CUBE_FILE,
                       .components = COMPONENT_TYPE::FLOAT},
                      cube)
                    .warning.empty());
}

TEST_F(BakeOutputTest, whereNothingCanBeWrittenItSaysSo) {
    const veldris::CubeMap cube = smallCube();
    for (const BakeOutput& output :
         {BakeOutput{.path = _folder.getPath("none/a.dds"), .form = BAKE_FORM::CUBE_FILE},
          BakeOutput{.path = _folder.getPath("none/{face}.png"), .form = BAKE_FORM::FACES},
          BakeOutput{.path = _folder.getPath("none/a.exr"), .form = BAKE_FORM::CROSS}}) {
        BakeFiles files;
        String error;
        EXPECT_FALSE(veldris::writeCube(output, cube, files, error));
        EXPECT_NE(error.find("none"), String::npos) << error;
        EXPECT_TRUE(files.paths.empty());
    }
    EXPECT_TRUE(std::filesystem::is_empty(_folder.getPath()));
}

} // namespace
