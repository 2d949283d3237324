// Calls through the binding layer beside functions that are written by hand for the interpreter.
//
// Both sides run the same loop of a script, in two interpreters. A function by hand checks what the layer
// checks: that its arguments are there and of the right kind, and of user data the type, by the name of its
// metatable, as the interpreter's own helpers do it.
#include "support/Aims.h"
#include "support/Pairs.h"

#include <lua.hpp>
#include <ovScripts/Environment.h>

namespace {

using ovScripts::FUNCTION_PARAMETER_TYPE;
using ovScripts::FunctionParameter;
using Arguments = ovMemory::BufferView<FunctionParameter>;

constexpr int ROUNDS = 31;
constexpr const char* VECTOR_TYPE = "Vector";

struct Vector {
    float x = 0;
    float y = 0;
    float z = 0;
    float w = 0;
};

Vector sumOf(const Vector& a) {
    return {a.x + 1.0f, a.y, a.z, a.w};
}

/// The interpreter alone, with functions by hand.
class Bare {
public:
    Bare()
        : _lua(luaL_newstate()) {
        luaL_openlibs(_lua);
        luaL_newmetatable(_lua, VECTOR_TYPE);
        const luaL_Reg methods[] = {
            {"scaled", scaled}, {"mixed", mixed}, {"named", named}, {nullptr, nullptr}};
        luaL_newlib(_lua, methods);
        lua_setfield(_lua, -2, "__index");
        lua_pop(_lua, 1);
        const luaL_Reg functions[] = {{"one", one}, {"vector", vector}, {"moved", moved}, {nullptr, nullptr}};
        lua_pushglobaltable(_lua);
        luaL_setfuncs(_lua, functions, 0);
        lua_pop(_lua, 1);
    }
    Bare(const Bare&) = delete;
    Bare& operator=(const Bare&) = delete;
    ~Bare() { lua_close(_lua); }

    void run(const char* text) {
        if (luaL_dostring(_lua, text) != LUA_OK)
            std::abort();
    }
    void collect() { lua_gc(_lua, LUA_GCCOLLECT); }

private:
    static int one(lua_State* lua) {
        lua_pushnumber(lua, luaL_checknumber(lua, 1) + 1.0);
        return 1;
    }
    static const Vector& self(lua_State* lua) {
        return *static_cast<const Vector*>(luaL_checkudata(lua, 1, VECTOR_TYPE));
    }
    static int scaled(lua_State* lua) {
        lua_pushnumber(lua, static_cast<double>(self(lua).x) + luaL_checknumber(lua, 2));
        return 1;
    }
    static int mixed(lua_State* lua) {
        lua_pushnumber(lua, static_cast<double>(self(lua).x) + luaL_checknumber(lua, 2) +
                                luaL_checknumber(lua, 3) * luaL_checknumber(lua, 4));
        return 1;
    }
    static int named(lua_State* lua) {
        std::size_t size = 0;
        luaL_checklstring(lua, 2, &size);
        lua_pushnumber(lua, static_cast<double>(self(lua).x) + static_cast<double>(size));
        return 1;
    }
    static void pushVector(lua_State* lua, const Vector& value) {
        *static_cast<Vector*>(lua_newuserdatauv(lua, sizeof(Vector), 0)) = value;
        luaL_setmetatable(lua, VECTOR_TYPE);
    }
    static int vector(lua_State* lua) {
        pushVector(lua, {});
        return 1;
    }
    static int moved(lua_State* lua) {
        pushVector(lua, sumOf(self(lua)));
        return 1;
    }

    lua_State* _lua;
};

/// The same functions through the binding layer.
class Bound {
public:
    Bound()
        : _environment(ovScripts::Environment::create()) {
        _environment->setEnvironmentFor(ovScripts::INTERPRETER::LUA);
        ovScripts::UserType* type = _environment->setUserType(VECTOR_NAME);
        type->setValueType<Vector>();
        declare("one", {FUNCTION_PARAMETER_TYPE::DOUBLE},
                [](Arguments arguments) { return FunctionParameter(arguments[0].getValueAsDouble() + 1.0); });
        type->addMethod("scaled")
            ->addParameter(FUNCTION_PARAMETER_TYPE::DOUBLE)
            .setFunction([](Arguments arguments) {
                return FunctionParameter(static_cast<double>(self(arguments).x) +
                                         arguments[1].getValueAsDouble());
            });
        type->addMethod("mixed")
            ->addParameter(FUNCTION_PARAMETER_TYPE::DOUBLE)
            .addParameter(FUNCTION_PARAMETER_TYPE::DOUBLE)
            .addParameter(FUNCTION_PARAMETER_TYPE::DOUBLE)
            .setFunction([](Arguments arguments) {
                return FunctionParameter(static_cast<double>(self(arguments).x) +
                                         arguments[1].getValueAsDouble() +
                                         arguments[2].getValueAsDouble() * arguments[3].getValueAsDouble());
            });
        type->addMethod("named")
            ->addParameter(FUNCTION_PARAMETER_TYPE::STRING)
            .setFunction([](Arguments arguments) {
                return FunctionParameter(static_cast<double>(self(arguments).x) +
                                         static_cast<double>(arguments[1].getValueAsString().size()));
            });
        declare("vector", {}, [](Arguments) { return FunctionParameter(new Vector, VECTOR_NAME, true); });
        declare("moved", {FUNCTION_PARAMETER_TYPE::USER_DATA_PTR}, [](Arguments arguments) {
            return FunctionParameter(new Vector(sumOf(self(arguments))), VECTOR_NAME, true);
        });
    }

