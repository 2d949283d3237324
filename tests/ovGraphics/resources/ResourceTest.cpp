#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Resource.h>
#include <support/RecordingLogger.h>

using namespace ovGraphics;

namespace {

/// Counts what the base asks of it.
class Probe : public Resource {
public:
    explicit Probe(System* system)
        : Resource(system, "test probe") {}
    void setSetting() { _settingChanged(); }

    bool succeeds = true;
    bool onlyReady = false;
    unsigned int loads = 0;
    unsigned int unloads = 0;
    RESOURCE_LOAD_STATE stateInLoad = RESOURCE_LOAD_STATE::UNLOADED;

private:
    bool _load(ovMemory::String& error) override {
        ++loads;
        stateInLoad = getLoadState();
        if (onlyReady)
            _setLoadState(RESOURCE_LOAD_STATE::READY_FOR_RENDERING);
        if (!succeeds)
            error = "the probe was told to fail.";
        return succeeds;
    }
    void _unload() override { ++unloads; }
};

} // namespace

TEST(ResourceTest, loadsWhenUnloadedOrChanged) {
    System system;
    Probe probe(&system);
    EXPECT_TRUE(probe.isUnloaded());
    EXPECT_FALSE(probe.getHidden());
    EXPECT_FALSE(probe.getGpuUploadCanBeDeferred());
    EXPECT_TRUE(probe.load());
    EXPECT_EQ(probe.stateInLoad, RESOURCE_LOAD_STATE::LOADING);
    EXPECT_EQ(probe.getLoadState(), RESOURCE_LOAD_STATE::LOADED);
    EXPECT_TRUE(probe.load());
    EXPECT_EQ(probe.loads, 1u); // nothing changed
    probe.setSetting();
    EXPECT_EQ(probe.getLoadState(), RESOURCE_LOAD_STATE::LOADED);
    const unsigned int unloadsBefore = probe.unloads;
    EXPECT_TRUE(probe.load());
    EXPECT_EQ(probe.loads, 2u);
    EXPECT_EQ(probe.unloads, unloadsBefore + 1);
    probe.unload();
    EXPECT_TRUE(probe.isUnloaded());
    EXPECT_TRUE(probe.load());
    EXPECT_EQ(probe.loads, 3u);
    probe.onlyReady = true;
    probe.reset();
    EXPECT_TRUE(probe.isUnloaded());
    EXPECT_TRUE(probe.load());
    EXPECT_EQ(probe.getLoadState(), RESOURCE_LOAD_STATE::READY_FOR_RENDERING);
    EXPECT_TRUE(probe.load());
    EXPECT_EQ(probe.loads, 4u);
}

TEST(ResourceTest, aFailedLoadIsOneLineAndUnloaded) {
    RecordingLogger logger;
    Configuration configuration;
    configuration.logger = &logger;
    configuration.device = 1000000; // no such device: the system stays closed but knows its logger
    System system;
    ASSERT_FALSE(system.initialize(configuration));
    logger.messages.clear();
    Probe probe(&system);
    probe.setName("p");
    ASSERT_TRUE(probe.load());
    probe.setSetting();
    probe.succeeds = false;
    EXPECT_FALSE(probe.load());
    EXPECT_TRUE(probe.isUnloaded());
    EXPECT_EQ(logger.getText(),
              "[TestProbe] Could not load the test probe 'p': the probe was told to fail.\n");
    EXPECT_FALSE(probe.load()); // tried anew each time
    EXPECT_EQ(logger.messages.size(), 2u);
}

TEST(ResourceTest, belongsToItsSystemWhileThatLives) {
    ovMemory::UniquePtr<Probe> outliving;
    ovMemory::UniquePtr<Probe> other;
    {
        System system;
        outliving = std::make_unique<Probe>(&system);
        other = std::make_unique<Probe>(&system);
        Probe inner(&system); // leaves first: the others take its place in the system's list
        EXPECT_EQ(outliving->getSystem(), &system);
    }
    EXPECT_EQ(outliving->getSystem(), nullptr);
    EXPECT_EQ(other->getSystem(), nullptr);
    outliving->succeeds = false;
    EXPECT_FALSE(outliving->load()); // nobody to tell
    outliving.reset();
    other.reset();

    ASSERT_EQ(System::getInstanceIfExisting(), nullptr);
    EXPECT_EQ(Probe(nullptr).getSystem(), System::getInstance());
    System::kill();
}
