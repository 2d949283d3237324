// Components through the picture's own accessors, which stand on them.
#include <ovImages/Image.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <support/Numbers.h>

namespace {

using namespace ovImages;

TEST(ComponentsTest, storedBitsAndWhatTheyReadAs) {
    struct Case {
        COMPONENT_TYPE type;
        float value;
        std::uint32_t bits;
        float readBack;
    };
    const Case cases[] = {{COMPONENT_TYPE::UINT8, 0.0f, 0, 0.0f},
                          {COMPONENT_TYPE::UINT8, 1.0f, 255, 1.0f},
                          {COMPONENT_TYPE::UINT8, 0.5f, 128, 128.0f / 255.0f},
                          {COMPONENT_TYPE::UINT8, 0.49f / 255.0f, 0, 0.0f},
                          {COMPONENT_TYPE::UINT8, 0.51f / 255.0f, 1, 1.0f / 255.0f},
                          {COMPONENT_TYPE::UINT8, -3.0f, 0, 0.0f},
                          {COMPONENT_TYPE::UINT8, INFINITE, 255, 1.0f},
                          {COMPONENT_TYPE::UINT8, -INFINITE, 0, 0.0f},
                          {COMPONENT_TYPE::UINT8, NOT_A_NUMBER, 0, 0.0f},
                          {COMPONENT_TYPE::UINT16, 1.0f, 65535, 1.0f},
                          {COMPONENT_TYPE::UINT16, 0.25f, 16384, 16384.0f / 65535.0f},
                          {COMPONENT_TYPE::UINT16, 1e30f, 65535, 1.0f},
                          {COMPONENT_TYPE::UINT16, NOT_A_NUMBER, 0, 0.0f},
                          {COMPONENT_TYPE::HALF, 1.0f, 0x3c00, 1.0f},
                          {COMPONENT_TYPE::HALF, -2.0f, 0xc000, -2.0f},
                          {COMPONENT_TYPE::HALF, 110000.0f, 0x7bff, 65504.0f},
                          {COMPONENT_TYPE::HALF, -INFINITE, 0xfbff, -65504.0f},
                          {COMPONENT_TYPE::FLOAT, 110000.0f, 0x47d6d800, 110000.0f},
                          {COMPONENT_TYPE::FLOAT, INFINITE, 0x7f800000, INFINITE}};
    for (const Case& c : cases) {
        Image image(2, 2, 2, c.type, COLOR_ENCODING::LINEAR);
        image.setComponent(1, 0, 1, c.value);
        std::uint32_t bits = 0;
        const std::size_t size = getComponentSize(c.type);
        std::memcpy(&bits, image.getBytes().data() + 3 * size, size);
        EXPECT_EQ(bits, c.bits) << c.value;
        EXPECT_EQ(image.getComponent(1, 0, 1), c.readBack) << c.value;
        EXPECT_EQ(image.getComponent(0, 1, 0), 0.0f);
    }
}

TEST(ComponentsTest, nanIsKeptInFloatsAndNothingOutsideIsTouched) {
    for (const COMPONENT_TYPE type : {COMPONENT_TYPE::HALF, COMPONENT_TYPE::FLOAT}) {
        Image image(1, 1, 1, type, COLOR_ENCODING::LINEAR);
        image.setComponent(0, 0, 0, NOT_A_NUMBER);
        EXPECT_TRUE(std::isnan(image.getComponent(0, 0, 0)));
        image.setComponent(1, 0, 0, 1.0f);
        image.setComponent(0, 1, 0, 1.0f);
        image.setComponent(0, 0, 1, 1.0f);
        EXPECT_EQ(image.getComponent(1, 0, 0), 0.0f);
        EXPECT_EQ(image.getComponent(0, 1, 0), 0.0f);
        EXPECT_EQ(image.getComponent(0, 0, 1), 0.0f);
    }
}

TEST(ComponentsTest, everyIntegerReturnsAsItself) {
    Image bytes(256, 1, 1, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    Image shorts(65536, 1, 1, COMPONENT_TYPE::UINT16, COLOR_ENCODING::SRGB);
    for (unsigned i = 0; i < 65536; ++i) {
        shorts.setComponent(i, 0, 0, static_cast<float>(i) / 65535.0f);
        std::uint16_t stored = 0;
        std::memcpy(&stored, shorts.getBytes().data() + i * sizeof(stored), sizeof(stored));
        ASSERT_EQ(stored, i);
        shorts.setComponent(i, 0, 0, shorts.getComponent(i, 0, 0));
        std::memcpy(&stored, shorts.getBytes().data() + i * sizeof(stored), sizeof(stored));
        ASSERT_EQ(stored, i);
        if (i < 256) {
            bytes.setComponent(i, 0, 0, static_cast<float>(i) / 255.0f);
            ASSERT_EQ(bytes.getBytes()[i], i);
        }
    }
}

} // namespace
