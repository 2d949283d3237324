#include <veldris/Session.h>

#include <cstdlib>
#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>

namespace {

using veldris::DrawingOptions;

DrawingOptions optionsWith(const char* language, const char* device, const char* cache, bool noCache) {
    DrawingOptions options;
    options.language = language;
    options.device = device;
    options.cache = cache;
    options.noCache = noCache;
    return options;
}

TEST(SessionTest, optionsBecomeAConfiguration) {
    ovGraphics::Configuration configuration;
    ovMemory::String error;
    ASSERT_TRUE(
        veldris::toConfiguration(optionsWith("hlsl", "software", "folder", false), configuration, error));
    EXPECT_EQ(configuration.language, ovGraphics::SHADER_LANGUAGE::HLSL);
    EXPECT_TRUE(configuration.software);
    EXPECT_EQ(configuration.device, -1);
    EXPECT_EQ(configuration.cacheFolder, "folder");

    configuration = {};
    ASSERT_TRUE(veldris::toConfiguration(optionsWith("glsl", "3", "folder", true), configuration, error));
    EXPECT_EQ(configuration.language, ovGraphics::SHADER_LANGUAGE::GLSL);
    EXPECT_EQ(configuration.device, 3);
    EXPECT_TRUE(configuration.cacheFolder.empty());
}

TEST(SessionTest, wrongOptionsAreNamed) {
    ovGraphics::Configuration configuration;
    ovMemory::String error;
    EXPECT_FALSE(veldris::toConfiguration(optionsWith("cg", "", "", false), configuration, error));
    EXPECT_EQ(error, "'cg' is no shader language; --language takes glsl or hlsl.");
    for (const char* device : {"gpu", "-2", "1x"}) {
        EXPECT_FALSE(veldris::toConfiguration(optionsWith("glsl", device, "", false), configuration, error));
        EXPECT_EQ(error,
                  "'" + ovMemory::String(device) +
                      "' is no device; --device takes software or a number that 'veldris info' lists.");
    }
}

TEST(SessionTest, cacheFolderFollowsTheUsersSettings) {
    setenv("XDG_CACHE_HOME", "/a/cache", 1);
    EXPECT_EQ(veldris::defaultCacheFolder(), "/a/cache/veldris");
    unsetenv("XDG_CACHE_HOME");
    setenv("HOME", "/a/home", 1);
    EXPECT_EQ(veldris::defaultCacheFolder(), "/a/home/.cache/veldris");
    unsetenv("HOME");
    EXPECT_EQ(veldris::defaultCacheFolder(), "");
}

TEST(SessionTest, opensASoftwareDevice) {
    veldris::Session session;
    ovMemory::String error;
    ASSERT_TRUE(session.open(optionsWith("glsl", "software", "", true), error)) << error;
    EXPECT_TRUE(session.getGraphics().getDeviceInfo()->software);
}

TEST(SessionTest, theTimeStandsStill) {
    for (const double seconds : {0.0, 12.5}) {
        DrawingOptions options = optionsWith("glsl", "software", "", true);
        options.time = seconds;
        veldris::Session session;
        ovMemory::String error;
        ASSERT_TRUE(session.open(options, error)) << error;
        EXPECT_EQ(session.getGraphics().getFrameTime().seconds, seconds);
    }
}

TEST(SessionTest, aDeviceThatIsNotThereIsOneClearLine) {
    veldris::Session session;
    ovMemory::String error;
    EXPECT_FALSE(session.open(optionsWith("glsl", "4000", "", true), error));
    EXPECT_NE(error.find("4000"), ovMemory::String::npos) << error;
    EXPECT_EQ(error.find('\n'), ovMemory::String::npos) << error;
}

} // namespace
