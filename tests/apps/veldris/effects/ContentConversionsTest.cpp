#include <veldris/effects/ContentConversions.h>

#include <gtest/gtest.h>

namespace {

using veldris::PICTURE_CONTENT;
using enum ovVeldris::PICTURE_CONTENT;
using Content = std::optional<PICTURE_CONTENT>;

constexpr PICTURE_CONTENT ALL[] = {SCENE_LINEAR, DISPLAY_LINEAR, SRGB_ENCODED};

// The rules of one step, as a table of their own: 0 refused, 1 as it is, 2 converted. Rows: what is there;
// columns: what is wanted.
constexpr int STEP[3][3] = {{1, 0, 0}, {0, 1, 2}, {0, 2, 1}};

/// Kinds of effects there can be: takes and gives.
const veldris::EffectContent KINDS[] = {
    {"copy", std::nullopt, std::nullopt},
    {"tone", SCENE_LINEAR, DISPLAY_LINEAR},
    {"smooth", SRGB_ENCODED, SRGB_ENCODED},
    {"sky", DISPLAY_LINEAR, SCENE_LINEAR},
};

struct Walk {
    bool refused = false;
    std::size_t conversions = 0;
    PICTURE_CONTENT content;

    void want(Content wanted) {
        if (!wanted || refused)
            return;
        const int outcome = STEP[static_cast<int>(content)][static_cast<int>(*wanted)];
        refused = outcome == 0;
        conversions += outcome == 2 ? 1 : 0;
        content = *wanted;
    }
};

TEST(ContentConversionsTest, everyOrderingIsAcceptedOrRefusedByTheRuleOfEachStep) {
    constexpr std::size_t LONGEST = 4;
    std::size_t tried = 0;
    for (std::size_t length = 0; length <= LONGEST; ++length) {
        std::size_t orderings = 1;
        for (std::size_t i = 0; i < length; ++i)
            orderings *= std::size(KINDS);
        for (std::size_t ordering = 0; ordering < orderings; ++ordering) {
            ovMemory::Buffer<veldris::EffectContent> effects;
            for (std::size_t i = 0, rest = ordering; i < length; ++i, rest /= std::size(KINDS))
                effects.push_back(KINDS[rest % std::size(KINDS)]);
            for (const PICTURE_CONTENT source : ALL) {
                for (const Content target : {Content(), Content(SRGB_ENCODED), Content(DISPLAY_LINEAR)}) {
                    Walk walk{false, 0, source};
                    for (const auto& effect : effects) {
                        walk.want(effect.takes);
                        if (effect.gives && !walk.refused)
                            walk.content = *effect.gives;
                    }
                    walk.want(target);

                    ovMemory::Buffer<veldris::ContentConversion> conversions;
                    PICTURE_CONTENT result{};
                    ovMemory::String error;
                    const bool planned = veldris::planConversions(source, effects, target, "the end",
                                                                  conversions, result, error);
                    ASSERT_EQ(planned, !walk.refused) << error;
                    ASSERT_EQ(error.empty(), planned);
                    if (planned) {
                        ASSERT_EQ(result, walk.content);
                        ASSERT_EQ(conversions.size(), walk.conversions);
                    }
                    ++tried;
                }
            }
        }
    }
    EXPECT_EQ(tried, (1u + 4u + 16u + 64u + 256u) * 9u);
}

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
