// The interpreter of an environment.
#pragma once

#include <chrono>
#include <lua.hpp>
#include <ovMemory/NameMap.h>
#include <ovScripts/Environment.h>
#include <unordered_map>

namespace ovScripts::detail {

/// A Lua state with its limits and its registry of user types.
///
/// Lua reports errors by leaving functions, so that calls into it that may fail run inside protect(). The
/// library links the build of Lua that throws, which destroys what is alive on the way; a host may bring the
/// one that jumps, and then only the memory of such objects is lost.
class LuaState {
public:
    /// @return null for lack of memory
    static ovMemory::UniquePtr<LuaState> create(Environment& environment);
    /// The state that a running function belongs to.
    static LuaState& of(lua_State* lua) { return **static_cast<LuaState**>(lua_getextraspace(lua)); }

    explicit LuaState(Environment& environment);
    LuaState(const LuaState&) = delete;
    LuaState& operator=(const LuaState&) = delete;
    ~LuaState();

    Environment& getEnvironment() const { return _environment; }
    /// The thread of the interpreter that runs, or the first one.
    lua_State* getLua() const { return _running; }

    /// Runs code that may raise an error of the interpreter; the stack is as before afterwards.
    /// @return LUA_OK, or the status with the error in message
    template <typename Code>
    int protect(Code&& code, ovMemory::String* message = nullptr);

    /// Calls what lies on the stack below its arguments and fills the environment's result.
    bool call(int argumentCount, int resultCount, ExecutionResult& result);

    void restartLimits();
    /// Counts memory outside the interpreter. @param change in bytes; of less it wraps around
    void countOutside(std::size_t change) { _outsideBytes += change; }
    /// Collects everything that is let go. Twice: what waits for its finaliser in the first round keeps
    /// others alive, and what finalisers let go is collected by the second. After an error of memory
    /// this is needed: the interpreter's own last resort calls no finalisers.
    static void collectAll(lua_State* lua);
    /// Lets the collector work after objects have grown by so many bytes outside, which it does not see.
    void collectInTime(lua_State* lua, std::size_t growth);
    std::size_t getUsedMemory() const { return _insideBytes + _outsideBytes; }
    bool canAllocate(std::size_t bytes) const;

    /// The declared type of a full name, or null. Names mostly come from a few globals, which are remembered
    /// by their address.
    UserType* findType(ovMemory::StringView fullName);

    /// While one lives, functions of C++ that call back work on the thread of the interpreter that called
    /// them.
    class Running {
    public:
        Running(LuaState& state, lua_State* lua)
            : _state(state)
            , _before(state._running) {
            state._running = lua;
        }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;
        ~Running() { _state._running = _before; }

    private:
        LuaState& _state;
        lua_State* _before;
    };

private:
    static void* _allocate(void* self, void* block, std::size_t oldSize, std::size_t newSize);
    static void _lookAtLimits(lua_State* lua, lua_Debug* activation);
    static int _explainError(lua_State* lua);
    void _explainLimit(lua_State* lua, bool areStepsUsed, bool isTimeUsed);
    void _keepPlace(lua_State* lua, int level);
    static void _warn(void* self, const char* text, int isContinued);

    Environment& _environment;
    std::size_t _insideBytes = 0; // before the interpreter, which allocates as soon as it is made
    std::size_t _outsideBytes = 0;
    std::size_t _outsideGrowth = 0; // since the collector last heard of it
    lua_State* _lua = nullptr;
    lua_State* _running = nullptr;
    uint64_t _steps = 0;
    std::chrono::steady_clock::time_point _deadline;
    bool _isLimitReached = false;
    ovMemory::String _limitError;
    ovMemory::String _place;
    ovMemory::String _traceback;
    ovMemory::String _warning; ///< the pieces that came so far

    struct RememberedType {
        ovMemory::StringView name;
        UserType* type = nullptr;
    };
    static constexpr std::size_t REMEMBERED_TYPES = 64; // a power of two
    RememberedType _remembered[REMEMBERED_TYPES];
};

template <typename Code>
int LuaState::protect(Code&& code, ovMemory::String* message) {
    lua_State* lua = _running;
    const int top = lua_gettop(lua);
    using Type = std::remove_reference_t<Code>;
    const auto run = [](lua_State* inner) -> int {
        Type& body = *static_cast<Type*>(lua_touserdata(inner, 1));
        lua_settop(inner, 0);
        body(inner);
        return 0;
    };
    if (!lua_checkstack(lua, LUA_MINSTACK))
        return LUA_ERRMEM;
    lua_pushcfunction(lua, run);
    lua_pushlightuserdata(lua, const_cast<std::remove_const_t<Type>*>(&code));
    const int status = lua_pcall(lua, 1, 0, 0);
    if (status != LUA_OK && message)
        *message = lua_type(lua, -1) == LUA_TSTRING ? lua_tostring(lua, -1) : "unknown error";
    lua_settop(lua, top);
    if (status == LUA_ERRMEM)
        collectAll(lua);
    return status;
}

} // namespace ovScripts::detail
