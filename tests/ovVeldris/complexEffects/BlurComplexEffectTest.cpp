#include <ovVeldris/complexEffects/BlurComplexEffect.h>

#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/ProgramLibrary.h>
#include <ovGraphics/resources/Viewport.h>
#include <ovVeldris/complexEffects/ComplexEffectFixture.h>
#include <ovVeldris/core/settings/SettingTableChecks.h>

using namespace ovVeldris;
using ovGraphics::FORMAT;

namespace {

const ovMemory::String ADVICE =
    "'. Effect will be unusable as-is, this needs to be addressed within the effect creation.";

class BlurComplexEffectTest : public ComplexEffectFixture {
protected:
    ovMemory::UniquePtr<BlurComplexEffect> makeBlur(ovGraphics::Texture* source = nullptr) {
        auto blur = BlurComplexEffect::create(getSystem());
        blur->setName("soft");
        blur->setCompositorNode(&getNode());
        blur->setSourceTexture(source);
        return blur;
    }

    ovMemory::UniquePtr<ovGraphics::Texture> makeSource(FORMAT format, bool gammaCorrected) {
        auto texture = ovGraphics::Texture::create(&getGraphics());
        texture->setWidth(6);
        texture->setHeight(4);
        texture->setFormat(format);
        texture->setGammaCorrected(gammaCorrected);
        EXPECT_TRUE(texture->load()) << getGraphicsLogger().getText();
        return texture;
    }

