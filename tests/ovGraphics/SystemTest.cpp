#include <gtest/gtest.h>
#include <ovGraphics/Canvas.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/ProgramLibrary.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Viewport.h>
#include <support/PictureTest.h>
#include <support/heap/Heap.h>

using namespace ovGraphics;
using ovMaths::Vector;

namespace {

class SystemTest : public PictureTest {
protected:
    ovMemory::String takeLog() {
        const ovMemory::String text = getGraphicsLogger().getText();
        getGraphicsLogger().messages.clear();
        return text;
    }
};

SHADER_LANGUAGE otherThan(SHADER_LANGUAGE language) {
    return language == SHADER_LANGUAGE::GLSL ? SHADER_LANGUAGE::HLSL : SHADER_LANGUAGE::GLSL;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, SystemTest, bothLanguages(), languageName);

TEST_P(SystemTest, opensOnceAndSaysWhatItOpened) {
    EXPECT_TRUE(getGraphics().getIsInitialized());
    EXPECT_EQ(getGraphics().getLanguage(), getLanguage());
    const device::DeviceInfo* info = getGraphics().getDeviceInfo();
    ASSERT_NE(info, nullptr);
    EXPECT_TRUE(info->software);
    EXPECT_TRUE(info->headless);
    const device::Device* device = getGraphics().getDevice();
    EXPECT_TRUE(getGraphics().initialize({})); // does nothing on an open system
    EXPECT_EQ(getGraphics().getDevice(), device);
    EXPECT_EQ(getGraphics().getLanguage(), getLanguage());
    EXPECT_FALSE(System::listDevices().empty());

    System closed;
    EXPECT_FALSE(closed.getIsInitialized());
    EXPECT_EQ(closed.getDeviceInfo(), nullptr);
    closed.shutdown(); // nothing to do
    RecordingLogger logger;
    Configuration impossible = HeadlessSystem::makeConfiguration(getLanguage(), &logger);
    impossible.software = false;
    impossible.device = 1000000;
    EXPECT_FALSE(closed.initialize(impossible));
    ASSERT_EQ(logger.messages.size(), 1u) << logger.getText();
    EXPECT_TRUE(logger.messages[0].message.starts_with("Could not open a graphics device: "))
        << logger.getText();
    EXPECT_TRUE(closed.initialize(HeadlessSystem::makeConfiguration(getLanguage(), &logger)));
}

TEST_P(SystemTest, frameRefusesWhatItCannotDraw) {
    EXPECT_FALSE(getGraphics().frame(nullptr));
    EXPECT_EQ(takeLog(), "[System] Could not draw a frame: no render context was given.\n");
    Canvas canvas(getGraphics());
    canvas.context->setCompositor(nullptr);
    EXPECT_FALSE(canvas.frame());
    EXPECT_EQ(takeLog(),
              "[System] Could not draw a frame of render context 'canvas': it has no compositor; call "
              "RenderContext::setCompositor first.\n");
    System other;
    Canvas foreign(other);
    EXPECT_FALSE(getGraphics().frame(foreign.context.get()));
    EXPECT_EQ(takeLog(),
              "[System] Could not draw a frame of render context 'canvas': it belongs to another graphics "
              "system; call frame of that one.\n");
    canvas.context->setCompositor(foreign.compositor.get());
    EXPECT_FALSE(canvas.frame());
    EXPECT_EQ(takeLog(),
              "[System] Could not draw a frame of render context 'canvas': its compositor belongs to "
              "another graphics system; create both on the same one.\n");
    EXPECT_FALSE(foreign.frame()); // its system is not initialised and has no logger
    canvas.context->setCompositor(canvas.compositor.get());
    EXPECT_TRUE(canvas.frame()); // nothing to draw is no failure
    EXPECT_EQ(takeLog(), "");
}

TEST_P(SystemTest, inactiveNodesAreSkipped) {
    TestShader shader(getGraphics(), UV_TEXT);
    const auto target = makeTarget(1, 1);
    Canvas canvas(getGraphics(), target.get());
    canvas.addBlock()->appendClearPass()->setColor(0, 1, 0, 0, 0);
    CompositorNode* second = canvas.compositor->appendNode();
    second->appendOperationsBlock()->appendClearPass()->setColor(0, 2, 0, 0, 0);
    ASSERT_TRUE(canvas.frame());
    EXPECT_EQ(readFloats(*target).at(0, 0)[0], 2.0f); // nodes in order
    second->setActive(false);
    ASSERT_TRUE(canvas.frame());
    EXPECT_EQ(readFloats(*target).at(0, 0)[0], 1.0f);
}

TEST_P(SystemTest, codeInsideAFrameMayDrawAndEraseContexts) {
    TestShader shader(getGraphics(), UV_TEXT);
    ASSERT_TRUE(shader.loaded) << takeLog();
    const auto outerTarget = makeTarget(4, 4);
    const auto innerTarget = makeTarget(2, 2);
    RenderContextManager& contexts = *getGraphics().getRenderContextManager();
    Canvas canvas(getGraphics());
    RenderContext* outer = contexts.createOrRetrieve("outer", {.texture = outerTarget.get()});
    outer->setCompositor(canvas.compositor.get());
    CompositorOperationsBlock* block = canvas.addBlock();
    block->appendClearPass()->setColor(0, -1, -1, -1, -1);
    block->insertPass(1, std::make_unique<CodePass>([&] { // a frame within the frame
                          Canvas inner(getGraphics(), innerTarget.get());
                          inner.addBlock()->appendClearPass()->setColor(0, 5, 5, 5, 5);
                          return inner.frame();
                      }));
    block->appendPostProcessPass()->setShader(shader.shader.get()); // still into the outer target, all of it
    canvas.addBlock()->insertPass(0, std::make_unique<CodePass>([&] {
                                      contexts.erase("outer"); // what draws right now
                                      return true;
                                  }));
    bool reached = false;
    canvas.addBlock()->insertPass(0, std::make_unique<CodePass>([&] { return reached = true; }));
    ASSERT_TRUE(getGraphics().frame(outer)) << takeLog();
    EXPECT_EQ(takeLog(), "");
    EXPECT_EQ(readFloats(*innerTarget).at(1, 1)[0], 5.0f);
    EXPECT_NEAR(readFloats(*outerTarget).at(3, 3)[0], 0.875f, 1e-5f);
    EXPECT_FALSE(reached); // the frame ended with its context
    EXPECT_EQ(contexts.getActiveRenderContext(), nullptr);
    EXPECT_EQ(contexts.getCount(), 0u);
}

TEST_P(SystemTest, severalSystemsDrawInTurn) {
    System& other = HeadlessSystem::get(otherThan(getLanguage())).getSystem();
    const std::array<System*, 2> systems = {&getGraphics(), &other};
    std::array<ovMemory::UniquePtr<TestShader>, 2> shaders;
    std::array<ovMemory::UniquePtr<Texture>, 2> targets;
    std::array<ovMemory::UniquePtr<Canvas>, 2> canvases;
    for (std::size_t i = 0; i < 2; ++i) {
        shaders[i] = std::make_unique<TestShader>(*systems[i], CONSTANT_TEXT);
        ASSERT_TRUE(shaders[i]->loaded);
        shaders[i]->shader->addConstantBuffer(0, 0)->addPassMemorySlot();
        targets[i] = Texture::create(systems[i]);
        targets[i]->setFormat(FORMAT::R32G32B32A32_FLOAT);
        targets[i]->setUsableAsRenderTarget(true);
        ASSERT_TRUE(targets[i]->load());
        canvases[i] = std::make_unique<Canvas>(*systems[i], targets[i].get());
        canvases[i]->addDraw(*shaders[i]->shader);
    }
    for (const float value : {1.0f, 2.0f, 3.0f}) {
        for (std::size_t i = 0; i < 2; ++i) {
            shaders[i]->shader->getConstantBuffer(0, 0)->getPassMemorySlot(0)->setFromVector(
                {value, float(i), 0, 0});
            ASSERT_TRUE(canvases[i]->frame());
        }
        for (std::size_t i = 0; i < 2; ++i)
            EXPECT_EQ(readFloats(*targets[i]).at(0, 0), (FloatPixel{value, float(i), 0, 0}));
    }
    HeadlessSystem::get(otherThan(getLanguage())).checkDriverErrors();
}

TEST_P(SystemTest, resourcesLiveThroughShutdownAndOutliveTheSystem) {
    RecordingLogger logger;
    const Configuration configuration = HeadlessSystem::makeConfiguration(getLanguage(), &logger);
    auto system = std::make_unique<System>();
    ASSERT_TRUE(system->initialize(configuration)) << logger.getText();
    TestShader shader(*system, SAMPLE_TEXT);
    ASSERT_TRUE(shader.loaded) << logger.getText();
    Texture* source = system->getTextureManager()->createOrRetrieve("source"); // owned by the system
    source->setFormat(FORMAT::R32G32B32A32_FLOAT);
    const FloatPixel value = {1, 2, 3, 4};
    source->setCpuData(0, 0, {reinterpret_cast<const unsigned char*>(value.data()), sizeof(value)});
    Sampler* sampler = system->getSamplerManager()->createOrRetrieve("sampler");
    const auto target = Texture::create(system.get());
    target->setFormat(FORMAT::R32G32B32A32_FLOAT);
    target->setUsableAsRenderTarget(true);
    shader->addTexture(source, 0, 0);
    shader->addSampler(sampler, 0, 0);
    shader->addConstantBuffer(0, 0)->addPassMemorySlot()->setFromVector({1, 2, 3, 4});
    Canvas canvas(*system, target.get());
    canvas.addDraw(*shader);
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(system->initialize(configuration)) << logger.getText();
        ASSERT_TRUE(source->load() && sampler->load() && target->load() && shader.program->load() &&
                    shader->load())
            << logger.getText();
        ASSERT_TRUE(canvas.frame());
        EXPECT_EQ(readFloats(*target).at(0, 0), value);
        EXPECT_EQ(logger.getText(), "");
        system->shutdown();
        EXPECT_FALSE(system->getIsInitialized());
        EXPECT_TRUE(source->isUnloaded() && target->isUnloaded() && shader->isUnloaded() &&
                    shader.program->isUnloaded());
        EXPECT_FALSE(canvas.frame());
        logger.messages.clear();
    }
    ASSERT_TRUE(system->initialize(configuration));
    ASSERT_TRUE(target->load() && shader.program->load() && shader->load());
    ASSERT_TRUE(canvas.frame());
    system.reset(); // with everything loaded
    EXPECT_EQ(shader->getSystem(), nullptr);
    EXPECT_EQ(shader->getTexture(0, 0), nullptr); // the system's own went with it
    EXPECT_FALSE(shader->load());
    EXPECT_FALSE(target->load());
    EXPECT_EQ(target->readBack(), std::nullopt);
    canvas.addBlock()->appendClearPass(); // lists still work
}

