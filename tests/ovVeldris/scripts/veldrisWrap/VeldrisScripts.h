// What the tests of the library's own bindings share.
#pragma once

#include <core/TestGraphics.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/scripts/ScriptsEngine.h>
#include <support/Lua.h>

/// The environment of the System singleton, which draws without a window.
class VeldrisScripts : public testing::Test {
protected:
    static void SetUpTestSuite() {
        ovVeldris::System* system = ovVeldris::System::getInstance();
        ASSERT_TRUE(system->initialize(makeWorkingConfiguration(&getLogger())));
        system->getLogManager()->setReceiver(&getLogger());
    }
    static void TearDownTestSuite() { ovVeldris::System::kill(); }
    static RecordingLogger& getLogger() {
        static RecordingLogger logger;
        return logger;
    }
    static ovVeldris::System& getSystem() { return ovVeldris::System::getInstanceRef(); }
    static ovGraphics::System& getGraphics() { return ovGraphics::System::getInstanceRef(); }

    VeldrisScripts() {
        getSystem().getScriptsEngine()->initialize();
        getLogger().messages.clear();
    }

    static ovMemory::String evaluate(ovMemory::StringView text) {
        return luaTest::evaluate(*getSystem().getScriptsEngine()->getEnvironment(), text);
    }
};
