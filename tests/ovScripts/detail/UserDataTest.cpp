#include <ovMemory/Borrowed.h>
#include <support/Lua.h>

namespace {

using namespace ovScripts;
using luaTest::evaluate;
using luaTest::luaEnvironment;
using Arguments = ovMemory::BufferView<FunctionParameter>;

struct Texture : ovMemory::Borrowable {
    ovMemory::String name;
    int value = 7;
};

// "Texture": an object of the engine, which "get" finds while it lives; "Owned": one of the script, counted.
struct World {
    ovMemory::UniquePtr<Texture> texture = std::make_unique<Texture>();
    int destroyed = 0;
    ovMemory::UniquePtr<Environment> environment;

    explicit World(const EnvironmentOptions& options = {})
        : environment(luaEnvironment(options)) {
        texture->name = "albedo";
        UserType* type = environment->setUserType("Texture");
        type->setBorrowable<Texture>([](const Texture& one) { return one.name; });
        type->setDestructor([this](void*) { ++destroyed; });
        type->addMethod("read")->setFunction([](Arguments arguments) {
            return FunctionParameter(arguments[0].getValueAsUserData<Texture>()->value);
        });
        type->addMemberVariable(
            "value", FUNCTION_PARAMETER_TYPE::INT, {},
            [](void* object) { return FunctionParameter(static_cast<Texture*>(object)->value); }, nullptr);
        environment->setFunc("get")->setFunction(
            [this](Arguments) { return FunctionParameter(texture.get(), "Texture", false); });
        UserType* owned = environment->setUserType("Owned");
        owned->setConstructor([](Arguments) -> void* { return new int(1); });
        owned->setDestructor([this](void* object) {
            ++destroyed;
            delete static_cast<int*>(object);
        });
        owned->setSizeOf([](const void*) { return std::size_t(1) << 20; });
        environment->setFunc("use")->addParameter(FUNCTION_PARAMETER_TYPE::USER_DATA_PTR, "Texture");
    }
};

TEST(UserDataTest, objectsOfTheEngineOutliveTheirValue) {
    World world;
    EXPECT_EQ(evaluate(*world.environment, "return get():read()"), "7");
    world.environment->collectGarbage();
    world.environment.reset();
    EXPECT_EQ(world.destroyed, 0);
}

TEST(UserDataTest, destroyedObjectsAreErrors) {
    World world;
    evaluate(*world.environment, "t = get()");
    world.texture.reset();
    const char* gone = "Texture 'albedo' is gone: it was destroyed";
    const ovMemory::String error = "error: test:1: ";
    EXPECT_EQ(evaluate(*world.environment, "return t:read()"),
              error + "Texture.read: argument 1 expected Texture, got " + gone);
    EXPECT_EQ(evaluate(*world.environment, "use(t)"),
              error + "use: argument 1 expected Texture, got " + gone);
    EXPECT_EQ(evaluate(*world.environment, "return t.value"), error + gone);
    EXPECT_EQ(evaluate(*world.environment, "return t"), gone);
    EXPECT_EQ(evaluate(*world.environment, "return t == t"), "true"); // the same value of the language
    EXPECT_EQ(evaluate(*world.environment, "return get()"), "nil");
}

TEST(UserDataTest, objectsOfScriptsAreDestroyedOnce) {
    World world;
    evaluate(*world.environment, "for i = 1, 100 do Owned() end kept = Owned()");
    world.environment->collectGarbage();
    EXPECT_EQ(world.destroyed, 100);
    evaluate(*world.environment, "kept = nil");
    world.environment->collectGarbage();
    EXPECT_EQ(world.destroyed, 101);
    evaluate(*world.environment, "kept = Owned()");
    world.environment.reset();
    EXPECT_EQ(world.destroyed, 102);
}

// A finaliser of a script may use objects that are collected in the same round.
TEST(UserDataTest, collectedObjectsAreErrorsInFinalisers) {
    World world;
    evaluate(*world.environment,
             "local o = Owned() setmetatable({o}, {__gc = function(t) seen = tostring(t[1]) "
             "ok = pcall(function() return t[1].x end) end})");
    world.environment->collectGarbage();
    world.environment->collectGarbage();
    EXPECT_EQ(evaluate(*world.environment, "return ok"), "false");
    EXPECT_EQ(world.destroyed, 1);
}

TEST(UserDataTest, largeObjectsCountAsMemory) {
    World world({.memoryLimit = 16 << 20});
    // Without being counted a thousand of a megabyte each would never be collected.
    evaluate(*world.environment, "for i = 1, 1000 do Owned() end");
    EXPECT_GT(world.destroyed, 900);
    EXPECT_LT(world.environment->getUsedMemory(), 64u << 20);
    EXPECT_TRUE(world.environment->canAllocate(8 << 20));
    EXPECT_FALSE(world.environment->canAllocate(32 << 20));
}

TEST(UserDataTest, foreignUserDataIsNoObject) {
    const auto environment = luaEnvironment({.filesAndProcesses = true});
    environment->setFunc("use")->addParameter(FUNCTION_PARAMETER_TYPE::USER_DATA_PTR);
    EXPECT_EQ(evaluate(*environment, "use(io.stdout)"),
              "error: test:1: use: argument 1 expected an object of a declared type, got userdata");
}

TEST(UserDataTest, partsKeepTheirWholeAlive) {
    World world;
    UserType* part = world.environment->setUserType("Part");
    part->addMethod("read")->setFunction(
        [](Arguments arguments) { return FunctionParameter(*arguments[0].getValueAsUserData<int>()); });
    world.environment->getUserType("Owned")->addMethod("part")->setFunction([](Arguments arguments) {
        return FunctionParameter(arguments[0].getValueAsUserData<int>(), "Part", false).keeping(0);
    });
    evaluate(*world.environment, "part = Owned():part()");
    world.environment->collectGarbage();
    EXPECT_EQ(world.destroyed, 0);
    EXPECT_EQ(evaluate(*world.environment, "return part:read()"), "1");
    evaluate(*world.environment, "part = nil");
    world.environment->collectGarbage();
    EXPECT_EQ(world.destroyed, 1);
}

TEST(UserDataTest, membersKeepTheirObjectAlive) {
    World world;
    world.environment->setUserType("Part");
    world.environment->getUserType("Owned")->addMemberVariable(
        "part", FUNCTION_PARAMETER_TYPE::USER_DATA, "Part",
        [](void* object) { return FunctionParameter(object, "Part", false); }, nullptr);
    evaluate(*world.environment, "part = Owned().part");
    world.environment->collectGarbage();
    EXPECT_EQ(world.destroyed, 0);
    evaluate(*world.environment, "part = nil");
    world.environment->collectGarbage();
    EXPECT_EQ(world.destroyed, 1);
}

TEST(UserDataTest, partsOfPartsKeepTheWholeAlone) {
    World world;
    const auto part = [](Arguments arguments) {
        return FunctionParameter(arguments[0].getValueAsUserData<int>(), "Part", false).keeping(0);
    };
    world.environment->setUserType("Part")->addMethod("part")->setFunction(part);
    world.environment->getUserType("Owned")->addMethod("part")->setFunction(part);
    evaluate(*world.environment, "between = setmetatable({}, {__mode = 'v'}) between[1] = Owned():part() "
                                 "last = between[1]:part():part()");
    world.environment->collectGarbage();
    EXPECT_EQ(world.destroyed, 0);
    EXPECT_EQ(evaluate(*world.environment, "return between[1]"), "nil");
    evaluate(*world.environment, "last = nil");
    world.environment->collectGarbage();
    EXPECT_EQ(world.destroyed, 1);
}

TEST(UserDataTest, objectsThatGrowAreCountedAgain) {
    const auto environment = luaEnvironment();
    UserType* type = environment->setUserType("Growing");
    std::size_t bytes = 100;
    type->setConstructor([&](Arguments) -> void* { return &bytes; });
    type->setSizeOf([](const void* object) { return *static_cast<const std::size_t*>(object); });
    type->addMethod("grow")->setFunction([](Arguments arguments) {
        *arguments[0].getValueAsUserData<std::size_t>() += 5'000'000;
        return FunctionParameter();
    });
    type->addMethod("part")->setFunction([](Arguments arguments) {
        return FunctionParameter(arguments[0].getValueAsUserData<std::size_t>(), "Part", false).keeping(0);
    });
    environment->setUserType("Part")->addMethod("shrink")->setFunction([](Arguments arguments) {
        *arguments[0].getValueAsUserData<std::size_t>() -= 4'000'000;
        return FunctionParameter();
    });
    const auto millions = [&](const char* text) {
        evaluate(*environment, text);
        return environment->getUsedMemory() / 1'000'000;
    };
    EXPECT_EQ(millions("one = Growing()"), 0u);
    EXPECT_EQ(millions("one:grow() one:grow()"), 10u);
    EXPECT_EQ(millions("part = one:part() part:shrink()"), 6u);
    EXPECT_EQ(millions("one, part = nil collectgarbage() collectgarbage()"), 0u);
}

/// Objects that hold as many bytes as they say, with parts that keep them alive.
struct GrowingWorld {
    int alive = 0;
    ovMemory::UniquePtr<Environment> environment;