    ovGraphics::Shader* shaderOf(unsigned int block) {
        ovGraphics::PostProcessPass* pass = passOf(block);
        return pass ? pass->getShader() : nullptr;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, BlurComplexEffectTest, bothLanguages(), languageName);

TEST_P(BlurComplexEffectTest, IsNewWithTheDefaults) {
    const auto blur = BlurComplexEffect::create(getSystem());
    EXPECT_EQ(blur->getType(), COMPLEX_EFFECT_TYPE::BLUR);
    EXPECT_EQ(blur->getName(), "");
    EXPECT_EQ(blur->getSourceTexture(), nullptr);
    EXPECT_EQ(blur->getKernelRadius(), 5u);
    EXPECT_FALSE(blur->getAlphaEncodesBlurPlanes());
    EXPECT_FALSE(blur->getPreserveAlpha());
    ASSERT_NE(blur->getOutputTexture(), nullptr);
    EXPECT_EQ(blur->getOutputTexture()->getName(), "_TEX_2");
    EXPECT_TRUE(blur->getOutputTexture()->isUnloaded());
}

TEST_P(BlurComplexEffectTest, TableHoldsForNewAndLoadedEffects) {
    const auto blur = makeBlur();
    settingTesting::checkSettingTable(*blur, getGraphics());
    ASSERT_TRUE(blur->load());
    settingTesting::checkSettingTable(*blur, getGraphics());
    EXPECT_EQ(blur->setSetting("radius", 511).place, "radius");
    EXPECT_EQ(blur->setSetting("radius", 510).error, "");
    EXPECT_EQ(blur->getKernelRadius(), 510u);
}

TEST_P(BlurComplexEffectTest, KeysAreRadiusAndFlags) {
    const auto keyOf = [](unsigned int radius, bool preserve, bool planes) {
        BlurComplexEffectInfo info;
        info.kernelRadius = radius;
        info.preserveAlpha = preserve;
        info.alphaEncodesBlurPlanes = planes;
        return BlurIdGenerator()(info);
    };
    EXPECT_EQ(keyOf(0, false, false), 0u);
    EXPECT_EQ(keyOf(5, false, false), 5ull << 32);
    EXPECT_EQ(keyOf(5, true, false), (5ull << 32) + 2);
    EXPECT_EQ(keyOf(5, false, true), (5ull << 32) + 1);
    EXPECT_EQ(keyOf(0xffffffffu, true, true), 0xffffffff00000003ull);
}

TEST_P(BlurComplexEffectTest, SelectsProgramsAndDefines) {
    using Defines = ovMemory::Buffer<ovGraphics::shading::Define>;
    const struct {
        unsigned int radius;
        bool preserve;
        bool planes;
        const char* key;
        Defines behindDirection;
    } CASES[] = {
        {0, false, false, "0", {{"SAMPLE_COUNT", "1"}, {"EVEN_RADIUS", ""}}},
        {3, false, true, "12884901889", {{"SAMPLE_COUNT", "2"}, {"ALPHA_PLANES", ""}}},
        {4, true, false, "17179869186", {{"SAMPLE_COUNT", "3"}, {"EVEN_RADIUS", ""}, {"PRESERVE_ALPHA", ""}}},
        {6,
         true,
         true,
         "25769803779",
         {{"SAMPLE_COUNT", "4"}, {"EVEN_RADIUS", ""}, {"ALPHA_PLANES", ""}, {"PRESERVE_ALPHA", ""}}},
    };
    for (const auto& row : CASES) {
        const auto blur = makeBlur();
        blur->setKernelRadius(row.radius);
        blur->setPreserveAlpha(row.preserve);
        blur->setAlphaEncodesBlurPlanes(row.planes);
        ASSERT_TRUE(blur->load()) << getGraphicsLogger().getText();
        for (const unsigned int block : {0u, 1u}) {
            const ovGraphics::Program& program = *shaderOf(block)->getProgram();
            EXPECT_EQ(program.getName(),
                      ovMemory::String("ORVANE_BLUR_PROGRAM_") + row.key + (block == 0 ? "_H" : "_V"));
            Defines defines = {{block == 0 ? "HORIZONTAL" : "VERTICAL", ""}};
            defines.insert(defines.end(), row.behindDirection.begin(), row.behindDirection.end());
            EXPECT_EQ(program.getSources().getPixel().defines, defines) << row.key;
            EXPECT_TRUE(program.getHidden());
            EXPECT_TRUE(program.getActivateCrossCompilerDefines());
        }
        const ovMemory::String text = shaderOf(0)->getProgram()->getSources().getPixel().text;
        const bool hasKernel =
            text.find("\n#define OFFSET_COUNT 1\n#define OFFSET_FACTORS 0.000000\n"
                      "#define WEIGHT_COUNT 1\n#define WEIGHT_FACTORS 1.000000\n") != text.npos;
        EXPECT_EQ(hasKernel, row.radius == 0) << text;
    }
}

TEST_P(BlurComplexEffectTest, AppendsTwoPasses) {
    ovGraphics::CompositorOperationsBlock* const before = getNode().appendOperationsBlock();
    const auto source = makeTexture(FloatPicture(8, 4));
    const auto blur = makeBlur(source.get());
    ASSERT_TRUE(blur->load());
    ASSERT_EQ(getNode().getOperationsBlockCount(), 3u);
    EXPECT_EQ(getNode().getOperationsBlock(0), before);
    const char* const SUFFIXES[] = {"", "_H", "_V"};
    for (const unsigned int index : {1u, 2u}) {
        const ovGraphics::CompositorOperationsBlock& block = *getNode().getOperationsBlock(index);
        EXPECT_EQ(block.getPassCount(), 1u);
        EXPECT_EQ(block.getTarget(0)->getName(), "soft_TEX_" + std::to_string(index));
        EXPECT_EQ(block.getTarget(1), nullptr);
        EXPECT_EQ(block.getViewport()->getName(), "soft_VIEWPORT");
        EXPECT_EQ(block.getViewport()->getWidth(), 8u);
        EXPECT_EQ(block.getViewport()->getHeight(), 4u);
        ovGraphics::Shader& shader = *shaderOf(index);
        EXPECT_EQ(shader.getName(), ovMemory::String("soft") + SUFFIXES[index]);
        EXPECT_TRUE(shader.getHidden());
        EXPECT_EQ(slotOf(shader, 0), (std::array{0.125f, 0.25f, 0.0f, 0.0f}));
        EXPECT_EQ(shader.getSampler(0, 0)->getName(), "soft_SAMPLER");
    }
    EXPECT_EQ(getNode().getOperationsBlock(2)->getTarget(0), blur->getOutputTexture());
    EXPECT_EQ(shaderOf(1)->getTexture(0, 0), source.get());
    EXPECT_EQ(shaderOf(2)->getTexture(0, 0), getNode().getOperationsBlock(1)->getTarget(0));
    const ovGraphics::Sampler& sampler = *shaderOf(1)->getSampler(0, 0);
    EXPECT_EQ(shaderOf(2)->getSampler(0, 0), &sampler);
    EXPECT_TRUE(sampler.getHidden());
    EXPECT_EQ(int(sampler.getDesc().filter), 21);
    EXPECT_EQ(int(sampler.getDesc().addressU), 3);
    EXPECT_EQ(int(sampler.getDesc().addressV), 3);
    EXPECT_EQ(sampler.getDesc().minLod, 0.0f);
    EXPECT_EQ(sampler.getDesc().maxLod, 0.0f);
}

TEST_P(BlurComplexEffectTest, SettingsWaitForLoadButTheSource) {
    const auto source = makeTexture(FloatPicture(8, 4));
    const auto other = makeTexture(FloatPicture(2, 16));
    const auto blur = makeBlur(source.get());
    ASSERT_TRUE(blur->load());
    const ovMemory::String name(shaderOf(0)->getProgram()->getName());
    blur->setKernelRadius(2);
    blur->setPreserveAlpha(true);
    blur->setAlphaEncodesBlurPlanes(true);
    blur->setName("other");
    EXPECT_EQ(shaderOf(0)->getProgram()->getName(), name);
    blur->setSourceTexture(other.get());
    EXPECT_EQ(shaderOf(0)->getTexture(0, 0), other.get());
    for (const unsigned int block : {0u, 1u}) {
        EXPECT_EQ(slotOf(*shaderOf(block), 0), (std::array{0.5f, 0.0625f, 0.0f, 0.0f}));
        EXPECT_EQ(getNode().getOperationsBlock(block)->getTarget(0)->getWidth(), 2u);
        EXPECT_EQ(getNode().getOperationsBlock(block)->getTarget(0)->getHeight(), 16u);
        EXPECT_FALSE(getNode().getOperationsBlock(block)->getTarget(0)->isUnloaded());
    }
    EXPECT_EQ(getNode().getOperationsBlock(0)->getViewport()->getHeight(), 16u);

    // None: one texel, while the size of a texel stays what it was.
    blur->setSourceTexture(nullptr);
    EXPECT_EQ(blur->getOutputTexture()->getWidth(), 1u);
    EXPECT_EQ(int(blur->getOutputTexture()->getFormat()), 30);
    EXPECT_EQ(slotOf(*shaderOf(0), 0), (std::array{0.5f, 0.0625f, 0.0f, 0.0f}));
    EXPECT_EQ(getNode().getOperationsBlock(0)->getViewport()->getWidth(), 1u);

    ASSERT_TRUE(blur->load());
    EXPECT_EQ(shaderOf(0)->getProgram()->getName(), "ORVANE_BLUR_PROGRAM_8589934595_H");
    EXPECT_EQ(shaderOf(0)->getName(), "other_H");
    EXPECT_EQ(blur->getOutputTexture()->getName(), "other_TEX_2");
    EXPECT_EQ(slotOf(*shaderOf(0), 0), (std::array{0.0f, 0.0f, 0.0f, 0.0f}));
}

TEST_P(BlurComplexEffectTest, TargetsTakeTheFormatOfTheSource) {
    const struct {
        FORMAT format;
        bool gammaCorrected;
        bool targetIsGammaCorrected;
    } CASES[] = {
        {FORMAT::R8G8B8A8_UNORM, true, true},       {FORMAT::R8G8B8A8_UNORM, false, false},
        {FORMAT::R16G16B16A16_FLOAT, false, false}, {FORMAT::R11G11B10_FLOAT, false, false},
        {FORMAT::R8_UNORM, false, false},
    };
    for (const auto& row : CASES) {
        const auto source = makeSource(row.format, row.gammaCorrected);
        const auto blur = makeBlur(source.get());
        ASSERT_TRUE(blur->load()) << getGraphicsLogger().getText();
        for (const unsigned int block : {0u, 1u}) {
            const ovGraphics::Texture& target = *getNode().getOperationsBlock(block)->getTarget(0);
            EXPECT_EQ(target.getFormat(), row.format);
            EXPECT_EQ(target.getGammaCorrected(), row.targetIsGammaCorrected);
            EXPECT_TRUE(target.getUsableAsRenderTarget());
            EXPECT_EQ(target.getMipCount(), 1u);
        }
        EXPECT_TRUE(frame());
    }
}

TEST_P(BlurComplexEffectTest, NeedsANode) {
    auto blur = BlurComplexEffect::create(getSystem());
    blur->setName("soft");
    EXPECT_FALSE(blur->load());
    EXPECT_EQ(getLog().messages,
              (RecordingLogger::Messages{
                  {"ComplexEffect 'soft' requires a CompositorNode set to be able to work with it. None "
                   "provided, aborting.",
                   "BlurComplexEffect"}}));
    EXPECT_TRUE(blur->getOutputTexture()->isUnloaded()) << "nothing was made";
}

TEST_P(BlurComplexEffectTest, FailsOnFormatsThatCannotBeDrawnTo) {
    for (const FORMAT format : {FORMAT::BC1_UNORM, FORMAT::D32_FLOAT}) {
        auto source = ovGraphics::Texture::create(&getGraphics());
        source->setFormat(format);
        const auto blur = makeBlur(source.get());
        getLog().messages.clear();
        EXPECT_FALSE(blur->load()) << int(format);
        EXPECT_EQ(getLog().messages,
                  (RecordingLogger::Messages{
                      {"Could not load the blurring complex effect textures for 'soft" + ADVICE,
                       "BlurComplexEffect"}}));
        EXPECT_EQ(getNode().getOperationsBlockCount(), 0u);
    }
    EXPECT_EQ(
        getGraphicsLogger().getText(),
        "[Texture] Could not load the texture 'soft_TEX_1': the device cannot draw to the format BC1_UNORM; "
        "choose another.\n"
        "[ComplexEffect] Could not load the texture 'soft_TEX_1' as a target of colours: its source has the "
        "depth format D32_FLOAT; draw the depth into a texture of colours first.\n");
    getGraphicsLogger().messages.clear();
}

TEST_P(BlurComplexEffectTest, FailsBeyondTheLargestRadius) {
    for (const unsigned int radius : {511u, 4000000000u, 0xffffffffu}) {
        const auto blur = makeBlur();
        blur->setKernelRadius(radius);
        getLog().messages.clear();
        EXPECT_FALSE(blur->load());
        EXPECT_EQ(getLog().messages,
                  (RecordingLogger::Messages{
                      {"The blurring complex effect 'soft' has a radius of " + std::to_string(radius) +
                           ", and kernels have numbers up to 510; set a smaller one.",
                       "BlurComplexEffect"},
                      {"Could not load the blurring complex effect shaders for 'soft" + ADVICE,
                       "BlurComplexEffect"}}));
        EXPECT_EQ(getNode().getOperationsBlockCount(), 0u);
        blur->setKernelRadius(4);
        EXPECT_TRUE(blur->load()) << "a later load may succeed";
        EXPECT_EQ(getNode().getOperationsBlockCount(), 2u);
    }
}

TEST_P(BlurComplexEffectTest, EffectsOfEqualSettingsCompileNothing) {
    const auto first = makeBlur();
    const auto source = makeTexture(FloatPicture(3, 3));
    ASSERT_TRUE(first->load());
    const ovMemory::Borrowed<ovGraphics::Program> program = shaderOf(0)->getProgram();
    const ovGraphics::ProgramLibraryStatistics before = getGraphics().getProgramLibrary().getStatistics();
    auto second = makeBlur(source.get());
    ASSERT_TRUE(second->load() && first->load());
    const ovGraphics::ProgramLibraryStatistics after = getGraphics().getProgramLibrary().getStatistics();
    EXPECT_EQ(after.compiled, before.compiled);
    EXPECT_EQ(after.fromMemory, before.fromMemory) << "the programs are not even looked up";
    EXPECT_EQ(after.fromDisk, before.fromDisk);
    EXPECT_EQ(shaderOf(0)->getProgram(), program.get());
    EXPECT_EQ(shaderOf(2)->getProgram(), program.get());
    first->unload();
    EXPECT_TRUE(program) << "the second holds it";
    second.reset();
    EXPECT_FALSE(program);
}
