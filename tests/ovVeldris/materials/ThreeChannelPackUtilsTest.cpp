#include <ovVeldris/materials/ThreeChannelPackUtils.h>

#include <gtest/gtest.h>

using ovVeldris::THREE_CHANNEL_PACK;
using ovVeldris::ThreeChannelPackUtils;

namespace {

// In the order of their numbers, which files and scripts rely on.
constexpr ovMemory::StringView TEXTS[] = {
    "rgb", "rbg", "rga", "rag", "rba", "rab", "grb", "gbr", "gra", "gar", "gba", "gab",
    "brg", "bgr", "bra", "bar", "bga", "bag", "arg", "agr", "agb", "abg", "arb", "abr",
};

} // namespace

TEST(ThreeChannelPackUtilsTest, NumbersAndTextsBelongTogether) {
    ASSERT_EQ(std::size(TEXTS), 24u);
    for (uint32_t number = 0; number < std::size(TEXTS); ++number) {
        EXPECT_EQ(ThreeChannelPackUtils::enumToStringLower(static_cast<THREE_CHANNEL_PACK>(number)),
                  TEXTS[number]);
        EXPECT_EQ(static_cast<uint32_t>(ThreeChannelPackUtils::stringLowerToEnum(TEXTS[number])), number);
    }
}

TEST(ThreeChannelPackUtilsTest, NumbersWithoutNameAreUnknown) {
    for (const uint32_t number : {24u, 25u, 0xffffffffu})
        EXPECT_EQ(ThreeChannelPackUtils::enumToStringLower(static_cast<THREE_CHANNEL_PACK>(number)),
                  "unknown");
}

TEST(ThreeChannelPackUtilsTest, OtherTextsMeanRgb) {
    for (const ovMemory::StringView text : {"RGB", "ABR", "Bgr", "", "rg", "rgba", "rrr", "unknown", " bgr"})
        EXPECT_EQ(ThreeChannelPackUtils::stringLowerToEnum(text), THREE_CHANNEL_PACK::RGB) << text;
}

TEST(ThreeChannelPackUtilsTest, NamesOfTheValuesMatchTheirTexts) {
    const std::pair<THREE_CHANNEL_PACK, ovMemory::StringView> cases[] = {
        {THREE_CHANNEL_PACK::RGB, "rgb"}, {THREE_CHANNEL_PACK::RBG, "rbg"}, {THREE_CHANNEL_PACK::RGA, "rga"},
        {THREE_CHANNEL_PACK::RAG, "rag"}, {THREE_CHANNEL_PACK::RBA, "rba"}, {THREE_CHANNEL_PACK::RAB, "rab"},
        {THREE_CHANNEL_PACK::GRB, "grb"}, {THREE_CHANNEL_PACK::GBR, "gbr"}, {THREE_CHANNEL_PACK::GRA, "gra"},
        {THREE_CHANNEL_PACK::GAR, "gar"}, {THREE_CHANNEL_PACK::GBA, "gba"}, {THREE_CHANNEL_PACK::GAB, "gab"},
        {THREE_CHANNEL_PACK::BRG, "brg"}, {THREE_CHANNEL_PACK::BGR, "bgr"}, {THREE_CHANNEL_PACK::BRA, "bra"},
        {THREE_CHANNEL_PACK::BAR, "bar"}, {THREE_CHANNEL_PACK::BGA, "bga"}, {THREE_CHANNEL_PACK::BAG, "bag"},
        {THREE_CHANNEL_PACK::ARG, "arg"}, {THREE_CHANNEL_PACK::AGR, "agr"}, {THREE_CHANNEL_PACK::AGB, "agb"},
        {THREE_CHANNEL_PACK::ABG, "abg"}, {THREE_CHANNEL_PACK::ARB, "arb"}, {THREE_CHANNEL_PACK::ABR, "abr"},
    };
    for (const auto& [pack, text] : cases)
        EXPECT_EQ(ThreeChannelPackUtils::enumToStringLower(pack), text);
}