    void run(const char* text) {
        ovScripts::Script script;
        script.setTargetInterpreter(ovScripts::INTERPRETER::LUA);
        script.setSources(text);
        if (!script.load() || !_environment->execute(script))
            std::abort();
    }
    void collect() { _environment->collectGarbage(); }

private:
    inline static const ovMemory::String VECTOR_NAME = VECTOR_TYPE;

    static const Vector& self(Arguments arguments) { return *arguments[0].getValueAsUserData<Vector>(); }

    void declare(const char* name, ovMemory::Buffer<FUNCTION_PARAMETER_TYPE> types,
                 ovScripts::Function::Callable callable) {
        ovScripts::Function* function = _environment->setFunc(name);
        for (const FUNCTION_PARAMETER_TYPE type : types)
            function->addParameter(type, type == FUNCTION_PARAMETER_TYPE::USER_DATA_PTR ? VECTOR_NAME : "");
        function->setFunction(std::move(callable));
    }

    ovMemory::UniquePtr<ovScripts::Environment> _environment;
};

void runLoops(benchmark::State& state, const char* loop, double atMost) {
    Bare bare;
    Bound bound;
    const ovBenchmarks::Side baseline{[&] { bare.collect(); }, [&] { bare.run(loop); }};
    const ovBenchmarks::Side ours{[&] { bound.collect(); }, [&] { bound.run(loop); }};
    ovBenchmarks::runPair(state, baseline, ours, ROUNDS, ovBenchmarks::LOAD::CPU_TIME);
    ovBenchmarks::aimAtRatio(state, atMost);
}

void callMethodWithOneNumber(benchmark::State& state) {
    runLoops(state, "local v, s = vector(), 0.0 for i = 1, 200000 do s = v:scaled(s) end", 1.25);
}

void callMethodWithThreeNumbers(benchmark::State& state) {
    runLoops(state, "local v, s = vector(), 0.0 for i = 1, 200000 do s = v:mixed(s, 0.5, 1.5) end", 1.4);
}

void callMethodWithText(benchmark::State& state) {
    runLoops(state, "local v, s = vector(), 0.0 for i = 1, 200000 do s = s + v:named('some text') end", 1.65);
}

// The least that a function by hand can do: nothing but a number to check. What the layer adds shows most.
void callFunctionWithOneNumber(benchmark::State& state) {
    runLoops(state, "local f, s = one, 0.0 for i = 1, 200000 do s = f(s) end", 2.0);
}

void callWithVectorForVector(benchmark::State& state) {
    runLoops(state, "local f, v = moved, vector() for i = 1, 200000 do v = f(v) end", 1.3);
}

// What a script that keeps many positions pays for holding them as vectors.
void holdVectors(benchmark::State& state) {
    Bare bare;
    Bound bound;
    const ovBenchmarks::Side tables{
        [&] { bare.collect(); },
        [&] {
            bare.run("local t = {} for i = 1, 100000 do t[i] = {0.0, 0.0, 0.0, 0.0} end");
            bare.collect();
        }};
    const ovBenchmarks::Side vectors{[&] { bound.collect(); },
                                     [&] {
                                         bound.run(
                                             "local t, f = {}, vector for i = 1, 100000 do t[i] = f() end");
                                         bound.collect();
                                     }};
    ovBenchmarks::runPair(state, tables, vectors, ROUNDS, ovBenchmarks::LOAD::CPU_TIME);
    ovBenchmarks::aimAtRatio(state, 2.0);
}

BENCHMARK(callMethodWithOneNumber)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(callMethodWithThreeNumbers)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(callMethodWithText)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(callFunctionWithOneNumber)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(callWithVectorForVector)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(holdVectors)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