    explicit GrowingWorld(std::size_t memoryLimit)
        : environment(luaEnvironment({.memoryLimit = memoryLimit})) {
        UserType* type = environment->setUserType("Growing");
        type->setConstructor([this](Arguments) -> void* {
            ++alive;
            return new std::size_t(0);
        });
        type->setDestructor([this](void* object) {
            --alive;
            delete static_cast<std::size_t*>(object);
        });
        type->setSizeOf([](const void* object) { return *static_cast<const std::size_t*>(object); });
        type->addMethod("grow")
            ->addParameter(FUNCTION_PARAMETER_TYPE::INT)
            .setFunction([](Arguments arguments) {
                *arguments[0].getValueAsUserData<std::size_t>() +=
                    static_cast<std::size_t>(arguments[1].getValueAsInt());
                return FunctionParameter();
            });
        environment->setUserType("Part");
        type->addMethod("part")->setFunction([](Arguments arguments) {
            return FunctionParameter(arguments[0].getValueAsUserData<std::size_t>(), "Part", false)
                .keeping(0);
        });
    }
};

// The last resort of the interpreter leaves parts that wait for their finalisers, and these keep the whole.
TEST(UserDataTest, nothingIsKeptAfterAnErrorOfMemory) {
    GrowingWorld world(1 << 20);
    const char* grow = "local whole = Growing() while true do whole:part() whole:grow(1000) end";
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(evaluate(*world.environment, grow), "error: not enough memory");
        EXPECT_EQ(world.environment->getLastExecutionResult().failureType,
                  EXECUTION_FAILURE_TYPE::MEMORY_ALLOCATION);
        EXPECT_EQ(world.alive, 0);
        EXPECT_LT(world.environment->getUsedMemory(), 200'000u);
    }
}

TEST(UserDataTest, objectsAreCollectedBeforeTheLimit) {
    for (const int kilobytes : {1, 10, 100}) {
        GrowingWorld world(1 << 20);
        EXPECT_EQ(evaluate(*world.environment, "for i = 1, " + std::to_string(20000 / kilobytes) +
                                                   " do Growing():grow(" + std::to_string(kilobytes * 1000) +
                                                   ") end return 'collected'"),
                  "collected");
    }
}

// The collector takes longer to go through what is held than the objects take to reach the limit.
TEST(UserDataTest, objectsAreCollectedBesideMuchThatIsHeld) {
    GrowingWorld world(16 << 20);
    EXPECT_EQ(evaluate(*world.environment, "local held = {} for i = 1, 100000 do held[i] = {i} end "
                                           "for i = 1, 300 do Growing():grow(100000) end return 'collected'"),
              "collected");
}

// A finaliser that makes itself anew counts the rounds of the collector.
TEST(UserDataTest, smallGrowthDoesNotCollectEachTime) {
    GrowingWorld world(0);
    EXPECT_EQ(evaluate(*world.environment, "local rounds = 0 "
                                           "local function count() setmetatable({}, {__gc = function() "
                                           "rounds = rounds + 1 count() end}) end "
                                           "count() local whole = Growing() whole:grow(2 << 20) "
                                           "for i = 1, 1000 do whole:grow(10) end return rounds < 20"),
              "true");
}

// Parts of tables are as small as what calls take.
TEST(UserDataTest, smallTablesDoNotGrowBeyondTheLimit) {
    constexpr std::size_t LIMIT = 1 << 20;
    GrowingWorld world(LIMIT);
    EXPECT_EQ(evaluate(*world.environment, "all = {} for i = 1, 10000 do all[i] = {} end return 'made'"),
              "made");
    EXPECT_EQ(evaluate(*world.environment,
                       "for _, one in ipairs(all) do one.a, one.b, one.c = 1, 2, 3 end return 'filled'"),
              "error: not enough memory");
    EXPECT_LT(world.environment->getUsedMemory(), LIMIT + (100 << 10));
}

// A finaliser whose call gets no memory is not called again: its object would stay for good.
TEST(UserDataTest, callsWorkBeyondTheLimit) {
    GrowingWorld world(1 << 20);
    EXPECT_EQ(evaluate(*world.environment,
                       "local function deep(n) if n > 0 then return (deep(n - 1)) end return 'called' end "
                       "local whole = Growing() whole:grow(2 << 20) return deep(8)"),
              "called");
    EXPECT_EQ(evaluate(*world.environment, "local whole = Growing() whole:grow(2 << 20) return {}"),
              "error: not enough memory");
    EXPECT_EQ(world.alive, 0);
}

} // namespace
