#include <gtest/gtest.h>
#include <ovGraphics/formats/Enums.h>
#include <ovGraphics/formats/Format.h>
#include <ovGraphics/formats/TextureUtils.h>
#include <set>

using namespace ovGraphics;

// `./dev lint` compares each table with its declaration; what it cannot see is compared here with Direct3D's
// numbers.

template <typename Enum>
class EnumsTest : public testing::Test {};

using Enumerations =
    testing::Types<SHADER_LANGUAGE, TEXTURE_TYPE, RESOURCE_LOAD_STATE, FILTER, TEXTURE_ADDRESS, COMPARISON,
                   BLEND, BLEND_OPERATION, COLOR_WRITE_MASK, CULL_MODE, FILL_MODE, STENCIL_OPERATION,
                   PRIMITIVE_TOPOLOGY, FORMAT, FORMAT_COMPONENT>;
TYPED_TEST_SUITE(EnumsTest, Enumerations);

TYPED_TEST(EnumsTest, everyValueAndTextStandsOnce) {
    std::set<TypeParam> values;
    std::set<std::string_view> texts;
    for (const auto& entry : ovMemory::enumTableOf<TypeParam>()) {
        EXPECT_TRUE(values.insert(entry.value).second) << entry.text;
        EXPECT_TRUE(texts.insert(entry.text).second) << entry.text;
        EXPECT_EQ(ovMemory::enumFromText<TypeParam>(entry.text), entry.value);
        EXPECT_EQ(ovMemory::enumToText(entry.value), entry.text);
    }
}

TEST(EnumsNumbersTest, areThoseOfDirect3D) {
    const auto number = [](auto value) { return static_cast<unsigned int>(value.value()); };
    EXPECT_EQ(number(ovMemory::enumFromText<FORMAT>("R8G8B8A8_UNORM")), 28u);
    EXPECT_EQ(number(ovMemory::enumFromText<FORMAT>("BC7_UNORM_SRGB")), 99u);
    EXPECT_EQ(number(ovMemory::enumFromText<FILTER>("COMPARISON_ANISOTROPIC")), 0xd5u);
    EXPECT_EQ(number(ovMemory::enumFromText<BLEND>("SRC1_ALPHA")), 18u);
    EXPECT_EQ(number(ovMemory::enumFromText<COLOR_WRITE_MASK>("ALL")), 15u);
    for (unsigned int points = 1; points <= 32; ++points) {
        const std::string text = std::to_string(points) + "_CONTROL_POINT_PATCHLIST";
        EXPECT_EQ(number(ovMemory::enumFromText<PRIMITIVE_TOPOLOGY>(text)), 32 + points) << text;
    }
    EXPECT_EQ(ovMemory::enumTableOf<FORMAT>().size(), 100u);
    EXPECT_EQ(ovMemory::enumTableOf<PRIMITIVE_TOPOLOGY>().size(), 10u + 32u);
}
