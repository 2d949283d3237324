#include <gtest/gtest.h>
#include <numeric>
#include <ovMemory/Memory.h>
#include <type_traits>
#include <utility>

using namespace ovMemory;

TEST(MemoryTest, PointersOwnAloneAndPassOnByMoving) {
    static_assert(!std::is_copy_constructible_v<UniquePtr<int>>);
    UniquePtr<int> first(new int(7));
    const int* const address = first.get();
    const UniquePtr<int> second = std::move(first);
    EXPECT_EQ(first, nullptr);
    EXPECT_EQ(second.get(), address);
    EXPECT_EQ(*second, 7);
}

TEST(MemoryTest, BuffersOwnContiguousElementsThatStartAtZero) {
    Buffer<float> buffer(5);
    for (const float value : buffer)
        EXPECT_EQ(value, 0.0f);
    std::iota(buffer.begin(), buffer.end(), 0.0f);
    for (std::size_t i = 0; i < buffer.size(); ++i)
        EXPECT_EQ(buffer.data()[i], float(i));
    const Buffer<float> copy = buffer;
    EXPECT_NE(copy.data(), buffer.data());
    EXPECT_EQ(copy, buffer);
}

TEST(MemoryTest, ViewsShareTheElementsOfTheirOwner) {
    Buffer<int> buffer = {1, 2, 3, 4};
    const BufferView<int> whole = buffer;
    const BufferView<const int> part = whole.subspan(1, 2);
    whole[1] = 20;
    EXPECT_EQ(part.size(), 2u);
    EXPECT_EQ(part[0], 20);
    EXPECT_EQ(part.data(), buffer.data() + 1);
}

TEST(MemoryTest, TextKeepsEveryByteAndSlicesDoNotCopy) {
    const String text("a\0\xC3\xA9z", 5);
    const StringView slice = StringView(text).substr(2);
    EXPECT_EQ(text.size(), 5u);
    EXPECT_EQ(slice.data(), text.data() + 2);
    EXPECT_EQ(String(slice), "\xC3\xA9z");
}
