#include <gtest/gtest.h>
#include <ovGraphics/device/CountingDevice.h>
#include <ovGraphics/scene/SceneTesting.h>
#include <support/RecordingLogger.h>

using namespace ovGraphics;
using namespace ovGraphics::device;

namespace {

class CountingDeviceTest : public testing::Test {
protected:
    ovMemory::UniquePtr<GpuBuffer> makeBuffer(unsigned int size,
                                              BUFFER_USAGE usage = BUFFER_USAGE::VERTICES) {
        return _device.createBuffer(size, usage, _error);
    }
    void setTargetAndProgram() {
        _target = _device.createTarget({}, _error);
        _program = _device.createProgram({}, {}, 0, _error);
        _device.setTarget(*_target, {0, 0, 4, 4});
        _device.setProgram(*_program);
    }

    CountingDevice _device;
    ovMemory::UniquePtr<GpuTarget> _target;
    ovMemory::UniquePtr<GpuProgram> _program;
    ovMemory::String _error;
};

const unsigned char BYTES[] = {1, 2, 3, 4};

} // namespace

TEST_F(CountingDeviceTest, keepsTheBytesOfBuffersAndCountsUploads) {
    const auto buffer = makeBuffer(8);
    const auto other = makeBuffer(4);
    ASSERT_TRUE(buffer && other);
    _device.updateBuffer(*buffer, 2, BYTES);
    _device.copyBuffer(*buffer, 3, *other, 1, 2);
    const auto bytes = CountingDevice::getBytes(*buffer);
    EXPECT_EQ(ovMemory::Buffer<unsigned char>(bytes.begin(), bytes.end()),
              (ovMemory::Buffer<unsigned char>{0, 0, 1, 2, 3, 4, 0, 0}));
    const auto copied = CountingDevice::getBytes(*other);
    EXPECT_EQ(ovMemory::Buffer<unsigned char>(copied.begin(), copied.end()),
              (ovMemory::Buffer<unsigned char>{0, 2, 3, 0}));
    EXPECT_EQ(_device.getCounts().bufferUploads, 1u);
    EXPECT_EQ(_device.getCounts().uploadedBytes, 4u);
    EXPECT_EQ(_device.getCounts().bufferCopies, 1u);
    EXPECT_EQ(_device.takeDebugErrors(), "");
}

TEST_F(CountingDeviceTest, refusesWhatADeviceMustRefuse) {
    EXPECT_EQ(makeBuffer(0), nullptr);
    EXPECT_EQ(makeBuffer(_device.getInfo().maxConstantBufferSize + 1, BUFFER_USAGE::CONSTANTS), nullptr);
    EXPECT_EQ(_error,
              "A buffer of 16385 bytes cannot be made: one of constants has 1 to 16384, others have 1 "
              "or more");
    EXPECT_EQ(_device.createGeometry({}, _error), nullptr);
    EXPECT_EQ(_device.createTexture({.width = 0}, _error), nullptr);
    const auto buffer = makeBuffer(8);
    _device.updateBuffer(*buffer, 5, BYTES);
    _device.copyBuffer(*buffer, 0, *buffer, 7, 2);
    _device.drawFullScreenQuad();
    const auto geometry =
        _device.createGeometry({buffer.get(), 4, {}, nullptr, false, {{0, FORMAT::R32_FLOAT, 0}}}, _error);
    _device.drawGeometry(*geometry, {PRIMITIVE_TOPOLOGY::TRIANGLELIST, 3, buffer.get(), 4, 1, 2});
    _device.setConstantBuffer(1000, nullptr);
    _device.setTextureUnit(1000, nullptr, nullptr, TEXTURE_TYPE::TEXTURE_2D, false);
    EXPECT_EQ(_device.takeDebugErrors(),
              "Nothing was written to a buffer: 4 bytes from byte 5 do not fit in its 8\n"
              "Nothing was copied between buffers: 2 bytes from byte 0 of 8 to byte 7 of 8\n"
              "Nothing was drawn: no target is set\n"
              "Nothing was drawn: 2 instances of 4 bytes from instance 1 on are not in their buffer\n"
              "Constant buffer 1000 is beyond the device's limit of 36\n"
              "Texture unit 1000 is beyond the device's limit of 96");
    EXPECT_EQ(_device.takeDebugErrors(), "");
    EXPECT_EQ(_device.getCounts().draws, 0u);
}

