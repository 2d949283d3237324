#include <veldris/bake/EnvironmentInput.h>

#include "support/TemporaryFolder.h"
#include "veldris/bake/EnvironmentPictures.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <ovImages/Conversion.h>
#include <ovImages/cubes/CubeFile.h>
#include <ovImages/cubes/CubeLayout.h>

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
        const ovMemory::Result written = ovImages::writeCubeFile(path, {.mips = {faces}});
        EXPECT_TRUE(written) << written.error;
        return path;
    }

    /// A file of a cube under a name that does not tell its format.
    String unnamed(const char* from, const char* name) {
        const String path = _folder.getPath(name);
        std::filesystem::copy_file(_folder.getPath(from), path);
        return path;
    }

    EnvironmentInput read(const String& path, const char* layout = "") {
        EnvironmentInput input;
        String error = "old";
        EXPECT_TRUE(veldris::readEnvironment(path, {.layout = layout, .decoding = {}}, input, error))
            << error;
        EXPECT_EQ(error, "");
        return input;
    }

    String errorOf(const String& path, const char* layout = "") {
        EnvironmentInput input;
        String error;
        EXPECT_FALSE(veldris::readEnvironment(path, {.layout = layout, .decoding = {}}, input, error))
            << path;
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
    writeImage(cross, ovImages::crossOfFaces(faces));
    const String strip = _folder.getPath("strip.exr");
    writeImage(strip, faces);
    struct Case {
        String path;
        ovMemory::StringView kind;
    };
    for (const Case& row : {Case{writeFaces(faces), "faces"},
                            {cross, "cross"},
                            {strip, "strip"},
                            {writeCube(faces, "cube.DDS"), "dds"},
                            {writeCube(faces, "cube.ktx2"), "ktx2"},
                            {unnamed("cube.DDS", "some-cube"), "dds"},
                            {unnamed("cube.ktx2", "cube.png"), "ktx2"}}) {
        const EnvironmentInput input = read(row.path);
        EXPECT_EQ(input.kind, row.kind);
        EXPECT_TRUE(input.isCube);
        // What was guessed from the shape is told.
        EXPECT_EQ(input.warnings.size(), row.kind == "cross" || row.kind == "strip" ? 1u : 0u) << row.kind;
        const auto colors = [](const Image& image) {
            return ovImages::convertImage(image.view(), ovImages::COMPONENT_TYPE::FLOAT, 3,
                                          ovImages::COLOR_ENCODING::LINEAR);
        };
        EXPECT_TRUE(std::ranges::equal(colors(input.image).getBytes(), colors(faces).getBytes())) << row.kind;
    }
}

TEST_F(EnvironmentInputTest, sixFilesAreOneWork) {
    const String pattern = writeFaces(directionFaces(SIDE));
    ovMemory::Buffer<double> shares;
    veldris::EnvironmentReading reading;
    reading.decoding.progress = [&shares](double share) { shares.push_back(share); };
    EnvironmentInput input;
    String error;
    ASSERT_TRUE(veldris::readEnvironment(pattern, reading, input, error)) << error;
    EXPECT_EQ(shares, (ovMemory::Buffer<double>{1.0 / 6, 2.0 / 6, 3.0 / 6, 4.0 / 6, 5.0 / 6, 1.0}));
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

TEST_F(EnvironmentInputTest, theLayoutThatIsAskedForDecides) {
    const String photo = _folder.getPath("photo.exr");
    writeImage(photo, floatImage(8, 6));
    const EnvironmentInput guessed = read(photo);
    EXPECT_EQ(guessed.kind, "cross");
    ASSERT_EQ(guessed.warnings.size(), 1u);
    EXPECT_EQ(guessed.warnings[0], "'" + photo +
                                       "' has 8 x 6 pixels and is taken for a cross of six faces; "
                                       "--input-layout panorama reads it as a panorama.");
    EXPECT_TRUE(read(photo, "cross").warnings.empty());
    const EnvironmentInput panorama = read(photo, "panorama");
    EXPECT_EQ(panorama.kind, "panorama");
    EXPECT_FALSE(panorama.isCube);
    EXPECT_EQ(panorama.image.getWidth(), 8u);

    EXPECT_EQ(errorOf(photo, "strip"),
              "'" + photo + "' has 8 x 6 pixels, which is no strip of six square faces: that is 1:6 or 6:1.");
    EXPECT_NE(errorOf(photo, "faces").find("names one file"), String::npos);
    EXPECT_NE(errorOf(_folder.getPath("{face}.exr"), "strip").find("names six files"), String::npos);
    EXPECT_NE(errorOf(_folder.getPath("a.dds"), "panorama").find("is a cube already"), String::npos);
    EXPECT_EQ(read(writeFaces(directionFaces(SIDE)), "faces").kind, "faces");
}

/// Gives an EXR file of few rows an attribute: what it holds, and where its pixels then begin.
void setEnvironmentAttribute(const String& path, char kind) {
    std::string bytes;
    {
        std::ifstream file(path, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(file), {});
    }
    std::size_t end = 8; // behind magic number and version; attributes are a name, a type, a size and a value
    while (bytes[end] != 0) {
        end = bytes.find('\0', bytes.find('\0', end) + 1) + 1;
        std::uint32_t size = 0;
        std::memcpy(&size, &bytes[end], 4);
        end += 4 + size;
    }
    const std::string attribute = std::string("envmap\0envmap\0\1\0\0\0", 18) + kind;
    std::uint64_t first = 0; // behind the header stand the places of the pieces
    std::memcpy(&first, &bytes[end + 1], 8);
    const std::size_t places = (first - end - 1) / 8;
    for (std::size_t i = 0; i < places; ++i) {
        std::uint64_t place = 0;
        std::memcpy(&place, &bytes[end + 1 + 8 * i], 8);
        place += attribute.size();
        std::memcpy(&bytes[end + 1 + 8 * i], &place, 8);
    }
    bytes.insert(end, attribute);
    std::ofstream(path, std::ios::binary) << bytes;
}

TEST_F(EnvironmentInputTest, whatAnExrFileSaysOfItselfIsNoGuess) {
    const String strip = _folder.getPath("cube.exr");
    Image faces = floatImage(2, 12);
    for (unsigned int y = 0; y < 12; ++y)
        faces.setComponent(0, y, 0, static_cast<float>(1 + y));
    writeImage(strip, faces);
    setEnvironmentAttribute(strip, 1);
    const EnvironmentInput cube = read(strip);
    EXPECT_EQ(cube.kind, "strip");
    EXPECT_TRUE(cube.isCube);
    EXPECT_TRUE(cube.warnings.empty());
    EXPECT_EQ(cube.image.getComponent(0, 0, 0), 9.0f) << "OpenEXR's +z is the middle of its panoramas";

    const String panorama = _folder.getPath("panorama.exr");
    writeImage(panorama, floatImage(8, 6));
    setEnvironmentAttribute(panorama, 0);
    EXPECT_EQ(read(panorama).kind, "panorama") << "not a cross";
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
    EXPECT_NE(errorOf(_folder.getPath("text.dds")).find("text.dds' cannot be read: it is neither a DDS file"),
              String::npos);
    std::ofstream(_folder.getPath("text.exr")) << "no picture at all";
    EXPECT_NE(errorOf(_folder.getPath("text.exr")).find("text.exr"), String::npos);
}

} // namespace
