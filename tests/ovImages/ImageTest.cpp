#include <ovImages/Image.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <type_traits>

namespace {

using namespace ovImages;

static_assert(std::is_nothrow_move_constructible_v<Image> && std::is_nothrow_move_assignable_v<Image>);
static_assert(std::is_copy_constructible_v<Image> && std::is_copy_assignable_v<Image>);

TEST(ImageTest, bytesAreTakenOverOrRefused) {
    const auto take = [](unsigned width, unsigned height, unsigned channels, std::size_t size) {
        ovMemory::Buffer<unsigned char> bytes(size, 7);
        const unsigned char* place = bytes.data();
        const Image image(width, height, channels, COMPONENT_TYPE::UINT16, COLOR_ENCODING::LINEAR,
                          std::move(bytes));
        EXPECT_TRUE(image.isEmpty() || image.getBytes().data() == place) << "no copy";
        EXPECT_EQ(image.getWidth(), image.isEmpty() ? 0u : width);
        return image.getBytes().size();
    };
    EXPECT_EQ(take(3, 2, 4, 48), 48u);
    EXPECT_EQ(take(3, 2, 4, 47), 0u);
    EXPECT_EQ(take(3, 2, 4, 49), 0u);
    EXPECT_EQ(take(3, 2, 5, 60), 0u);
    EXPECT_EQ(take(0, 2, 4, 0), 0u);
    EXPECT_EQ(take(MAX_IMAGE_SIDE + 1, 1, 1, 2 * (std::size_t(MAX_IMAGE_SIDE) + 1)), 0u);
}

TEST(ImageTest, shapesAreKeptAndZeroFilledOrRefused) {
    struct Case {
        unsigned width, height, channels;
        COMPONENT_TYPE type;
        std::size_t size;
    };
    const Case cases[] = {{3, 2, 4, COMPONENT_TYPE::UINT8, 24},
                          {3, 2, 3, COMPONENT_TYPE::UINT16, 36},
                          {3, 2, 2, COMPONENT_TYPE::HALF, 24},
                          {3, 2, 1, COMPONENT_TYPE::FLOAT, 24},
                          {100000, 1, 3, COMPONENT_TYPE::UINT8, 300000},
                          {1, 100000, 3, COMPONENT_TYPE::UINT8, 300000},
                          {0, 2, 1, COMPONENT_TYPE::UINT8, 0},
                          {2, 0, 1, COMPONENT_TYPE::UINT8, 0},
                          {2, 2, 0, COMPONENT_TYPE::UINT8, 0},
                          {2, 2, 5, COMPONENT_TYPE::UINT8, 0},
                          {MAX_IMAGE_SIDE + 1, 1, 1, COMPONENT_TYPE::UINT8, 0},
                          {100000, 100000, 4, COMPONENT_TYPE::FLOAT, 0},
                          {0xffffffffu, 0xffffffffu, 4, COMPONENT_TYPE::FLOAT, 0},
                          {2, 2, 1, static_cast<COMPONENT_TYPE>(9), 0}};
    for (const Case& c : cases) {
        const Image image(c.width, c.height, c.channels, c.type, COLOR_ENCODING::LINEAR);
        ASSERT_EQ(image.getBytes().size(), c.size);
        EXPECT_EQ(image.isEmpty(), c.size == 0);
        EXPECT_EQ(image.getWidth(), c.size ? c.width : 0);
        EXPECT_EQ(image.getHeight(), c.size ? c.height : 0);
        EXPECT_EQ(image.getChannels(), c.size ? c.channels : 0);
        EXPECT_EQ(isValid(image.view()), c.size != 0);
        EXPECT_TRUE(
            std::all_of(image.getBytes().begin(), image.getBytes().end(), [](auto b) { return b == 0; }));
    }
}

TEST(ImageTest, copiesAreDeepAndMovedFromPicturesEmpty) {
    Image original(2, 1, 1, COMPONENT_TYPE::UINT8, COLOR_ENCODING::LINEAR);
    original.setComponent(1, 0, 0, 1.0f);
    Image copy = original;
    copy.setComponent(1, 0, 0, 0.0f);
    EXPECT_EQ(original.getBytes()[1], 255);
    EXPECT_EQ(copy.getBytes()[1], 0);

    const unsigned char* bytes = original.getBytes().data();
    Image moved = std::move(original);
    EXPECT_EQ(moved.getBytes().data(), bytes);
    EXPECT_EQ(moved.getEncoding(), COLOR_ENCODING::LINEAR);
    EXPECT_TRUE(original.isEmpty());
    EXPECT_EQ(original.getWidth(), 0u);
    EXPECT_EQ(original.getComponent(0, 0, 0), 0.0f);
    Image& self = moved;
    moved = std::move(self);
    EXPECT_EQ(moved.getBytes().size(), 2u);
    moved.setEncoding(COLOR_ENCODING::SRGB);
    EXPECT_EQ(moved.view().encoding, COLOR_ENCODING::SRGB);
}

TEST(ImageTest, invalidViewsAreExplained) {
    const ovMemory::Buffer<unsigned char> bytes(12);
    struct Case {
        ImageView view;
        ovMemory::String error;
    };
    const auto type = COMPONENT_TYPE::UINT8;
    const auto srgb = COLOR_ENCODING::SRGB;
    const Case cases[] = {
        {{2, 2, 3, type, srgb, bytes}, ""},
        {{0, 2, 3, type, srgb, bytes}, "the picture is 0 x 2 pixels: it has none"},
        {{2000000, 1, 3, type, srgb, bytes}, "the picture is 2000000 x 1 pixels: a side has at most 1048576"},
        {{2, 2, 5, type, srgb, bytes}, "the picture has 5 channels: expected 1 to 4"},
        {{2, 2, 3, static_cast<COMPONENT_TYPE>(7), srgb, bytes}, "the component type 7 is unknown"},
        {{2, 2, 3, type, static_cast<COLOR_ENCODING>(5), bytes}, "the colour encoding 5 is unknown"},
        {{2, 2, 2, type, srgb, bytes}, "the picture of 2 x 2 pixels has 12 bytes: expected 8"}};
    for (const Case& c : cases) {
        ovMemory::String error;
        EXPECT_EQ(isValid(c.view, &error), c.error.empty());
        EXPECT_EQ(error, c.error);
    }
}

TEST(ImageTest, handsItsBytesOver) {
    Image image(3, 2, 1, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    image.getBytes()[4] = 7;
    const unsigned char* const place = image.getBytes().data();
    const auto bytes = image.takeBytes();
    EXPECT_EQ(bytes, (ovMemory::Buffer<unsigned char>{0, 0, 0, 0, 7, 0}));
    EXPECT_EQ(bytes.data(), place) << "moved, not copied";
    EXPECT_TRUE(image.isEmpty());
    EXPECT_EQ(image.getWidth(), 0u);
    EXPECT_TRUE(Image().takeBytes().empty());
}

TEST(ImageTest, namesAndSizes) {
    EXPECT_EQ(getComponentTypeName(COMPONENT_TYPE::UINT8), "8-bit unsigned");
    EXPECT_EQ(getComponentTypeName(COMPONENT_TYPE::UINT16), "16-bit unsigned");
    EXPECT_EQ(getComponentTypeName(COMPONENT_TYPE::HALF), "half float");
    EXPECT_EQ(getComponentTypeName(COMPONENT_TYPE::FLOAT), "float");
    EXPECT_EQ(getComponentTypeName(static_cast<COMPONENT_TYPE>(4)), "unknown");
    EXPECT_EQ(getComponentSize(static_cast<COMPONENT_TYPE>(4)), 0u);
    EXPECT_EQ(getImageSize(0xffffffffu, 0xffffffffu, 4, COMPONENT_TYPE::FLOAT),
              std::numeric_limits<std::size_t>::max());
}

} // namespace
