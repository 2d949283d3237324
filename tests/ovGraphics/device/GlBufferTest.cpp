#include <ovGraphics/device/DeviceTesting.h>

namespace ovGraphics::device::testing {

TEST(GlBuffer, shadersReadWhatWasWritten) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    ovMemory::String error;
    const auto buffer = device->createBuffer(48, BUFFER_USAGE::CONSTANTS, error);
    ASSERT_TRUE(buffer) << error;
    EXPECT_EQ(buffer->getSize(), 48u);
    const auto program =
        makeProgram(*device, pixelText("colour = values[0] + values[1] + values[2];",
                                       "layout(std140, binding = 5) uniform B { vec4 values[3]; };"));
    const auto texture = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, 1, 1));
    const auto draw = [&](GpuBuffer* bound) {
        device->setConstantBuffer(5, bound);
        drawOver(*device, *texture, *program);
        return texelOf(readFloats(*device, *texture), 1, 0, 0);
    };
    const auto write = [&](unsigned int offset, const ovMemory::Buffer<float>& values) {
        device->updateBuffer(*buffer, offset, bytesOf(values));
    };
    EXPECT_EQ(draw(buffer.get()), (Color{0, 0, 0, 0})); // new buffers hold zeros
    write(0, {1, 2, 3, 4, 10, 20, 30, 40, 100, 200, 300, 400});
    EXPECT_EQ(draw(buffer.get()), (Color{111, 222, 333, 444}));
    write(20, {50});
    EXPECT_EQ(draw(buffer.get()), (Color{111, 252, 333, 444}));
    EXPECT_EQ(draw(nullptr), (Color{0, 0, 0, 0})); // nothing bound reads zeros
    EXPECT_EQ(draw(buffer.get()), (Color{111, 252, 333, 444}));
    EXPECT_EQ(device->getStatistics().bufferUploads, 2u);
    expectNoDriverErrors(*device);
    write(44, {1, 2});
    EXPECT_EQ(device->takeDebugErrors(),
              "Nothing was written to a buffer: 8 bytes from byte 44 do not fit in its 48 bytes");
    write(~0u, {1});
    EXPECT_EQ(device->takeDebugErrors(),
              "Nothing was written to a buffer: 4 bytes from byte 4294967295 do not fit in its 48 bytes");
    EXPECT_EQ(draw(buffer.get()), (Color{111, 252, 333, 444}));
    device->updateBuffer(*buffer, 48, {}); // nothing, at the end
    expectNoDriverErrors(*device);
}

TEST(GlBuffer, theDeviceCopiesBetweenBuffersInTheOrderOfDraws) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    ovMemory::String error;
    const auto source = device->createBuffer(32, BUFFER_USAGE::VERTICES, error);
    const auto target = device->createBuffer(16, BUFFER_USAGE::CONSTANTS, error);
    const auto program = makeProgram(
        *device, pixelText("colour = value;", "layout(std140, binding = 5) uniform B { vec4 value; };"));
    const auto texture = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, 1, 1));
    const auto draw = [&] {
        device->setConstantBuffer(5, target.get());
        drawOver(*device, *texture, *program);
        return texelOf(readFloats(*device, *texture), 1, 0, 0);
    };
    device->updateBuffer(*source, 0, bytesOf(ovMemory::Buffer<float>{1, 2, 3, 4, 5, 6, 7, 8}));
    device->copyBuffer(*source, 8, *target, 0, 16);
    EXPECT_EQ(draw(), (Color{3, 4, 5, 6}));
    device->copyBuffer(*source, 0, *target, 12, 4);
    EXPECT_EQ(draw(), (Color{3, 4, 5, 1}));
    device->copyBuffer(*source, 32, *target, 16, 0); // nothing, at the ends
    expectNoDriverErrors(*device);
    device->copyBuffer(*source, 20, *target, 0, 16);
    device->copyBuffer(*source, 0, *target, 4, 16);
    EXPECT_EQ(device->takeDebugErrors(),
              "Nothing was copied between buffers: 16 bytes from byte 20 of 32 to byte 0 of 16\n"
              "Nothing was copied between buffers: 16 bytes from byte 0 of 32 to byte 4 of 16");
    EXPECT_EQ(draw(), (Color{3, 4, 5, 1}));
}

TEST(GlBuffer, impossibleSizesAreRefused) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    ovMemory::String error;
    EXPECT_FALSE(device->createBuffer(0, BUFFER_USAGE::VERTICES, error));
    EXPECT_EQ(error, "Buffer of 0 bytes cannot be made: its size must be 1 or more");
    const unsigned int limit = device->getInfo().maxConstantBufferSize;
    EXPECT_FALSE(device->createBuffer(limit + 1, BUFFER_USAGE::CONSTANTS, error));
    EXPECT_EQ(error, "Constant buffer of " + std::to_string(limit + 1) +
                         " bytes is larger than the device's limit of " + std::to_string(limit));
    EXPECT_TRUE(device->createBuffer(limit, BUFFER_USAGE::CONSTANTS, error)) << error;
    EXPECT_TRUE(device->createBuffer(limit + 1, BUFFER_USAGE::INDICES, error)) << error;
    EXPECT_EQ(error, "");
    expectNoDriverErrors(*device);
}

} // namespace ovGraphics::device::testing
