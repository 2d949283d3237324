#include <veldris/scene/ScenePicture.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/Shapes.h>
#include <ovImages/PngEncoder.h>
#include <ovVeldris/content/ModelLoader.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <veldris/SessionTesting.h>
#include <veldris/scene/BuiltInSky.h>
#include <veldris/scene/EnvironmentLight.h>
#include <veldris/scene/Panoramas.h>

namespace {

using ovGraphics::GLTF_ALPHA_MODE;
using ovMaths::Vector;
using ovVeldris::PbsMaterial;
using veldris::ScenePicture;
using veldris::SceneSettings;

class ScenePictureTest : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session, {.language = GetParam()}));
        _settings.width = 32;
        _settings.height = 32;
        _settings.background = {0.25f, 0.5f, 0.75f};
        _settings.lightDirection = Vector(0.0f, -1.0f, 0.0f);
        _settings.lightColor = Vector(1.0f, 1.0f, 1.0f);
        _ground = ovGraphics::makePlane(_session.getGraphics(), 1.0f);
        _sphere = ovGraphics::makeSphere(_session.getGraphics());
        _above = ovGraphics::Node::create(&_session.getGraphics());
        _above->setPosition({0.0f, 1.5f, 0.0f});
        _above->setScale({0.4f, 0.4f, 0.4f});
    }

    /// A loaded diffuse material that nothing but the light reaches.
    ovMemory::UniquePtr<PbsMaterial> makeDiffuse(ScenePicture& picture, const Vector& color,
                                                 float alpha = 1.0f) {
        auto material = PbsMaterial::create(&_session.getSystem());
        material->setReconstructBinormals(false);
        material->setAlbedoColor(color);
        material->setMetalness(0.0f);
        material->setRoughnessGlossiness(1.0f);
        material->setAlpha(alpha);
        picture.light(*material);
        EXPECT_TRUE(material->load());
        return material;
    }
    /// Looks down on the ground from above, beside the sphere.
    ovMemory::UniquePtr<ScenePicture> makePicture() {
        ovMemory::String error;
        auto picture = ScenePicture::create(_session, _settings, error);
        EXPECT_TRUE(picture) << error;
        picture->getCamera().setPosition({0.0f, 5.0f, 0.0f});
        picture->getCamera().lookAt({0.0f, -1.0f, 0.0f}, {0.0f, 0.0f, 1.0f});
        picture->getCamera().setOrthographic(4.0f, 4.0f, 0.5f, 10.0f);
        return picture;
    }
    static ovImages::Image draw(ScenePicture& picture) {
        ovMemory::String warning;
        ovMemory::String error;
        const auto drawn = picture.draw(warning, error);
        EXPECT_TRUE(drawn) << error;
        EXPECT_EQ(warning, "");
        return drawn ? *drawn->convertToImage() : ovImages::Image();
    }
    static Vector pixel(const ovImages::Image& image, unsigned int x, unsigned int y) {
        return {image.getComponent(x, y, 0), image.getComponent(x, y, 1), image.getComponent(x, y, 2),
                image.getComponent(x, y, 3)};
    }

    /// Which of the four texels of makeSlate() shade the ground: '#', the others '.'.
    /// @param change what the material of the file has otherwise
    ovMemory::String shadowOfSlate(const ovGraphics::GltfScene& scene,
                                   const std::function<void(PbsMaterial&)>& change = {}) {
        const auto picture = makePicture();
        const auto white = makeDiffuse(*picture, {0.5f, 0.5f, 0.5f});
        const auto loaded = ovVeldris::ModelLoader(&_session.getSystem()).create(scene);
        EXPECT_TRUE(loaded) << loaded.error;
        if (!loaded)
            return "";
        ovVeldris::Model& slate = *loaded.model;
        PbsMaterial& material = *slate.getMaterials()[0].material;
        if (change)
            change(material);
        picture->light(material);
        EXPECT_TRUE(slate.loadMaterials());
        picture->getSolid().addEntity(_ground.get(), white->getShader(), nullptr);
        slate.addTo(picture->getSolid(), picture->getBlended());
        EXPECT_TRUE(picture->prepareSurface(*white, GLTF_ALPHA_MODE::OPAQUE));
        EXPECT_TRUE(picture->prepareSurface(material, scene.materials[0].alphaMode));
        picture->fitShadow(ovGraphics::BoundingBox::newBox({0.0f, 1.0f, 0.0f}, {2.0f, 2.0f, 2.0f}));
        picture->getCamera().setPosition({0.0f, 5.0f, -5.0f});
        picture->getCamera().lookAt({0.0f, -1.0f, 1.0f}, {});
        const ovImages::Image image = draw(*picture);
        ovMemory::String shadow;
        for (const unsigned int x : {10u, 14u, 18u, 22u}) // a texel is four pixels wide, from the eighth on
            shadow += pixel(image, x, 16).x < 0.1f ? '#' : '.';
        return shadow;
    }

    veldris::Session _session;
    SceneSettings _settings;
    ovMemory::UniquePtr<ovGraphics::Mesh> _ground;
    ovMemory::UniquePtr<ovGraphics::Mesh> _sphere;
    ovMemory::UniquePtr<ovGraphics::Node> _above;
};

