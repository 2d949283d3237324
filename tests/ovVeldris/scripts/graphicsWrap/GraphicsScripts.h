// What the tests of the graphics bindings share.
#pragma once

#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovVeldris/scripts/ScriptsEngine.h>
#include <support/HeadlessSystem.h>
#include <support/Lua.h>

/// An environment with all declarations beside the graphics singleton, which draws without a window.
class GraphicsScripts : public testing::Test {
protected:
    static void SetUpTestSuite() {
        ASSERT_TRUE(ovGraphics::System::getInstance()->initialize(
            HeadlessSystem::makeConfiguration(ovGraphics::SHADER_LANGUAGE::GLSL, &getLogger())));
    }
    static void TearDownTestSuite() {
        ovGraphics::System::kill();
        getLogger().messages.clear();
    }
    static RecordingLogger& getLogger() {
        static RecordingLogger logger;
        return logger;
    }
    static ovGraphics::System& getGraphics() { return ovGraphics::System::getInstanceRef(); }

    GraphicsScripts() {
        ovVeldris::ScriptsEngine::setupScriptsEnvironment(environment.get(), nullptr);
        getLogger().messages.clear();
    }

    ovMemory::String evaluate(ovMemory::StringView text) { return luaTest::evaluate(*environment, text); }

    /// What a text returns in the environment of a worker.
    static ovMemory::String evaluateOnWorker(ovMemory::StringView text) {
        const auto worker = luaTest::luaEnvironment({.isWorker = true});
        ovVeldris::ScriptsEngine::setupScriptsEnvironment(worker.get(), nullptr);
        return luaTest::evaluate(*worker, text);
    }

    ovMemory::UniquePtr<ovScripts::Environment> environment = luaTest::luaEnvironment();
};
