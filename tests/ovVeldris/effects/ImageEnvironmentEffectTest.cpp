#include <cmath>
#include <ovGraphics/Managers.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/effects/ImageEnvironmentEffect.h>
#include <ovVeldris/environment/EnvironmentFixture.h>
#include <support/Numbers.h>

// Its names stay its own where the folder is compiled as one.
namespace imageEnvironmentEffectTest {

using namespace ovVeldris;
using namespace environmentReference;
using ovMaths::Vector;
using PROJECTION = IMAGE_ENVIRONMENT_PROJECTION;

namespace {

constexpr ovMemory::StringView SAMPLER_NAME = "VELDRIS_IMAGE_ENVIRONMENT_SAMPLER";

FloatPixel waves(const Direction& d) {
    return {float(1.0 + std::sin(5.0 * d[0] + 1.0)), float(2.0 + std::cos(4.0 * d[1]) * d[2]),
            float(1.5 + std::sin(3.0 * d[2]) * d[0]), float(d[1])};
}

class ImageEnvironmentEffectTest : public EnvironmentFixture {
protected:
    ovGraphics::Sampler* defaultSampler() { return getGraphics().getSamplerManager()->get(SAMPLER_NAME); }

    ovMemory::UniquePtr<ImageEnvironmentEffect> makeEffect(ovGraphics::Texture* source, PROJECTION projection,
                                                           ovGraphics::Camera* camera) {
        auto effect = ImageEnvironmentEffect::create(getSystem());
        effect->setSourceTexture(source);
        effect->setSourceProjection(projection);
        effect->setSourceCamera(camera);
        EXPECT_TRUE(effect->load()) << getLog().getText() << getGraphicsLogger().getText();
        return effect;
    }

    /// A wide view down and to the side, with a rolled horizon.
    ovMemory::UniquePtr<ovGraphics::Camera> makeCamera(float aspect) {
        auto camera = ovGraphics::Camera::create(&getGraphics());
        camera->setPosition({100.0f, 200.0f, 300.0f}); // the surroundings are infinitely far away
        camera->lookAt({0.4f, -0.3f, 0.8f}, {0.2f, 1.0f, 0.1f});
        camera->setPerspective(1.9f, aspect, 0.1f, 10.0f);
        return camera;
    }