constexpr unsigned int MIDDLE = 16;

TEST_P(ScenePictureTest, theGroundCatchesTheShadowAndNothingElse) {
    _settings.ground = true;
    _settings.lightDirection = Vector(1.0f, -1.0f, 0.0f);
    auto picture = makePicture();
    ASSERT_TRUE(picture);
    const auto material = makeDiffuse(*picture, {1.0f, 1.0f, 1.0f});
    picture->getSolid().addEntity(_sphere.get(), material->getShader(), _above.get());
    ASSERT_TRUE(picture->prepareSurface(*material, GLTF_ALPHA_MODE::OPAQUE));
    // The lower side of the box is the ground.
    picture->fitShadow(ovGraphics::BoundingBox::newBox({0.0f, 0.95f, 0.0f}, {0.8f, 1.9f, 0.8f}));
    const ovImages::Image image = draw(*picture);
    for (unsigned int y = 0; y < 32; ++y) {
        for (unsigned int x = 20; x < 32; ++x) { // what the sphere does not hide
            // A sphere of radius 0.4 at (0, 1.5): under 45 degrees its shadow is an ellipse around 1.5.
            const float alongX = ((float(x) + 0.5f) / 8.0f - 2.0f - 1.5f) / (0.4f * std::sqrt(2.0f));
            const float alongZ = ((float(y) + 0.5f) / 8.0f - 2.0f) / 0.4f;
            const float distance = std::sqrt(alongX * alongX + alongZ * alongZ);
            const float share = pixel(image, x, y).x / 0.25f;
            if (distance < 0.8f) {
                EXPECT_NEAR(share, 1.0f - 0.62f, 1e-4f) << x << ' ' << y;
            } else if (distance > 1.25f) {
                EXPECT_EQ(share, 1.0f) << x << ' ' << y;
            }
            EXPECT_EQ(pixel(image, x, y).w, 1.0f);
        }
    }
}

TEST_P(ScenePictureTest, aTransparentPictureHasTheCoverageAsAlpha) {
    _settings.transparent = true;
    auto picture = makePicture();
    ASSERT_TRUE(picture);
    const auto solid = makeDiffuse(*picture, {0.5f, 0.25f, 1.0f});
    const auto glass = makeDiffuse(*picture, {1.0f, 1.0f, 1.0f}, 0.25f);
    picture->getSolid().addEntity(_sphere.get(), solid->getShader(), _above.get());
    picture->getBlended().addEntity(_ground.get(), glass->getShader(), nullptr); // 2 m wide
    const ovImages::Image image = draw(*picture);
    EXPECT_EQ(pixel(image, 1, 1), Vector(0.0f, 0.0f, 0.0f, 0.0f));
    EXPECT_EQ(pixel(image, MIDDLE, MIDDLE).w, 1.0f);
    const Vector seen =
        pixel(image, 9, 9); // the glass alone: light from above, irradiance of the material's colour
    EXPECT_NEAR(seen.w, 0.25f, 1e-6f);
    const Vector opaque = pixel(image, MIDDLE, MIDDLE);
    EXPECT_NEAR(opaque.x / opaque.z, 0.5f, 0.02f);
    EXPECT_GT(seen.x, 0.9f) << "the colour stands beside alpha and is not multiplied by it";
}

