#include <ovVeldris/System.h>

#include <ovVeldris/complexEffects/TestComplexEffect.h>
#include <ovVeldris/content/ContentLoader.h>
#include <ovVeldris/content/ProjectLoader.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/SingletonTest.h>
#include <ovVeldris/core/TestGraphics.h>
#include <ovVeldris/environment/EnvironmentRenderer.h>
#include <ovVeldris/environment/PbsEnvironmentMapFilter.h>
#include <ovVeldris/materials/TestMaterial.h>
#include <ovVeldris/scripts/ScriptsEngine.h>

using namespace ovVeldris;

namespace {

class SystemTest : public SingletonTest {
protected:
    RecordingLogger log;
};

/// Which parts a system has, such as "log tools managers graphics scripts".
ovMemory::String getParts(const System& system) {
    ovMemory::String parts;
    const auto add = [&parts](bool present, ovMemory::StringView name) {
        if (present)
            parts.append(parts.empty() ? "" : " ").append(name);
    };
    add(system.getLogManager(), "log");
    add(system.getPbsEnvironmentMapFilter() && system.getEnvironmentRenderer(), "tools");
    add(system.getComplexEffectManager() && system.getEffectManager() && system.getMaterialManager(),
        "managers");
    add(system.getScriptsEngine()->getIsInitialized(), "scripts");
    const ovGraphics::System* const graphics = system.getGraphicsEngine()->getGraphicsSystem();
    add(graphics && graphics->getIsInitialized(), "graphics");
    add(system.getGraphicsEngine()->getProgramTrackersHolder(), "trackers");
    // Never in parts.
    EXPECT_EQ(system.getPbsEnvironmentMapFilter() == nullptr, system.getEnvironmentRenderer() == nullptr);
    EXPECT_EQ(system.getComplexEffectManager() == nullptr, system.getEffectManager() == nullptr);
    EXPECT_EQ(system.getComplexEffectManager() == nullptr, system.getMaterialManager() == nullptr);
    return parts;
}

constexpr auto ALL_SINGLETONS =
    "System LogManager ComplexEffectManager EffectManager MaterialManager Graphics";
constexpr auto ALL_PARTS = "log tools managers scripts graphics trackers";

} // namespace

TEST_F(SystemTest, ConstructionMakesEverythingButManagersAndGraphics) {
    const System system;
    EXPECT_EQ(getParts(system), "log tools");
    EXPECT_EQ(system.getLogManager()->getReceiver(), nullptr);
    EXPECT_EQ(system.getScriptsEngine()->getSystem(), &system);
    EXPECT_EQ(system.getContentLoader()->getSystem(), &system);
    EXPECT_EQ(system.getProjectLoader()->getSystem(), &system);
    EXPECT_EQ(system.getPbsEnvironmentMapFilter()->getSystem(), &system);
    EXPECT_EQ(system.getEnvironmentRenderer()->getSystem(), &system);
    EXPECT_FALSE(system.isTheSingletonInstance());
    EXPECT_EQ(getExisting(), "") << "an ordinary system makes no singleton";
}

TEST_F(SystemTest, ShutdownWithoutInitialize) {
    System system;
    for (int round = 0; round < 2; ++round) {
        system.shutdown();
        EXPECT_EQ(getParts(system), "");
        EXPECT_NE(system.getGraphicsEngine(), nullptr);
        EXPECT_NE(system.getContentLoader(), nullptr);
        EXPECT_NE(system.getProjectLoader(), nullptr);
    }
    EXPECT_EQ(getExisting(), "");
}

TEST_F(SystemTest, OrdinarySystemHasEverythingToItself) {
    System first;
    System second;
    ASSERT_TRUE(first.initialize(makeWorkingConfiguration(&log))) << log.getText();
    ASSERT_TRUE(second.initialize(makeWorkingConfiguration(&log))) << log.getText();
    EXPECT_EQ(getParts(first), ALL_PARTS);
    EXPECT_EQ(getParts(second), ALL_PARTS);
    EXPECT_NE(first.getEffectManager(), second.getEffectManager());
    EXPECT_NE(first.getLogManager(), second.getLogManager());
    EXPECT_NE(first.getGraphicsEngine()->getGraphicsSystem(),
              second.getGraphicsEngine()->getGraphicsSystem());
    EXPECT_EQ(getExisting(), "");
    first.shutdown();
    EXPECT_EQ(getParts(second), ALL_PARTS) << "the other system goes on";
}

