#include <cstdio>
#include <cstdlib>
#include <ovGraphics/device/DeviceTesting.h>

namespace ovGraphics::device::testing {

TEST(GlContext, opensWithoutADisplay) {
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    setenv("LIBGL_ALWAYS_SOFTWARE", "kept", 1);
    for (const bool software : {true, false}) {
        DeviceRequest request;
        request.software = software;
        ovMemory::String error;
        const auto device = createDevice(request, error);
        ASSERT_TRUE(device) << error;
        EXPECT_EQ(error, "");
        const DeviceInfo& info = device->getInfo();
        EXPECT_TRUE(info.headless);
        EXPECT_TRUE(info.software || !software) << info.renderer;
        EXPECT_FALSE(info.vendor.empty());
        EXPECT_FALSE(info.renderer.empty());
        EXPECT_NE(info.version.find("4.5"), info.version.npos) << info.version;
        // The least that OpenGL 4.5 asks for.
        EXPECT_GE(info.maxTextureSize, 16384u);
        EXPECT_GE(info.maxCubeSize, 16384u);
        EXPECT_GE(info.maxArraySlices, 2048u);
        EXPECT_GE(info.maxSamples, 1u);
        EXPECT_EQ(info.maxColorTargets, 8u);
        EXPECT_GE(info.maxTextureUnits, 96u);
        EXPECT_GE(info.maxConstantBufferSize, 16384u);
        EXPECT_GE(info.maxAnisotropy, 1.0f);
        // There is no window: nothing happens.
        unsigned int width = 7;
        unsigned int height = 7;
        device->getWindowSize(width, height);
        EXPECT_EQ(width + height, 0u);
        EXPECT_FALSE(device->windowShouldClose());
        device->pollWindowEvents();
        device->present(*makeTexture(*device, flat(FORMAT::R8G8B8A8_UNORM, 1, 1)));
    }
    EXPECT_STREQ(std::getenv("LIBGL_ALWAYS_SOFTWARE"), "kept");
    unsetenv("LIBGL_ALWAYS_SOFTWARE");
}

TEST(GlContext, devicesAreChosenByIndex) {
    const auto lines = listDevices();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(lines[i].find(std::to_string(i) + ": "), 0u) << lines[i];
        DeviceRequest request;
        request.index = static_cast<int>(i);
        ovMemory::String error;
        const auto device = createDevice(request, error);
        // A device that this user may not open is listed with the reason.
        EXPECT_NE(lines[i].find(device ? device->getInfo().renderer : error), lines[i].npos) << lines[i];
    }
    DeviceRequest request;
    request.index = 1000;
    ovMemory::String error;
    EXPECT_FALSE(createDevice(request, error));
    EXPECT_EQ(error, "There is no device 1000: EGL lists " + std::to_string(lines.size()) +
                         ", counted from 0. Choose one of those, or the software device.");
}

TEST(GlContext, noDriverIsToldWithWhatToDo) {
    // EGL reads the list of its drivers once a process: a child that starts anew gets an empty one.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            setenv("__EGL_VENDOR_LIBRARY_FILENAMES", "/nonexistent/driver.json", 1);
            ovMemory::String error;
            const auto device = createDevice({}, error);
            const bool told = !device &&
                              error.find("No OpenGL 4.5 device could be opened without a display: ") == 0 &&
                              error.find("Install a driver") != error.npos;
            fprintf(stderr, "%s\n", error.c_str());
            std::exit(told ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "No OpenGL 4.5 device could be opened");
}

} // namespace ovGraphics::device::testing
