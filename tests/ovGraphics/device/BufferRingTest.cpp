#include <algorithm>
#include <gtest/gtest.h>
#include <ovGraphics/device/BufferRing.h>
#include <ovGraphics/device/CountingDevice.h>

using namespace ovGraphics::device;

namespace {

constexpr std::size_t PAGE = BufferRing::PAGE_SIZE;

class BufferRingTest : public testing::Test {
protected:
    GpuBuffer* update(uint64_t frame) { return _ring.update(_device, _bytes, frame, _error); }
    void write(std::size_t at, unsigned char value) {
        _bytes[at] = value;
        _ring.markChanged(at, at + 1);
    }
    bool holdsTheBytes(const GpuBuffer* buffer) const {
        const auto held = CountingDevice::getBytes(*buffer);
        return std::equal(_bytes.begin(), _bytes.end(), held.begin());
    }
    uint64_t uploads() const { return _device.getCounts().bufferUploads; }
    uint64_t uploadedBytes() const { return _device.getCounts().uploadedBytes; }

    CountingDevice _device;
    BufferRing _ring{BUFFER_USAGE::VERTICES};
    ovMemory::Buffer<unsigned char> _bytes;
    ovMemory::String _error;
};

} // namespace

TEST_F(BufferRingTest, whatDoesNotChangeIsUploadedOnce) {
    EXPECT_EQ(update(1), nullptr);
    EXPECT_EQ(_ring.getCurrent(), nullptr);
    _bytes.assign(3 * PAGE + 5, 7);
    const GpuBuffer* buffer = update(1);
    ASSERT_NE(buffer, nullptr);
    EXPECT_TRUE(holdsTheBytes(buffer));
    for (uint64_t frame = 2; frame < 9; ++frame)
        EXPECT_EQ(update(frame), buffer);
    EXPECT_EQ(uploads(), 1u);
    EXPECT_EQ(_ring.getCurrent(), buffer);
}

TEST_F(BufferRingTest, changesGoToCopiesThatNoFrameOnItsWayReads) {
    _bytes.assign(3 * PAGE + 5, 7);
    ovMemory::Buffer<const GpuBuffer*> lastThree;
    for (uint64_t frame = 1; frame < 40; ++frame) {
        write(frame * 331 % _bytes.size(), static_cast<unsigned char>(frame));
        const GpuBuffer* buffer = update(frame);
        ASSERT_TRUE(holdsTheBytes(buffer)) << frame;
        ASSERT_EQ(std::find(lastThree.begin(), lastThree.end(), buffer), lastThree.end()) << frame;
        lastThree.push_back(buffer);
        if (lastThree.size() == FRAMES_IN_FLIGHT)
            lastThree.erase(lastThree.begin());
    }
    EXPECT_EQ(_device.getCounts().objects, FRAMES_IN_FLIGHT) << "copies";
}

TEST_F(BufferRingTest, uploadsThePagesThatACopyLacks) {
    _bytes.assign(8 * PAGE, 7);
    for (uint64_t frame = 1; frame < 4; ++frame) {
        write(0, static_cast<unsigned char>(frame));
        update(frame); // every copy is there
    }
    const uint64_t before = uploadedBytes();
    write(2 * PAGE, 9);
    write(3 * PAGE - 1, 9);
    write(6 * PAGE, 9);
    EXPECT_TRUE(holdsTheBytes(update(4)));
    // Two pages now, and the first for the changes of frames 2 and 3, which this copy has not seen.
    EXPECT_EQ(uploadedBytes() - before, 3 * PAGE);
}

TEST_F(BufferRingTest, growsShrinksAndStartsAnew) {
    uint64_t frame = 0;
    for (const std::size_t size : {PAGE / 2, 2 * PAGE, 5 * PAGE + 1, PAGE, 6 * PAGE}) {
        const std::size_t known = _bytes.size();
        _bytes.resize(size, static_cast<unsigned char>(size / 100));
        if (size > known)
            _ring.markChanged(known, size);
        ASSERT_TRUE(holdsTheBytes(update(frame += 5))) << size;
    }
    _ring.clear();
    EXPECT_EQ(_ring.getCurrent(), nullptr);
    EXPECT_TRUE(holdsTheBytes(update(frame)));
}
