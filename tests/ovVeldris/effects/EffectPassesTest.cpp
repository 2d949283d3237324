#include <ovVeldris/effects/EffectPasses.h>

#include <cmath>
#include <ovGraphics/compositor/Compositor.h>
#include <ovVeldris/core/OneShotFrame.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/effects/FilmGrainEffect.h>
#include <ovVeldris/effects/FxaaEffect.h>
#include <ovVeldris/effects/SrgbConversion.h>
#include <ovVeldris/effects/SsaoEffect.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <ovVeldris/effects/ToneMappingEffect.h>

using namespace ovVeldris;
using ovGraphics::Texture;

namespace {

constexpr unsigned int LIST_SIDE = 12;

double encodedLight(double v) {
    return v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1.0 / 2.4) - 0.055;
}

/// A slanted edge between dark and light, of a little more than the display's range.
FloatPicture makeEdgePicture() {
    FloatPicture picture(LIST_SIDE, LIST_SIDE);
    for (unsigned int y = 0; y < LIST_SIDE; ++y)
        for (unsigned int x = 0; x < LIST_SIDE; ++x) {
            const float light = 3 * x > y + 16 ? 0.9f : 0.02f + 0.001f * float(x);
            picture.at(x, y) = {light, 0.8f * light, 0.5f * light, 0.25f + 0.05f * float(y)};
        }
    return picture;
}

class EffectPassesTest : public EffectFixture {
protected:
    void SetUp() override {
        EffectFixture::SetUp();
        _source = makeTexture(makeEdgePicture());
        _source->setName("source");
        _target = makeTarget(LIST_SIDE, LIST_SIDE);
        _target->setName("target");
        _tone = ToneMappingEffect::create(getSystem());
        _tone->setName("tone");
        _fxaa = FxaaEffect::create(getSystem());
        _fxaa->setName("fxaa");
        _grain = FilmGrainEffect::create(getSystem());
        _grain->setName("grain");
        getGraphics().setFixedTime(2.0, 0.0); // grain moves
    }
    void TearDown() override {
        getGraphics().clearFixedTime();
        _source.reset();
        _target.reset();
        _tone.reset();
        _fxaa.reset();
        _grain.reset();
        EffectFixture::TearDown();
    }

    /// What a list of effects draws into the target.
    FloatPicture drawAll(const ovMemory::Buffer<Effect*>& effects) {
        const auto compositor = ovGraphics::Compositor::create(&getGraphics());
        EffectPasses passes(getSystem());
        const ovMemory::Result appended =
            passes.append(*compositor->appendNode(), *_source, effects, *_target);
        EXPECT_TRUE(appended) << appended.error << getLog().getText() << getGraphicsLogger().getText();
        EXPECT_TRUE(appended && drawOneShotFrame(*compositor, *_target));
        return readFloats(*_target);
    }
    /// What one effect draws of a picture.
    template <typename T>
    FloatPicture drawOne(T& effect, const FloatPicture& picture) {
        const auto texture = makeTexture(picture);
        effect.setSourceTexture(texture.get());
        EXPECT_TRUE(effect.load());
        return draw(*effect.getShader(), LIST_SIDE, LIST_SIDE);
    }
    /// A picture encoded or decoded by a pass of its own: FXAA tells edges by thresholds, which the last bit
    /// decides.
    FloatPicture drawConversion(const ovMemory::UniquePtr<SrgbConversion>& conversion,
                                const FloatPicture& picture) {
        const auto texture = makeTexture(picture);
        conversion->setSource(*texture);
        return draw(*conversion->getShader(), LIST_SIDE, LIST_SIDE);
    }
    FloatPicture encode(const FloatPicture& picture) {
        return drawConversion(SrgbConversion::encode(getGraphics()), picture);
    }
    FloatPicture decode(const FloatPicture& picture) {
        return drawConversion(SrgbConversion::decode(getGraphics()), picture);
    }
    ovMemory::String errorOf(const ovMemory::Buffer<Effect*>& effects) {
        const auto compositor = ovGraphics::Compositor::create(&getGraphics());
        ovGraphics::CompositorNode* node = compositor->appendNode();
        EffectPasses passes(getSystem());
        const ovMemory::Result appended = passes.append(*node, *_source, effects, *_target);
        EXPECT_EQ(node->getOperationsBlockCount(), 0u) << "nothing is appended";
        return appended.error;
    }
    static void expectNear(const FloatPicture& actual, const FloatPicture& expected, double tolerance) {
        for (unsigned int y = 0; y < LIST_SIDE; ++y)
            for (unsigned int x = 0; x < LIST_SIDE; ++x)
                for (unsigned int i = 0; i < 4; ++i)
                    EXPECT_NEAR(actual.at(x, y)[i], expected.at(x, y)[i], tolerance)
                        << x << ", " << y << ", " << i;
    }

    ovMemory::UniquePtr<Texture> _source;
    ovMemory::UniquePtr<Texture> _target;
    ovMemory::UniquePtr<ToneMappingEffect> _tone;
    ovMemory::UniquePtr<FxaaEffect> _fxaa;
    ovMemory::UniquePtr<FilmGrainEffect> _grain;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, EffectPassesTest, bothLanguages(), languageName);

TEST_P(EffectPassesTest, oneEffectIsItself) {
    const FloatPicture expected = drawOne(*_tone, makeEdgePicture());
    expectNear(drawAll({_tone.get()}), expected, 0.0);
}

