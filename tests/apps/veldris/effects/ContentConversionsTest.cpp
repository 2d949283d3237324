#include <veldris/effects/ContentConversions.h>

#include <gtest/gtest.h>

namespace {

using veldris::PICTURE_CONTENT;
using enum ovVeldris::PICTURE_CONTENT;

/// Kinds of effects there can be: takes and gives.
const veldris::EffectContent KINDS[] = {
    {"copy", std::nullopt, std::nullopt},
    {"tone", SCENE_LINEAR, DISPLAY_LINEAR},
    {"smooth", SRGB_ENCODED, SRGB_ENCODED},
    {"sky", DISPLAY_LINEAR, SCENE_LINEAR},
};

TEST(ContentConversionsTest, refusalsNameBothNeighboursAndAWayOut) {
    ovMemory::Buffer<veldris::ContentConversion> conversions;
    PICTURE_CONTENT result{};
    ovMemory::String error;
    EXPECT_FALSE(veldris::planConversions(SCENE_LINEAR, {{"copy", {}, {}}}, SRGB_ENCODED, "the file 'a.png'",
                                          conversions, result, error));
    EXPECT_EQ(error,
              "the file 'a.png' takes srgb-encoded colours and the input gives scene-linear ones: put a "
              "tone-mapping between them, write an EXR or HDR file, or use --raw.");
    EXPECT_FALSE(veldris::planConversions(SCENE_LINEAR, {KINDS[1], KINDS[0], KINDS[1]}, std::nullopt, "x",
                                          conversions, result, error));
    EXPECT_EQ(
        error,
        "'tone' takes scene-linear colours and 'tone' gives display-linear ones: take that step away, say "
        "with --input-content what the file holds, or use --raw.");
}

TEST(ContentConversionsTest, conversionsStandBeforeTheEffectThatNeedsThem) {
    ovMemory::Buffer<veldris::ContentConversion> conversions;
    PICTURE_CONTENT result{};
    ovMemory::String error;
    ASSERT_TRUE(veldris::planConversions(SCENE_LINEAR, {KINDS[1], KINDS[2]}, DISPLAY_LINEAR, "x", conversions,
                                         result, error));
    const ovMemory::Buffer<veldris::ContentConversion> expected = {{1, DISPLAY_LINEAR, SRGB_ENCODED},
                                                                   {2, SRGB_ENCODED, DISPLAY_LINEAR}};
    EXPECT_EQ(conversions, expected);
}

} // namespace
