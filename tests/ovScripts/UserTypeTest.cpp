#include <ovScripts/UserType.h>

#include <support/Lua.h>

namespace {

using namespace ovScripts;
using luaTest::evaluate;
using luaTest::luaEnvironment;
using Arguments = ovMemory::BufferView<FunctionParameter>;

struct Point {
    double x = 0;
    double y = 0;
};

// "geometry.Point": a value type with operators.
UserType* declarePoint(Environment& environment) {
    environment.setNamespace("geometry");
    UserType* type = environment.setUserType("geometry.Point");
    type->setValueType<Point>();
    Function* constructor = type->setConstructor([](Arguments arguments) -> void* {
        return new Point{arguments[0].getValueAsDouble(), arguments[1].getValueAsDouble()};
    });
    constructor->addOptionalParameter(FUNCTION_PARAMETER_TYPE::DOUBLE)
        .addOptionalParameter(FUNCTION_PARAMETER_TYPE::DOUBLE);
    type->addMemberVariable(
        "x", FUNCTION_PARAMETER_TYPE::DOUBLE, {},
        [](void* point) { return FunctionParameter(static_cast<Point*>(point)->x); },
        [](void* point, const FunctionParameter& value) {
            static_cast<Point*>(point)->x = value.getValueAsDouble();
            return FunctionParameter::VOID;
        });
    return type;
}

Point& pointOf(const FunctionParameter& argument) {
    return *argument.getValueAsUserData<Point>();
}

TEST(UserTypeTest, typesAreCalledToMakeObjects) {
    const auto environment = luaEnvironment();
    declarePoint(*environment);
    EXPECT_EQ(evaluate(*environment, "return geometry.Point(3).x"), "3.0");
    EXPECT_EQ(evaluate(*environment, "local p = geometry.Point() p.x = 5 return p.x"), "5.0");
    EXPECT_EQ(evaluate(*environment, "return geometry.Point('a')"),
              "error: test:1: geometry.Point: argument 1 expected number, got string");
}

TEST(UserTypeTest, typesWithoutConstructorCannotBeMade) {
    const auto environment = luaEnvironment();
    environment->setUserType("Texture");
    EXPECT_EQ(evaluate(*environment, "return Texture(1)"),
              "error: test:1: Texture: scripts cannot make one; take one that a function or a member gives");
    EXPECT_EQ(evaluate(*environment, "return getmetatable(Texture)"), "Texture");
}

TEST(UserTypeTest, operatorsTakeEitherOrder) {
    const auto environment = luaEnvironment();
    UserType* type = declarePoint(*environment);
    const auto add = [&](USER_TYPE_OPERATOR kind, FUNCTION_PARAMETER_TYPE operand, Function::Callable body) {
        type->addOperator(kind)->addParameter(operand).addParameter(operand).setFunction(std::move(body));
    };
    add(USER_TYPE_OPERATOR::ADDITION, FUNCTION_PARAMETER_TYPE::USER_DATA_PTR, [](Arguments arguments) {
        return FunctionParameter(pointOf(arguments[0]).x + pointOf(arguments[1]).x);
    });
    add(USER_TYPE_OPERATOR::MULTIPLICATION, FUNCTION_PARAMETER_TYPE::ANY, [](Arguments arguments) {
        const bool isPointFirst = arguments[0].getType() == FUNCTION_PARAMETER_TYPE::USER_DATA;
        return FunctionParameter(pointOf(arguments[isPointFirst ? 0 : 1]).x *
                                 arguments[isPointFirst ? 1 : 0].getValueAsDouble());
    });
    type->addOperator(USER_TYPE_OPERATOR::TO_STRING)
        ->addParameter(FUNCTION_PARAMETER_TYPE::USER_DATA_PTR, "geometry.Point")
        .setFunction([](Arguments) { return FunctionParameter("a point"); });
    type->addOperator(USER_TYPE_OPERATOR::LENGTH)->setFunction([](Arguments) {
        return FunctionParameter(2);
    });
    EXPECT_EQ(evaluate(*environment, "return geometry.Point(1) + geometry.Point(2)"), "3.0");
    EXPECT_EQ(evaluate(*environment, "return geometry.Point(3) * 2"), "6.0");
    EXPECT_EQ(evaluate(*environment, "return 2 * geometry.Point(3)"), "6.0");
    EXPECT_EQ(evaluate(*environment, "return geometry.Point(3)"), "a point");
    EXPECT_EQ(evaluate(*environment, "return #geometry.Point(3)"), "2");
    EXPECT_EQ(evaluate(*environment, "return geometry.Point(3) + 1").substr(0, 6), "error:");
    EXPECT_EQ(type->getOperators().size(), 4u);
}

TEST(UserTypeTest, objectsAreEqualWhenTheyAreTheSame) {
    const auto environment = luaEnvironment();
    UserType* type = environment->setUserType("Light");
    int lights[2] = {};
    (void)type;
    Function* get = environment->setFunc("get");
    get->addParameter(FUNCTION_PARAMETER_TYPE::INT);
    get->setFunction([&](Arguments arguments) {
        return FunctionParameter(&lights[arguments[0].getValueAsInt()], "Light", false);
    });
    EXPECT_EQ(evaluate(*environment, "return get(0) == get(0)"), "true");
    EXPECT_EQ(evaluate(*environment, "return get(0) == get(1)"), "false");
    EXPECT_EQ(evaluate(*environment, "return get(0) == 1"), "false");
}

TEST(UserTypeTest, staticFunctionsBelongToTheType) {
    const auto environment = luaEnvironment();
    UserType* type = environment->setUserType("Light");
    type->addStaticFunction("count")->setFunction([](Arguments) { return FunctionParameter(3); });
    EXPECT_EQ(evaluate(*environment, "return Light.count()"), "3");
    ASSERT_EQ(type->getStaticFunctions().size(), 1u);
    EXPECT_EQ(type->getStaticFunctions()[0]->getFullName(), "Light.count");
}

TEST(UserTypeTest, scriptsCannotChangeHowObjectsWork) {
    const auto environment = luaEnvironment({.debugLibrary = false});
    declarePoint(*environment);
    EXPECT_EQ(evaluate(*environment, "return getmetatable(geometry.Point())"), "geometry.Point");
    EXPECT_EQ(evaluate(*environment, "setmetatable(geometry.Point(), {})").substr(0, 6), "error:");
    EXPECT_EQ(evaluate(*environment, "setmetatable(geometry.Point, {})").substr(0, 6), "error:");
}

TEST(UserTypeTest, workersMayNotUseWhatBelongsToTheRenderThread) {
    const auto declare = [](Environment& environment) {
        UserType* type = environment.setUserType("Texture");
        type->setRenderThreadOnly();
        type->addStaticFunction("get")->setFunction([](Arguments) { return FunctionParameter(1); });
    };
    const auto main = luaEnvironment();
    const auto worker = luaEnvironment({.isWorker = true});
    declare(*main);
    declare(*worker);
    EXPECT_EQ(evaluate(*main, "return Texture.get()"), "1");
    EXPECT_EQ(evaluate(*worker, "return Texture.get()"),
              "error: test:1: Texture.get belongs to the thread that renders; hand data over instead");
}

} // namespace
