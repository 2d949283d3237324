#include <ovScripts/detail/SipHash.h>

#include <gtest/gtest.h>
#include <vector>

namespace {

// Appendix A of the paper: key 00 01 ... 0f, message 00 01 ... 0e.
TEST(SipHashTest, givesTheCodeOfThePaper) {
    const ovScripts::detail::SipKey key = {0x0706050403020100u, 0x0f0e0d0c0b0a0908u};
    std::vector<unsigned char> message;
    for (unsigned char i = 0; i < 15; ++i)
        message.push_back(i);
    EXPECT_EQ(ovScripts::detail::sipHash24(key, message), 0xa129ca6149be45e5u);
}

TEST(SipHashTest, everyBitOfKeyAndMessageCounts) {
    const ovScripts::detail::SipKey key = {1, 2};
    const std::vector<unsigned char> message(9);
    const uint64_t code = ovScripts::detail::sipHash24(key, message);
    for (std::size_t bit = 0; bit < 72; ++bit) {
        std::vector<unsigned char> changed = message;
        changed[bit / 8] ^= static_cast<unsigned char>(1u << bit % 8);
        EXPECT_NE(ovScripts::detail::sipHash24(key, changed), code);
    }
    EXPECT_NE(ovScripts::detail::sipHash24({1, 3}, message), code);
    EXPECT_NE(ovScripts::detail::sipHash24({0, 2}, message), code);
    EXPECT_NE(ovScripts::detail::sipHash24(key, std::vector<unsigned char>(10)), code);
}

} // namespace
