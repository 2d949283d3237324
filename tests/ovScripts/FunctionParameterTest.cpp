#include <ovScripts/FunctionParameter.h>

#include <gtest/gtest.h>
#include <limits>

namespace {

using namespace ovScripts;

TEST(FunctionParameterTest, holdsWhatItWasMadeOf) {
    EXPECT_TRUE(FunctionParameter().isVoid());
    EXPECT_TRUE(FunctionParameter::VOID.isVoid());
    EXPECT_TRUE(FunctionParameter(true).getValueAsBool());
    EXPECT_EQ(FunctionParameter(std::numeric_limits<int64_t>::min()).getValueAsInt(),
              std::numeric_limits<int64_t>::min());
    EXPECT_EQ(FunctionParameter(0.1f).getType(), FUNCTION_PARAMETER_TYPE::FLOAT);
    EXPECT_EQ(FunctionParameter(0.1f).getValueAsFloat(), 0.1f);
    EXPECT_EQ(FunctionParameter(0.1).getValueAsDouble(), 0.1);
    EXPECT_EQ(FunctionParameter("text").getValueAsString(), "text");
    int object = 0;
    const FunctionParameter userData(&object, "some.Type", true);
    EXPECT_EQ(userData.getValueAsUserData<int>(), &object);
    EXPECT_EQ(userData.getUserDataTypeName(), "some.Type");
    EXPECT_TRUE(userData.isOwnershipForwarded());
}

TEST(FunctionParameterTest, anotherKindThanItHoldsIsNothing) {
    const FunctionParameter text("7");
    EXPECT_FALSE(text.getValueAsBool());
    EXPECT_EQ(text.getValueAsInt(), 0);
    EXPECT_EQ(text.getValueAsDouble(), 0.0);
    EXPECT_EQ(text.getValueAsUserData<int>(), nullptr);
    EXPECT_FALSE(text.getScriptObjectReference());
    EXPECT_EQ(FunctionParameter(7).getValueAsString(), "");
    EXPECT_EQ(FunctionParameter(7).getValueAsDouble(), 7.0);
    EXPECT_EQ(FunctionParameter(7.5).getValueAsInt(), 0);
    EXPECT_FALSE(FunctionParameter(1).getValueAsBool());
}

TEST(FunctionParameterTest, copiesOwnTheirText) {
    FunctionParameter copy;
    {
        const FunctionParameter original(ovMemory::String(100, 'x'));
        copy = original;
    }
    EXPECT_EQ(copy.getValueAsString(), ovMemory::String(100, 'x'));
    const FunctionParameter moved = std::move(copy);
    EXPECT_EQ(moved.getValueAsString(), ovMemory::String(100, 'x'));
}

TEST(FunctionParameterTest, errorsAndViewsSayWhatTheyAre) {
    const FunctionParameter error = FunctionParameter::error("no");
    EXPECT_TRUE(error.isError());
    EXPECT_EQ(error.getValueAsString(), "no");
    EXPECT_FALSE(FunctionParameter("no").isError());
    const ovMemory::String text = "seen";
    EXPECT_EQ(FunctionParameter::view(text).getValueAsString().data(), text.data());
    int object = 0;
    EXPECT_EQ(FunctionParameter(&object, "t", false).keeping(3).getKeptArgument(), 3);
    EXPECT_EQ(FunctionParameter(&object, "t", false).getKeptArgument(), -1);
}

} // namespace
