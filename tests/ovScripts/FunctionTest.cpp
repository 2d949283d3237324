#include <ovScripts/Function.h>

#include <support/Lua.h>

namespace {

using namespace ovScripts;
using luaTest::evaluate;
using luaTest::luaEnvironment;
using Arguments = ovMemory::BufferView<FunctionParameter>;

TEST(FunctionTest, argumentsArriveAsDeclared) {
    const auto environment = luaEnvironment();
    Function* function = environment->setFunc("join");
    function->addParameter(FUNCTION_PARAMETER_TYPE::BOOL).addParameter(FUNCTION_PARAMETER_TYPE::INT);
    function->addParameter(FUNCTION_PARAMETER_TYPE::DOUBLE).addParameter(FUNCTION_PARAMETER_TYPE::STRING);
    function->setFunction([](Arguments arguments) {
        EXPECT_EQ(arguments.size(), 4u);
        return FunctionParameter(std::to_string(arguments[0].getValueAsBool()) + ' ' +
                                 std::to_string(arguments[1].getValueAsInt()) + ' ' +
                                 std::to_string(arguments[2].getValueAsDouble()) + ' ' +
                                 ovMemory::String(arguments[3].getValueAsString()));
    });
    EXPECT_EQ(evaluate(*environment, "return join(true, -7, 0.5, 'a\\0b')"),
              ovMemory::String("1 -7 0.500000 a\0b", 17));
    EXPECT_EQ(evaluate(*environment, "return join(false, 2.0, 3, '', 'one too many')"), "0 2 3.000000 ");
}

TEST(FunctionTest, optionalArgumentsMayBeMissingOrNil) {
    const auto environment = luaEnvironment();
    Function* function = environment->setFunc("count");
    function->addParameter(FUNCTION_PARAMETER_TYPE::INT);
    function->addOptionalParameter(FUNCTION_PARAMETER_TYPE::INT)
        .addOptionalParameter(FUNCTION_PARAMETER_TYPE::STRING);
    function->setFunction([](Arguments arguments) {
        int given = 0;
        for (const FunctionParameter& argument : arguments)
            given += argument.isVoid() ? 0 : 1;
        return FunctionParameter(given);
    });
    EXPECT_EQ(function->getRequiredCount(), 1u);
    EXPECT_EQ(evaluate(*environment, "return count(1)"), "1");
    EXPECT_EQ(evaluate(*environment, "return count(1, nil, 'x')"), "2");
    EXPECT_EQ(evaluate(*environment, "return count(1, 2, 'x')"), "3");
    EXPECT_EQ(evaluate(*environment, "return count(1, 'x')"),
              "error: test:1: count: argument 2 expected integer, got string");
    EXPECT_EQ(evaluate(*environment, "return count()"),
              "error: test:1: count: argument 1 expected integer, got nothing");
}

TEST(FunctionTest, moreArgumentsThanAFewArrive) {
    const auto environment = luaEnvironment();
    Function* function = environment->setFunc("sum");
    for (int i = 0; i < 20; ++i)
        function->addParameter(FUNCTION_PARAMETER_TYPE::INT);
    function->setFunction([](Arguments arguments) {
        int64_t sum = 0;
        for (std::size_t i = 0; i < arguments.size(); ++i)
            sum += static_cast<int64_t>(i + 1) * arguments[i].getValueAsInt();
        return FunctionParameter(sum);
    });
    // The sum of the squares of 1 to 20.
    EXPECT_EQ(evaluate(*environment, "return sum(1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20)"),
              "2870");
}

TEST(FunctionTest, declarationsCanBeRead) {
    Function function("ovMaths.Vector.getLength");
    function.addParameter(FUNCTION_PARAMETER_TYPE::USER_DATA_PTR, "ovMaths.Vector", "self")
        .setResult(FUNCTION_PARAMETER_TYPE::FLOAT)
        .setHelp("Its length.");
    EXPECT_EQ(function.getName(), "getLength");
    EXPECT_EQ(function.getFullName(), "ovMaths.Vector.getLength");
    ASSERT_EQ(function.getArguments().size(), 1u);
    EXPECT_EQ(function.getArguments()[0].typeName, "ovMaths.Vector");
    EXPECT_EQ(function.getArguments()[0].name, "self");
    EXPECT_EQ(function.getResult().type, FUNCTION_PARAMETER_TYPE::FLOAT);
    EXPECT_EQ(function.getHelp(), "Its length.");
    EXPECT_EQ(Function("global").getName(), "global");
}

TEST(FunctionTest, withoutABodyItGivesNil) {
    const auto environment = luaEnvironment();
    environment->setFunc("nothing");
    EXPECT_EQ(evaluate(*environment, "return nothing()"), "nil");
    EXPECT_EQ(environment->setFunc("nothing"), environment->getFunc("nothing"));
    EXPECT_EQ(environment->getFunc("other"), nullptr);
}

} // namespace