TEST_F(SystemTest, ShutdownIsFinalForLogAndTools) {
    System system;
    ASSERT_TRUE(system.initialize(makeWorkingConfiguration(&log)));
    system.shutdown();
    EXPECT_EQ(getParts(system), "");
    system.shutdown();
    ASSERT_TRUE(system.initialize(makeWorkingConfiguration(&log)));
    EXPECT_EQ(getParts(system), "managers scripts graphics trackers");
    EXPECT_EQ(system.getMaterialManager()->createOrRetrieve("a", MATERIAL_TYPE::UNKNOWN), nullptr)
        << "a failure without a log manager to tell it to";
}

TEST_F(SystemTest, HostsGraphicsSystemIsShutDownButNotDeleted) {
    bool deleted = false;
    const auto host = std::make_unique<HostGraphics>(deleted);
    ASSERT_TRUE(host->initialize(makeWorkingConfiguration(&log).graphicsConfiguration)) << log.getText();
    {
        System system;
        ASSERT_TRUE(system.initialize(makeFailingConfiguration(&log, host.get())))
            << "an initialised system is not initialised again";
        EXPECT_EQ(system.getGraphicsEngine()->getGraphicsSystem(), host.get());
        system.shutdown();
        EXPECT_FALSE(host->getIsInitialized());
    }
    EXPECT_FALSE(deleted);
}

TEST_F(SystemTest, FailedInitializeLeavesTheManagersOut) {
    System system;
    EXPECT_FALSE(system.initialize(makeFailingConfiguration(&log)));
    EXPECT_EQ(getParts(system), "log tools");
    ASSERT_TRUE(system.initialize(makeWorkingConfiguration(&log)));
    EXPECT_EQ(getParts(system), ALL_PARTS);
}

TEST_F(SystemTest, InitializingAgainStartsAnew) {
    System system;
    ASSERT_TRUE(system.initialize(makeWorkingConfiguration(&log)));
    system.getComplexEffectManager()->record("a",
                                             std::make_unique<TestComplexEffect>(COMPLEX_EFFECT_TYPE::BLUR));
    ASSERT_TRUE(system.initialize(makeWorkingConfiguration(&log)));
    EXPECT_EQ(TestComplexEffect::alive, 0);
    EXPECT_EQ(getParts(system), ALL_PARTS);
}

TEST_F(SystemTest, ManagersGoFirstWhileEverythingElseRuns) {
    System system;
    ASSERT_TRUE(system.initialize(makeWorkingConfiguration(&log)));
    ovMemory::Buffer<ovMemory::String> seen;
    system.getComplexEffectManager()->record(
        "a", std::make_unique<TestComplexEffect>(COMPLEX_EFFECT_TYPE::BLUR,
                                                 [&] { seen.push_back(getParts(system)); }));
    system.getMaterialManager()->record("a", std::make_unique<TestMaterial>(MATERIAL_TYPE::PBS));
    system.shutdown();
    EXPECT_EQ(seen, ovMemory::Buffer<ovMemory::String>{ALL_PARTS});
    EXPECT_EQ(TestMaterial::alive, 0);
}

TEST_F(SystemTest, SingletonSharesTheSingletons) {
    System* const system = System::getInstance();
    EXPECT_TRUE(system->isTheSingletonInstance());
    EXPECT_EQ(getExisting(), "System LogManager");
    EXPECT_EQ(system->getLogManager(), LogManager::getInstance());
    EXPECT_EQ(getParts(*system), "log tools");

    ASSERT_TRUE(system->initialize(makeWorkingConfiguration(&log))) << log.getText();
    EXPECT_EQ(getParts(*system), ALL_PARTS);
    EXPECT_EQ(getExisting(), ALL_SINGLETONS);
    EXPECT_EQ(system->getComplexEffectManager(), ComplexEffectManager::getInstance());
    EXPECT_EQ(system->getEffectManager(), EffectManager::getInstance());
    EXPECT_EQ(system->getMaterialManager(), MaterialManager::getInstance());
    EXPECT_EQ(system->getGraphicsEngine()->getGraphicsSystem(), ovGraphics::System::getInstance());

    system->shutdown();
    EXPECT_EQ(getParts(*system), "");
    EXPECT_EQ(getExisting(), "System Graphics");
    system->shutdown();
}