/// A slate of 2 by 1 m, 1.5 m above the ground, under a picture of two texels of which the left one alone
/// covers, by as much as is said. The slate shows four texels side by side, of which the picture's address
/// decides the last two.
ovGraphics::GltfScene makeSlate(ovGraphics::TEXTURE_ADDRESS address, float coverage,
                                GLTF_ALPHA_MODE alphaMode, float cutoff) {
    ovGraphics::GltfScene scene;
    ovImages::Image picture(2, 1, 4, ovImages::COMPONENT_TYPE::UINT8, ovImages::COLOR_ENCODING::SRGB);
    picture.setComponent(0, 0, 3, coverage);
    scene.images.push_back({"holes", ovImages::PngEncoder().encode(picture.view()).bytes});
    ovGraphics::GltfTexture& texture = scene.textures.emplace_back();
    texture.name = "holes";
    texture.image = 0;
    texture.filter = ovGraphics::FILTER::MIN_MAG_MIP_POINT;
    texture.mipmapped = false;
    texture.addressU = address;
    ovGraphics::GltfMaterial& material = scene.materials.emplace_back();
    material.name = "slate";
    material.baseColorTexture = 0;
    material.alphaMode = alphaMode;
    material.alphaCutoff = cutoff;
    material.doubleSided = true;

    ovGraphics::GltfPrimitive primitive;
    primitive.composition.addAttribute("POSITION", ovGraphics::FORMAT::R32G32B32_FLOAT);
    primitive.composition.addAttribute("NORMAL", ovGraphics::FORMAT::R32G32B32_FLOAT);
    primitive.composition.addAttribute("TEXCOORD", ovGraphics::FORMAT::R32G32_FLOAT);
    const float vertices[4][8] = {{-1, 1.5f, -0.5f, 0, 1, 0, 0, 1},
                                  {-1, 1.5f, 0.5f, 0, 1, 0, 0, 0},
                                  {1, 1.5f, -0.5f, 0, 1, 0, 2, 1},
                                  {1, 1.5f, 0.5f, 0, 1, 0, 2, 0}};
    primitive.vertices.resize(sizeof(vertices));
    std::memcpy(primitive.vertices.data(), vertices, sizeof(vertices));
    primitive.vertexCount = 4;
    primitive.indices = {0, 1, 2, 2, 1, 3};
    primitive.material = 0;
    scene.meshes.push_back({"slate", {primitive}});
    ovGraphics::GltfNode& node = scene.nodes.emplace_back();
    node.name = "slate";
    node.mesh = 0;
    scene.roots = {0};
    return scene;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, ScenePictureTest, testing::Values("glsl", "hlsl"),
                         [](const auto& test) { return ovMemory::String(test.param); });

TEST_P(ScenePictureTest, showsTheBackgroundAndWhatIsInFrontOfIt) {
    const auto picture = makePicture();
    const auto material = makeDiffuse(*picture, {0.5f, 0.25f, 0.125f});
    picture->getSolid().addEntity(_ground.get(), material->getShader(), nullptr);
    const ovImages::Image image = draw(*picture);
    ASSERT_EQ(image.getWidth(), 32u);
    EXPECT_EQ(image.getEncoding(), ovImages::COLOR_ENCODING::LINEAR);
    EXPECT_EQ(pixel(image, 0, 0), Vector(0.25f, 0.5f, 0.75f, 1.0f));
    // Lit at right angles by white of 1; without metalness the surface reflects nothing head-on.
    const Vector lit = pixel(image, MIDDLE, MIDDLE);
    EXPECT_NEAR(lit.x, 0.5f, 1e-3f);
    EXPECT_NEAR(lit.y, 0.25f, 1e-3f);
    EXPECT_NEAR(lit.z, 0.125f, 1e-3f);
    EXPECT_EQ(lit.w, 1.0f);
}

