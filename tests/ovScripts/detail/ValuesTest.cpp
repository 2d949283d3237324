#include <limits>
#include <support/Lua.h>

namespace {

using namespace ovScripts;
using luaTest::evaluate;
using luaTest::luaEnvironment;
using luaTest::scriptOf;

TEST(ValuesTest, numbersKeepTheirValue) {
    const auto environment = luaEnvironment();
    Function* function = environment->setFunc("echo");
    function->addParameter(FUNCTION_PARAMETER_TYPE::ANY);
    function->setFunction([](auto arguments) { return FunctionParameter(arguments[0]); });
    for (const char* value :
         {"9223372036854775807", "-9223372036854775808", "0", "1e308", "-0.0", "0.1", "1e-320"})
        EXPECT_EQ(evaluate(*environment, ovMemory::String("return echo(") + value + ") == " + value), "true")
            << value;
    EXPECT_EQ(evaluate(*environment, "local n = echo(0/0) return n ~= n"), "true");
    EXPECT_EQ(evaluate(*environment, "return math.type(echo(1)) .. math.type(echo(1.0))"), "integerfloat");
}

TEST(ValuesTest, integersBeyondTheirRangeAreRefused) {
    const auto environment = luaEnvironment();
    environment->setFunc("whole")->addParameter(FUNCTION_PARAMETER_TYPE::INT);
    for (const char* value : {"1.5", "1e300", "1/0", "0/0", "2^63"})
        EXPECT_EQ(evaluate(*environment, ovMemory::String("whole(") + value + ")")
                      .find("error: test:1: whole: argument 1 expected integer, got "),
                  0u)
            << value;
}

TEST(ValuesTest, textsKeepTheirBytes) {
    const auto environment = luaEnvironment();
    Function* function = environment->setFunc("echo");
    function->addParameter(FUNCTION_PARAMETER_TYPE::STRING);
    function->setFunction([](auto arguments) { return FunctionParameter(arguments[0].getValueAsString()); });
    EXPECT_EQ(evaluate(*environment, "local s = '' for i = 0, 255 do s = s .. string.char(i) end "
                                     "return echo(s) == s and #echo(s)"),
              "256");
}

TEST(ValuesTest, tablesAndFunctionsComeBackThemselves) {
    const auto environment = luaEnvironment();
    Function* function = environment->setFunc("echo");
    function->addParameter(FUNCTION_PARAMETER_TYPE::SCRIPT_OBJECT);
    function->setFunction([](auto arguments) { return FunctionParameter(arguments[0]); });
    for (const char* value :
         {"{}", "print", "function() end", "coroutine.create(print)", "'text'", "7", "nil"})
        EXPECT_EQ(evaluate(*environment, ovMemory::String("local v = ") + value + " return echo(v) == v"),
                  "true")
            << value;
}

TEST(ValuesTest, argumentsAndResultsOfScripts) {
    const auto environment = luaEnvironment();
    const Script script = scriptOf("local a, b = ... return b, a .. '!', select('#', ...)");
    const FunctionParameter arguments[] = {"x", 7};
    FunctionParameter results[4];
    ASSERT_TRUE(environment->execute(script, arguments, results));
    EXPECT_EQ(results[0].getValueAsInt(), 7);
    EXPECT_EQ(results[1].getValueAsString(), "x!");
    EXPECT_EQ(results[2].getValueAsInt(), 2);
    EXPECT_TRUE(results[3].isVoid());
    // The text is the result's own.
    environment->collectGarbage();
    EXPECT_EQ(results[1].getValueAsString(), "x!");
}

TEST(ValuesTest, resultsOfUndeclaredTypesAreErrors) {
    const auto environment = luaEnvironment();
    int object = 0;
    environment->setFunc("give")->setFunction(
        [&](auto) { return FunctionParameter(&object, "no.Type", false); });
    EXPECT_EQ(evaluate(*environment, "give()"),
              "error: test:1: the type of a result was not declared: no.Type");
}

} // namespace
