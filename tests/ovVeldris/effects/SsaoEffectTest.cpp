#include <ovVeldris/effects/SsaoEffect.h>

#include <limits>
#include <ovGraphics/Managers.h>
#include <ovGraphics/resources/BlendState.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Program.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/effects/SsaoReference.h>

using namespace ovVeldris;
using namespace ssaoReference;

namespace {

constexpr unsigned int WIDTH = 48;
constexpr unsigned int HEIGHT = 32;
const FloatPixel UNTOUCHED = {-1.0f, -2.0f, -3.0f, -4.0f};

/// Uneven ground: no two neighbours agree, which every sample of the kernel notices.
double roughZ(unsigned int x, unsigned int y) {
    return 4.0 + 0.12 * std::sin(1.7 * x + 0.3) * std::cos(1.3 * y) + 0.05 * std::sin(0.9 * x * y);
}

Point roughNormal(unsigned int x, unsigned int y) {
    return normalized({std::sin(0.7 * x + y), std::cos(1.1 * y - 0.2 * x), -1.2});
}

FloatPixel pixelOf(const Point& p) {
    return {float(p[0]), float(p[1]), float(p[2]), 1.0f};
}
Point pointOf(const FloatPixel& pixel) {
    return {pixel[0], pixel[1], pixel[2]};
}

class SsaoEffectTest : public EffectFixture {
protected:
    void SetUp() override {
        EffectFixture::SetUp();
        _camera = ovGraphics::Camera::create(&getGraphics());
        _camera->setPosition({10.0f, -20.0f, 30.0f}); // views do not depend on it
        _camera->lookAt({0.3f, -0.5f, 0.7f}, {0.1f, 1.0f, 0.2f});
        _camera->setPerspective(1.1f, float(WIDTH) / float(HEIGHT), 0.5f, 50.0f);
        getGraphics().getCameraManager()->setActiveRenderCamera(_camera.get());
    }
    void TearDown() override {
        getGraphics().getCameraManager()->setActiveRenderCamera(nullptr);
        _camera.reset();
        EffectFixture::TearDown();
    }

    ovGraphics::Camera& getCamera() { return *_camera; }
    View getView() { return {_camera.get(), WIDTH, HEIGHT}; }

    static void apply(const Settings& settings, SsaoEffect& effect) {
        effect.setSamplingRadius(float(settings.radius));
        effect.setMaxOcclusionDistance(float(settings.maxDistance));
        effect.setStrength(float(settings.strength));
        effect.setDepthBias(float(settings.bias));
        effect.setKernelSampleCount(settings.samples);
    }

    ovMemory::UniquePtr<SsaoEffect> makeEffect(const Settings& settings = {}) {
        auto effect = SsaoEffect::create(getSystem());
        effect->setCamera(_camera.get());
        apply(settings, *effect);
        return effect;
    }

    FloatPicture drawLoaded(SsaoEffect& effect) {
        EXPECT_TRUE(effect.load()) << getLog().getText() << getGraphicsLogger().getText();
        return draw(*effect.getShader(), WIDTH, HEIGHT);
    }

    /// Compares all pixels but those that a rounding decides, of which there must be few.
    static void expectOpenFractions(
        const FloatPicture& drawn,
        const std::function<std::optional<double>(unsigned int, unsigned int, bool& isSure)>& expected) {
        unsigned int unsure = 0;
        unsigned int wrong = 0;
        for (unsigned int y = 0; y < HEIGHT; ++y)
            for (unsigned int x = 0; x < WIDTH; ++x) {
                bool isSure = true;
                const std::optional<double> open = expected(x, y, isSure);
                if (!isSure) {
                    ++unsure;
                    continue;
                }
                const FloatPixel& pixel = drawn.at(x, y);
                // Of sixteen sixteenths a rounding is left, and a power makes it larger.
                const double tolerance = open == 0.0 ? 2e-4 : 2e-6;
                const bool isRight = open ? std::abs(pixel[0] - *open) < tolerance && pixel[1] == pixel[0] &&
                                                pixel[2] == pixel[0] && pixel[3] == 1.0f
                                          : pixel == UNTOUCHED;
                if (!isRight && ++wrong <= 3)
                    ADD_FAILURE() << x << ", " << y << " is " << pixel[0] << " " << pixel[3] << " and not "
                                  << open.value_or(-1.0);
            }
        EXPECT_EQ(wrong, 0u);
        EXPECT_LT(unsure, WIDTH * HEIGHT / 5);
    }

