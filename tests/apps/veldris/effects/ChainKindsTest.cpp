#include <veldris/effects/ChainKinds.h>

#include <algorithm>
#include <gtest/gtest.h>

using ovMemory::String;
using veldris::ChainKind;

TEST(ChainKindsTest, holdsBothTablesByName) {
    const ovMemory::Buffer<ChainKind> kinds = veldris::chainKinds();
    EXPECT_EQ(kinds.size(), ovVeldris::effectKinds().size() + ovVeldris::complexEffectKinds().size());
    EXPECT_TRUE(std::ranges::is_sorted(kinds, {}, &ChainKind::getName));
    for (const ChainKind& kind : kinds) {
        EXPECT_NE(kind.single == nullptr, kind.complex == nullptr);
        EXPECT_FALSE(kind.getSummary().empty());
        String error;
        const auto found = veldris::findChainKind(kind.getName(), error);
        ASSERT_TRUE(found) << error;
        EXPECT_EQ(found->single, kind.single);
        EXPECT_EQ(found->complex, kind.complex);
    }
}

TEST(ChainKindsTest, tellsWhatColoursMean) {
    String error;
    const auto fxaa = veldris::findChainKind("fxaa", error);
    EXPECT_EQ(fxaa->takes(), ovVeldris::PICTURE_CONTENT::SRGB_ENCODED);
    EXPECT_EQ(fxaa->gives(), ovVeldris::PICTURE_CONTENT::SRGB_ENCODED);
    const auto blur = veldris::findChainKind("blur", error);
    EXPECT_EQ(blur->takes(), std::nullopt);
    EXPECT_EQ(blur->gives(), std::nullopt);
}

TEST(ChainKindsTest, namesAllWhereOneIsUnknown) {
    String error;
    EXPECT_EQ(veldris::findChainKind("blurr", error), std::nullopt);
    EXPECT_EQ(error, "there is no effect 'blurr'; the effects are atmosphere, blur, dof, film-grain, fxaa, "
                     "image-environment, ssao, texture-copy, tone-mapping. Did you mean 'blur'?");
}
