#include <ovVeldris/complexEffects/DofComplexEffect.h>

#include <cmath>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/ProgramLibrary.h>
#include <ovGraphics/resources/Viewport.h>
#include <ovVeldris/complexEffects/ComplexEffectFixture.h>

using namespace ovVeldris;
using ovGraphics::FORMAT;

namespace {

constexpr unsigned int BLOCK_COUNT = 8; ///< down, two passes for each of three blurs, blend
constexpr unsigned int DOWN = 0;
constexpr unsigned int BLEND = 7;

class DofComplexEffectTest : public ComplexEffectFixture {
protected:
    ovMemory::UniquePtr<DofComplexEffect> makeDof(ovGraphics::Texture* source = nullptr) {
        auto dof = DofComplexEffect::create(getSystem());
        dof->setName("lens");
        dof->setCompositorNode(&getNode());
        dof->setSourceTexture(source);
        return dof;
    }

    ovGraphics::Shader& shaderOf(unsigned int block) { return *passOf(block)->getShader(); }
    ovGraphics::Texture& targetOf(unsigned int block, unsigned int target = 0) {
        return *getNode().getOperationsBlock(block)->getTarget(target);
    }

    static ovMemory::Buffer<ovMemory::String> messagesOf(const RecordingLogger& log) {
        ovMemory::Buffer<ovMemory::String> texts;
        for (const auto& message : log.messages)
            texts.push_back(message.sender + ": " + message.message);
        return texts;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, DofComplexEffectTest, bothLanguages(), languageName);

TEST_P(DofComplexEffectTest, IsNewWithTheDefaults) {
    const auto dof = DofComplexEffect::create(getSystem());
    EXPECT_EQ(dof->getType(), COMPLEX_EFFECT_TYPE::DOF);
    EXPECT_EQ(dof->getSourceTexture(), nullptr);
    EXPECT_EQ(dof->getSourceDepth(), nullptr);
    EXPECT_EQ(dof->getCamera(), nullptr);
    EXPECT_EQ(dof->getNearPlaneDistance(), 10.0f);
    EXPECT_EQ(dof->getFocalPlaneDistance(), 50.0f);
    EXPECT_EQ(dof->getFocalPlaneThickness(), 0.0f);
    EXPECT_EQ(dof->getFarPlaneDistance(), 100.0f);
    EXPECT_EQ(dof->getBlurStrength(), 3u);
    EXPECT_FALSE(dof->getLinearDepth());
    EXPECT_EQ(dof->getOutputTexture()->getName(), "_OUT");
}

TEST_P(DofComplexEffectTest, SelectsProgramsAndDefines) {
    using Defines = ovMemory::Buffer<ovGraphics::shading::Define>;
    const struct {
        unsigned int strength;
        bool isLinear;
        const char* key;
        Defines down;
        Defines blend;
    } CASES[] = {
        {3, false, "12884901888", {{"BLUR_STRENGTH", "3"}}, {}},
        {0, true, "1", {{"BLUR_STRENGTH", "0"}, {"LINEAR_DEPTH", ""}}, {{"LINEAR_DEPTH", ""}}},
        {1, true, "4294967297", {{"BLUR_STRENGTH", "1"}, {"LINEAR_DEPTH", ""}}, {{"LINEAR_DEPTH", ""}}},
    };
    for (const auto& row : CASES) {
        const auto dof = makeDof();
        dof->setBlurStrength(row.strength);
        dof->setLinearDepth(row.isLinear);
        ASSERT_TRUE(dof->load()) << getGraphicsLogger().getText();
        const ovMemory::String name = ovMemory::String("ORVANE_DOF_PROGRAM_") + row.key;
        EXPECT_EQ(shaderOf(DOWN).getProgram()->getName(), name + "_DOWN");
        EXPECT_EQ(shaderOf(BLEND).getProgram()->getName(), name + "_BLEND");
        EXPECT_EQ(shaderOf(DOWN).getProgram()->getSources().getPixel().defines, row.down);
        EXPECT_EQ(shaderOf(BLEND).getProgram()->getSources().getPixel().defines, row.blend);
        for (const unsigned int block : {DOWN, BLEND}) {
            EXPECT_TRUE(shaderOf(block).getProgram()->getHidden());
            EXPECT_TRUE(shaderOf(block).getProgram()->getActivateCrossCompilerDefines());
        }
        // The radius and preserved alpha are in the keys of the blurs.
        const uint64_t blurKey = (uint64_t{row.strength} << 32) + 2;
        for (unsigned int block = 1; block < BLEND; ++block)
            EXPECT_EQ(shaderOf(block).getProgram()->getName(),
                      "ORVANE_BLUR_PROGRAM_" + std::to_string(blurKey) + (block % 2 == 1 ? "_H" : "_V"));
    }
}

TEST_P(DofComplexEffectTest, AppendsItsPassesInOrder) {
    const auto source = makeTexture(FloatPicture(33, 18));
    const auto depth = makeTexture(FloatPicture(33, 18));
    const auto dof = makeDof(source.get());
    dof->setSourceDepth(depth.get());
    ASSERT_TRUE(dof->load());
    ASSERT_EQ(getNode().getOperationsBlockCount(), BLOCK_COUNT);
    const char* const TARGETS[] = {"lens_TEX_1",         "lens_BLUR_N_TEX_1", "lens_BLUR_N_TEX_2",
                                   "lens_BLUR_F_TEX_1",  "lens_BLUR_F_TEX_2", "lens_BLUR_FI_TEX_1",
                                   "lens_BLUR_FI_TEX_2", "lens_OUT"};
    const char* const SHADERS[] = {"lens_DOWN",     "lens_BLUR_N_H",  "lens_BLUR_N_V",  "lens_BLUR_F_H",
                                   "lens_BLUR_F_V", "lens_BLUR_FI_H", "lens_BLUR_FI_V", "lens_BLEND"};
    for (unsigned int block = 0; block < BLOCK_COUNT; ++block) {
        EXPECT_EQ(targetOf(block).getName(), TARGETS[block]);
        EXPECT_EQ(shaderOf(block).getName(), SHADERS[block]);
        EXPECT_TRUE(shaderOf(block).getHidden());
        EXPECT_EQ(getNode().getOperationsBlock(block)->getPassCount(), 1u);
    }
    EXPECT_EQ(targetOf(DOWN, 1).getName(), "lens_TEX_2");
    EXPECT_EQ(targetOf(DOWN, 2).getName(), "lens_TEX_3");
    EXPECT_EQ(getNode().getOperationsBlock(DOWN)->getTarget(3), nullptr);
    EXPECT_EQ(getNode().getOperationsBlock(BLEND)->getTarget(1), nullptr);
    EXPECT_EQ(&targetOf(BLEND), dof->getOutputTexture());

    ovGraphics::Shader& down = shaderOf(DOWN);
    ovGraphics::Shader& blend = shaderOf(BLEND);
    EXPECT_EQ(down.getTexture(0, 0), source.get());
    EXPECT_EQ(down.getTexture(1, 0), depth.get());
    EXPECT_EQ(blend.getTexture(0, 0), source.get());
    for (const unsigned int plane : {0u, 1u, 2u}) {
        EXPECT_EQ(shaderOf(1 + 2 * plane).getTexture(0, 0), &targetOf(DOWN, plane));
        EXPECT_EQ(blend.getTexture(1 + plane, 0), &targetOf(2 + 2 * plane));
    }
    EXPECT_EQ(blend.getTexture(4, 0), depth.get());
    EXPECT_EQ(down.getSampler(0, 0)->getName(), "lens_SAMPLER");
    EXPECT_EQ(int(down.getSampler(0, 0)->getDesc().filter), 21);
    EXPECT_EQ(down.getSampler(1, 0)->getName(), "lens_SAMPLER_D");
    EXPECT_EQ(int(down.getSampler(1, 0)->getDesc().filter), 0);
    EXPECT_EQ(blend.getSampler(0, 0), down.getSampler(0, 0));
    for (const ovGraphics::Sampler* sampler : {down.getSampler(0, 0), down.getSampler(1, 0)}) {
        EXPECT_TRUE(sampler->getHidden());
        EXPECT_EQ(int(sampler->getDesc().addressU), 3);
        EXPECT_EQ(int(sampler->getDesc().addressV), 3);
        EXPECT_EQ(sampler->getDesc().maxLod, 0.0f);
    }
    EXPECT_EQ(slotOf<int>(down, 2), (std::array{33, 18, 1, 1}));
    EXPECT_EQ(blend.getConstantBuffer(0, 0)->getPassMemorySlotCount(), 2u);
    EXPECT_EQ(getNode().getOperationsBlock(DOWN)->getViewport()->getName(), "lens_VIEWPORT_DOWN");
    EXPECT_EQ(getNode().getOperationsBlock(BLEND)->getViewport()->getName(), "lens_VIEWPORT_HIGH");
}

TEST_P(DofComplexEffectTest, PlanesAreAQuarterOfTheSides) {
    const struct {
        unsigned int width, height;
        unsigned int smallWidth, smallHeight;
    } CASES[] = {{1024, 768, 256, 192}, {33, 18, 8, 4}, {7, 4, 1, 1},
                 {3, 2, 1, 1},          {1, 1, 1, 1},   {2, 9, 1, 2}};
    const auto dof = makeDof();
    ASSERT_TRUE(dof->load());
    for (const bool waitsForLoad : {false, true}) {
        for (const auto& row : CASES) {
            ovGraphics::Texture source(&getGraphics());
            source.setWidth(row.width);
            source.setHeight(row.height);
            ASSERT_TRUE(source.load());
            dof->setSourceTexture(&source);
            if (waitsForLoad) {
                ASSERT_TRUE(dof->load());
            }
            for (unsigned int block = 0; block < BLOCK_COUNT; ++block) {
                const ovGraphics::Viewport& viewport = *getNode().getOperationsBlock(block)->getViewport();
                const unsigned int width = block == BLEND ? row.width : row.smallWidth;
                const unsigned int height = block == BLEND ? row.height : row.smallHeight;
                EXPECT_EQ(targetOf(block).getWidth(), width) << block;
                EXPECT_EQ(targetOf(block).getHeight(), height) << block;
                EXPECT_EQ(viewport.getWidth(), width) << block;
                EXPECT_EQ(viewport.getHeight(), height) << block;
            }
            EXPECT_EQ(targetOf(DOWN, 1).getWidth(), row.smallWidth);
            EXPECT_EQ(targetOf(DOWN, 2).getHeight(), row.smallHeight);
            EXPECT_EQ(slotOf(shaderOf(1), 0)[0], 1.0f / float(row.smallWidth));
            EXPECT_EQ(slotOf<int>(shaderOf(DOWN), 2)[0], int(row.width));
            EXPECT_TRUE(row.width > 40 || frame());
            EXPECT_EQ(getGraphicsLogger().getText(), "");
        }
    }
}

TEST_P(DofComplexEffectTest, TexturesTakeTheFormatOfTheSource) {
    const struct {
        FORMAT format;
        bool gammaCorrected;
        FORMAT fields;
        bool fieldsAreGammaCorrected;
    } CASES[] = {
        {FORMAT::R8G8B8A8_UNORM, true, FORMAT::R8G8B8A8_UNORM, true},
        {FORMAT::R8G8B8A8_UNORM, false, FORMAT::R8G8B8A8_UNORM, false},
        {FORMAT::R16G16B16A16_FLOAT, false, FORMAT::R16G16B16A16_FLOAT, false},
        {FORMAT::R11G11B10_FLOAT, false, FORMAT::R16G16B16A16_FLOAT, false},
        {FORMAT::R8G8_UNORM, false, FORMAT::R8G8B8A8_UNORM, false},
    };
    for (const auto& row : CASES) {
        ovGraphics::Texture source(&getGraphics());
        source.setWidth(8);
        source.setHeight(8);
        source.setFormat(row.format);
        source.setGammaCorrected(row.gammaCorrected);
        ASSERT_TRUE(source.load());
        const auto dof = makeDof(&source);
        ASSERT_TRUE(dof->load()) << getGraphicsLogger().getText();
        for (const unsigned int field : {0u, 1u}) {
            EXPECT_EQ(targetOf(DOWN, field).getFormat(), row.fields) << int(row.format);
            EXPECT_EQ(targetOf(DOWN, field).getGammaCorrected(), row.fieldsAreGammaCorrected);
        }
        EXPECT_EQ(int(targetOf(DOWN, 2).getFormat()), 10);
        EXPECT_FALSE(targetOf(DOWN, 2).getGammaCorrected());
        EXPECT_EQ(targetOf(BLEND).getFormat(), row.format);
        EXPECT_EQ(targetOf(BLEND).getGammaCorrected(), row.gammaCorrected);
        EXPECT_TRUE(frame());
        EXPECT_EQ(getGraphicsLogger().getText(), "");
    }
    const auto none = makeDof();
    ASSERT_TRUE(none->load());
    for (const unsigned int target : {0u, 1u, 2u})
        EXPECT_EQ(int(targetOf(DOWN, target).getFormat()), 30);
    EXPECT_EQ(int(targetOf(BLEND).getFormat()), 30);
    EXPECT_EQ(targetOf(BLEND).getWidth(), 1u);
    EXPECT_TRUE(frame());
    expectNothingButWholeNumbers();
}

TEST_P(DofComplexEffectTest, DistancesAndBindingsReachALoadedEffectAtOnce) {
    const auto dof = makeDof();
    dof->setFocalPlaneThickness(4.0f);
    ASSERT_TRUE(dof->load());
    for (const unsigned int block : {DOWN, BLEND})
        EXPECT_EQ(slotOf(shaderOf(block), 1), (std::array{10.0f, 100.0f, 50.0f, 2.0f}));
    dof->setNearPlaneDistance(1.5f);
    dof->setFarPlaneDistance(9.0f);
    dof->setFocalPlaneDistance(3.0f);
    dof->setFocalPlaneThickness(0.5f);
    ovGraphics::Camera camera(&getGraphics());
    camera.setPerspective(1.0f, 1.0f, 0.25f, 64.0f);
    dof->setCamera(&camera);
    const auto depth = makeTexture(FloatPicture(2, 2));
    dof->setSourceDepth(depth.get());
    for (const unsigned int block : {DOWN, BLEND}) {
        EXPECT_EQ(slotOf(shaderOf(block), 1), (std::array{1.5f, 9.0f, 3.0f, 0.25f}));
        EXPECT_EQ(slotOf(shaderOf(block), 0)[2], 0.25f);
        EXPECT_EQ(slotOf(shaderOf(block), 0)[3], 64.0f);
        EXPECT_EQ(shaderOf(block).getTexture(block == DOWN ? 1 : 4, 0), depth.get());
    }
    const ovMemory::String name(shaderOf(DOWN).getProgram()->getName());
    dof->setBlurStrength(7);
    dof->setLinearDepth(true);
    EXPECT_EQ(shaderOf(DOWN).getProgram()->getName(), name);
    EXPECT_EQ(shaderOf(1).getProgram()->getName(), "ORVANE_BLUR_PROGRAM_12884901890_H");
    ASSERT_TRUE(dof->load());
    EXPECT_EQ(shaderOf(DOWN).getProgram()->getName(), "ORVANE_DOF_PROGRAM_30064771073_DOWN");
    EXPECT_EQ(shaderOf(1).getProgram()->getName(), "ORVANE_BLUR_PROGRAM_30064771074_H");
    for (const unsigned int block : {DOWN, BLEND})
        EXPECT_EQ(slotOf(shaderOf(block), 1), (std::array{1.5f, 9.0f, 3.0f, 0.25f}));
}

TEST_P(DofComplexEffectTest, SaysWhatFailed) {
    const auto dof = DofComplexEffect::create(getSystem());
    dof->setName("lens");
    EXPECT_FALSE(dof->load());
    EXPECT_EQ(messagesOf(getLog()),
              (ovMemory::Buffer<ovMemory::String>{
                  "DofComplexEffect: ComplexEffect 'lens' requires a CompositorNode set to be able to work "
                  "with it. None provided, aborting."}));
    EXPECT_TRUE(dof->getOutputTexture()->isUnloaded());

    getLog().messages.clear();
    ovGraphics::Texture compressed(&getGraphics());
    compressed.setFormat(FORMAT::BC3_UNORM);
    dof->setCompositorNode(&getNode());
    dof->setSourceTexture(&compressed);
    EXPECT_FALSE(dof->load());
    EXPECT_EQ(messagesOf(getLog()),
              (ovMemory::Buffer<ovMemory::String>{
                  "DofComplexEffect: Error when loading the textures of ComplexEffect 'lens'. Aborting."}));

    getLog().messages.clear();
    getGraphicsLogger().messages.clear();
    dof->setSourceTexture(nullptr);
    dof->setBlurStrength(4000000000u);
    EXPECT_FALSE(dof->load());
    EXPECT_EQ(
        messagesOf(getLog()),
        (ovMemory::Buffer<ovMemory::String>{
            "BlurComplexEffect: The blurring complex effect 'lens_BLUR_N' has a radius of 4000000000, and "
            "kernels have numbers up to 510; set a smaller one.",
            "BlurComplexEffect: Could not load the blurring complex effect shaders for 'lens_BLUR_N'. Effect "
            "will be unusable as-is, this needs to be addressed within the effect creation.",
            "DofComplexEffect: Error when loading a sub-component of ComplexEffect 'lens' : blurring effect "
            "(Near) could not load. Aborting.",
            "DofComplexEffect: Error when feeding the compositor node of ComplexEffect 'lens'. Aborting."}));
    EXPECT_EQ(getNode().getOperationsBlockCount(), 0u) << "no half of an effect stays";
    dof->setBlurStrength(2);
    EXPECT_TRUE(dof->load());
    EXPECT_EQ(getNode().getOperationsBlockCount(), BLOCK_COUNT);
}

TEST_P(DofComplexEffectTest, EffectsOfEqualSettingsCompileNothing) {
    const auto first = makeDof();
    ASSERT_TRUE(first->load());
    const ovMemory::Borrowed<ovGraphics::Program> program = shaderOf(DOWN).getProgram();
    const ovGraphics::ProgramLibraryStatistics before = getGraphics().getProgramLibrary().getStatistics();
    auto second = makeDof();
    second->setFocalPlaneDistance(3.0f);
    ASSERT_TRUE(second->load());
    const ovGraphics::ProgramLibraryStatistics after = getGraphics().getProgramLibrary().getStatistics();
    EXPECT_EQ(after.compiled, before.compiled);
    EXPECT_EQ(after.fromMemory, before.fromMemory);
    EXPECT_EQ(after.fromDisk, before.fromDisk);
    EXPECT_EQ(shaderOf(BLOCK_COUNT + DOWN).getProgram(), program.get());
    first->unload();
    EXPECT_TRUE(program);
    second.reset();
    EXPECT_FALSE(program);
}