    /// View-space positions over the screen, from view z.
    FloatPicture makePositions(const std::function<double(unsigned int, unsigned int)>& z) {
        FloatPicture picture(WIDTH, HEIGHT);
        for (unsigned int y = 0; y < HEIGHT; ++y)
            for (unsigned int x = 0; x < WIDTH; ++x)
                picture.at(x, y) = pixelOf(scaled(getView().directionOf(x, y), z(x, y)));
        return picture;
    }

    /// What a perspective camera's depth buffer holds at a view z.
    double toDepth(double z) {
        const ovMaths::Vector parameters = _camera->getProjectionParameters();
        return parameters.x + parameters.y * _camera->getFar() / z;
    }

    ovMemory::UniquePtr<ovGraphics::Camera> _camera;
};

FloatPicture makeNormals() {
    FloatPicture picture(WIDTH, HEIGHT);
    for (unsigned int y = 0; y < HEIGHT; ++y)
        for (unsigned int x = 0; x < WIDTH; ++x)
            picture.at(x, y) = pixelOf(scaled(roughNormal(x, y), 1.0 + 0.1 * x)); // of any length
    return picture;
}

ovMemory::String programName(const SsaoEffect& effect) {
    return ovMemory::String(effect.getShader()->getProgram()->getName());
}

double identity(double z) {
    return z;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, SsaoEffectTest, bothLanguages(), languageName);

TEST_P(SsaoEffectTest, isNewWithDefaults) {
    const auto effect = SsaoEffect::create(getSystem());
    EXPECT_EQ(effect->getType(), EFFECT_TYPE::SSAO);
    EXPECT_EQ(effect->getPositionBuffer(), nullptr);
    EXPECT_EQ(effect->getNormalBuffer(), nullptr);
    EXPECT_EQ(effect->getDepthBuffer(), nullptr);
    EXPECT_EQ(effect->getCamera(), nullptr);
    EXPECT_EQ(effect->getSamplingRadius(), 0.05f);
    EXPECT_EQ(effect->getMaxOcclusionDistance(), 1.0f);
    EXPECT_EQ(effect->getStrength(), 0.8f);
    EXPECT_EQ(effect->getDepthBias(), 0.00001f);
    EXPECT_EQ(effect->getKernelSampleCount(), 16u);
    EXPECT_FALSE(effect->getOcclusionDrivesAlpha());
    EXPECT_FALSE(effect->getLinearDepth());
    EXPECT_EQ(effect->getShader(), nullptr);
}

TEST_P(SsaoEffectTest, keepsNumbersInTheirRanges) {
    SsaoEffect effect(getSystem());
    effect.setKernelSampleCount(0);
    EXPECT_EQ(effect.getKernelSampleCount(), 1u);
    effect.setKernelSampleCount(17);
    EXPECT_EQ(effect.getKernelSampleCount(), 16u);
    effect.setKernelSampleCount(7);
    EXPECT_EQ(effect.getKernelSampleCount(), 7u);
    effect.setStrength(-0.5f);
    EXPECT_EQ(effect.getStrength(), 0.0f);
    effect.setStrength(2.0f);
    EXPECT_EQ(effect.getStrength(), 1.0f);
    effect.setSamplingRadius(-3.0f);
    effect.setMaxOcclusionDistance(-4.0f);
    effect.setDepthBias(-5.0f);
    EXPECT_EQ(effect.getSamplingRadius(), -3.0f);
    EXPECT_EQ(effect.getMaxOcclusionDistance(), -4.0f);
    EXPECT_EQ(effect.getDepthBias(), -5.0f);
}

TEST_P(SsaoEffectTest, readsEitherDepthOrPositions) {
    const auto a = makeTexture(FloatPicture(1, 1));
    const auto b = makeTexture(FloatPicture(1, 1));
    SsaoEffect effect(getSystem());
    effect.setEffectFromDepthInfo(a.get(), true);
    EXPECT_EQ(effect.getDepthBuffer(), a.get());
    EXPECT_TRUE(effect.getLinearDepth());
    effect.setEffectFromGBufferInfo(a.get(), b.get());
    EXPECT_EQ(effect.getDepthBuffer(), nullptr);
    EXPECT_EQ(effect.getPositionBuffer(), a.get());
    EXPECT_EQ(effect.getNormalBuffer(), b.get());
    EXPECT_TRUE(effect.getLinearDepth());
    effect.setEffectFromDepthInfo(b.get(), false);
    EXPECT_EQ(effect.getPositionBuffer(), nullptr);
    EXPECT_EQ(effect.getNormalBuffer(), nullptr);
    EXPECT_EQ(effect.getDepthBuffer(), b.get());
    EXPECT_FALSE(effect.getLinearDepth());
}

TEST_P(SsaoEffectTest, identifiesItsProgram) {
    SsaoEffectInfo info;
    EXPECT_EQ(SsaoIdGenerator()(info), 0x3727c5ac10000000u); // 0.00001 as a float, 16 samples
    info.readsPositions = true;
    EXPECT_EQ(SsaoIdGenerator()(info), 0x3727c5ac10010000u);
    info.readsNormals = true; // in no bit
    EXPECT_EQ(SsaoIdGenerator()(info), 0x3727c5ac10010000u);
    info.occlusionDrivesAlpha = true;
    info.linearDepth = true;
    info.kernelSampleCount = 5;
    info.depthBias = -2.0f;
    EXPECT_EQ(SsaoIdGenerator()(info), 0xc00000000501c000u);
}

TEST_P(SsaoEffectTest, definesWhatItsSettingsSelect) {
    using Defines = ovMemory::Buffer<ovGraphics::shading::Define>;
    const auto a = makeTexture(FloatPicture(1, 1));
    struct Case {
        std::function<void(SsaoEffect&)> prepare;
        uint64_t id;
        Defines vertex;
        Defines pixel;
    };
    const Case cases[] = {
        {[](SsaoEffect&) {},
         0x3727c5ac10000000u,
         {{"DEPTH_BUFFER", ""}},
         {{"DEPTH_BIAS", "0.000010"}, {"MAX_KERNEL_SAMPLES", "16"}, {"DEPTH_BUFFER", ""}}},
        {[&](SsaoEffect& effect) {
             effect.setEffectFromDepthInfo(a.get(), true);
             effect.setOcclusionDrivesAlpha(true);
             effect.setKernelSampleCount(3);
             effect.setDepthBias(1.5f);
         },
         0x3fc000000300c000u,
         {{"DEPTH_BUFFER", ""}},
         {{"DEPTH_BIAS", "1.500000"},
          {"MAX_KERNEL_SAMPLES", "3"},
          {"DEPTH_BUFFER", ""},
          {"LINEAR_DEPTH", ""},
          {"OCCLUSION_DRIVES_ALPHA", ""}}},
        {[&](SsaoEffect& effect) {
             effect.setEffectFromGBufferInfo(a.get(), nullptr);
             effect.setDepthBias(1e-8f);
         },
         0x322bcc7710010000u,
         {},
         {{"DEPTH_BIAS", "0.000000"}, {"MAX_KERNEL_SAMPLES", "16"}, {"GBUFFER_POSITION", ""}}},
        {[&](SsaoEffect& effect) { effect.setEffectFromGBufferInfo(a.get(), a.get()); },
         0x3727c5ac10010000u,
         {},
         {{"DEPTH_BIAS", "0.000010"},
          {"MAX_KERNEL_SAMPLES", "16"},
          {"GBUFFER_POSITION", ""},
          {"GBUFFER_NORMAL", ""}}},
    };
    for (const Case& row : cases) {
        const auto effect = SsaoEffect::create(getSystem());
        row.prepare(*effect);
        ASSERT_TRUE(effect->load()) << getGraphicsLogger().getText();
        EXPECT_EQ(programName(*effect), "ORVANE_SSAO_PROGRAM_" + std::to_string(row.id));
        const ovGraphics::Program& program = *effect->getShader()->getProgram();
        EXPECT_EQ(program.getSources().getVertex().defines, row.vertex);
        EXPECT_EQ(program.getSources().getPixel().defines, row.pixel);
        EXPECT_TRUE(program.getActivateCrossCompilerDefines());
    }
}

TEST_P(SsaoEffectTest, sharesAProgramWhateverTheNormals) {
    const auto a = makeTexture(FloatPicture(1, 1));
    SsaoEffect first(getSystem());
    SsaoEffect second(getSystem());
    first.setEffectFromGBufferInfo(a.get(), nullptr);
    second.setEffectFromGBufferInfo(a.get(), a.get());
    ASSERT_TRUE(first.load());
    ASSERT_TRUE(second.load());
    EXPECT_EQ(first.getShader()->getProgram(), second.getShader()->getProgram());
    EXPECT_EQ(second.getShader()->getProgram()->getSources().getPixel().defines.size(), 3u);
}

TEST_P(SsaoEffectTest, releasesTheProgramThatItAcquired) {
    auto positions = makeTexture(FloatPicture(1, 1));
    const auto effect = makeEffect();
    effect->setEffectFromGBufferInfo(positions.get(), nullptr);
    ASSERT_TRUE(effect->load());
    const ovMemory::Borrowed<ovGraphics::Program> program = effect->getShader()->getProgram();
    effect->setDepthBias(3.0f);
    positions.reset(); // the loaded effect still reads positions
    effect->unload();
    EXPECT_EQ(program.get(), nullptr);
}

TEST_P(SsaoEffectTest, setsItsSampler) {
    const auto effect = makeEffect();
    ASSERT_TRUE(effect->load());
    ovGraphics::Sampler* sampler = getGraphics().getSamplerManager()->get("VELDRIS_SSAO_SAMPLER");
    ASSERT_NE(sampler, nullptr);
    EXPECT_EQ(effect->getShader()->getSampler(0, 0), sampler);
    sampler->setFilter(ovGraphics::FILTER::ANISOTROPIC); // put right by the next load
    sampler->setBorderColor(1.0f, 1.0f, 1.0f, 1.0f);
    ASSERT_TRUE(effect->load());
    const ovGraphics::device::SamplerDesc& desc = sampler->getDesc();
    EXPECT_EQ(int(desc.filter), 0);
    EXPECT_EQ(int(desc.addressU), 4);
    EXPECT_EQ(int(desc.addressV), 4);
    EXPECT_EQ(desc.borderColor, (std::array{0.0f, 0.0f, 0.0f, 0.0f}));
    EXPECT_EQ(desc.minLod, 0.0f);
    EXPECT_EQ(desc.maxLod, 0.0f);
    EXPECT_FALSE(sampler->getHidden());
    EXPECT_FALSE(sampler->isUnloaded());
}

TEST_P(SsaoEffectTest, bindsTexturesOfTheLoadedKindAtOnce) {
    const auto a = makeTexture(FloatPicture(1, 1));
    const auto b = makeTexture(FloatPicture(1, 1));
    const auto c = makeTexture(FloatPicture(1, 1));
    const auto effect = makeEffect();
    const auto bound = [&](unsigned int unit) { return effect->getShader()->getTexture(unit, 0); };

    effect->setEffectFromGBufferInfo(a.get(), b.get());
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(bound(0), a.get());
    EXPECT_EQ(bound(1), b.get());
    effect->setEffectFromDepthInfo(c.get(), false);
    EXPECT_EQ(bound(0), a.get());
    EXPECT_EQ(bound(1), b.get());
    effect->setEffectFromGBufferInfo(c.get(), a.get());
    EXPECT_EQ(bound(0), c.get());
    EXPECT_EQ(bound(1), a.get());

    effect->setDepthBias(0.25f); // another program, for positions alone
    effect->setEffectFromGBufferInfo(a.get(), nullptr);
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(bound(1), nullptr);
    effect->setEffectFromGBufferInfo(b.get(), c.get());
    EXPECT_EQ(bound(0), b.get());
    EXPECT_EQ(bound(1), nullptr);

    effect->setEffectFromDepthInfo(a.get(), false);
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(bound(0), a.get());
    effect->setEffectFromGBufferInfo(b.get(), b.get());
    EXPECT_EQ(bound(0), a.get());
    effect->setEffectFromDepthInfo(c.get(), true);
    EXPECT_EQ(bound(0), c.get());
    effect->unload();
    effect->setEffectFromDepthInfo(a.get(), true);
    EXPECT_EQ(bound(0), nullptr);
}

TEST_P(SsaoEffectTest, hasTheConstantsOfItsKind) {
    const auto a = makeTexture(FloatPicture(1, 1));
    const auto effect = makeEffect();
    ASSERT_TRUE(effect->load());
    const auto registers = [&](unsigned int buffer) {
        ovMemory::Buffer<unsigned int> counts;
        if (const ovGraphics::ConstantBuffer* constants = effect->getShader()->getConstantBuffer(buffer, 0))
            for (unsigned int i = 0; i < constants->getPassMemorySlotCount(); ++i)
                counts.push_back(constants->getPassMemorySlot(i)->getRegisterCount());
        return counts;
    };
    EXPECT_EQ(registers(0), (ovMemory::Buffer<unsigned int>{1, 4, 1}));
    EXPECT_EQ(registers(1), (ovMemory::Buffer<unsigned int>{4}));
    effect->setEffectFromGBufferInfo(a.get(), nullptr);
    ASSERT_TRUE(effect->load());
    effect->setCamera(nullptr);
    EXPECT_EQ(registers(0), (ovMemory::Buffer<unsigned int>{1, 4}));
    EXPECT_EQ(registers(1), (ovMemory::Buffer<unsigned int>{}));
}

TEST_P(SsaoEffectTest, followsItsFormulaWithPositionsAndNormals) {
    const FloatPicture positions = makePositions(roughZ);
    const FloatPicture normals = makeNormals();
    const auto positionTexture = makeTexture(positions);
    const auto normalTexture = makeTexture(normals);
    const Depth depth = texelDepth(positions, 2, identity);
    for (const Settings& settings :
         {Settings{},
          Settings{.radius = 0.4, .maxDistance = 0.21, .strength = 1.0, .bias = 0.03, .samples = 16},
          Settings{.radius = 1.3, .maxDistance = 2.0, .strength = 0.35, .bias = 0.0, .samples = 7},
          Settings{
              .radius = 2.5, .maxDistance = 10.0, .samples = 16}, // samples beyond the screen count nowhere
          Settings{.radius = 0.6, .strength = 0.0, .samples = 5}, Settings{.radius = 0.2, .samples = 1}}) {
        const auto effect = makeEffect(settings);
        effect->setEffectFromGBufferInfo(positionTexture.get(), normalTexture.get());
        expectOpenFractions(drawLoaded(*effect), [&](unsigned int x, unsigned int y, bool& isSure) {
            return openFraction(pointOf(positions.at(x, y)), normalized(pointOf(normals.at(x, y))), getView(),
                                depth, settings, isSure);
        });
    }
}

TEST_P(SsaoEffectTest, findsNormalsBetweenNeighbors) {
    // A step in the middle, nothing in a corner, and uneven ground.
    const auto z = [](unsigned int x, unsigned int y) {
        if (x > 40 && y < 7)
            return 0.0;
        return x < 21 ? roughZ(x, y) : 2.5 + 0.002 * y * y + 0.01 * x;
    };
    const FloatPicture positions = makePositions(z);
    const auto texture = makeTexture(positions);
    const Settings settings = {.radius = 0.3, .maxDistance = 0.8};
    const auto effect = makeEffect(settings);
    effect->setEffectFromGBufferInfo(texture.get(), nullptr);
    const auto positionAt = [&](unsigned int x, unsigned int y) { return pointOf(positions.at(x, y)); };
    const Depth depth = texelDepth(positions, 2, identity);
    expectOpenFractions(
        drawLoaded(*effect), [&](unsigned int x, unsigned int y, bool& isSure) -> std::optional<double> {
            const auto normal = normalFromNeighbors(positionAt, x, y, settings.maxDistance);
            if (!normal || positions.at(x, y)[2] == 0.0f)
                return {};
            return openFraction(positionAt(x, y), *normal, getView(), depth, settings, isSure);
        });
}

TEST_P(SsaoEffectTest, followsItsFormulaWithDepth) {
    const Settings settings = {
        .radius = 0.3, .maxDistance = 0.9, .strength = 0.6, .bias = 0.002, .samples = 12};
    const double nearPlane = getCamera().getNear();
    const double farPlane = getCamera().getFar();
    const ovMaths::Vector parameters = getCamera().getProjectionParameters();
    for (const bool isLinear : {false, true}) {
        FloatPicture buffer(WIDTH, HEIGHT);
        for (unsigned int y = 0; y < HEIGHT; ++y)
            for (unsigned int x = 0; x < WIDTH; ++x)
                buffer.at(x, y)[0] = float(isLinear ? roughZ(x, y) / farPlane : toDepth(roughZ(x, y)));
        const auto texture = makeTexture(buffer);
        // Kept: the linear depth is taken from the near plane on.
        const auto toZ = [&](double d) {
            return nearPlane + farPlane * (isLinear ? d : parameters.y / (d - parameters.x));
        };
        const Depth depth = texelDepth(buffer, 0, toZ);
        const auto positionAt = [&](unsigned int x, unsigned int y) {
            return scaled(getView().directionOf(x, y), toZ(buffer.at(x, y)[0]));
        };
        const auto effect = makeEffect(settings);
        effect->setEffectFromDepthInfo(texture.get(), isLinear);
        expectOpenFractions(
            drawLoaded(*effect), [&](unsigned int x, unsigned int y, bool& isSure) -> std::optional<double> {
                const auto normal = normalFromNeighbors(positionAt, x, y, settings.maxDistance);
                if (!normal)
                    return {};
                return openFraction(positionAt(x, y), *normal, getView(), depth, settings, isSure);
            });
    }
}

TEST_P(SsaoEffectTest, takesNearAndFarOfTheCameraThatRenders) {
    auto rendering = ovGraphics::Camera::create(&getGraphics());
    rendering->setPerspective(0.4f, 1.0f, 0.25f, 8.0f);
    getGraphics().getCameraManager()->setActiveRenderCamera(rendering.get());
    FloatPicture buffer(WIDTH, HEIGHT);
    for (unsigned int y = 0; y < HEIGHT; ++y)
        for (unsigned int x = 0; x < WIDTH; ++x)
            buffer.at(x, y)[0] = float(roughZ(x, y) / 8.0);
    const auto texture = makeTexture(buffer);
    const Settings settings = {.radius = 0.3};
    const auto effect = makeEffect(settings);
    effect->setEffectFromDepthInfo(texture.get(), true);
    const auto toZ = [](double d) { return 0.25 + 8.0 * d; };
    const Depth depth = texelDepth(buffer, 0, toZ);
    const auto positionAt = [&](unsigned int x,
                                unsigned int y) { // directions are those of the effect's camera
        return scaled(getView().directionOf(x, y), toZ(buffer.at(x, y)[0]));
    };
    expectOpenFractions(drawLoaded(*effect),
                        [&](unsigned int x, unsigned int y, bool& isSure) -> std::optional<double> {
                            const auto normal = normalFromNeighbors(positionAt, x, y, settings.maxDistance);
                            return normal ? std::optional(openFraction(positionAt(x, y), *normal, getView(),
                                                                       depth, settings, isSure))
                                          : std::nullopt;
                        });
}

TEST_P(SsaoEffectTest, leavesTheFarPlaneAsItWas) {
    // near + depth * far is exactly far: a half and 0.5 of 1.
    getCamera().setPerspective(1.1f, 1.5f, 0.5f, 1.0f);
    FloatPicture buffer(WIDTH, HEIGHT, {0.25f, 0.0f, 0.0f, 0.0f});
    for (unsigned int y = 0; y < HEIGHT; ++y)
        for (unsigned int x = 24; x < WIDTH; ++x)
            buffer.at(x, y)[0] = 0.5f;
    const auto texture = makeTexture(buffer);
    const auto effect = makeEffect();
    effect->setEffectFromDepthInfo(texture.get(), true);
    const FloatPicture drawn = drawLoaded(*effect);
    EXPECT_EQ(drawn.at(40, 5), UNTOUCHED);
    EXPECT_EQ(drawn.at(24, 31), UNTOUCHED);
    EXPECT_EQ(drawn.at(10, 5)[0], 1.0f);
    // Kept: what a cleared depth buffer says lies beyond the far plane, and is drawn.
    const auto cleared = makeTexture(FloatPicture(WIDTH, HEIGHT, {1.0f, 0.0f, 0.0f, 0.0f}));
    effect->setEffectFromDepthInfo(cleared.get(), true);
    EXPECT_NE(draw(*effect->getShader(), WIDTH, HEIGHT).at(20, 20), UNTOUCHED);
}

TEST_P(SsaoEffectTest, writesAlphaWhenOcclusionDrivesIt) {
    const auto positions = makeTexture(makePositions(roughZ));
    const auto normals = makeTexture(makeNormals());
    const auto effect = makeEffect({.radius = 0.4});
    effect->setEffectFromGBufferInfo(positions.get(), normals.get());
    FloatPicture expected = drawLoaded(*effect);
    for (FloatPixel& pixel : expected.pixels)
        pixel[3] = pixel[0];
    effect->setOcclusionDrivesAlpha(true);
    EXPECT_EQ(draw(*effect->getShader(), WIDTH, HEIGHT).at(3, 4)[3], 1.0f); // waits for the load
    EXPECT_TRUE(picturesAreIdentical("ssao_alpha", drawLoaded(*effect), expected));
}

TEST_P(SsaoEffectTest, takesNumbersAndCamerasAtOnce) {
    const auto positions = makeTexture(makePositions(roughZ));
    const auto normals = makeTexture(makeNormals());
    const auto other = ovGraphics::Camera::create(&getGraphics());
    other->setPerspective(0.6f, 1.0f, 0.1f, 9.0f);
    const Settings settings = {.radius = 0.45, .maxDistance = 0.3, .strength = 0.5};
    const auto fresh = makeEffect(settings);
    fresh->setCamera(other.get());
    fresh->setEffectFromGBufferInfo(positions.get(), normals.get());
    const FloatPicture expected = drawLoaded(*fresh);

    const auto effect = makeEffect();
    effect->setEffectFromGBufferInfo(positions.get(), normals.get());
    const FloatPicture before = drawLoaded(*effect);
    apply(settings, *effect);
    effect->setCamera(other.get());
    EXPECT_TRUE(picturesAreIdentical("ssao_live", draw(*effect->getShader(), WIDTH, HEIGHT), expected));
    EXPECT_FALSE(before.pixels == expected.pixels);

    // These wait: another bias and number of samples would be other programs.
    effect->setDepthBias(0.2f);
    effect->setKernelSampleCount(2);
    EXPECT_TRUE(picturesAreIdentical("ssao_waits", draw(*effect->getShader(), WIDTH, HEIGHT), expected));
    EXPECT_FALSE(drawLoaded(*effect).pixels == expected.pixels);
}

TEST_P(SsaoEffectTest, takesDirectionsOfANewCameraAtOnce) {
    const auto texture = makeTexture(FloatPicture(WIDTH, HEIGHT, {0.1f, 0.0f, 0.0f, 0.0f}));
    const auto other = ovGraphics::Camera::create(&getGraphics());
    other->setPerspective(2.0f, 1.0f, 0.5f, 50.0f);
    const Settings settings = {.radius = 2.0, .maxDistance = 6.0};
    const auto fresh = makeEffect(settings);
    fresh->setCamera(other.get());
    fresh->setEffectFromDepthInfo(texture.get(), true);
    const FloatPicture expected = drawLoaded(*fresh);
    const auto effect = makeEffect(settings);
    effect->setEffectFromDepthInfo(texture.get(), true);
    const FloatPicture before = drawLoaded(*effect);
    effect->setCamera(other.get());
    EXPECT_TRUE(picturesAreIdentical("ssao_camera", draw(*effect->getShader(), WIDTH, HEIGHT), expected));
    EXPECT_FALSE(before.pixels == expected.pixels);
}

TEST_P(SsaoEffectTest, darkensCornersAsTheirGeometryDoes) {
    const double ground = -1.0;
    const Scene plane = [&](const Point& d) { return hitPlane(d, {0.0, ground, 0.0}, {0.0, 1.0, 0.0}); };
    const Scene corner = [&](const Point& d) {
        return nearer(plane(d), hitPlane(d, {0.0, 0.0, 5.0}, {0.0, 0.0, -1.0}));
    };
    const Scene sphereOnPlane = [&](const Point& d) {
        return nearer(corner(d), hitSphere(d, {0.3, ground + 0.6, 3.6}, 0.6));
    };
    struct Case {
        const char* name;
        const Scene& scene;
        double darkest; ///< open fraction, at most and hardly less
    };
    const Settings settings = {.radius = 0.5, .maxDistance = 1.0, .strength = 1.0, .bias = 0.04};
    constexpr double NEAR_ENOUGH = 5.5;
    constexpr unsigned int SCALE = 8;
    constexpr unsigned int WIDE = SCALE * WIDTH;
    constexpr unsigned int HIGH = SCALE * HEIGHT;
    const View view = {&getCamera(), WIDE, HIGH};
    for (const Case& row :
         {Case{"plane", plane, 1.0}, Case{"corner", corner, 0.5}, Case{"sphere", sphereOnPlane, 0.1}}) {
        FloatPicture positions(WIDE, HIGH);
        FloatPicture normals(WIDE, HIGH);
        FloatPicture expected(WIDE, HIGH, UNTOUCHED);
        const Depth depth = [&](double u, double v, bool&) { return row.scene(view.directionAt(u, v)).z; };
        bool isSure = true;
        for (unsigned int y = 0; y < HIGH; ++y)
            for (unsigned int x = 0; x < WIDE; ++x) {
                const Point direction = view.directionOf(x, y);
                const Hit hit = row.scene(direction);
                positions.at(x, y) = pixelOf(scaled(direction, hit.z));
                normals.at(x, y) = pixelOf(hit.normal);
                if (hit.z == 0.0)
                    continue;
                const float open =
                    float(openFraction(scaled(direction, hit.z), hit.normal, view, depth, settings, isSure));
                expected.at(x, y) = {open, open, open, 1.0f};
            }
        const auto positionTexture = makeTexture(positions);
        const auto normalTexture = makeTexture(normals);
        const auto effect = makeEffect(settings);
        effect->setEffectFromGBufferInfo(positionTexture.get(), normalTexture.get());
        ASSERT_TRUE(effect->load());
        const FloatPicture drawn = draw(*effect->getShader(), WIDE, HIGH);
        // The exact scene and its picture differ where a sample falls beside an edge, and outside the screen,
        // where the picture knows nothing.
        EXPECT_LT(comparePictures(drawn, expected).mean, 0.01) << row.name;
        // Near the camera, where texels are small beside the bias.
        const auto darkestOf = [&](const FloatPicture& picture) {
            float darkest = 1.0f;
            for (unsigned int y = HIGH / 2; y < HIGH; ++y)
                for (unsigned int x = 0; x < WIDE; ++x)
                    if (row.scene(view.directionOf(x, y)).z < NEAR_ENOUGH)
                        darkest = std::min(darkest, picture.at(x, y)[0]);
            return darkest;
        };
        EXPECT_NEAR(darkestOf(drawn), darkestOf(expected), 2.01 / settings.samples) << row.name;
        EXPECT_LE(darkestOf(drawn), row.darkest) << row.name;
        EXPECT_GE(darkestOf(drawn), row.darkest == 1.0 ? 1.0 : row.darkest - 0.2) << row.name;
    }
}

TEST_P(SsaoEffectTest, staysBetweenNothingAndOne) {
    // A well: every sample is occluded, for numbers of samples whose inverse is rounded.
    FloatPicture positions(WIDTH, HEIGHT, {0.0f, 0.0f, 2.0f, 1.0f});
    positions.at(20, 10) = {0.0f, 0.0f, 2.9f, 1.0f};
    const FloatPicture normals(WIDTH, HEIGHT, {0.0f, 0.0f, 1.0f, 0.0f});
    const auto positionTexture = makeTexture(positions);
    const auto normalTexture = makeTexture(normals);
    for (unsigned int samples = 1; samples <= 16; ++samples)
        for (const float strength : {0.0f, 0.001f, 1.0f}) {
            const auto effect = makeEffect({.radius = 0.05, .strength = strength, .samples = samples});
            effect->setEffectFromGBufferInfo(positionTexture.get(), normalTexture.get());
            const float drawn = drawLoaded(*effect).at(20, 10)[0];
            if (strength == 0.0f) {
                EXPECT_EQ(drawn, 1.0f);
            } else { // the last sixteenth may be left by a rounding: 1e-7 to the power of 0.001 is 0.98
                EXPECT_TRUE(drawn >= 0.0f && drawn <= (strength < 1.0f ? 0.99f : 1e-6f)) << drawn;
            }
        }
}

TEST_P(SsaoEffectTest, drawsNothingWithoutAScene) {
    const auto effect = makeEffect();
    const auto positions = makeTexture(FloatPicture(WIDTH, HEIGHT));
    effect->setEffectFromGBufferInfo(positions.get(), nullptr);
    for (const FloatPixel& pixel : drawLoaded(*effect).pixels)
        ASSERT_EQ(pixel, UNTOUCHED);
    // Without any texture, and without a camera, it draws something and harms nothing.
    SsaoEffect bare(getSystem());
    getGraphics().getCameraManager()->setActiveRenderCamera(nullptr);
    drawLoaded(bare);
}

TEST_P(SsaoEffectTest, survivesNumbersThatMeanNothing) {
    constexpr float INF = std::numeric_limits<float>::infinity();
    constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
    FloatPicture positions = makePositions(roughZ);
    for (unsigned int i = 0; i < 12; ++i)
        positions.at(4 * i, 2 * i) = {INF, -INF, NOT_A_NUMBER, 1.0f};
    const auto positionTexture = makeTexture(positions);
    const auto effect = makeEffect();
    effect->setEffectFromGBufferInfo(positionTexture.get(), nullptr);
    for (const float number : {0.0f, INF, -INF, NOT_A_NUMBER, std::numeric_limits<float>::max()}) {
        effect->setSamplingRadius(number);
        effect->setMaxOcclusionDistance(number);
        effect->setStrength(number);
        drawLoaded(*effect);
    }
    effect->setDepthBias(INF); // no number that a shader could hold
    EXPECT_FALSE(effect->load());
    EXPECT_NE(getLog().getText().find("Could not load the ssao effect program for ''"),
              ovMemory::String::npos);
}

TEST_P(SsaoEffectTest, tellsWhyItDoesNotLoad) {
    System never;
    never.getLogManager()->setReceiver(&getLog());
    SsaoEffect effect(&never);
    effect.setName("corners");
    EXPECT_FALSE(effect.load());
    const ovMemory::Buffer<RecordingLogger::Message> expected = {
        loadFailure("ssao", "SsaoEffect", "program", "corners")};
    EXPECT_EQ(getLog().messages, expected);
}

TEST_P(SsaoEffectTest, preparesABlendStateForItsAlpha) {
    ovGraphics::BlendState state;
    state.setAlphaToCoverageEnabled(true);
    state.setIndependentBlendEnabled(true);
    state.setWriteMask(0, 0);
    SsaoEffectUtils::prepareBlendStateForAoBlending(&state);
    const auto& desc = state.getDesc();
    EXPECT_FALSE(desc.alphaToCoverage);
    EXPECT_FALSE(desc.independentBlend);
    const auto& target = desc.targets[0];
    EXPECT_TRUE(target.enabled);
    EXPECT_EQ(int(target.operation), 1);
    EXPECT_EQ(int(target.alphaOperation), 5);
    EXPECT_EQ(int(target.destinationFactor), 5);
    EXPECT_EQ(int(target.alphaDestinationFactor), 2);
    EXPECT_EQ(int(target.sourceFactor), 1);
    EXPECT_EQ(int(target.alphaSourceFactor), 5);
    EXPECT_EQ(int(target.writeMask), 15);
}