    /// What a camera sees of an environment's first mip.
    static FloatPicture look(const ovGraphics::Camera& camera, const Environment& environment,
                             unsigned int width, unsigned int height) {
        FloatPicture picture(width, height);
        for (unsigned int y = 0; y < height; ++y)
            for (unsigned int x = 0; x < width; ++x) {
                const Vector seen = camera.getDirectionAtPixelWorld((float(x) + 0.5f) / float(width),
                                                                    (float(y) + 0.5f) / float(height));
                const Color color =
                    environment.sample(normalized({double(seen.x), double(seen.y), double(seen.z)}), 0.0);
                for (std::size_t i = 0; i < 4; ++i)
                    picture.at(x, y)[i] = float(color[i]);
            }
        return picture;
    }
};

ovMemory::String programName(const ImageEnvironmentEffect& effect) {
    return ovMemory::String(effect.getShader()->getProgram()->getName());
}

/// The driver's atan is off by up to 2e-5 of a radian, which the texels of the maps here, of 0.1 of a radian
/// and steps of up to 0.5 between them, turn into 1e-4.
constexpr PictureLimits LIMITS = {.worst = 2e-4f, .mean = 1e-5f};

} // namespace

INSTANTIATE_TEST_SUITE_P(, ImageEnvironmentEffectTest, bothLanguages(), languageName);

TEST_P(ImageEnvironmentEffectTest, isNewWithoutSource) {
    const auto effect = ImageEnvironmentEffect::create(getSystem());
    EXPECT_EQ(effect->getType(), EFFECT_TYPE::IMAGE_ENVIRONMENT);
    EXPECT_EQ(effect->getSourceTexture(), nullptr);
    EXPECT_EQ(effect->getSourceSampler(), nullptr);
    EXPECT_EQ(effect->getSourceCamera(), nullptr);
    EXPECT_EQ(effect->getSourceProjection(), PROJECTION::AUTO);
    EXPECT_EQ(effect->getShader(), nullptr);
}

TEST_P(ImageEnvironmentEffectTest, selectsProgramAndDefine) {
    const auto flat = makeTexture(FloatPicture(2, 1));
    const auto cube = makeEnvironment(makeCube(1, waves));
    struct Case {
        PROJECTION projection;
        ovGraphics::Texture* texture;
        PROJECTION required;
        unsigned int id;
        const char* define;
    };
    const Case cases[] = {
        {PROJECTION::FLAT, nullptr, PROJECTION::FLAT, 4, "FLAT"},
        {PROJECTION::FLAT, flat.get(), PROJECTION::FLAT, 4, "FLAT"},
        {PROJECTION::FLAT, cube.get(), PROJECTION::FLAT, 4, "FLAT"},
        {PROJECTION::CUBE, nullptr, PROJECTION::CUBE, 1, "CUBE"},
        {PROJECTION::CUBE, flat.get(), PROJECTION::CUBE, 1, "CUBE"},
        {PROJECTION::EQUIRECTANGULAR, nullptr, PROJECTION::EQUIRECTANGULAR, 2, "EQUIRECTANGULAR"},
        {PROJECTION::EQUIRECTANGULAR, cube.get(), PROJECTION::EQUIRECTANGULAR, 2, "EQUIRECTANGULAR"},
        {PROJECTION::AUTO, nullptr, PROJECTION::CUBE, 1, "CUBE"},
        {PROJECTION::AUTO, cube.get(), PROJECTION::CUBE, 1, "CUBE"},
        {PROJECTION::AUTO, flat.get(), PROJECTION::EQUIRECTANGULAR, 2, "EQUIRECTANGULAR"},
    };
    for (const Case& row : cases) {
        const ImageEnvironmentEffectInfo info{.sourceTexture = row.texture,
                                              .sourceSampler = {},
                                              .sourceCamera = {},
                                              .sourceProjection = row.projection};
        EXPECT_EQ(ImageEnvironmentEffect::getRequiredProjection(info), row.required);
        EXPECT_EQ(ImageEnvironmentIdGenerator()(info), row.id);
        const auto effect = makeEffect(row.texture, row.projection, nullptr);
        EXPECT_EQ(programName(*effect), "ORVANE_IMAGE_ENVIRONMENT_PROGRAM_" + std::to_string(row.id));
        EXPECT_EQ(effect->getSourceProjection(), row.projection);
        const ovGraphics::Program& program = *effect->getShader()->getProgram();
        const ovMemory::Buffer<ovGraphics::shading::Define> defines = {{row.define, ""}};
        EXPECT_EQ(program.getSources().getVertex().defines, defines);
        EXPECT_EQ(program.getSources().getPixel().defines, defines);
        EXPECT_TRUE(program.getActivateCrossCompilerDefines());
        const ovGraphics::ConstantBuffer* constants = effect->getShader()->getConstantBuffer(0, 0);
        if (row.required == PROJECTION::FLAT) {
            EXPECT_EQ(constants, nullptr);
        } else {
            ASSERT_NE(constants, nullptr);
            ASSERT_EQ(constants->getPassMemorySlotCount(), 1u);
            EXPECT_EQ(constants->getPassMemorySlot(0)->getRegisterCount(), 4u);
        }
    }
}

TEST_P(ImageEnvironmentEffectTest, setsItsSampler) {
    const auto effect = makeEffect(nullptr, PROJECTION::FLAT, nullptr);
    expectDefaultSampler(*effect, defaultSampler(), 21);
}

TEST_P(ImageEnvironmentEffectTest, bindsAtOnceWhenLoaded) {
    ImageEnvironmentEffect effect(getSystem());
    expectSourcesAreBoundAtOnce(effect, [this] { return defaultSampler(); });
}

TEST_P(ImageEnvironmentEffectTest, leavesTheShaderOfAFlatImageAloneWhenTheCameraChanges) {
    const auto effect = makeEffect(nullptr, PROJECTION::FLAT, nullptr);
    const auto camera = makeCamera(1.0f);
    effect->setSourceCamera(camera.get());
    EXPECT_EQ(effect->getSourceCamera(), camera.get());
    EXPECT_EQ(effect->getShader()->getConstantBuffer(0, 0), nullptr);
    // What was loaded decides, not what is set now.
    effect->setSourceProjection(PROJECTION::CUBE);
    effect->setSourceCamera(nullptr);
    EXPECT_EQ(effect->getShader()->getConstantBuffer(0, 0), nullptr);
}

TEST_P(ImageEnvironmentEffectTest, stretchesAFlatImage) {
    FloatPicture picture(4, 3);
    for (unsigned int y = 0; y < 3; ++y)
        for (unsigned int x = 0; x < 4; ++x)
            picture.at(x, y) = {float(x), -float(y), 110000.0f * float(x), 0.1f * float(y)};
    const auto texture = makeTexture(picture);
    const auto effect = makeEffect(texture.get(), PROJECTION::FLAT, nullptr);
    EXPECT_TRUE(picturesMatch("image_environment_flat", draw(*effect->getShader(), 4, 3), picture,
                              {.worst = 1e-6f, .mean = 1e-7f}));
    // Between the texels, and clamped beyond the outer ones.
    FloatPicture wide(8, 3);
    for (unsigned int y = 0; y < 3; ++y)
        for (unsigned int x = 0; x < 8; ++x) {
            const float place = std::clamp((float(x) + 0.5f) * 0.5f - 0.5f, 0.0f, 3.0f);
            wide.at(x, y) = {place, -float(y), 110000.0f * place, 0.1f * float(y)};
        }
    EXPECT_TRUE(picturesMatch("image_environment_flat_wide", draw(*effect->getShader(), 8, 3), wide,
                              {.worst = 1e-6f, .mean = 1e-7f}));
}

TEST_P(ImageEnvironmentEffectTest, showsSurroundingsAsTheCameraSeesThem) {
    struct Case {
        const char* name;
        Environment environment;
        PROJECTION projection;
    };
    const Case cases[] = {
        {"cube", makeCube(16, waves), PROJECTION::CUBE},
        {"cube_auto", makeCube(5, waves), PROJECTION::AUTO},
        {"map", makeMap(64, 32, waves), PROJECTION::EQUIRECTANGULAR},
        {"map_auto", makeMap(64, 64, waves), PROJECTION::AUTO},
    };
    const auto camera = makeCamera(1.5f);
    for (const Case& row : cases) {
        const auto texture = makeEnvironment(row.environment);
        const auto effect = makeEffect(texture.get(), row.projection, camera.get());
        EXPECT_TRUE(picturesMatch(ovMemory::String("image_environment_") + row.name,
                                  draw(*effect->getShader(), 24, 16), look(*camera, row.environment, 24, 16),
                                  LIMITS))
            << row.name;
    }
}

TEST_P(ImageEnvironmentEffectTest, followsItsCamera) {
    const Environment cube = makeCube(16, waves);
    const auto texture = makeEnvironment(cube);
    const auto camera = makeCamera(1.0f);
    const auto effect = makeEffect(texture.get(), PROJECTION::AUTO, camera.get());
    camera->lookAt({0.0f, 1.0f, 0.1f}, {});
    EXPECT_TRUE(picturesMatch("image_environment_turned", draw(*effect->getShader(), 8, 8),
                              look(*camera, cube, 8, 8), LIMITS));
    const auto other = makeCamera(2.0f);
    effect->setSourceCamera(other.get());
    EXPECT_TRUE(picturesMatch("image_environment_other_camera", draw(*effect->getShader(), 8, 8),
                              look(*other, cube, 8, 8), LIMITS));
    // Without one of its own it takes the camera that renders.
    effect->setSourceCamera(nullptr);
    getGraphics().getCameraManager()->setActiveRenderCamera(camera.get());
    EXPECT_TRUE(picturesMatch("image_environment_active_camera", draw(*effect->getShader(), 8, 8),
                              look(*camera, cube, 8, 8), LIMITS));
    getGraphics().getCameraManager()->setActiveRenderCamera(nullptr);
}

TEST_P(ImageEnvironmentEffectTest, readsMipZeroOnly) {
    Environment map = makeMap(64, 32, waves);
    for (std::size_t mip = 1; mip < map.mips.size(); ++mip)
        for (FloatPixel& pixel : map.mips[mip][0].pixels)
            pixel = {1000.0f, 1000.0f, 1000.0f, 1000.0f};
    const auto texture = makeEnvironment(map);
    const auto camera = makeCamera(1.0f);
    const auto effect = makeEffect(texture.get(), PROJECTION::AUTO, camera.get());
    for (const FloatPixel& pixel : draw(*effect->getShader(), 4, 4).pixels)
        EXPECT_LT(pixel[0], 10.0f);
}

TEST_P(ImageEnvironmentEffectTest, keepsColorAndAlphaOfEveryKind) {
    const auto camera = makeCamera(1.0f);
    for (const FloatPixel& color :
         {FloatPixel{-3.0f, 110000.0f, 1e-20f, -2.0f}, FloatPixel{INFINITE, -INFINITE, NOT_A_NUMBER, 1.0f}}) {
        const auto fill = [&](const Direction&) { return color; };
        for (const Environment& environment : {makeCube(1, fill), makeMap(1, 1, fill)}) {
            const auto texture = makeEnvironment(environment);
            const auto effect = makeEffect(texture.get(), PROJECTION::AUTO, camera.get());
            for (const FloatPixel& pixel : draw(*effect->getShader(), 2, 2).pixels)
                for (std::size_t i = 0; i < 4; ++i) {
                    if (std::isfinite(color[i])) {
                        EXPECT_NEAR(pixel[i], color[i], 1e-6f * std::abs(color[i]));
                    } else { // between two infinities a device may find NaN
                        EXPECT_FALSE(std::isfinite(pixel[i]));
                    }
                }
        }
    }
}

TEST_P(ImageEnvironmentEffectTest, drawsBlackWithoutATexture) {
    const auto camera = makeCamera(1.0f);
    const FloatPicture black(3, 3, {0.0f, 0.0f, 0.0f, 1.0f});
    for (const PROJECTION projection :
         {PROJECTION::AUTO, PROJECTION::FLAT, PROJECTION::CUBE, PROJECTION::EQUIRECTANGULAR}) {
        const auto effect = makeEffect(nullptr, projection, camera.get());
        EXPECT_TRUE(picturesAreIdentical("image_environment_black", draw(*effect->getShader(), 3, 3), black));
    }
    // A flat picture is no cube.
    const auto flat = makeTexture(FloatPicture(2, 1, {1.0f, 1.0f, 1.0f, 1.0f}));
    const auto effect = makeEffect(flat.get(), PROJECTION::CUBE, camera.get());
    EXPECT_TRUE(picturesAreIdentical("image_environment_no_cube", draw(*effect->getShader(), 3, 3), black));
}

TEST_P(ImageEnvironmentEffectTest, takesTheProjectionAtTheNextLoad) {
    const Environment map = makeMap(64, 32, waves);
    const auto texture = makeEnvironment(map);
    const auto camera = makeCamera(1.0f);
    const auto effect = makeEffect(texture.get(), PROJECTION::FLAT, camera.get());
    effect->setSourceProjection(PROJECTION::EQUIRECTANGULAR);
    EXPECT_EQ(programName(*effect), "ORVANE_IMAGE_ENVIRONMENT_PROGRAM_4");
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(programName(*effect), "ORVANE_IMAGE_ENVIRONMENT_PROGRAM_2");
    EXPECT_TRUE(picturesMatch("image_environment_reloaded", draw(*effect->getShader(), 8, 8),
                              look(*camera, map, 8, 8), LIMITS));
}

TEST_P(ImageEnvironmentEffectTest, releasesTheProgramThatItAcquired) {
    // AUTO chose by a texture that is gone when the effect is unloaded.
    auto texture = makeTexture(FloatPicture(2, 1));
    const auto first = makeEffect(texture.get(), PROJECTION::AUTO, nullptr);
    const auto second = makeEffect(nullptr, PROJECTION::CUBE, nullptr);
    const ovMemory::Borrowed<ovGraphics::Program> map = first->getShader()->getProgram();
    const ovMemory::Borrowed<ovGraphics::Program> cube = second->getShader()->getProgram();
    texture.reset();
    first->unload();
    EXPECT_EQ(map.get(), nullptr);
    ASSERT_NE(cube.get(), nullptr);
    EXPECT_FALSE(cube->isUnloaded());
}

TEST_P(ImageEnvironmentEffectTest, callsItselfATextureCopyInItsMessages) {
    System system;
    ASSERT_TRUE(initializeOwn(system));
    ImageEnvironmentEffect effect(&system);
    effect.setName("sky");
    ASSERT_TRUE(effect.load());
    system.shutdown();
    getLog().messages.clear();
    EXPECT_FALSE(effect.load()); // the log manager is gone as well

    System never;
    never.getLogManager()->setReceiver(&getLog());
    ImageEnvironmentEffect other(&never);
    other.setName("sky");
    EXPECT_FALSE(other.load());
    const ovMemory::Buffer<RecordingLogger::Message> expected = {
        loadFailure("texture copy", "ImageEnvironmentEffect", "program", "sky")};
    EXPECT_EQ(getLog().messages, expected);
}

TEST_P(ImageEnvironmentEffectTest, drawsTheSameBitsInBothLanguages) {
    const auto drawAll = [&] {
        ovMemory::Buffer<FloatPicture> pictures;
        const auto camera = makeCamera(1.5f);
        for (const Environment& environment : {makeCube(8, waves), makeMap(32, 16, waves)}) {
            const auto texture = makeEnvironment(environment);
            pictures.push_back(
                draw(*makeEffect(texture.get(), PROJECTION::AUTO, camera.get())->getShader(), 24, 16));
            pictures.push_back(
                draw(*makeEffect(texture.get(), PROJECTION::FLAT, camera.get())->getShader(), 24, 16));
        }
        return pictures;
    };
    const ovMemory::Buffer<FloatPicture> pictures = drawAll();
    useLanguage(getOtherLanguage());
    const ovMemory::Buffer<FloatPicture> others = drawAll();
    for (std::size_t i = 0; i < pictures.size(); ++i)
        EXPECT_TRUE(picturesAreIdentical("image_environment_languages", others[i], pictures[i])) << i;
}

} // namespace imageEnvironmentEffectTest
