#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <ovGraphics/scene/VertexPacking.h>
#include <support/Numbers.h>

using namespace ovGraphics;
using ovMaths::Vector;

TEST(VertexPackingTest, packsEveryFormatAsItsMemoryIs) {
    struct Case {
        FORMAT format;
        Vector value;
        ovMemory::Buffer<unsigned char> bytes; // little-endian, worked out by hand
    };
    const Case cases[] = {
        {FORMAT::R8G8B8A8_UNORM, {0.0f, 1.0f, 0.5f, -1.0f}, {0, 255, 128, 0}},
        {FORMAT::R8G8B8A8_UNORM, {NOT_A_NUMBER, INFINITE, -INFINITE, 2.0f}, {0, 255, 0, 255}},
        {FORMAT::R8G8B8A8_SNORM, {0.0f, 1.0f, -1.0f, -2.0f}, {0, 127, 0x81, 0x81}},
        {FORMAT::R8G8B8A8_UINT, {0.4f, 254.6f, 256.0f, NOT_A_NUMBER}, {0, 255, 255, 0}},
        {FORMAT::R8G8B8A8_SINT, {-128.0f, 127.0f, -129.0f, 128.0f}, {0x80, 0x7f, 0x80, 0x7f}},
        {FORMAT::R16G16_UNORM, {1.0f, 0.0f}, {0xff, 0xff, 0, 0}},
        {FORMAT::R16G16_SNORM, {-1.0f, 1.0f}, {0x01, 0x80, 0xff, 0x7f}},
        {FORMAT::R16G16_FLOAT, {1.0f, -2.0f}, {0x00, 0x3c, 0x00, 0xc0}},
        {FORMAT::R16G16_UINT, {258.0f, 65536.0f}, {2, 1, 0xff, 0xff}},
        {FORMAT::R32_UINT, {4294967296.0f, 0.0f}, {0xff, 0xff, 0xff, 0xff}},
        {FORMAT::R32_SINT, {-INFINITE, 0.0f}, {0, 0, 0, 0x80}},
        {FORMAT::R32G32_FLOAT, {1.0f, -0.0f}, {0, 0, 0x80, 0x3f, 0, 0, 0, 0x80}},
        {FORMAT::R32G32B32_FLOAT, {1.0f, 0.0f, 2.0f, 9.0f}, {0, 0, 0x80, 0x3f, 0, 0, 0, 0, 0, 0, 0, 0x40}},
    };
    for (const Case& current : cases) {
        VertexComposition composition;
        ASSERT_TRUE(composition.addAttribute("VALUE", current.format));
        EXPECT_EQ(packVertices(composition, ovMemory::Buffer<Vector>{current.value}), current.bytes)
            << static_cast<unsigned int>(current.format) << ' ' << current.value.toString();
    }
}

TEST(VertexPackingTest, putsAttributesOneAfterAnother) {
    VertexComposition composition;
    ASSERT_TRUE(composition.addAttribute("A", FORMAT::R8G8B8A8_UINT));
    ASSERT_TRUE(composition.addAttribute("B", FORMAT::R16G16_UINT));
    const ovMemory::Buffer<Vector> values = {
        {1.0f, 2.0f, 3.0f, 4.0f}, {5.0f, 6.0f}, {7.0f, 8.0f, 9.0f, 10.0f}, {11.0f, 12.0f}};
    EXPECT_EQ(packVertices(composition, values),
              (ovMemory::Buffer<unsigned char>{1, 2, 3, 4, 5, 0, 6, 0, 7, 8, 9, 10, 11, 0, 12, 0}));
}