TEST_P(ScenePictureTest, shadowsFallBelowWhatCastsThem) {
    for (const bool shadows : {false, true}) {
        _settings.shadows = shadows;
        const auto picture = makePicture();
        const auto material = makeDiffuse(*picture, {0.5f, 0.5f, 0.5f});
        picture->getSolid().addEntity(_ground.get(), material->getShader(), nullptr);
        picture->getSolid().addEntity(_sphere.get(), material->getShader(), _above.get());
        ASSERT_TRUE(picture->prepareSurface(*material, GLTF_ALPHA_MODE::OPAQUE));
        picture->fitShadow(ovGraphics::BoundingBox::newBox({0.0f, 1.0f, 0.0f}, {2.0f, 2.0f, 2.0f}));
        // From the side, so that the camera sees the ground below the sphere.
        picture->getCamera().setPosition({0.0f, 5.0f, -5.0f});
        picture->getCamera().lookAt({0.0f, -1.0f, 1.0f}, {});
        const ovImages::Image image = draw(*picture);
        const float below = pixel(image, MIDDLE, MIDDLE).x;
        EXPECT_NEAR(below, shadows ? 0.0f : 0.5f, 1e-2f);
        EXPECT_NEAR(pixel(image, MIDDLE - 6, MIDDLE).x, 0.5f, 1e-2f) << "beside the shadow, without acne";
    }
}

TEST_P(ScenePictureTest, whatHardlyCoversCastsNoShadow) {
    _settings.shadows = true;
    for (const float alpha : {0.1f, 0.4f, 0.6f, 1.0f}) {
        const auto picture = makePicture();
        const auto white = makeDiffuse(*picture, {0.5f, 0.5f, 0.5f});
        const auto glass = makeDiffuse(*picture, {0.5f, 0.5f, 0.5f}, alpha);
        picture->getSolid().addEntity(_ground.get(), white->getShader(), nullptr);
        picture->getBlended().addEntity(_sphere.get(), glass->getShader(), _above.get());
        ASSERT_TRUE(picture->prepareSurface(*white, GLTF_ALPHA_MODE::OPAQUE));
        ASSERT_TRUE(picture->prepareSurface(*glass, GLTF_ALPHA_MODE::BLEND));
        picture->fitShadow(ovGraphics::BoundingBox::newBox({0.0f, 1.0f, 0.0f}, {2.0f, 2.0f, 2.0f}));
        picture->getCamera().setPosition({0.0f, 5.0f, -5.0f});
        picture->getCamera().lookAt({0.0f, -1.0f, 1.0f}, {});
        EXPECT_NEAR(pixel(draw(*picture), MIDDLE, MIDDLE).x, alpha > 0.5f ? 0.0f : 0.5f, 1e-2f) << alpha;
    }
}

TEST_P(ScenePictureTest, whatIsMaskedWholeCastsItsWholeShadow) {
    _settings.shadows = true;
    struct Case {
        float alpha, cutoff;
        bool casts;
    };
    for (const Case& row : {Case{0.4f, 0.3f, true}, {0.3f, 0.4f, false}, {0.6f, 0.7f, false}}) {
        const auto picture = makePicture();
        const auto white = makeDiffuse(*picture, {0.5f, 0.5f, 0.5f});
        const auto masked = makeDiffuse(*picture, {0.5f, 0.5f, 0.5f}, row.alpha);
        masked->setAlphaCutoff(row.cutoff);
        picture->getSolid().addEntity(_ground.get(), white->getShader(), nullptr);
        picture->getSolid().addEntity(_sphere.get(), masked->getShader(), _above.get());
        ASSERT_TRUE(picture->prepareSurface(*white, GLTF_ALPHA_MODE::OPAQUE));
        ASSERT_TRUE(picture->prepareSurface(*masked, GLTF_ALPHA_MODE::MASK));
        picture->fitShadow(ovGraphics::BoundingBox::newBox({0.0f, 1.0f, 0.0f}, {2.0f, 2.0f, 2.0f}));
        picture->getCamera().setPosition({0.0f, 5.0f, -5.0f});
        picture->getCamera().lookAt({0.0f, -1.0f, 1.0f}, {});
        EXPECT_NEAR(pixel(draw(*picture), MIDDLE, MIDDLE).x, row.casts ? 0.0f : 0.5f, 1e-2f) << row.alpha;
    }
}

