#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/effects/Effect.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <ovVeldris/effects/ToneMappingEffect.h>

using namespace ovVeldris;

namespace {

class EffectTest : public EffectFixture {};

} // namespace

INSTANTIATE_TEST_SUITE_P(, EffectTest, bothLanguages(), languageName);

TEST_P(EffectTest, isNewWithoutNameAndShader) {
    const TextureCopyEffect effect(getSystem());
    EXPECT_EQ(effect.getName(), "");
    EXPECT_EQ(effect.getShader(), nullptr);
    EXPECT_EQ(effect.getType(), EFFECT_TYPE::TEXTURE_COPY);
    EXPECT_EQ(ToneMappingEffect(getSystem()).getType(), EFFECT_TYPE::TONE_MAPPING);
}

TEST_P(EffectTest, namesItsShaderWhenItIsMade) {
    TextureCopyEffect effect(getSystem());
    effect.setName("before");
    EXPECT_EQ(effect.getName(), "before");
    EXPECT_EQ(effect.getShader(), nullptr);
    ASSERT_TRUE(effect.load());
    EXPECT_EQ(effect.getShader()->getName(), "before");
}

TEST_P(EffectTest, renamesItsShader) {
    TextureCopyEffect effect(getSystem());
    ASSERT_TRUE(effect.load());
    EXPECT_EQ(effect.getShader()->getName(), "");
    effect.setName("after");
    EXPECT_EQ(effect.getName(), "after");
    EXPECT_EQ(effect.getShader()->getName(), "after");
    effect.setName(effect.getName().substr(2));
    EXPECT_EQ(effect.getName(), "ter");
    EXPECT_EQ(effect.getShader()->getName(), "ter");
}

TEST_P(EffectTest, keepsItsShaderAcrossLoads) {
    TextureCopyEffect effect(getSystem());
    ASSERT_TRUE(effect.load());
    const ovMemory::Borrowed<ovGraphics::Shader> shader = effect.getShader();
    ASSERT_TRUE(effect.load());
    EXPECT_EQ(effect.getShader(), shader.get());
    effect.unload();
    EXPECT_EQ(effect.getShader(), shader.get());
    ASSERT_NE(shader.get(), nullptr);
    EXPECT_TRUE(shader->isUnloaded());
}

TEST_P(EffectTest, destroysItsShader) {
    auto effect = TextureCopyEffect::create(getSystem());
    ASSERT_TRUE(effect->load());
    const ovMemory::Borrowed<ovGraphics::Shader> shader = effect->getShader();
    effect.reset();
    EXPECT_EQ(shader.get(), nullptr);
}
