#include <chrono>
#include <cstdlib>
#include <ovGraphics/VirtualDisplay.h>
#include <ovGraphics/device/DeviceTesting.h>

namespace ovGraphics::device::testing {

namespace {

DeviceRequest windowRequest(unsigned int width, unsigned int height) {
    DeviceRequest request;
    request.windowed = true;
    request.debugOutput = true;
    request.windowWidth = width;
    request.windowHeight = height;
    request.windowTitle = "test";
    return request;
}

/// Waits until the screen shows a colour at a place; the window stands in its top left corner. The server
/// draws when it gets to it, so what it shows is asked again and again for a while.
void expectShown(Device& device, const VirtualDisplay& display, unsigned int x, unsigned int y,
                 const Bytes& expected) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    Bytes shown;
    do {
        device.pollWindowEvents();
        shown = display.readPixel(x, y);
    } while (shown != expected && std::chrono::steady_clock::now() < deadline);
    EXPECT_EQ(shown, expected) << x << ", " << y;
}

} // namespace

TEST(GlWindow, showsTheTopRowAtTheTop) {
    const VirtualDisplay display;
    if (!openWindowsOn(display))
        return;
    // The last window unloads the driver, whose own 56 lost bytes the leak checker could then put no name to:
    // this device keeps it loaded.
    const auto keepsDriver = openDevice();
    for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
        DeviceRequest request = windowRequest(64, 48);
        request.language = language;
        ovMemory::String error;
        const auto device = createDevice(request, error);
        ASSERT_TRUE(device) << error;
        EXPECT_FALSE(device->getInfo().headless);
        unsigned int width = 0;
        unsigned int height = 0;
        device->getWindowSize(width, height);
        EXPECT_EQ(width, 64u);
        EXPECT_EQ(height, 48u);
        for (const bool gammaCorrected : {false, true}) {
            TextureDesc desc = flat(FORMAT::R8G8B8A8_UNORM, 2, 2);
            desc.gammaCorrected = gammaCorrected;
            const auto texture = makeTexture(*device, desc);
            // Red and green above blue and a grey that would change if it were decoded.
            const Bytes texels = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 100, 100, 100, 255};
            device->uploadTexture(*texture, 0, 0, texels, 0);
            device->present(*texture);
            expectShown(*device, display, 2, 2, Bytes{255, 0, 0});
            expectShown(*device, display, 61, 2, Bytes{0, 255, 0});
            expectShown(*device, display, 2, 45, Bytes{0, 0, 255});
            expectShown(*device, display, 61, 45, Bytes{100, 100, 100});
        }
        EXPECT_FALSE(device->windowShouldClose());
        // A window's device draws as a headless one does.
        const auto texture = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, 1, 2));
        drawOver(*device, *texture, *makeProgram(*device, pixelText("colour = vec4(uv, 0.0, 1.0);")));
        EXPECT_EQ(readFloats(*device, *texture)[1], 0.25f) << nameOf(language);
        expectNoDriverErrors(*device);
    }
}

TEST(GlWindow, windowsAndHeadlessDevicesTakeTurns) {
    const VirtualDisplay display;
    if (!openWindowsOn(display))
        return;
    const auto headless = openDevice();
    ovMemory::String error;
    auto first = createDevice(windowRequest(32, 32), error);
    ASSERT_TRUE(first) << error;
    const auto second = createDevice(windowRequest(16, 16), error);
    ASSERT_TRUE(second) << error;
    const auto texture = makeTexture(*headless, flat(FORMAT::R8G8B8A8_UNORM, 1, 1));
    const auto shown = makeTexture(*second, flat(FORMAT::R8G8B8A8_UNORM, 1, 1));
    headless->uploadTexture(*texture, 0, 0, Bytes{1, 2, 3, 4}, 0);
    second->uploadTexture(*shown, 0, 0, Bytes{5, 6, 7, 8}, 0);
    first->finish();
    first.reset();
    EXPECT_EQ(readBytes(*headless, *texture), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(readBytes(*second, *shown), (Bytes{5, 6, 7, 8}));
    second->present(*shown);
    expectShown(*second, display, 8, 8, Bytes{5, 6, 7});
    expectNoDriverErrors(*headless);
    expectNoDriverErrors(*second);
}

TEST(GlWindow, noDisplayIsToldWithWhatToDo) {
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    ovMemory::String error;
    EXPECT_FALSE(createDevice(windowRequest(32, 32), error));
    EXPECT_EQ(error.find("No window system could be reached: "), 0u) << error;
    EXPECT_NE(error.find("or draw without a window."), error.npos) << error;
    EXPECT_FALSE(createDevice(windowRequest(0, 32), error));
    EXPECT_EQ(error, "A window of 0x32 pixels cannot be opened: each side must be 1 to 32767.");
    EXPECT_FALSE(createDevice(windowRequest(32, 4000000000u), error));
    EXPECT_EQ(error, "A window of 32x4000000000 pixels cannot be opened: each side must be 1 to 32767.");
    // A headless device needs none of it.
    const auto device = openDevice();
    EXPECT_TRUE(device);
}

} // namespace ovGraphics::device::testing