TEST_P(SystemTest, fixedTimeReachesTheSlots) {
    TestShader shader(getGraphics(), CONSTANT_TEXT);
    ASSERT_TRUE(shader.loaded) << takeLog();
    shader->addConstantBuffer(0, 0)->addPassMemorySlot()->setAsTime(10.0f);
    getGraphics().setFixedTime(123.5, 0.25);
    EXPECT_EQ(draw(*shader, 1, 1).at(0, 0), (FloatPixel{10, 3.5f, 0.25f, 0}));
    EXPECT_EQ(draw(*shader, 1, 1).at(0, 0), (FloatPixel{10, 3.5f, 0.25f, 0})); // stands still
    getGraphics().clearFixedTime();
    draw(*shader, 1, 1);
    const FrameTime first = getGraphics().getFrameTime();
    draw(*shader, 1, 1);
    const FrameTime second = getGraphics().getFrameTime();
    EXPECT_GE(first.seconds, 0.0);
    EXPECT_GE(first.deltaSeconds, 0.0); // no jump back from the fixed time
    EXPECT_LE(first.deltaSeconds, first.seconds);
    EXPECT_GT(second.seconds, first.seconds);
    EXPECT_NEAR(second.deltaSeconds, second.seconds - first.seconds, 1e-9);

    RecordingLogger logger;
    System early;
    early.setFixedTime(7.0, 0.5); // before initialize()
    ASSERT_TRUE(early.initialize(HeadlessSystem::makeConfiguration(getLanguage(), &logger)));
    EXPECT_EQ(early.getFrameTime().seconds, 7.0);
}

