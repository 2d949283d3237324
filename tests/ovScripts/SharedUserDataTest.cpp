#include <ovScripts/SharedUserData.h>

#include <ovMemory/Borrowed.h>
#include <support/Lua.h>
#include <thread>

namespace {

using namespace ovScripts;
using luaTest::evaluate;
using luaTest::luaEnvironment;
using Arguments = ovMemory::BufferView<FunctionParameter>;

struct Light : ovMemory::Borrowable {};

struct Counted {
    static inline std::atomic<int> living = 0;
    int value = 5;
    Counted() { ++living; }
    ~Counted() { --living; }
};

// Environments whose functions "give" and "keep" put an object into a box outside, and "take" gets it.
struct Box {
    SharedUserData content;
    Light light;

    ovMemory::UniquePtr<Environment> environment(const EnvironmentOptions& options = {}) {
        auto result = luaEnvironment(options);
        UserType* type = result->setUserType("Counted");
        type->setConstructor([](Arguments) -> void* { return new Counted; });
        type->setDestructor([](void* object) { delete static_cast<Counted*>(object); });
        type->addMethod("read")->setFunction([](Arguments arguments) {
            return FunctionParameter(arguments[0].getValueAsUserData<Counted>()->value);
        });
        UserType* part = result->setUserType("Part");
        part->setDestructor([](void* object) { delete static_cast<int*>(object); });
        type->addMethod("part")->setFunction(
            [](Arguments) { return FunctionParameter(new int(3), "Part", true).keeping(0); });
        UserType* local = result->setUserType("Local");
        local->setConstructor([](Arguments) -> void* { return new int(4); });
        local->setDestructor([](void* object) { delete static_cast<int*>(object); });
        local->setStaysInEnvironment();
        UserType* value = result->setUserType("Value");
        value->setValueType<int>();
        value->setConstructor([](Arguments) -> void* { return new int(9); });
        value->addMethod("read")->setFunction(
            [](Arguments arguments) { return FunctionParameter(*arguments[0].getValueAsUserData<int>()); });
        result->setUserType("Light")->setBorrowable<Light>();
        result->getUserType("Light")->addMethod("shine");
        result->setFunc("light")->setFunction(
            [this](Arguments) { return FunctionParameter(&light, "Light", false); });
        for (const bool forward : {false, true}) {
            Function* put = result->setFunc(forward ? "give" : "lend");
            put->addParameter(FUNCTION_PARAMETER_TYPE::USER_DATA_PTR);
            put->setFunction([this, forward, environment = result.get()](Arguments arguments) {
                content = environment->share(arguments[0], forward);
                return FunctionParameter(bool(content));
            });
        }
        result->setFunc("take")->setFunction([this](Arguments) { return FunctionParameter(content); });
        return result;
    }
};

TEST(SharedUserDataTest, lentObjectsLiveAsLongAsAnybodyHoldsThem) {
    Box box;
    auto first = box.environment();
    auto second = box.environment();
    evaluate(*first, "c = Counted() lend(c)");
    EXPECT_EQ(evaluate(*second, "c = take() return c:read()"), "5");
    EXPECT_EQ(evaluate(*first, "return c:read()"), "5");
    first.reset();
    EXPECT_EQ(evaluate(*second, "return c:read()"), "5");
    box.content = SharedUserData();
    EXPECT_EQ(Counted::living, 1);
    second.reset();
    EXPECT_EQ(Counted::living, 0);
}

TEST(SharedUserDataTest, givenObjectsLeaveTheirEnvironment) {
    Box box;
    auto first = box.environment();
    auto second = box.environment();
    evaluate(*first, "c = Counted() give(c)");
    EXPECT_EQ(evaluate(*first, "return c:read()"),
              "error: test:1: Counted.read: argument 1 expected Counted, got Counted was handed to another "
              "environment");
    EXPECT_EQ(evaluate(*first, "give(c)").substr(0, 6), "error:");
    first->collectGarbage();
    EXPECT_EQ(evaluate(*second, "return take():read()"), "5");
    second->collectGarbage();
    EXPECT_EQ(Counted::living, 1); // the box
    box.content = SharedUserData();
    EXPECT_EQ(Counted::living, 0);
}

TEST(SharedUserDataTest, valuesAreCopies) {
    Box box;
    auto first = box.environment();
    auto second = box.environment();
    evaluate(*first, "give(Value())");
    first.reset();
    EXPECT_EQ(evaluate(*second, "return take():read()"), "9");
    EXPECT_EQ(box.content.getTypeName(), "Value");
}

TEST(SharedUserDataTest, objectsOfTheEngineOnlyPassThroughWorkers) {
    Box box;
    auto main = box.environment();
    auto worker = box.environment({.isWorker = true});
    EXPECT_EQ(evaluate(*main, "return lend(light())"), "true");
    EXPECT_EQ(evaluate(*worker, "return take():shine()"),
              "error: test:1: Light.shine: argument 1 expected Light, got Light belongs to the thread that "
              "renders: "
              "this one can only pass it on");
    auto other = box.environment();
    EXPECT_EQ(evaluate(*other, "return take():shine()"), "nil");
}

TEST(SharedUserDataTest, destroyedObjectsOfTheEngineAreGone) {
    ovMemory::UniquePtr<Box> box = std::make_unique<Box>();
    auto light = std::make_unique<Light>();
    auto environment = box->environment();
    environment->setFunc("other")->setFunction(
        [&](Arguments) { return FunctionParameter(light.get(), "Light", false); });
    evaluate(*environment, "lend(other())");
    EXPECT_EQ(box->content.getObject(), light.get());
    light.reset();
    EXPECT_EQ(box->content.getObject(), nullptr);
    EXPECT_NE(evaluate(*environment, "return take():shine()").find("is gone"), std::string::npos);
}

// Two threads let go of one object while both use it.
TEST(SharedUserDataTest, environmentsOfTwoThreadsShareAnObject) {
    for (int round = 0; round < 20; ++round) {
        Box box;
        auto main = box.environment();
        evaluate(*main, "c = Counted() lend(c)");
        std::thread thread([&] {
            auto worker = box.environment({.isWorker = true});
            EXPECT_EQ(evaluate(*worker, "c = take() return c:read()"), "5");
        });
        EXPECT_EQ(evaluate(*main, "local s = 0 for i = 1, 100 do s = s + c:read() end c = nil return s"),
                  "500");
        main->collectGarbage();
        thread.join();
    }
    EXPECT_EQ(Counted::living, 0);
}

TEST(SharedUserDataTest, partsAndWhatStaysAreNotHandedOver) {
    Box box;
    auto environment = box.environment();
    EXPECT_EQ(evaluate(*environment, "whole = Counted() return lend(whole:part())"), "false");
    EXPECT_EQ(evaluate(*environment, "return give(whole:part())"), "false");
    EXPECT_EQ(evaluate(*environment, "return lend(Local())"), "false");
    EXPECT_EQ(evaluate(*environment, "return lend(whole)"), "true");
    for (const auto& [object, reason] :
         {std::pair("part", "Part is a part of another object; hand that over"),
          std::pair("stays", "Local belongs to its environment")}) {
        evaluate(*environment, "part, stays = whole:part(), Local()");
        const ScriptObjectReference reference = environment->referToGlobal(object);
        EXPECT_TRUE(environment->serializeScriptObject(reference, false).empty());
        EXPECT_EQ(environment->getLastExecutionResult().error,
                  ovMemory::String("the object cannot be serialised: ") + reason);
    }
}

} // namespace
