#include <veldris/scene/SurfaceShaders.h>

#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <veldris/pictures/PictureTextures.h>
#include <veldris/scene/CornerScene.h>

namespace {

using ovGraphics::GLTF_ALPHA_MODE;
using ovVeldris::PbsMaterial;

class SurfaceShadersTest : public testing::Test {
protected:
    static constexpr unsigned int VARIANT = 3;

    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session));
        _box = ovGraphics::makeBox(_session.getGraphics());
        _queue = ovGraphics::RenderQueue::create(&_session.getGraphics());
    }
    /// A material on an entity of its own.
    ovMemory::UniquePtr<PbsMaterial> makeMaterial(float alpha, ovGraphics::Texture* holes = nullptr) {
        auto material = PbsMaterial::create(&_session.getSystem());
        material->setReconstructBinormals(false);
        material->setAlpha(alpha);
        if (holes)
            material->setAlphaTexture(holes, ovVeldris::ONE_CHANNEL_PACK::A);
        EXPECT_TRUE(material->load());
        _queue->addEntity(_box.get(), material->getShader(), nullptr);
        return material;
    }
    ovGraphics::Shader* shaderOf(unsigned int entity) {
        return _queue->getEntity(entity)->getShader(VARIANT);
    }

    veldris::Session _session;
    ovMemory::UniquePtr<ovGraphics::Mesh> _box;
    ovMemory::UniquePtr<ovGraphics::RenderQueue> _queue;
};

} // namespace

TEST_F(SurfaceShadersTest, whatHasNoHolesSharesAShader) {
    veldris::SurfaceShaders surfaces(_session.getGraphics(), VARIANT, false);
    const auto first = makeMaterial(1.0f);
    const auto second = makeMaterial(0.2f); // opaque, so alpha means nothing
    const auto glass = makeMaterial(0.2f);
    const auto smoke = makeMaterial(0.8f);
    const auto unknown = makeMaterial(1.0f);
    ASSERT_TRUE(surfaces.add(*_queue, *first, GLTF_ALPHA_MODE::OPAQUE, 0.5f));
    ASSERT_TRUE(surfaces.add(*_queue, *second, GLTF_ALPHA_MODE::OPAQUE, 0.5f));
    ASSERT_TRUE(surfaces.add(*_queue, *glass, GLTF_ALPHA_MODE::BLEND, 0.5f));
    ASSERT_TRUE(surfaces.add(*_queue, *smoke, GLTF_ALPHA_MODE::MASK, 0.5f));
    ASSERT_NE(shaderOf(0), nullptr);
    EXPECT_EQ(shaderOf(0)->getName(), "ORVANE_DEPTH");
    EXPECT_EQ(shaderOf(1), shaderOf(0));
    EXPECT_EQ(shaderOf(2), nullptr) << "a hole as a whole";
    EXPECT_EQ(shaderOf(3), shaderOf(0));
    EXPECT_EQ(shaderOf(4), nullptr) << "another material";
    EXPECT_EQ(_queue->getEntity(0)->getShader(0), first->getShader());
}

TEST_F(SurfaceShadersTest, holesAreThoseOfTheMaterial) {
    const auto holes =
        veldris::makeTarget(_session.getGraphics(), "holes", ovGraphics::FORMAT::R8G8B8A8_UNORM, 4, 4);
    veldris::SurfaceShaders surfaces(_session.getGraphics(), VARIANT, true);
    const auto masked = makeMaterial(0.1f, holes.get());
    const auto opaque = makeMaterial(1.0f, holes.get());
    ASSERT_TRUE(surfaces.add(*_queue, *masked, GLTF_ALPHA_MODE::MASK, 0.5f));
    ASSERT_TRUE(surfaces.add(*_queue, *opaque, GLTF_ALPHA_MODE::OPAQUE, 0.5f));
    ASSERT_NE(shaderOf(0), nullptr);
    EXPECT_EQ(shaderOf(0)->getName(), "ORVANE_GEOMETRY");
    EXPECT_EQ(shaderOf(0)->getTexture(0, 0), holes.get());
    EXPECT_NE(shaderOf(0)->getSampler(0, 0), nullptr);
    ASSERT_NE(shaderOf(1), nullptr);
    EXPECT_EQ(shaderOf(1)->getTexture(0, 0), nullptr);
}