TEST_P(SystemTest, passTimesOnRequest) {
    TestShader shader(getGraphics(), UV_TEXT);
    ASSERT_TRUE(shader.loaded) << takeLog();
    const auto target = makeTarget(64, 64);
    Canvas canvas(getGraphics(), target.get());
    CompositorOperationsBlock* block = canvas.addBlock();
    block->appendClearPass();
    PostProcessPass* pass = block->appendPostProcessPass();
    pass->setShader(shader.shader.get());
    pass->setName("MY_PASS");
    ASSERT_TRUE(canvas.frame());
    EXPECT_TRUE(getGraphics().getPassTimings().empty());
    getGraphics().setPassTimingEnabled(true);
    EXPECT_TRUE(getGraphics().getPassTimingEnabled());
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(canvas.frame());
        const auto& timings = getGraphics().getPassTimings();
        ASSERT_EQ(timings.size(), 2u); // of the last frame only
        EXPECT_EQ(timings[0].name, "clear");
        EXPECT_EQ(timings[1].name, "MY_PASS");
        EXPECT_GT(timings[1].milliseconds, 0.0);
        EXPECT_LT(timings[1].milliseconds, 60000.0);
    }
    block->insertPass(1, std::make_unique<CodePass>([&] { // a frame within the frame counts to its pass
                          Canvas inner(getGraphics(), target.get());
                          inner.addBlock()->appendClearPass();
                          return inner.frame();
                      }));
    ASSERT_TRUE(canvas.frame());
    ASSERT_EQ(getGraphics().getPassTimings().size(), 3u);
    EXPECT_EQ(getGraphics().getPassTimings()[0].name, "clear");
    EXPECT_EQ(getGraphics().getPassTimings()[1].name, "code");
    EXPECT_EQ(getGraphics().getPassTimings()[2].name, "MY_PASS");
    EXPECT_EQ(getGraphics().getPassTimingMethod(), "wall clock"); // of a software device
    getGraphics().setPassTimingEnabled(false);
    ASSERT_TRUE(canvas.frame());
    EXPECT_TRUE(getGraphics().getPassTimings().empty());
}

