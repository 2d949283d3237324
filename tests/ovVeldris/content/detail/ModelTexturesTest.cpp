#include <gtest/gtest.h>
#include <ovGraphics/device/Device.h>
#include <ovVeldris/content/ModelTesting.h>
#include <ovVeldris/content/detail/ModelTextures.h>

using namespace ovVeldris;
using detail::ModelTextures;
using ovGraphics::FILTER;
using ovGraphics::TEXTURE_ADDRESS;
using ovImages::COLOR_ENCODING;

namespace {

class ModelTexturesTest : public ModelFixture {
protected:
    void TearDown() override {
        for (const ModelTextures::Made& made : _textures.getMade()) {
            const ovMemory::String name(made.texture->getName());
            getGraphics().getTextureManager()->erase(name);
            getGraphics().getSamplerManager()->erase(name);
        }
        ModelFixture::TearDown();
    }

    ovMemory::Buffer<ovMemory::String> _warnings;
    ModelTextures _textures{HeadlessSystem::get(GetParam()).getSystem(), _scene, _warnings};
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, ModelTexturesTest, bothLanguages(), languageName);

TEST_P(ModelTexturesTest, makesEachTextureOnceForEachUse) {
    const int texture = _scene.addTexture("picture", pngOf({{10, 20, 30, 40}}));
    ovGraphics::Texture* color = _textures.get(texture, COLOR_ENCODING::SRGB);
    ovGraphics::Texture* data = _textures.get(texture, COLOR_ENCODING::LINEAR);
    EXPECT_EQ(_textures.get(texture, COLOR_ENCODING::SRGB), color);
    EXPECT_NE(color, data);
    EXPECT_TRUE(color->getGammaCorrected());
    EXPECT_FALSE(data->getGammaCorrected());
    EXPECT_EQ(color->getName(), "picture");
    EXPECT_EQ(data->getName(), "picture (2)");
    EXPECT_EQ(texelOf(color, 0), (Texel{10, 20, 30, 40}));
    EXPECT_EQ(texelOf(data, 0), (Texel{10, 20, 30, 40}));
    EXPECT_EQ(_textures.get(-1, COLOR_ENCODING::SRGB), nullptr);
    EXPECT_EQ(getGraphics().getTextureManager()->get("picture"), color);
    EXPECT_EQ(_textures.getMade().size(), 2u);
}

TEST_P(ModelTexturesTest, greyPicturesBecomeColors) {
    const int texture = _scene.addTexture("grey", pngOf({{77, 0, 0, 0}}, 1));
    EXPECT_EQ(texelOf(_textures.get(texture, COLOR_ENCODING::LINEAR), 0), (Texel{77, 77, 77, 255}));
}

TEST_P(ModelTexturesTest, aMissingPictureIsSeen) {
    const int damaged = _scene.addTexture("damaged", {1, 2, 3, 4});
    const int missing = _scene.addTexture("missing", {});
    for (const int texture : {damaged, missing}) {
        ovGraphics::Texture* standIn = _textures.get(texture, COLOR_ENCODING::SRGB);
        ASSERT_NE(standIn, nullptr);
        EXPECT_FALSE(standIn->isUnloaded());
        EXPECT_EQ(texelOf(standIn, 0), (Texel{255, 0, 255, 255}));
        EXPECT_EQ(texelOf(standIn, 1), (Texel{0, 0, 0, 255}));
        _textures.get(texture, COLOR_ENCODING::LINEAR);
    }
    ASSERT_EQ(_warnings.size(), 1u)
        << "one for each picture, and the reader has told of those that are missing";
    EXPECT_NE(_warnings[0].find("\"damaged\""), ovMemory::String::npos) << _warnings[0];
    EXPECT_NE(_warnings[0].find("chequerboard"), ovMemory::String::npos) << _warnings[0];
}

TEST_P(ModelTexturesTest, samplersAndMipsAreThoseOfTheFile) {
    const int plain = _scene.addTexture("plain", pngOf({{1, 1, 1, 1}, {3, 3, 3, 3}}));
    const int special = _scene.addTexture("special", pngOf({{1, 1, 1, 1}, {3, 3, 3, 3}}));
    auto& described = _scene.textures[static_cast<std::size_t>(special)];
    described.filter = FILTER::MIN_MAG_MIP_POINT;
    described.addressU = TEXTURE_ADDRESS::CLAMP;
    described.addressV = TEXTURE_ADDRESS::MIRROR;
    described.mipmapped = false;
    EXPECT_EQ(_textures.get(plain, COLOR_ENCODING::LINEAR)->getMipCount(), 2u);
    EXPECT_EQ(_textures.get(special, COLOR_ENCODING::LINEAR)->getMipCount(), 1u);
    ASSERT_EQ(_textures.getMade().size(), 2u);
    const auto& usual = _textures.getMade()[0].sampler->getDesc();
    EXPECT_EQ(usual.filter, FILTER::MIN_MAG_MIP_LINEAR);
    EXPECT_EQ(usual.addressU, TEXTURE_ADDRESS::WRAP);
    const auto& own = _textures.getMade()[1].sampler->getDesc();
    EXPECT_EQ(own.filter, FILTER::MIN_MAG_MIP_POINT);
    EXPECT_EQ(own.addressU, TEXTURE_ADDRESS::CLAMP);
    EXPECT_EQ(own.addressV, TEXTURE_ADDRESS::MIRROR);
    EXPECT_FALSE(_textures.getMade()[1].sampler->isUnloaded());
}

TEST_P(ModelTexturesTest, takesComputedPictures) {
    ovImages::Image picture(3, 1, 4, ovImages::COMPONENT_TYPE::UINT8, COLOR_ENCODING::LINEAR);
    for (unsigned char i = 0; i < 12; ++i)
        picture.getBytes()[i] = i;
    ovGraphics::Texture* texture = _textures.add("computed", std::move(picture), -1);
    EXPECT_EQ(texture->getName(), "computed");
    EXPECT_EQ(texelOf(texture, 0), (Texel{0, 1, 2, 3}));
    EXPECT_EQ(texelOf(texture, 2), (Texel{8, 9, 10, 11}));
}

TEST_P(ModelTexturesTest, picturesAreReadUntilTheyAreForgotten) {
    const int texture = _scene.addTexture("picture", pngOf({{10, 20, 30, 40}}));
    const ovImages::ImageView color = _textures.read(texture, COLOR_ENCODING::SRGB);
    const ovImages::ImageView data = _textures.read(texture, COLOR_ENCODING::LINEAR);
    EXPECT_EQ(color.encoding, COLOR_ENCODING::SRGB);
    EXPECT_EQ(data.encoding, COLOR_ENCODING::LINEAR);
    EXPECT_EQ(color.bytes.data(), data.bytes.data()) << "decoded once";
    EXPECT_EQ(color.bytes[1], 20);
    const ovImages::ImageView white = _textures.read(-1, COLOR_ENCODING::SRGB);
    EXPECT_EQ(ovMemory::Buffer<unsigned char>(white.bytes.begin(), white.bytes.end()),
              (ovMemory::Buffer<unsigned char>{255, 255, 255, 255}));
    _textures.forgetPictures();
    EXPECT_EQ(_textures.read(texture, COLOR_ENCODING::SRGB).bytes[1], 20) << "decoded anew";
}

TEST_P(ModelTexturesTest, texelsAreOnTheDeviceAlone) {
    ovGraphics::Texture* texture =
        _textures.get(_scene.addTexture("picture", pngOf({{10, 20, 30, 40}})), COLOR_ENCODING::LINEAR);
    texture->unload();
    EXPECT_FALSE(texture->load());
    EXPECT_NE(getGraphicsLogger().getText().find("dropped"), ovMemory::String::npos);
    getGraphicsLogger().messages.clear();
}
