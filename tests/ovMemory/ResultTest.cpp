#include <gtest/gtest.h>
#include <ovMemory/Result.h>

using namespace ovMemory;

namespace {

struct NumberResult : Result {
    int number = 0;
};

} // namespace

TEST(ResultTest, statusFollowsFromWhatIsSaid) {
    Result result;
    EXPECT_EQ(result.getStatus(), RESULT_STATUS::DONE);
    EXPECT_TRUE(result);
    result.warning = "alpha was dropped";
    EXPECT_EQ(result.getStatus(), RESULT_STATUS::PARTLY_DONE);
    EXPECT_TRUE(result);
    result.error = "the disk is full";
    EXPECT_EQ(result.getStatus(), RESULT_STATUS::FAILED);
    EXPECT_FALSE(result);
}

TEST(ResultTest, failuresOfEveryRecordSayWhatAndWhere) {
    const auto number = failed<NumberResult>("no number", "file:3");
    EXPECT_FALSE(number);
    EXPECT_EQ(number.error, "no number");
    EXPECT_EQ(number.place, "file:3");
    EXPECT_EQ(number.number, 0);
    EXPECT_EQ(failed("only text").place, "");
}

TEST(ResultTest, statusNumbersAreThoseOfDeclarations) {
    EXPECT_EQ(static_cast<int>(RESULT_STATUS::DONE), 0);
    EXPECT_EQ(static_cast<int>(RESULT_STATUS::PARTLY_DONE), 1);
    EXPECT_EQ(static_cast<int>(RESULT_STATUS::FAILED), 2);
}