TEST_P(ScenePictureTest, shadowsOfHolesReadTexturesAsTheFileSays) {
    using ovGraphics::TEXTURE_ADDRESS;
    struct Case {
        TEXTURE_ADDRESS address;
        const char* shadow;
        float coverage = 1.0f;
        GLTF_ALPHA_MODE alphaMode = GLTF_ALPHA_MODE::MASK;
        float cutoff = 0.5f;
    };
    const Case cases[] = {{TEXTURE_ADDRESS::WRAP, "#.#."},
                          {TEXTURE_ADDRESS::CLAMP, "#..."},
                          {TEXTURE_ADDRESS::MIRROR, "#..#"},
                          {TEXTURE_ADDRESS::WRAP, "#.#.", 0.6f, GLTF_ALPHA_MODE::BLEND},
                          {TEXTURE_ADDRESS::WRAP, "....", 0.4f, GLTF_ALPHA_MODE::BLEND},
                          // Holes of masked surfaces are where they are seen, whatever the cut-off is.
                          {TEXTURE_ADDRESS::WRAP, "#.#.", 0.4f, GLTF_ALPHA_MODE::MASK, 0.3f},
                          {TEXTURE_ADDRESS::WRAP, "....", 0.3f, GLTF_ALPHA_MODE::MASK, 0.4f},
                          {TEXTURE_ADDRESS::WRAP, "....", 0.6f, GLTF_ALPHA_MODE::MASK, 0.7f},
                          {TEXTURE_ADDRESS::WRAP, "####", 0.1f, GLTF_ALPHA_MODE::MASK, 0.0f}};
    _settings.shadows = true;
    for (const Case& row : cases)
        EXPECT_EQ(shadowOfSlate(makeSlate(row.address, row.coverage, row.alphaMode, row.cutoff)), row.shadow)
            << row.coverage << ' ' << row.cutoff;
}

TEST_P(ScenePictureTest, holesHaveTheSamplerOfTheirOwnTexture) {
    // The base colour is another texture, which comes first and is read another way.
    ovGraphics::GltfScene scene =
        makeSlate(ovGraphics::TEXTURE_ADDRESS::WRAP, 1.0f, GLTF_ALPHA_MODE::MASK, 0.5f);
    scene.textures.push_back(scene.textures[0]);
    scene.textures[1].name = "paint";
    scene.textures[1].addressU = ovGraphics::TEXTURE_ADDRESS::CLAMP;
    scene.materials[0].baseColorTexture = 1;
    scene.materials[0].emissiveTexture = 0;
    _settings.shadows = true;
    const auto takeHoles = [](PbsMaterial& material) {
        material.setAlphaTexture(material.getEmissiveTexture(), ovVeldris::ONE_CHANNEL_PACK::A);
    };
    EXPECT_EQ(shadowOfSlate(scene, takeHoles), "#.#.");
}

TEST_P(ScenePictureTest, blendsOverWhatIsSolid) {
    const auto picture = makePicture();
    const auto white = makeDiffuse(*picture, {1.0f, 1.0f, 1.0f});
    const auto glass = makeDiffuse(*picture, {0.0f, 0.0f, 0.0f}, 0.25f);
    picture->getSolid().addEntity(_ground.get(), white->getShader(), nullptr);
    _above->setScale({1.0f, 1.0f, 1.0f});
    picture->getBlended().addEntity(_ground.get(), glass->getShader(), _above.get());
    const ovImages::Image image = draw(*picture);
    EXPECT_NEAR(pixel(image, MIDDLE, MIDDLE).x, 0.75f, 1e-3f);
    EXPECT_EQ(pixel(image, MIDDLE, MIDDLE).w, 1.0f) << "pictures are opaque";
}

