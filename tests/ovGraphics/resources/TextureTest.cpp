#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/cubes/CubeMap.h>
#include <support/PictureTest.h>

using namespace ovGraphics;

namespace {

using Bytes = ovMemory::Buffer<unsigned char>;

/// Bytes that differ from place to place.
Bytes patternBytes(std::size_t count, unsigned int seed) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>(i * 31 + seed * 57 + 3);
    return bytes;
}

unsigned int mipOf(unsigned int size, unsigned int mip) {
    return std::max(1u, size >> mip);
}

class TextureTest : public PictureTest {
protected:
    ovMemory::UniquePtr<Texture> make(unsigned int width, unsigned int height,
                                      FORMAT format = FORMAT::R8G8B8A8_UNORM) {
        auto texture = Texture::create(&getGraphics());
        texture->setName("picture");
        texture->setWidth(width);
        texture->setHeight(height);
        texture->setFormat(format);
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

} // namespace

INSTANTIATE_TEST_SUITE_P(, TextureTest, bothLanguages(), languageName);

TEST_P(TextureTest, refusesSettingsThatMakeNoTexture) {
    struct Row {
        std::function<void(Texture&)> configure;
        ovMemory::String message; ///< all of it, or the part that is not the device's words
        bool exact;
    };
    const Bytes small(16 * 4 - 1, 0);
    const unsigned int tooLarge = getGraphics().getDeviceInfo()->maxTextureSize + 1;
    const ovMemory::Buffer<Row> rows = {
        {[](Texture& texture) {
             texture.setTexType(TEXTURE_TYPE::CUBE);
             texture.setWidth(8);
         },
         "cube faces are square, and 8 x 4 texels were asked for.", true},
        {[](Texture& texture) {
             texture.setFormat(FORMAT::R32_FLOAT);
             texture.setGammaCorrected(true);
         },
         "the format R32_FLOAT has no sRGB sibling; switch gamma correction off.", true},
        {[](Texture& texture) {
             texture.setFormat(FORMAT::BC1_UNORM);
             texture.setUsableAsRenderTarget(true);
         },
         "the device cannot draw to the format BC1_UNORM; choose another.", true},
        {[&](Texture& texture) { texture.setCpuData(0, 0, small); },
         "the data of mip 0 of slice 0 has 63 bytes in rows of 16, and 64 in rows of at least 16 are needed.",
         true},
        {[&](Texture& texture) { texture.setCpuData(0, 0, small, 12); },
         "the data of mip 0 of slice 0 has 63 bytes in rows of 12, and 52 in rows of at least 16 are needed.",
         true},
        {[&](Texture& texture) { texture.setCpuData(0, 0, small, 0xffffffff); },
         "the data of mip 0 of slice 0 has 63 bytes in rows of 4294967295, and 12884901901 in rows of at "
         "least 16 "
         "are needed.",
         true},
        {[&](Texture& texture) { texture.setCpuData(0, 1, small); },
         "data was given for mip 1 of slice 0, and it has 1 slices of 1 mips.", true},
        {[&](Texture& texture) {
             texture.setMipCount(0);
             texture.setCpuData(6, 0, small);
             texture.setTexType(TEXTURE_TYPE::CUBE);
         },
         "data was given for mip 0 of slice 6, and it has 6 slices of 3 mips.", true},
        {[](Texture& texture) { texture.setWidth(0); },
         "it has 0 x 4 texels; each side needs 1 or more. A picture that it was set from was none.", true},
        {[&](Texture& texture) {
             texture.setHeight(tooLarge);
             texture.setCpuData(0, 0, small);
         },
         "4 x " + std::to_string(tooLarge) + " texels are beyond the device's limit of " +
             std::to_string(tooLarge - 1) + " a side; make the picture smaller.",
         true},
        {[](Texture& texture) { texture.setSliceCount(0); }, "0", false},
        {[&](Texture& texture) { texture.setWidth(tooLarge); }, std::to_string(tooLarge), false},
        {[](Texture& texture) { texture.setHeight(0xffffffff); }, "4294967295", false},
        {[](Texture& texture) { texture.setSliceCount(0xffffffff); }, "4294967295", false},
        {[](Texture& texture) { texture.setFormat(FORMAT::R1_UNORM); }, "R1_UNORM", false},
        {[](Texture& texture) { texture.setFormat(FORMAT::UNKNOWN); }, "UNKNOWN", false},
    };
    for (const Row& row : rows) {
        const auto texture = make(4, 4);
        row.configure(*texture);
        EXPECT_FALSE(texture->load()) << row.message;
        EXPECT_TRUE(texture->isUnloaded());
        EXPECT_EQ(texture->getGpuTexture(), nullptr);
        const ovMemory::String log = takeLog();
        const ovMemory::String start = "[Texture] Could not load the texture 'picture': ";
        if (row.exact)
            EXPECT_EQ(log, start + row.message);
        else
            EXPECT_TRUE(log.starts_with(start) && log.find(row.message) != ovMemory::String::npos) << log;
    }
}

TEST_P(TextureTest, keepsTheTexelsOfEverySliceAndMip) {
    struct Row {
        TEXTURE_TYPE type;
        unsigned int slices, width, height, mips;
        FORMAT format;
    };
    for (const Row& row : {Row{TEXTURE_TYPE::TEXTURE_2D, 1, 5, 3, 1, FORMAT::R8G8B8A8_UNORM},
                           Row{TEXTURE_TYPE::TEXTURE_2D, 1, 5, 3, 0, FORMAT::R8_UNORM},
                           Row{TEXTURE_TYPE::TEXTURE_2D, 4, 8, 2, 3, FORMAT::R16G16B16A16_UNORM},
                           Row{TEXTURE_TYPE::CUBE, 1, 4, 4, 0, FORMAT::R8G8B8A8_UNORM_SRGB},
                           Row{TEXTURE_TYPE::TEXTURE_2D, 1, 7, 7, 1, FORMAT::B8G8R8A8_UNORM}}) {
        const auto texture = make(row.width, row.height, row.format);
        texture->setTexType(row.type);
        texture->setSliceCount(row.slices);
        texture->setMipCount(row.mips);
        const auto bytesOf = [&](unsigned int slice, unsigned int mip) {
            const std::size_t size =
                TextureUtils::getSliceSize(row.format, mipOf(row.width, mip), mipOf(row.height, mip));
            return patternBytes(size, slice * 16 + mip);
        };
        for (unsigned int slice = 0; slice < texture->getSliceCount(); ++slice)
            for (unsigned int mip = 0; mip < texture->getMipCount(); ++mip)
                texture->setCpuData(slice, mip, bytesOf(slice, mip));
        ASSERT_TRUE(texture->load()) << getGraphicsLogger().getText();
        EXPECT_EQ(texture->getLoadState(), RESOURCE_LOAD_STATE::LOADED);
        for (unsigned int slice = 0; slice < texture->getSliceCount(); ++slice)
            for (unsigned int mip = 0; mip < texture->getMipCount(); ++mip)
                EXPECT_EQ(texture->readBack(slice, mip), bytesOf(slice, mip)) << slice << ' ' << mip;
    }
}

TEST_P(TextureTest, rowPitchSkipsThePadding) {
    const auto texture = make(3, 2, FORMAT::R8_UNORM);
    const Bytes padded = {1, 2, 3, 99, 99, 4, 5, 6}; // the last row needs no padding
    texture->setCpuData(0, 0, padded, 5);
    ASSERT_TRUE(texture->load()) << getGraphicsLogger().getText();
    EXPECT_EQ(texture->readBack(), (Bytes{1, 2, 3, 4, 5, 6}));
}

TEST_P(TextureTest, addCpuDataSliceForwardFillsSliceAfterSlice) {
    const auto texture = make(2, 1, FORMAT::R8_UNORM);
    texture->setSliceCount(2);
    texture->addCpuDataSliceForward(Bytes{1, 2, 77}, 0, 2); // the slice pitch ends the slice
    texture->addCpuDataSliceForward(Bytes{3, 4}, 0, 0);
    ASSERT_TRUE(texture->load()) << getGraphicsLogger().getText();
    EXPECT_EQ(texture->readBack(0), (Bytes{1, 2}));
    EXPECT_EQ(texture->readBack(1), (Bytes{3, 4}));
    texture->addCpuDataSliceForward(Bytes{5, 6}, 0, 2);
    EXPECT_FALSE(texture->load());
    texture->clearCpuData();
    EXPECT_TRUE(texture->load());
    takeLog();
}

TEST_P(TextureTest, missingMipsAreGeneratedFromTheFirst) {
    const auto texture = make(4, 4, FORMAT::R32_FLOAT);
    texture->setMipCount(0);
    float values[16];
    for (int i = 0; i < 16; ++i)
        values[i] = static_cast<float>(i);
    texture->setCpuData(0, 0, {reinterpret_cast<const unsigned char*>(values), sizeof(values)});
    ASSERT_TRUE(texture->load()) << getGraphicsLogger().getText();
    const auto mip1 = texture->readBack(0, 1);
    const auto mip2 = texture->readBack(0, 2);
    ASSERT_TRUE(mip1 && mip2);
    float halves[4];
    float one;
    std::memcpy(halves, mip1->data(), sizeof(halves));
    std::memcpy(&one, mip2->data(), sizeof(one));
    // Averages of four whole numbers: exact but for the order of a few sums.
    EXPECT_NEAR(halves[0], (0 + 1 + 4 + 5) / 4.0, 1e-5);
    EXPECT_NEAR(halves[1], (2 + 3 + 6 + 7) / 4.0, 1e-5);
    EXPECT_NEAR(halves[2], (8 + 9 + 12 + 13) / 4.0, 1e-5);
    EXPECT_NEAR(halves[3], (10 + 11 + 14 + 15) / 4.0, 1e-5);
    EXPECT_NEAR(one, 7.5, 1e-5);
}

TEST_P(TextureTest, deferredUploadHappensAtTheFirstUse) {
    const auto texture = make(2, 1, FORMAT::R8_UNORM);
    texture->setGpuUploadCanBeDeferred(true);
    texture->setCpuData(0, 0, Bytes{8, 9});
    ASSERT_TRUE(texture->load());
    EXPECT_EQ(texture->getLoadState(), RESOURCE_LOAD_STATE::READY_FOR_RENDERING);
    EXPECT_EQ(texture->readBack(), (Bytes{8, 9}));
    EXPECT_EQ(texture->getLoadState(), RESOURCE_LOAD_STATE::LOADED);
}

TEST_P(TextureTest, reloadsOnlyAfterAChange) {
    const auto texture = make(4, 4);
    ASSERT_TRUE(texture->load());
    const device::GpuTexture* gpuTexture = texture->getGpuTexture();
    EXPECT_EQ(texture->getLoadCount(), 1u);
    texture->setWidth(4);
    texture->setUsableAsRenderTarget(false);
    ASSERT_TRUE(texture->load());
    EXPECT_EQ(texture->getGpuTexture(), gpuTexture);
    EXPECT_EQ(texture->getLoadCount(), 1u);
    texture->setWidth(16);
    EXPECT_EQ(texture->getGpuTexture(), gpuTexture); // a setting waits for load()
    EXPECT_EQ(texture->convertToImage()->getWidth(), 4u);
    ASSERT_TRUE(texture->load());
    EXPECT_EQ(texture->getLoadCount(), 2u);
    EXPECT_EQ(texture->getGpuTexture()->getDesc().width, 16u);
    texture->setHeight(0);
    EXPECT_FALSE(texture->load()); // unloaded by the failure
    EXPECT_TRUE(texture->isUnloaded());
    EXPECT_EQ(texture->readBack(), std::nullopt);
    takeLog();
    texture->reset();
    EXPECT_EQ(texture->getWidth(), 1u);
    EXPECT_EQ(texture->getHeight(), 1u);
    EXPECT_TRUE(texture->load());
}

TEST_P(TextureTest, resetBringsTheNewTextureBack) {
    const auto texture = make(8, 4);
    texture->setTexType(TEXTURE_TYPE::CUBE);
    texture->setFormat(FORMAT::R16_FLOAT);
    texture->setSliceCount(3);
    texture->setMipCount(99);
    EXPECT_EQ(texture->getMipCount(), 4u) << "as many as there can be";
    texture->setMultisampleQuality(3);
    texture->setGammaCorrected(true);
    texture->setUsableAsRenderTarget(true);
    texture->setMightManuallyGenerateMip(true);
    texture->reset();
    const auto fresh = Texture::create(&getGraphics());
    EXPECT_EQ(texture->getTexType(), fresh->getTexType());
    EXPECT_EQ(texture->getFormat(), fresh->getFormat());
    EXPECT_EQ(texture->getSliceCount(), 1u);
    EXPECT_EQ(texture->getMipCount(), 1u);
    EXPECT_EQ(texture->getMultisampleQuality(), 0u);
    EXPECT_FALSE(texture->getGammaCorrected());
    EXPECT_FALSE(texture->getUsableAsRenderTarget());
    EXPECT_FALSE(texture->getMightManuallyGenerateMip());
}

TEST_P(TextureTest, readingBackRefusesWhatIsNotThere) {
    const auto texture = make(4, 4);
    EXPECT_EQ(texture->readBack(), std::nullopt);
    EXPECT_EQ(takeLog(),
              "[Texture] Could not read mip 0 of slice 0 of the texture 'picture': it is not loaded; load "
              "it first.");
    texture->generateMips();
    EXPECT_EQ(
        takeLog(),
        "[Texture] Could not generate the mips of the texture 'picture': it is not loaded; load it first.");
    ASSERT_TRUE(texture->load());
    EXPECT_EQ(texture->readBack(1, 0), std::nullopt);
    EXPECT_EQ(takeLog(),
              "[Texture] Could not read mip 0 of slice 1 of the texture 'picture': it has 1 slices of 1 "
              "mips.");
    EXPECT_EQ(texture->convertToImage(0, 3), nullptr);
    EXPECT_EQ(takeLog(),
              "[Texture] Could not read mip 3 of slice 0 of the texture 'picture': it has 1 slices of 1 "
              "mips.");
    texture->setFormat(FORMAT::R8G8B8A8_SNORM);
    ASSERT_TRUE(texture->load()) << getGraphicsLogger().getText();
    EXPECT_EQ(texture->convertToImage(), nullptr);
    EXPECT_EQ(takeLog(),
              "[Texture] Could not make an image of the texture 'picture': images cannot hold the format "
              "R8G8B8A8_SNORM; draw it into an 8, 16-bit, half or float UNORM or FLOAT texture first.");
}

TEST_P(TextureTest, imagesComeBackAsTheyWent) {
    using ovImages::COLOR_ENCODING;
    using ovImages::COMPONENT_TYPE;
    for (const COMPONENT_TYPE type :
         {COMPONENT_TYPE::UINT8, COMPONENT_TYPE::UINT16, COMPONENT_TYPE::HALF, COMPONENT_TYPE::FLOAT}) {
        for (const unsigned int channels : {1u, 2u, 4u}) {
            for (const bool raw : {false, true}) {
                ovImages::Image image(3, 2, channels, type, COLOR_ENCODING::LINEAR);
                for (unsigned int i = 0; i < 6 * channels; ++i)
                    image.setComponent(i / channels % 3, i / channels / 3, i % channels,
                                       static_cast<float>(i) / 32.0f);
                const auto texture = Texture::create(&getGraphics());
                texture->setFromImage(image.view(), raw);
                ASSERT_TRUE(texture->load()) << getGraphicsLogger().getText();
                const auto back = texture->convertToImage();
                ASSERT_NE(back, nullptr);
                EXPECT_EQ(back->getComponentType(), type);
                EXPECT_EQ(back->getChannels(), channels);
                ASSERT_EQ(back->getBytes().size(), image.getBytes().size());
                EXPECT_TRUE(
                    std::equal(back->getBytes().begin(), back->getBytes().end(), image.getBytes().begin()));
            }
        }
    }
}

TEST_P(TextureTest, takesAnImageOver) {
    for (const unsigned int channels : {3u, 4u}) { // converted, and as it is
        ovImages::Image image(2, 3, channels, ovImages::COMPONENT_TYPE::UINT8,
                              ovImages::COLOR_ENCODING::SRGB);
        for (std::size_t i = 0; i < image.getBytes().size(); ++i)
            image.getBytes()[i] = static_cast<unsigned char>(10 * i);
        const auto copied = make(1, 1);
        copied->setFromImage(image.view());
        const auto taken = make(1, 1);
        taken->takeImage(std::move(image));
        ASSERT_TRUE(copied->load() && taken->load()) << getGraphicsLogger().getText();
        EXPECT_EQ(taken->getWidth(), 2u);
        EXPECT_EQ(taken->getHeight(), 3u);
        EXPECT_TRUE(taken->getGammaCorrected());
        EXPECT_EQ(taken->readBack(), copied->readBack()) << channels;
    }
    const auto broken = make(1, 1);
    broken->takeImage({});
    EXPECT_FALSE(broken->load());
    getGraphicsLogger().messages.clear();
}

TEST_P(TextureTest, cubesKeepEveryMipOfEveryFace) {
    using ovImages::COLOR_ENCODING;
    using ovImages::COMPONENT_TYPE;
    for (const auto& [type, encoding] : {std::pair{COMPONENT_TYPE::HALF, COLOR_ENCODING::LINEAR},
                                         {COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR},
                                         {COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB}}) {
        ovImages::CubeMap cube;
        for (const unsigned int side : {5u, 2u}) {
            cube.mips.emplace_back(side, 6 * side, 4, type, encoding);
            for (std::size_t i = 0; i < cube.mips.back().getBytes().size(); ++i)
                cube.mips.back().getBytes()[i] = static_cast<unsigned char>((i + side) % 97);
        }
        const auto texture = make(1, 1);
        texture->setFromCube(cube);
        ASSERT_TRUE(texture->load()) << getGraphicsLogger().getText();
        EXPECT_EQ(texture->getTexType(), TEXTURE_TYPE::CUBE);
        EXPECT_EQ(texture->getMipCount(), 2u);
        EXPECT_EQ(texture->getGammaCorrected(), encoding == COLOR_ENCODING::SRGB);
        for (unsigned int mip = 0; mip < 2; ++mip) {
            for (unsigned int face = 0; face < 6; ++face) {
                const auto expected = ovImages::faceOf(cube.mips[mip], face).bytes;
                EXPECT_EQ(texture->readBack(face, mip), (Bytes{expected.begin(), expected.end()}))
                    << face << ", mip " << mip;
            }
        }
    }
    const auto empty = make(1, 1);
    empty->setFromCube({});
    EXPECT_FALSE(empty->load());
    getGraphicsLogger().messages.clear();
}

TEST_P(TextureTest, brokenImagesLoadNothing) {
    const Bytes bytes(10, 0);
    const auto texture = make(1, 1);
    texture->setFromImage({.width = 100, .height = 100, .channels = 4, .bytes = bytes});
    EXPECT_FALSE(texture->load());
    texture->setFromImage({.width = 100, .height = 100, .channels = 3, .bytes = bytes});
    EXPECT_FALSE(texture->load());
    texture->setFromImage({});
    EXPECT_FALSE(texture->load());
    EXPECT_EQ(getGraphicsLogger().messages.size(), 3u) << getGraphicsLogger().getText();
}

TEST_P(TextureTest, withoutADeviceLoadSaysSo) {
    ovMemory::UniquePtr<Texture> outliving;
    RecordingLogger logger;
    {
        System system;
        ASSERT_TRUE(system.initialize(HeadlessSystem::makeConfiguration(getLanguage(), &logger)));
        outliving = Texture::create(&system);
        outliving->setName("late");
        ASSERT_TRUE(outliving->load());
        system.shutdown();
        EXPECT_TRUE(outliving->isUnloaded());
        EXPECT_FALSE(outliving->load());
        EXPECT_EQ(logger.getText(), "[Texture] Could not load the texture 'late': the graphics system is not "
                                    "initialised; call System::initialize first.\n");
        ASSERT_TRUE(system.initialize(HeadlessSystem::makeConfiguration(getLanguage(), &logger)));
        ASSERT_TRUE(outliving->load());
    }
    EXPECT_TRUE(outliving->isUnloaded());
    EXPECT_EQ(outliving->getSystem(), nullptr);
    EXPECT_FALSE(outliving->load());
    EXPECT_EQ(outliving->readBack(), std::nullopt);
    outliving->generateMips();
    outliving->reset();
}

TEST_P(TextureTest, droppedDataStaysOnTheDeviceAlone) {
    const auto texture = make(2, 2);
    EXPECT_FALSE(texture->dropCpuCopies());
    const Bytes bytes = patternBytes(16, 1);
    texture->setCpuData(0, 0, bytes);
    texture->setGpuUploadCanBeDeferred(true);
    ASSERT_TRUE(texture->load());
    EXPECT_TRUE(texture->dropCpuCopies()) << "uploads what was deferred";
    EXPECT_EQ(texture->readBack(), bytes);
    EXPECT_TRUE(texture->load()) << "it is loaded";
    texture->unload();
    EXPECT_FALSE(texture->load());
    EXPECT_EQ(takeLog(),
              "[Texture] Could not drop the CPU copies of the texture 'picture': it is not loaded, and "
              "they are all there is; load it first."
              "[Texture] Could not load the texture 'picture': its data was dropped by "
              "Texture::dropCpuCopies; give it again, or call Texture::clearCpuData.");
    const Bytes others = patternBytes(16, 2);
    texture->setCpuData(0, 0, others);
    ASSERT_TRUE(texture->load());
    EXPECT_EQ(texture->readBack(), others);
    EXPECT_TRUE(texture->dropCpuCopies());
    texture->clearCpuData();
    EXPECT_TRUE(texture->load()) << "empty, as asked for";
}
