#include <chrono>
#include <ovGraphics/device/DeviceTesting.h>

namespace ovGraphics::device::testing {

TEST(GlTimer, measuresTheDrawsBetweenItsPoints) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const auto texture = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, 256, 256));
    const auto program = makeProgram(
        *device,
        pixelText(
            "float sum = uv.x; for (int i = 0; i < 200; ++i) sum = sin(sum + uv.y); colour = vec4(sum);"));
    drawOver(*device, *texture, *program); // the first draw also compiles
    const auto timer = device->createTimer();
    const auto outer = device->createTimer();
    EXPECT_EQ(timer->getMilliseconds(), 0.0); // nothing measured yet
    const auto start = std::chrono::steady_clock::now();
    outer->begin();
    timer->begin();
    drawOver(*device, *texture, *program);
    timer->end();
    drawOver(*device, *texture, *program);
    outer->end();
    const double wall =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    // 65536 texels x 200 sines take milliseconds on a processor; the submission alone takes none.
    EXPECT_GT(timer->getMilliseconds(), 0.5);
    EXPECT_GT(outer->getMilliseconds(), timer->getMilliseconds());
    EXPECT_LE(outer->getMilliseconds(), wall);
    EXPECT_EQ(timer->getMilliseconds(), timer->getMilliseconds());
    expectNoDriverErrors(*device);
}

} // namespace ovGraphics::device::testing
