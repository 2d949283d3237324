#include <ovVeldris/scripts/commonWrap/Bind.h>

#include <support/Lua.h>

// Not in an unnamed namespace: the name of the type is a specialisation of a template of another one.
namespace bindTest {

enum class COLOR : unsigned int { RED = 1, BLUE = 4 };
inline constexpr ovMemory::EnumEntry<COLOR> COLOR_ENTRIES[] = {{COLOR::RED, "RED"}, {COLOR::BLUE, "BLUE"}};
constexpr ovMemory::EnumTable<COLOR> enumTable(COLOR) {
    return {"COLOR", COLOR_ENTRIES};
}

/// Behind a member, so that its address is not that of the derived object.
struct Base {
    ovMemory::String text = "base";
    ovMemory::String getText() const { return text; }
};
struct Front {
    int number = 7;
};
struct Thing : Front, Base {
    COLOR color = COLOR::BLUE;
    COLOR getColor() const { return color; }
    void setColor(COLOR value) { color = value; }
    unsigned int getNumber() const { return static_cast<unsigned int>(number); }
};

} // namespace bindTest

namespace ovCommonWrap {

template <>
inline const ovMemory::String TYPE_NAME<bindTest::Thing> = "test.Thing";

} // namespace ovCommonWrap

namespace {

using bindTest::Thing;

class BindTest : public testing::Test {
protected:
    BindTest() {
        _environment->setNamespace("test");
        ovScripts::UserType& type = *_environment->setUserType("test.Thing");
        ovCommonWrap::constructible<Thing>(type);
        ovCommonWrap::methodOf<Thing>(type, "getText", &bindTest::Base::getText);
        ovCommonWrap::property<Thing>(type, "color", &Thing::getColor, &Thing::setColor);
        ovCommonWrap::readOnlyProperty<Thing>(type, "number", &Thing::getNumber);
        ovCommonWrap::method(
            type, "sum",
            [](Thing& self, int first, std::optional<int> second, std::optional<double> third) {
                return self.number + first + second.value_or(100) + third.value_or(0.25);
            },
            {"first", "second", "third"});
        ovCommonWrap::staticFunction(
            type, "half",
            [](int number) { return number % 2 == 0 ? std::optional(number / 2) : std::nullopt; },
            {"number"});
    }
    ovMemory::String evaluate(ovMemory::StringView text) { return luaTest::evaluate(*_environment, text); }

    ovMemory::UniquePtr<ovScripts::Environment> _environment = luaTest::luaEnvironment();
};

TEST_F(BindTest, optionalArgumentsMayBeLeftOut) {
    EXPECT_EQ(evaluate("return test.Thing():sum(1)"), "108.25");
    EXPECT_EQ(evaluate("return test.Thing():sum(1, 2)"), "10.25");
    EXPECT_EQ(evaluate("return test.Thing():sum(1, nil, 0.5)"), "108.5");
    EXPECT_EQ(evaluate("return test.Thing():sum()"),
              "error: test:1: test.Thing.sum: argument 2 (first) expected integer, got nothing");
    EXPECT_EQ(evaluate("return test.Thing():sum(1, 'x')"),
              "error: test:1: test.Thing.sum: argument 3 (second) expected integer, got string");
}

TEST_F(BindTest, aMissingResultIsNil) {
    EXPECT_EQ(evaluate("return test.Thing.half(8)"), "4");
    EXPECT_EQ(evaluate("return test.Thing.half(7)"), "nil");
}

TEST_F(BindTest, methodsOfABaseClassFindTheirPartOfTheObject) {
    EXPECT_EQ(evaluate("return test.Thing():getText()"), "base");
}

TEST_F(BindTest, propertiesAreReadAndSetByFunctions) {
    EXPECT_EQ(evaluate("local t = test.Thing() t.color = 1 return t.color"), "1");
    EXPECT_EQ(evaluate("return test.Thing().number"), "7");
    EXPECT_EQ(evaluate("test.Thing().number = 1"), "error: test:1: test.Thing.number can be read, not set");
    EXPECT_EQ(evaluate("test.Thing().color = 'RED'"),
              "error: test:1: test.Thing.color expected integer, got string");
}

TEST_F(BindTest, whatASetterThrowsIsAnErrorOfTheScript) {
    EXPECT_EQ(evaluate("test.Thing().color = 2"),
              "error: test:1: test.Thing.color: argument 1 is no value of COLOR, got 2; the values are RED "
              "or BLUE");
    EXPECT_EQ(evaluate("return pcall(function() test.Thing().color = 2 end)"), "false");
}

} // namespace
