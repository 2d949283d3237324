#include <filesystem>
#include <fstream>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/resources/TextureSaver.h>
#include <ovImages/CompositeEncoder.h>
#include <support/PictureTest.h>
#include <support/TemporaryFolder.h>

using namespace ovGraphics;

namespace {

class TextureSaverTest : public PictureTest {
protected:
    ovMemory::UniquePtr<Texture> make(FORMAT format, const ovMemory::Buffer<unsigned char>& texels) {
        auto texture = Texture::create(&getGraphics());
        texture->setName("picture");
        texture->setWidth(2);
        texture->setFormat(format);
        texture->setCpuData(0, 0, texels);
        return texture;
    }
    ovMemory::String takeLog() {
        ovMemory::String text;
        for (const RecordingLogger::Message& message : getGraphicsLogger().messages)
            text += "[" + message.sender + "] " + message.message;
        getGraphicsLogger().messages.clear();
        return text;
    }
};

/// The bytes behind the header, which ends with the line of the size.
ovMemory::Buffer<int> pixelsOf(const ovMemory::String& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), {});
    const std::string size = "-Y 1 +X 2\n";
    const std::size_t place = bytes.find(size);
    EXPECT_EQ(bytes.substr(0, 2), "#?");
    EXPECT_NE(place, std::string::npos);
    ovMemory::Buffer<int> pixels;
    for (std::size_t i = place + size.size(); i < bytes.size(); ++i)
        pixels.push_back(static_cast<unsigned char>(bytes[i]));
    return pixels;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, TextureSaverTest, bothLanguages(), languageName);

// A pixel is three mantissas and an exponent: m * 2^(e - 136). Narrow pictures are flat.
TEST_P(TextureSaverTest, writesColoursAsRadiancePixels) {
    const TemporaryFolder folder;
    const ovMemory::String path = folder.getPath("picture.hdr");
    const float numbers[] = {1.0f, 0.5f, 0.25f, 0.3f, 16.0f, 0.0f, 8.0f, 1.0f};
    const auto* bytes = reinterpret_cast<const unsigned char*>(numbers);
    const auto light = make(FORMAT::R32G32B32A32_FLOAT, {bytes, bytes + sizeof(numbers)});
    ASSERT_TRUE(light->load());
    EXPECT_TRUE(TextureSaver::saveToHdr(*light, path));
    // 1 = 128 * 2^(129 - 136); 16 = 128 * 2^(133 - 136)
    EXPECT_EQ(pixelsOf(path), (ovMemory::Buffer<int>{128, 64, 32, 129, 128, 0, 64, 133}));

    const auto bytesOfOne = make(FORMAT::R8G8B8A8_UNORM, {255, 0, 255, 0, 0, 51, 0, 255});
    ASSERT_TRUE(bytesOfOne->load());
    EXPECT_TRUE(TextureSaver::saveToHdr(*bytesOfOne, path)) << "replaces the file";
    // 51/255 = 0.2 = 204.8 * 2^(126 - 136)
    EXPECT_EQ(pixelsOf(path), (ovMemory::Buffer<int>{128, 0, 128, 129, 0, 205, 0, 126}));

    bytesOfOne->setGammaCorrected(true);
    ASSERT_TRUE(bytesOfOne->load());
    EXPECT_TRUE(TextureSaver::saveToHdr(*bytesOfOne, path));
    // ((0.2 + 0.055) / 1.055)^2.4 = 0.0331048 = 135.6 * 2^(124 - 136)
    EXPECT_EQ(pixelsOf(path), (ovMemory::Buffer<int>{128, 0, 128, 129, 0, 136, 0, 124}));
}

TEST_P(TextureSaverTest, tellsWhyNothingWasWritten) {
    const TemporaryFolder folder;
    const auto texture = make(FORMAT::R8G8B8A8_UNORM, {1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_FALSE(TextureSaver::saveToHdr(*texture, folder.getPath("picture.hdr")));
    EXPECT_EQ(takeLog(), "[Texture] Could not read mip 0 of slice 0 of the texture 'picture': it is not "
                         "loaded; load it first.");
    ASSERT_TRUE(texture->load());
    const ovMemory::String path = folder.getPath("missing/picture.hdr");
    EXPECT_FALSE(TextureSaver::saveToHdr(*texture, path));
    EXPECT_TRUE(
        takeLog().starts_with("[TextureSaver] Could not save the texture 'picture' to '" + path + "': "));
}

TEST_P(TextureSaverTest, savesWhatTheExtensionSays) {
    const TemporaryFolder folder;
    const auto texture = make(FORMAT::R8G8B8A8_UNORM_SRGB, {10, 20, 30, 255, 200, 100, 0, 255});
    ASSERT_TRUE(texture->load());
    const auto stored = [&](const char* name, bool raw) {
        const ovMemory::Result saved = TextureSaver::save(*texture, folder.getPath(name), raw);
        EXPECT_TRUE(saved) << saved.error;
        EXPECT_EQ(saved.warning, "");
        const auto file = ovImages::CompositeEncoder().decodeFile(folder.getPath(name));
        EXPECT_TRUE(file) << file.error;
        ovMemory::Buffer<unsigned char> bytes;
        if (file && file.image->getComponentType() == ovImages::COMPONENT_TYPE::UINT8)
            bytes.assign(file.image->getBytes().begin(), file.image->getBytes().end());
        return bytes;
    };
    const ovMemory::Buffer<unsigned char> texels = {10, 20, 30, 200, 100, 0};
    EXPECT_EQ(stored("srgb.png", false), texels) << "sRGB stays what it is";
    texture->setFormat(FORMAT::R8G8B8A8_UNORM);
    ASSERT_TRUE(texture->load());
    EXPECT_EQ(stored("numbers.png", true), texels);
    // 255 encoded(byte / 255): 10 and 30 lie on the curve as 20 does, 200 is 0.784.
    EXPECT_EQ(stored("light.png", false), (ovMemory::Buffer<unsigned char>{56, 79, 96, 229, 168, 0}));
    EXPECT_TRUE(stored("light.exr", false).empty()) << "floats";
}

TEST_P(TextureSaverTest, reasonsComeBack) {
    const TemporaryFolder folder;
    const auto texture = make(FORMAT::R8G8B8A8_UNORM, {1, 2, 3, 4, 5, 6, 7, 8});
    const auto error = [&](const ovMemory::String& path) {
        const ovMemory::Result result = TextureSaver::save(*texture, path);
        EXPECT_EQ(result.place, path);
        const ovMemory::String start = "Could not save the texture 'picture' to '" + path + "': ";
        EXPECT_TRUE(result.error.starts_with(start)) << result.error;
        return result.error.substr(std::min(start.size(), result.error.size()));
    };
    EXPECT_EQ(error(folder.getPath("a.png")), "it is not loaded; call load() before");
    ASSERT_TRUE(texture->load());
    EXPECT_NE(error(folder.getPath("a.tga")).find("its extension names no image format"),
              ovMemory::String::npos);
    EXPECT_NE(error(folder.getPath("missing/a.png")).find("missing"), ovMemory::String::npos);
    const auto whole = make(FORMAT::R32G32B32A32_UINT, ovMemory::Buffer<unsigned char>(32));
    ASSERT_TRUE(whole->load());
    EXPECT_EQ(TextureSaver::save(*whole, folder.getPath("a.png")).error,
              "Could not save the texture 'picture' to '" + folder.getPath("a.png") +
                  "': images cannot hold the format R32G32B32A32_UINT");
    EXPECT_TRUE(std::filesystem::is_empty(folder.getPath()));
}
