#include <ovScripts/Reference.h>

#include <support/Lua.h>

namespace {

using namespace ovScripts;
using Arguments = ovMemory::BufferView<FunctionParameter>;

TEST(ReferenceTest, tellsEveryDeclaration) {
    const auto environment = luaTest::luaEnvironment();
    environment->setFunc("log")
        ->addParameter(FUNCTION_PARAMETER_TYPE::STRING, {}, "line")
        .setHelp("Logs a line.");
    Namespace* space = environment->setNamespace("engine");
    space->addConstant("LIMIT", 5);
    space->addConstant("NAME", "x");
    space->addConstant("HALF", 0.5);
    space->addFunction("now")->setResult(FUNCTION_PARAMETER_TYPE::DOUBLE);
    UserType* type = environment->setUserType("engine.Light");
    type->setHelp("A light.");
    type->setConstructor([](Arguments) -> void* { return nullptr; })
        ->addOptionalParameter(FUNCTION_PARAMETER_TYPE::FLOAT, {}, "strength");
    type->addStaticFunction("get")
        ->addParameter(FUNCTION_PARAMETER_TYPE::STRING)
        .setResult(FUNCTION_PARAMETER_TYPE::USER_DATA, "engine.Light");
    type->addMethod("follow")->addParameter(FUNCTION_PARAMETER_TYPE::USER_DATA_PTR, "engine.Light", "other");
    type->addMemberVariable(
        "on", FUNCTION_PARAMETER_TYPE::BOOL, {}, [](void*) { return FunctionParameter(true); }, nullptr);
    type->setNamedMemberList([] {
        return ovMemory::Buffer<UserType::NamedMembers>{
            {"lamp", {"color", "size"}}, {"sun", {"color"}}, {"", {"on"}}};
    });
    type->addOperator(USER_TYPE_OPERATOR::ADDITION);
    EXPECT_EQ(describeDeclarations(*environment), "## Globals\n\n"
                                                  "- `log(line: string)`: Logs a line.\n"
                                                  "\n## engine\n\n"
                                                  "- `LIMIT = 5`\n"
                                                  "- `NAME = \"x\"`\n"
                                                  "- `HALF = 0.500000`\n"
                                                  "- `engine.now() → number`\n"
                                                  "\n### engine.Light\n\nA light.\n\n"
                                                  "- `engine.Light([strength: number]) → engine.Light`\n"
                                                  "- `engine.Light.get(string) → engine.Light or nil`\n"
                                                  "- `.on: boolean (read only)`\n"
                                                  "- settings of `lamp`: `.color`, `.size`\n"
                                                  "- settings of `sun`: `.color`\n"
                                                  "- settings: `.on`\n"
                                                  "- `:follow(other: engine.Light)`\n"
                                                  "- operators: ADDITION\n");
}

} // namespace
