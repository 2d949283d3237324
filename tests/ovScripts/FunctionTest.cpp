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

} // namespace