TEST_P(ScenePictureTest, samplesAreAveraged) {
    _settings.samples = 16;
    const auto picture = makePicture();
    picture->getCamera().setOrthographic(4.0f, 4.0f, 0.5f, 10.0f);
    const auto black = makeDiffuse(*picture, {0.0f, 0.0f, 0.0f});
    const auto node = ovGraphics::Node::create(&_session.getGraphics());
    node->setPosition({0.03125f, 0.0f, 0.0f}); // a quarter of a pixel of 0.125
    picture->getSolid().addEntity(_ground.get(), black->getShader(), node.get());
    const ovImages::Image image = draw(*picture);
    ASSERT_EQ(image.getWidth(), 32u);
    // The ground ends a quarter into pixel 24: three quarters of its samples see the background.
    EXPECT_NEAR(pixel(image, 24, MIDDLE).x, 0.75f * 0.25f, 1e-3f);
    EXPECT_NEAR(pixel(image, 23, MIDDLE).x, 0.0f, 1e-3f);
    EXPECT_NEAR(pixel(image, 25, MIDDLE).x, 0.25f, 1e-6f);
}

TEST_P(ScenePictureTest, stripsMakeTheSamePictureAsAWholeDoes) {
    ovMemory::String warning;
    ovMemory::String error;
    const auto light = veldris::EnvironmentLight::create(
        _session, veldris::drawSkyPanorama(128, {0.0f, 1.0f, 0.0f}).view(), warning, error);
    ASSERT_TRUE(light) << error;
    _settings.shadows = true;
    _settings.samples = 4;
    _settings.height = 29; // the last strip has five rows
    ovMemory::Buffer<ovImages::Image> pictures;
    for (const unsigned int rows : {29u, 8u, 16u}) {
        _settings.stripSamples = _settings.width * _settings.samples * rows;
        const auto picture = makePicture();
        ASSERT_TRUE(picture->setEnvironment(light.get()));
        const auto material = makeDiffuse(*picture, {0.5f, 0.4f, 0.3f});
        picture->getSolid().addEntity(_ground.get(), material->getShader(), nullptr);
        picture->getSolid().addEntity(_sphere.get(), material->getShader(), _above.get());
        ASSERT_TRUE(picture->prepareSurface(*material, GLTF_ALPHA_MODE::OPAQUE));
        picture->fitShadow(ovGraphics::BoundingBox::newBox({0.0f, 1.0f, 0.0f}, {2.0f, 2.0f, 2.0f}));
        pictures.push_back(draw(*picture));
    }
    // The device computes with distances from the target's corner, which moves from strip to strip: numbers
    // differ in their last places. A strip that is off by a row of samples differs by a hundredth and more.
    for (std::size_t strips = 1; strips < pictures.size(); ++strips) {
        ASSERT_EQ(pictures[strips].getHeight(), 29u);
        for (unsigned int y = 0; y < 29; ++y)
            for (unsigned int x = 0; x < 32; ++x)
                for (unsigned int channel = 0; channel < 4; ++channel)
                    EXPECT_NEAR(pictures[strips].getComponent(x, y, channel),
                                pictures[0].getComponent(x, y, channel), 1e-5f)
                        << x << ", " << y;
    }
}

TEST_P(ScenePictureTest, passesOfStripsAreTimedTogether) {
    _settings.shadows = true;
    _settings.stripSamples = 1; // as few as there can be: eight rows a strip
    _session.getGraphics().setPassTimingEnabled(true);
    const auto picture = makePicture();
    draw(*picture);
    ovMemory::Buffer<ovMemory::String> names;
    for (const ovGraphics::PassTiming& timing : picture->getTimings())
        names.push_back(timing.name);
    EXPECT_EQ(names, (ovMemory::Buffer<ovMemory::String>{"clear", "shadow", "shadow", "clear", "scene",
                                                         "blended scene", "average of samples",
                                                         "check of samples"}));
}

TEST_P(ScenePictureTest, materialsSayHowTheyAreLitWhenTheSettingsDoNot) {
    _settings.lightDirection.reset();
    _settings.lightColor.reset();
    const auto picture = makePicture();
    auto material = PbsMaterial::create(&_session.getSystem());
    material->setLightDirection({0.0f, -1.0f, 0.0f});
    material->setLightColor({2.0f, 0.0f, 0.0f});
    picture->light(*material);
    EXPECT_EQ(material->getLightColor(), Vector(2.0f, 0.0f, 0.0f));
    EXPECT_EQ(material->getLightDirection(), Vector(0.0f, -1.0f, 0.0f));
    EXPECT_EQ(material->getShadowMapTexture(), nullptr);
    EXPECT_FALSE(material->getCombineLightAndEnvironment());
}

