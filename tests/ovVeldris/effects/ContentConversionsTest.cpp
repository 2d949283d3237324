#include <ovVeldris/effects/ContentConversions.h>

#include <gtest/gtest.h>

namespace {

using ovVeldris::PICTURE_CONTENT;
using enum ovVeldris::PICTURE_CONTENT;
using OptionalContent = std::optional<PICTURE_CONTENT>;

constexpr PICTURE_CONTENT ALL_CONTENTS[] = {SCENE_LINEAR, DISPLAY_LINEAR, SRGB_ENCODED};

// The rules of one step, as a table of their own: 0 refused, 1 as it is, 2 converted. Rows: what is there;
// columns: what is wanted.
constexpr int STEP_RULES[3][3] = {{1, 0, 0}, {0, 1, 2}, {0, 2, 1}};

/// Kinds of effects there can be: takes and gives.
const ovVeldris::EffectContent CONTENT_KINDS[] = {
    {"copy", std::nullopt, std::nullopt},
    {"tone", SCENE_LINEAR, DISPLAY_LINEAR},
    {"smooth", SRGB_ENCODED, SRGB_ENCODED},
    {"sky", DISPLAY_LINEAR, SCENE_LINEAR},
};

struct ContentWalk {
    bool refused = false;
    std::size_t conversions = 0;
    PICTURE_CONTENT content;

    void want(OptionalContent wanted) {
        if (!wanted || refused)
            return;
        const int outcome = STEP_RULES[static_cast<int>(content)][static_cast<int>(*wanted)];
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
            orderings *= std::size(CONTENT_KINDS);
        for (std::size_t ordering = 0; ordering < orderings; ++ordering) {
            ovMemory::Buffer<ovVeldris::EffectContent> effects;
            for (std::size_t i = 0, rest = ordering; i < length; ++i, rest /= std::size(CONTENT_KINDS))
                effects.push_back(CONTENT_KINDS[rest % std::size(CONTENT_KINDS)]);
            for (const PICTURE_CONTENT source : ALL_CONTENTS) {
                for (const OptionalContent target :
                     {OptionalContent(), OptionalContent(SRGB_ENCODED), OptionalContent(DISPLAY_LINEAR)}) {
                    ContentWalk walk{false, 0, source};
                    for (const auto& effect : effects) {
                        walk.want(effect.takes);
                        if (effect.gives && !walk.refused)
                            walk.content = *effect.gives;
                    }
                    walk.want(target);

                    ovMemory::Buffer<ovVeldris::ContentConversion> conversions;
                    PICTURE_CONTENT result{};
                    const auto mismatch =
                        ovVeldris::planConversions(source, effects, target, "the end", conversions, result);
                    ASSERT_EQ(mismatch.has_value(), walk.refused) << (mismatch ? mismatch->text : "");
                    if (!mismatch) {
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

TEST(ContentConversionsTest, mismatchesNameBothNeighbours) {
    ovMemory::Buffer<ovVeldris::ContentConversion> conversions;
    PICTURE_CONTENT result{};
    const ovVeldris::EffectContent copy[] = {CONTENT_KINDS[0]};
    const auto atEnd =
        ovVeldris::planConversions(SCENE_LINEAR, copy, SRGB_ENCODED, "the file", conversions, result);
    ASSERT_TRUE(atEnd);
    EXPECT_EQ(atEnd->text, "the file takes srgb-encoded colours and the input gives scene-linear ones");
    EXPECT_EQ(atEnd->from, SCENE_LINEAR);
    EXPECT_TRUE(atEnd->isAtEnd);
    const ovVeldris::EffectContent twice[] = {CONTENT_KINDS[1], CONTENT_KINDS[0], CONTENT_KINDS[1]};
    const auto between =
        ovVeldris::planConversions(SCENE_LINEAR, twice, std::nullopt, "x", conversions, result);
    ASSERT_TRUE(between);
    EXPECT_EQ(between->text, "'tone' takes scene-linear colours and 'tone' gives display-linear ones");
    EXPECT_EQ(between->from, DISPLAY_LINEAR);
    EXPECT_FALSE(between->isAtEnd);
}

TEST(ContentConversionsTest, conversionsStandBeforeTheEffectThatNeedsThem) {
    ovMemory::Buffer<ovVeldris::ContentConversion> conversions;
    PICTURE_CONTENT result{};
    const ovVeldris::EffectContent effects[] = {CONTENT_KINDS[1], CONTENT_KINDS[2]};
    ASSERT_FALSE(ovVeldris::planConversions(SCENE_LINEAR, effects, DISPLAY_LINEAR, "x", conversions, result));
    const ovMemory::Buffer<ovVeldris::ContentConversion> expected = {{1, DISPLAY_LINEAR, SRGB_ENCODED},
                                                                     {2, SRGB_ENCODED, DISPLAY_LINEAR}};
    EXPECT_EQ(conversions, expected);
}

} // namespace