TEST_F(CountingDeviceTest, countsEveryCallAndTheStatesThatChange) {
    setTargetAndProgram();
    _device.setProgram(*_program);
    RasterStateDesc raster;
    _device.setRasterState(raster);
    raster.cull = CULL_MODE::NONE;
    _device.setRasterState(raster);
    EXPECT_EQ(_device.getCounts().setCalls, 5u);
    EXPECT_EQ(_device.getStatistics().stateChanges, 3u) << "target, program, raster state";
    _device.drawFullScreenQuad();
    _device.clearColor(0, {});
    _device.clearDepthStencil(true, 1.0f, false, 0);
    EXPECT_EQ(_device.getCounts().draws, 1u);
    EXPECT_EQ(_device.getCounts().clears, 2u);
    _device.invalidateState();
    _device.drawFullScreenQuad();
    EXPECT_EQ(_device.takeDebugErrors(), "Nothing was drawn: no target is set");
}

TEST_F(CountingDeviceTest, knowsUploadsToBuffersThatTheFrameBeforeReads) {
    const auto constants = makeBuffer(16, BUFFER_USAGE::CONSTANTS);
    const auto vertices = makeBuffer(8);
    const auto instances = makeBuffer(8);
    const auto geometry =
        _device.createGeometry({vertices.get(), 4, {}, nullptr, false, {{0, FORMAT::R32_FLOAT, 0}}}, _error);
    setTargetAndProgram();
    for (GpuBuffer* buffer : {constants.get(), vertices.get(), instances.get()})
        _device.updateBuffer(*buffer, 0, BYTES);
    EXPECT_EQ(_device.getCounts().uploadsToBuffersInUse, 0u) << "new ones";
    _device.setConstantBuffer(0, constants.get());
    _device.drawGeometry(*geometry, {PRIMITIVE_TOPOLOGY::TRIANGLELIST, 3, instances.get(), 4, 0, 2});
    EXPECT_EQ(_device.getCounts().instances, 2u);
    uint64_t inUse = 0;
    for (GpuBuffer* buffer : {constants.get(), vertices.get(), instances.get()}) {
        _device.updateBuffer(*buffer, 0, BYTES);
        EXPECT_EQ(_device.getCounts().uploadsToBuffersInUse, ++inUse);
    }
    _device.nextFrame();
    _device.updateBuffer(*vertices, 0, BYTES);
    EXPECT_EQ(_device.getCounts().uploadsToBuffersInUse, ++inUse) << "the frame before";
    _device.nextFrame();
    _device.updateBuffer(*vertices, 0, BYTES);
    EXPECT_EQ(_device.getCounts().uploadsToBuffersInUse, inUse) << "two frames before";
}

TEST(CountingDeviceSystemTest, drawsWholeFrames) {
    RecordingLogger logger;
    Configuration configuration;
    configuration.logger = &logger;
    configuration.debugOutput = true;
    System system;
    EXPECT_FALSE(system.initialize(configuration, nullptr));
    EXPECT_EQ(logger.getText(), "[System] Could not open a graphics device: none was given.\n");
    auto device = std::make_unique<CountingDevice>();
    const CountingDevice& counter = *device;
    ASSERT_TRUE(system.initialize(configuration, std::move(device)));
    EXPECT_EQ(system.getDeviceInfo()->renderer, "counting device, draws nothing");
    {
        const auto target = Texture::create(&system);
        target->setUsableAsRenderTarget(true);
        ASSERT_TRUE(target->load());
        Stage stage(system, *target, 4.0f);
        const auto square = makeSquare(system);
        const SceneShader one(system, {1.0f, 0.0f});
        ASSERT_TRUE(one.loaded) << logger.getText();
        for (int i = 0; i < 3; ++i)
            stage.queue->addEntity(square.get(), &*one, nullptr);
        ASSERT_TRUE(stage.canvas.frame());
        EXPECT_EQ(counter.getCounts().draws, 1u);
        EXPECT_EQ(counter.getCounts().instances, 3u);
        EXPECT_EQ(counter.getCounts().clears, 1u);
        const uint64_t uploads = counter.getCounts().bufferUploads;
        ASSERT_TRUE(stage.canvas.frame());
        EXPECT_EQ(counter.getCounts().draws, 2u);
        EXPECT_EQ(counter.getCounts().bufferUploads, uploads);
    }
    system.shutdown();
    EXPECT_EQ(logger.getText(), "[System] Could not open a graphics device: none was given.\n");
}