TEST_P(EffectPassesTest, eachReadsTheOneBefore) {
    const FloatPicture toned = drawOne(*_tone, makeEdgePicture());
    const FloatPicture expected = drawOne(*_grain, toned);
    expectNear(drawAll({_tone.get(), _grain.get()}), expected, 0.0);
    // Of more than two textures between them.
    const auto first = TextureCopyEffect::create(getSystem());
    const auto second = TextureCopyEffect::create(getSystem());
    expectNear(drawAll({first.get(), _tone.get(), second.get(), _grain.get()}), expected, 0.0);
}

// FXAA reads encoded colours; what it draws is light again in the target.
TEST_P(EffectPassesTest, colorsAreEncodedForWhatReadsThemSo) {
    const FloatPicture toned = drawOne(*_tone, makeEdgePicture());
    const FloatPicture smoothed = drawOne(*_fxaa, encode(toned));
    const FloatPicture expected = decode(smoothed);
    const FloatPicture drawn = drawAll({_tone.get(), _fxaa.get()});
    expectNear(drawn, expected, 0.0);
    bool isSmoothed = false;
    for (unsigned int i = 0; i < LIST_SIDE * LIST_SIDE; ++i)
        isSmoothed = isSmoothed || std::abs(drawn.at(i % LIST_SIDE, i / LIST_SIDE)[0] -
                                            toned.at(i % LIST_SIDE, i / LIST_SIDE)[0]) > 0.01f;
    EXPECT_TRUE(isSmoothed) << "the edge";
    const FloatPicture grained = decode(drawOne(*_grain, smoothed));
    expectNear(drawAll({_tone.get(), _fxaa.get(), _grain.get()}), grained, 0.0);
    expectNear(drawAll({_fxaa.get()}), decode(drawOne(*_fxaa, encode(makeEdgePicture()))), 0.0);
}

TEST_P(EffectPassesTest, targetsOfSrgbHoldTheEncoding) {
    const FloatPicture light = drawAll({_tone.get(), _fxaa.get()});
    _target->reset();
    _target->setFormat(ovGraphics::FORMAT::R8G8B8A8_UNORM_SRGB);
    _target->setWidth(LIST_SIDE);
    _target->setHeight(LIST_SIDE);
    _target->setUsableAsRenderTarget(true);
    ASSERT_TRUE(_target->load());
    const auto compositor = ovGraphics::Compositor::create(&getGraphics());
    EffectPasses passes(getSystem());
    Effect* const effects[] = {_tone.get(), _fxaa.get()};
    ASSERT_TRUE(passes.append(*compositor->appendNode(), *_source, effects, *_target));
    ASSERT_TRUE(drawOneShotFrame(*compositor, *_target));
    const auto bytes = _target->readBack(); // which a software rasteriser rounds by tables
    for (unsigned int i = 0; i < LIST_SIDE * LIST_SIDE; ++i)
        EXPECT_NEAR((*bytes)[4 * i], 255.0 * encodedLight(light.at(i % LIST_SIDE, i / LIST_SIDE)[0]), 1.0)
            << i;
}

// Grain of a picture is picture + grain * picture, and so is what blending makes of it. Alpha stays.
TEST_P(EffectPassesTest, whatBlendsIsDrawnOverACopy) {
    _grain->setStrength(0.5f);
    const FloatPicture read = drawAll({_grain.get()});
    _grain->setBlendGrainInTarget(true);
    expectNear(drawAll({_grain.get()}), read, 1e-6);
    EXPECT_NE(read.at(5, 5), makeEdgePicture().at(5, 5));
}

TEST_P(EffectPassesTest, reasonsAreTold) {
    EXPECT_EQ(errorOf({}), "the list of effects is empty.");
    EXPECT_EQ(errorOf({_tone.get(), _grain.get(), _tone.get()}),
              "the effect 'tone' stands twice in the list; make a second one.");
    const auto second = ToneMappingEffect::create(getSystem());
    second->setName("second");
    EXPECT_EQ(
        errorOf({_tone.get(), _grain.get(), second.get()}),
        "'second' takes scene-linear colours and 'tone' gives display-linear ones; change their order.");
    EXPECT_EQ(errorOf({_fxaa.get(), _tone.get()}),
              "'tone' takes scene-linear colours and 'fxaa' gives srgb-encoded ones; change their order.");
    const auto occlusion = SsaoEffect::create(getSystem());
    occlusion->setName("occlusion");
    EXPECT_EQ(errorOf({occlusion.get()}),
              "the effect 'occlusion' reads no picture; draw its shader in a pass of its own.");
    _target->unload();
    EXPECT_EQ(errorOf({_tone.get()}), "the texture 'target' is not loaded; load it before.");
    _target = makeTarget(LIST_SIDE + 1, LIST_SIDE);
    EXPECT_EQ(errorOf({_fxaa.get()}),
              "the effect 'fxaa' needs picture and target of one size; make them so.");
    _source->unload();
    EXPECT_EQ(errorOf({_tone.get()}), "the texture 'source' is not loaded; load it before.");
    const auto compositor = ovGraphics::Compositor::create(&getGraphics());
    Effect* const one[] = {_tone.get()};
    EXPECT_EQ(EffectPasses(getSystem()).append(*compositor->appendNode(), *_target, one, *_target).error,
              "the texture '' is picture and target at once; draw into another one.");
}