TEST_P(SystemTest, anUnchangedFrameUploadsAndAllocatesNothing) {
    TestShader shader(getGraphics(), pixelText("colour * ovSample(image, state, PIX_TEXCOORD)", R"(
ovConstantBufferDecl(constants, 0) { ovFloat4 colour; ovFloat4x4 view; ovFloat4 time; };
ovTexture2dDecl(image, 0);
ovSamplerDecl(state, 0);
)"));
    ASSERT_TRUE(shader.loaded) << takeLog();
    ConstantBuffer* buffer = shader->addConstantBuffer(0, 0);
    buffer->addPassMemorySlot()->setFromVector({1, 1, 1, 1});
    buffer->addPassMemorySlot()->setAsViewMatrix();
    buffer->addPassMemorySlot()->setAsTime(1.0f);
    const auto texture = makeTexture(FloatPicture(2, 2, {1, 2, 3, 4}));
    const auto sampler = Sampler::create(&getGraphics());
    ASSERT_TRUE(sampler->load());
    shader->addTexture(texture.get(), 0, 0);
    shader->addSampler(sampler.get(), 0, 0);
    const auto camera = Camera::create(&getGraphics());
    const auto viewport = Viewport::create(&getGraphics());
    viewport->setSize(4, 4);
    const auto target = makeTarget(4, 4);
    const auto backBuffer = makeTarget(4, 4);
    Canvas canvas(getGraphics(), backBuffer.get());
    canvas.context->setCamera(camera.get());
    for (int i = 0; i < 3; ++i) {
        CompositorOperationsBlock* block = canvas.addDraw(*shader, i == 0 ? target.get() : nullptr);
        block->setViewport(viewport.get());
        block->appendClearPass();
        block->appendPostProcessPass()->setShader(shader.shader.get());
    }
    getGraphics().setFixedTime(1.0, 0.0);
    ASSERT_TRUE(canvas.frame()) << takeLog();
    ASSERT_TRUE(canvas.frame());

    const device::DeviceStatistics before = getGraphics().getDevice()->getStatistics();
    const std::size_t allocationsBefore = getAllocationCount();
    const bool drawn = canvas.frame();
    const std::size_t allocations = getAllocationCount() - allocationsBefore;
    const device::DeviceStatistics after = getGraphics().getDevice()->getStatistics();
    getGraphics().clearFixedTime();
    EXPECT_TRUE(drawn);
    EXPECT_EQ(allocations, 0u);
    EXPECT_EQ(after.drawCalls - before.drawCalls, 6u);
    EXPECT_EQ(after.bufferUploads, before.bufferUploads);
    EXPECT_EQ(after.programsCompiled, before.programsCompiled);

    int* volatile counted = new int; // volatile, or the compiler leaves the pair out
    delete counted;
    EXPECT_GT(getAllocationCount(), allocationsBefore);
    camera->setPosition({1, 0, 0}); // one change, one upload, though three passes draw it
    ASSERT_TRUE(canvas.frame());
    EXPECT_EQ(getGraphics().getDevice()->getStatistics().bufferUploads, after.bufferUploads + 1);
}

TEST(SystemSingletonTest, isMadeOnRequestAndKilled) {
    EXPECT_EQ(System::getInstanceIfExisting(), nullptr);
    System* instance = System::getInstance();
    EXPECT_FALSE(instance->getIsInitialized());
    EXPECT_TRUE(instance->isTheSingletonInstance());
    EXPECT_FALSE(System().isTheSingletonInstance());
    auto camera = Camera::create(nullptr);
    EXPECT_EQ(camera->getSystem(), instance);
    System::kill();
    EXPECT_EQ(camera->getSystem(), nullptr);
}
