#include <gtest/gtest.h>
#include <ovGraphics/device/BufferRing.h>
#include <ovGraphics/device/CountingDevice.h>
#include <ovGraphics/resources/ConstantPool.h>

using namespace ovGraphics;

namespace {

class ConstantPoolTest : public testing::Test {
protected:
    const ConstantBlock* acquire(unsigned char value, std::size_t size = 32) {
        return _pool.acquire(ovMemory::Buffer<unsigned char>(size, value), _error);
    }
    uint64_t uploads() const { return _device.getCounts().bufferUploads; }

    device::CountingDevice _device;
    uint64_t _frame = 1;
    ConstantPool _pool{_device, _frame};
    ovMemory::String _error;
};

} // namespace

TEST_F(ConstantPoolTest, equalBytesAreOneBlock) {
    const ConstantBlock* block = acquire(1);
    EXPECT_EQ(acquire(1), block);
    EXPECT_EQ(block->users, 2u);
    EXPECT_NE(acquire(2), block);
    EXPECT_NE(acquire(1, 48), block);
    EXPECT_EQ(uploads(), 3u);
    EXPECT_EQ(device::CountingDevice::getBytes(*block->buffer)[31], 1);
}

TEST_F(ConstantPoolTest, blocksAreWrittenAgainWhenNoFrameReadsThem) {
    const ConstantBlock* first = acquire(1);
    const device::GpuBuffer* buffer = first->buffer.get();
    _pool.release(first);
    _frame += device::FRAMES_IN_FLIGHT - 1;
    EXPECT_NE(acquire(2)->buffer.get(), buffer) << "a frame on its way may read it";
    ++_frame;
    EXPECT_EQ(acquire(3)->buffer.get(), buffer);
    EXPECT_EQ(_device.getCounts().objects, 2u);
    EXPECT_NE(acquire(1)->buffer.get(), buffer) << "its old bytes are gone";
}

TEST_F(ConstantPoolTest, aBlockIsKeptForItsLastUser) {
    const ConstantBlock* shared = acquire(1);
    EXPECT_EQ(acquire(1), shared);
    _pool.release(shared);
    _frame += 2 * device::FRAMES_IN_FLIGHT;
    EXPECT_NE(acquire(2), shared);
    EXPECT_EQ(device::CountingDevice::getBytes(*shared->buffer)[0], 1);
}

TEST_F(ConstantPoolTest, bytesThatNobodyUsesServeAgainMeanwhile) {
    const ConstantBlock* first = acquire(1);
    const ConstantBlock* second = acquire(2);
    for (int i = 0; i < 10; ++i, ++_frame) { // two cameras in turns
        _pool.release(first);
        first = acquire(1);
        _pool.release(second);
        second = acquire(2);
    }
    EXPECT_EQ(uploads(), 2u);
}

TEST_F(ConstantPoolTest, aValueThatChangesInEveryFrameTakesFewBlocks) {
    const ConstantBlock* still = acquire(255);
    const ConstantBlock* moving = nullptr;
    for (unsigned char i = 0; i < 100; ++i, ++_frame) {
        _pool.release(still); // used in every frame, and never the oldest
        still = acquire(255);
        if (moving)
            _pool.release(moving);
        moving = acquire(i);
    }
    EXPECT_LE(_device.getCounts().objects, 1 + device::FRAMES_IN_FLIGHT + 1);
}

TEST_F(ConstantPoolTest, refusalsSayWhy) {
    EXPECT_EQ(acquire(1, _device.getInfo().maxConstantBufferSize + 16), nullptr);
    EXPECT_NE(_error, "");
}