TEST_P(ScenePictureTest, mirrorsShowTheEnvironmentTheRightWayRound) {
    const auto colorOf = [](const Vector& d) {
        return Vector(0.5f + 0.5f * d.x, 0.5f + 0.5f * d.y, 0.5f + 0.5f * d.z);
    };
    ovMemory::String warning;
    ovMemory::String error;
    const auto light = veldris::EnvironmentLight::create(_session, veldris::drawPanorama(128, colorOf).view(),
                                                         warning, error);
    ASSERT_TRUE(light) << error;
    _settings.lightBesideEnvironment = false;
    const auto picture = makePicture();
    ASSERT_TRUE(picture->setEnvironment(light.get()));
    picture->getCamera().setPosition({0.0f, 0.0f, -50.0f});
    picture->getCamera().lookAt({0.0f, 0.0f, 1.0f}, {});
    picture->getCamera().setPerspective(0.08f, 1.0f, 40.0f, 60.0f); // 4 m across where the sphere is
    auto mirror = PbsMaterial::create(&_session.getSystem());
    mirror->setReconstructBinormals(false);
    mirror->setSpecularColor({1.0f, 1.0f, 1.0f});
    mirror->setMetalness(1.0f);
    mirror->setRoughnessGlossiness(0.0f);
    picture->light(*mirror);
    ASSERT_TRUE(mirror->load());
    picture->getSolid().addEntity(_sphere.get(), mirror->getShader(), nullptr);
    const ovImages::Image image = draw(*picture);

    // The sphere has a radius of 8 pixels. Where its normal stands at 45 degrees it shows what lies beside
    // it.
    struct Case {
        unsigned int x, y;
        Vector direction;
        const char* what;
    };
    const Case cases[] = {
        {MIDDLE, MIDDLE, {0.0f, 0.0f, -1.0f}, "the middle shows what is behind the camera, -z"},
        {MIDDLE - 6, MIDDLE, {-1.0f, 0.0f, 0.0f}, "left is -x"},
        {MIDDLE + 5, MIDDLE, {1.0f, 0.0f, 0.0f}, "right is +x"},
        {MIDDLE, MIDDLE - 6, {0.0f, 1.0f, 0.0f}, "above is +y"},
        {MIDDLE, MIDDLE + 5, {0.0f, -1.0f, 0.0f}, "below is -y"},
        {1, 1, {0.0f, 0.0f, 1.0f}, "behind the sphere is +z"}};
    for (const Case& current : cases)
        EXPECT_LT(Vector::distanceVec3(pixel(image, current.x, current.y), colorOf(current.direction)), 0.1f)
            << current.what << ": " << pixel(image, current.x, current.y).toString();
}

TEST_P(ScenePictureTest, whatIsNoNumberIsBlackAndCounted) {
    const auto picture = makePicture();
    const auto material = makeDiffuse(*picture, {std::numeric_limits<float>::quiet_NaN(), 0.5f, 0.5f});
    picture->getSolid().addEntity(_ground.get(), material->getShader(), nullptr);
    ovMemory::String warning;
    ovMemory::String error;
    const auto drawn = picture->draw(warning, error);
    ASSERT_TRUE(drawn) << error;
    EXPECT_EQ(drawn->convertToImage()->getComponent(MIDDLE, MIDDLE, 0), 0.0f);
    EXPECT_EQ(warning, "256 components of the picture are not numbers and were made black.");
}

TEST_P(ScenePictureTest, aSizeBeyondTheDeviceIsRefused) {
    _settings.width = _session.getGraphics().getDeviceInfo()->maxTextureSize;
    _settings.samples = 4;
    ovMemory::String error;
    EXPECT_EQ(ScenePicture::create(_session, _settings, error), nullptr);
    EXPECT_NE(error.find("ask for a smaller size or fewer samples."), ovMemory::String::npos) << error;
}
