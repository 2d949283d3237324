#include <veldris/scene/MissingTextures.h>

#include <gtest/gtest.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/CompositeEncoder.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <support/TemporaryFolder.h>
#include <veldris/SessionTesting.h>

namespace {

using ovVeldris::ONE_CHANNEL_PACK;
using ovVeldris::PbsMaterial;
using ovVeldris::THREE_CHANNEL_PACK;

class MissingTexturesTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session));
        _material = PbsMaterial::create(&_session.getSystem());
    }
    void TearDown() override { _material.reset(); }

    ovGraphics::Texture* texture(ovMemory::StringView name) {
        return _session.getGraphics().getTextureManager()->createOrRetrieve(name);
    }
    void write(const char* name, float grey) {
        ovImages::Image image(1, 1, 1, ovImages::COMPONENT_TYPE::UINT8, ovImages::COLOR_ENCODING::SRGB);
        image.setComponent(0, 0, 0, grey);
        ASSERT_TRUE(ovImages::CompositeEncoder().encodeFile(_folder.getPath(name), image.view()));
    }
    ovMemory::Buffer<ovMemory::String> load() {
        PbsMaterial* const materials[] = {_material.get()};
        return veldris::loadMissingTextures(materials, _folder.getPath());
    }

    TemporaryFolder _folder;
    veldris::Session _session;
    ovMemory::UniquePtr<PbsMaterial> _material;
};

TEST_F(MissingTexturesTest, namesAreFilesOfTheFolder) {
    write("colour.png", 0.5f);
    write("data.png", 0.5f);
    _material->setAlbedoTexture(texture("colour.png"), THREE_CHANNEL_PACK::RGB);
    _material->setAlphaTexture(texture("colour.png"), ONE_CHANNEL_PACK::A);
    _material->setOcclusionTexture(texture("data.png"), ONE_CHANNEL_PACK::R);
    EXPECT_EQ(load(), ovMemory::Buffer<ovMemory::String>());
    EXPECT_TRUE(texture("colour.png")->getGammaCorrected());
    EXPECT_FALSE(texture("data.png")->getGammaCorrected());
    const auto bytes = texture("data.png")->readBack();
    ASSERT_TRUE(bytes);
    EXPECT_EQ(*bytes, (ovMemory::Buffer<unsigned char>{128, 128, 128, 255})) << "grey became a colour";
}

TEST_F(MissingTexturesTest, whatIsNoFileIsSeenAndTold) {
    _material->setAlbedoTexture(texture("nowhere.png"), THREE_CHANNEL_PACK::RGB);
    _material->setEmissiveTexture(texture("nowhere.png"), THREE_CHANNEL_PACK::RGB);
    const auto warnings = load();
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_NE(warnings[0].find("'nowhere.png'"), ovMemory::String::npos) << warnings[0];
    EXPECT_FALSE(texture("nowhere.png")->isUnloaded());
    EXPECT_EQ(texture("nowhere.png")->getWidth(), 8u);
}

TEST_F(MissingTexturesTest, aMistypedNameIsToldWithTheNearest) {
    ASSERT_TRUE(texture("helmet diffuse")->load());
    _material->setEmissiveTexture(texture("helmet diffuse"), THREE_CHANNEL_PACK::RGB);
    _material->setAlbedoTexture(texture("helmet difuse"), THREE_CHANNEL_PACK::RGB);
    const auto warnings = load();
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_TRUE(warnings[0].ends_with(" Did you mean 'helmet diffuse'?")) << warnings[0];
}

TEST_F(MissingTexturesTest, loadedTexturesAreLeftAlone) {
    ovGraphics::Texture* own = texture("own");
    ASSERT_TRUE(own->load());
    const unsigned int loads = own->getLoadCount();
    _material->setAlbedoTexture(own, THREE_CHANNEL_PACK::RGB);
    EXPECT_TRUE(load().empty());
    EXPECT_EQ(own->getLoadCount(), loads);
}

} // namespace