TEST_F(SystemTest, EndingTheSingletonByAnyRouteLeavesNoSingleton) {
    using Route = void (*)();
    const Route routes[] = {
        [] { System::kill(); },
        [] { delete System::getInstance(); },
        [] {
            System::getInstance()->shutdown();
            System::kill();
        },
        [] { // managers made again after the shutdown go too
            System::getInstance()->shutdown();
            EffectManager::getInstance();
            ComplexEffectManager::getInstance();
            MaterialManager::getInstance();
            System::kill();
        },
        [] { // parts killed by themselves
            EffectManager::kill();
            ComplexEffectManager::kill();
            MaterialManager::kill();
            LogManager::kill();
            ovGraphics::System::kill();
            EXPECT_EQ(getExisting(), "System");
            EXPECT_EQ(getParts(*System::getInstance()), "tools scripts");
            System::kill();
        },
    };
    for (const Route route : routes) {
        ASSERT_TRUE(System::getInstance()->initialize(makeWorkingConfiguration(&log))) << log.getText();
        route();
        EXPECT_EQ(getExisting(), "");
    }
}

TEST_F(SystemTest, KillingAManagerKillsOnlyThat) {
    System* const system = System::getInstance();
    ASSERT_TRUE(system->initialize(makeWorkingConfiguration(&log)));
    EffectManager::kill();
    EXPECT_EQ(getExisting(), "System LogManager ComplexEffectManager MaterialManager Graphics");
    EXPECT_EQ(system->getEffectManager(), nullptr);
    EffectManager* const second = EffectManager::getInstance();
    EXPECT_EQ(system->getEffectManager(), second);
}

TEST_F(SystemTest, ManagersBeforeTheSystemAreTakenOver) {
    EffectManager* const effects = EffectManager::getInstance();
    EXPECT_EQ(getExisting(), "System LogManager EffectManager");
    System* const system = System::getInstance();
    EXPECT_EQ(getParts(*system), "log tools") << "neither initialised nor given the manager yet";
    ComplexEffectManager* const complexEffects = ComplexEffectManager::getInstance();
    MaterialManager* const materials = MaterialManager::getInstance();
    ASSERT_TRUE(system->initialize(makeWorkingConfiguration(&log)));
    EXPECT_EQ(system->getEffectManager(), effects);
    EXPECT_EQ(system->getComplexEffectManager(), complexEffects);
    EXPECT_EQ(system->getMaterialManager(), materials);
}

TEST_F(SystemTest, ManagersOfAnUninitialisedSingletonGoWithIt) {
    EffectManager::getInstance();
    ComplexEffectManager::getInstance()->record(
        "a", std::make_unique<TestComplexEffect>(COMPLEX_EFFECT_TYPE::DOF));
    MaterialManager::getInstance();
    System::kill();
    EXPECT_EQ(getExisting(), "");
    EXPECT_EQ(TestComplexEffect::alive, 0);
}

TEST_F(SystemTest, SingletonTakesOverAnExistingLogManager) {
    LogManager::getInstance()->setReceiver(&log);
    EXPECT_EQ(getExisting(), "LogManager") << "the log manager needs no system";
    logMessage(System::getInstance(), "text", "Test");
    EXPECT_TRUE(log.contains("text"));
    System::getInstance()->shutdown();
    EXPECT_EQ(LogManager::getInstanceIfExisting(), nullptr) << "shutdown deletes it";
    LogManager::getInstance();
    EXPECT_EQ(System::getInstance()->getLogManager(), nullptr) << "and never takes another";
}

TEST_F(SystemTest, AnOrdinarySystemBesideTheSingletonLeavesItAlone) {
    System::getInstance();
    EffectManager::getInstance();
    {
        System system;
        ASSERT_TRUE(system.initialize(makeWorkingConfiguration(&log)));
        EXPECT_NE(system.getEffectManager(), EffectManager::getInstance());
    }
    EXPECT_EQ(getExisting(), "System LogManager EffectManager");
}

TEST_F(SystemTest, SystemOrSingleton) {
    System system;
    EXPECT_EQ(systemOrSingleton(&system), &system);
    EXPECT_EQ(getExisting(), "");
    System* const singleton = systemOrSingleton(nullptr);
    EXPECT_EQ(singleton, System::getInstanceIfExisting());
    EXPECT_NE(singleton, nullptr);
}
