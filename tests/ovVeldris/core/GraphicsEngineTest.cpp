#include <ovVeldris/core/GraphicsEngine.h>

#include <ovGraphics/Managers.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovVeldris/core/SingletonTest.h>
#include <ovVeldris/core/TestGraphics.h>

using ovVeldris::GraphicsEngine;

namespace {

class GraphicsEngineTest : public SingletonTest {
protected:
    RecordingLogger log;
    bool hostDeleted = false;
    HostGraphics* host = new HostGraphics(hostDeleted);

    ~GraphicsEngineTest() override {
        EXPECT_FALSE(hostDeleted) << "the host's graphics system is the host's to delete";
        delete host;
    }
};

void expectRunning(const GraphicsEngine& engine) {
    ASSERT_NE(engine.getGraphicsSystem(), nullptr);
    EXPECT_TRUE(engine.getGraphicsSystem()->getIsInitialized());
    EXPECT_NE(engine.getProgramTrackersHolder(), nullptr);
}

} // namespace

TEST_F(GraphicsEngineTest, HasNothingBeforeInitialize) {
    for (const bool useSingletons : {false, true}) {
        GraphicsEngine engine(useSingletons);
        EXPECT_EQ(engine.getGraphicsSystem(), nullptr);
        EXPECT_EQ(engine.getProgramTrackersHolder(), nullptr);
        engine.shutdown();
        EXPECT_EQ(getExisting(), "");
    }
}

TEST_F(GraphicsEngineTest, MakesAGraphicsSystemOfItsOwn) {
    GraphicsEngine engine(false);
    ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log))) << log.getText();
    expectRunning(engine);
    EXPECT_EQ(getExisting(), "");
    ovGraphics::System* const own = engine.getGraphicsSystem();
    for (int round = 0; round < 2; ++round) {
        engine.shutdown();
        EXPECT_EQ(engine.getGraphicsSystem(), own) << "held until the destructor deletes it";
        EXPECT_FALSE(own->getIsInitialized());
        EXPECT_EQ(engine.getProgramTrackersHolder(), nullptr);
    }
    ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log)));
    expectRunning(engine);
}

TEST_F(GraphicsEngineTest, InitialisesTheHostsGraphicsSystemAndLeavesItToTheHost) {
    {
        GraphicsEngine engine(false);
        ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log, host))) << log.getText();
        EXPECT_EQ(engine.getGraphicsSystem(), host);
        expectRunning(engine);
        engine.shutdown();
        EXPECT_FALSE(host->getIsInitialized());
        EXPECT_EQ(engine.getGraphicsSystem(), nullptr) << "not owned, so forgotten";
        ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log, host)));
    }
    EXPECT_FALSE(hostDeleted);
    EXPECT_FALSE(host->getIsInitialized()) << "the destructor shuts it down";
}

TEST_F(GraphicsEngineTest, UsesAnInitialisedGraphicsSystemAsItIs) {
    RecordingLogger hostLog;
    ASSERT_TRUE(host->initialize(makeWorkingConfiguration(&hostLog).graphicsConfiguration));
    ovGraphics::device::Device* const device = host->getDevice();
    GraphicsEngine engine(false);
    // A configuration that could not be initialised with shows that nobody tried.
    ASSERT_TRUE(engine.initialize(makeFailingConfiguration(&log, host)));
    EXPECT_EQ(host->getDevice(), device);
    EXPECT_EQ(host->getConfiguration().logger, &hostLog);
    expectRunning(engine);
}

TEST_F(GraphicsEngineTest, KeepsAGraphicsSystemThatCannotStart) {
    GraphicsEngine engine(false);
    EXPECT_FALSE(engine.initialize(makeFailingConfiguration(&log)));
    EXPECT_FALSE(log.messages.empty()) << "the graphics system says why";
    ASSERT_NE(engine.getGraphicsSystem(), nullptr);
    EXPECT_FALSE(engine.getGraphicsSystem()->getIsInitialized());
    EXPECT_EQ(engine.getProgramTrackersHolder(), nullptr);
    EXPECT_FALSE(engine.initialize(makeFailingConfiguration(&log, host)));
    EXPECT_EQ(engine.getGraphicsSystem(), host);
    ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log, host)));
    expectRunning(engine);
}

TEST_F(GraphicsEngineTest, ReplacesTheGraphicsSystemWhenInitialisedAgain) {
    GraphicsEngine engine(false);
    ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log)));
    ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log)));
    expectRunning(engine);
    ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log, engine.getGraphicsSystem())))
        << "its own system handed back to it";
    expectRunning(engine);
    ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log, host)));
    EXPECT_EQ(engine.getGraphicsSystem(), host);
    ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log, host)));
    expectRunning(engine);
    ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log)));
    EXPECT_NE(engine.getGraphicsSystem(), host);
    expectRunning(engine);
}

TEST_F(GraphicsEngineTest, UsesTheSingletonAndKillsItAtTheEnd) {
    {
        GraphicsEngine engine(true);
        ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log, host))) << log.getText();
        EXPECT_EQ(engine.getGraphicsSystem(), ovGraphics::System::getInstanceIfExisting())
            << "the host's system is ignored";
        expectRunning(engine);
        ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log))) << "again, with the same singleton";
        expectRunning(engine);
        engine.shutdown();
        EXPECT_EQ(engine.getGraphicsSystem(), nullptr);
        EXPECT_EQ(getExisting(), "Graphics") << "shut down, not killed";
        EXPECT_FALSE(ovGraphics::System::getInstance()->getIsInitialized());
    }
    EXPECT_EQ(getExisting(), "");
}

TEST_F(GraphicsEngineTest, SurvivesTheSingletonsDeath) {
    GraphicsEngine engine(true);
    ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log)));
    ovGraphics::System::kill();
    EXPECT_EQ(engine.getGraphicsSystem(), nullptr);
    engine.shutdown();
    ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log)));
    expectRunning(engine);
}

TEST_F(GraphicsEngineTest, MakesTheDefaultSamplerThatMaterialsLookUp) {
    constexpr const char* NAME = "ORVANE_DEFAULT_SAMPLER";
    GraphicsEngine engine(false);
    ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log))) << log.getText();
    ovGraphics::Sampler* const sampler = engine.getGraphicsSystem()->getSamplerManager()->get(NAME);
    ASSERT_NE(sampler, nullptr);
    EXPECT_FALSE(sampler->isUnloaded());
    EXPECT_TRUE(sampler->getHidden());
    EXPECT_EQ(sampler->getDesc().filter, ovGraphics::FILTER::MIN_MAG_MIP_LINEAR);
    EXPECT_EQ(sampler->getDesc().addressU, ovGraphics::TEXTURE_ADDRESS::WRAP);
    EXPECT_EQ(sampler->getDesc().addressV, ovGraphics::TEXTURE_ADDRESS::WRAP);

    // The host's own stays as it is, also when the engine starts anew.
    ovGraphics::Sampler* const hosts = host->getSamplerManager()->createOrRetrieve(NAME);
    hosts->setFilter(ovGraphics::FILTER::ANISOTROPIC);
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(engine.initialize(makeWorkingConfiguration(&log, host))) << log.getText();
        EXPECT_EQ(host->getSamplerManager()->get(NAME), hosts);
        EXPECT_EQ(hosts->getDesc().filter, ovGraphics::FILTER::ANISOTROPIC);
        EXPECT_FALSE(hosts->isUnloaded());
        engine.shutdown();
        EXPECT_TRUE(hosts->isUnloaded());
    }
}
