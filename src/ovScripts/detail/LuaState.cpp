#include <algorithm>
#include <cstdlib>
#include <ovScripts/detail/LuaStateInternal.h>
#include <ovScripts/detail/StandardLibrariesInternal.h>

namespace ovScripts::detail {

namespace {

// Instructions between two looks at the limits: a few microseconds.
constexpr int STEPS_BETWEEN_LOOKS = 1000;

// Objects outside the interpreter's memory let it collect in time: each so many bytes it does a step.
constexpr std::size_t OUTSIDE_BYTES_A_STEP = 1 << 20;
constexpr std::size_t STEPS_TO_LIMIT = 16; // at the least

// A call takes a small block of the interpreter's own, and gets it beyond the limit, too: a finaliser whose
// call fails is not called again, and its object would never be destroyed. What lies outside does not count
// for these, since it passes the limit by any amount; a reserve bounds them, since tables have such blocks.
constexpr std::size_t LARGEST_CALL_BLOCK = 128;
constexpr std::size_t CALL_RESERVE = 64 << 10;

// Such a block nobody gets. Who asks for it gets an error of memory, the only kind for which the interpreter
// calls no handler of the script.
constexpr std::size_t REFUSED_BLOCK = std::size_t(1) << 40;

bool mayHaveToEnd(const EnvironmentOptions& options) {
    return options.stepLimit > 0 || options.timeLimit > 0 || options.isInterruptible;
}

} // namespace

ovMemory::UniquePtr<LuaState> LuaState::create(Environment& environment) {
    auto state = std::make_unique<LuaState>(environment);
    if (!state->_lua || state->protect(&openStandardLibraries) != LUA_OK)
        return nullptr;
    state->restartLimits();
    return state;
}

LuaState::LuaState(Environment& environment)
    : _environment(environment) {
    // Here, since it counts its memory in members.
    _lua = lua_newstate(&_allocate, this);
    _running = _lua;
    if (!_lua)
        return;
    *static_cast<LuaState**>(lua_getextraspace(_lua)) = this;
    lua_setwarnf(_lua, &_warn, this);
}

LuaState::~LuaState() {
    if (!_lua)
        return;
    lua_sethook(_lua, nullptr, 0, 0);
    lua_close(_lua);
}

void* LuaState::_allocate(void* self, void* block, std::size_t oldSize, std::size_t newSize) {
    auto& state = *static_cast<LuaState*>(self);
    const std::size_t freed = block ? oldSize : 0;
    if (newSize == 0) {
        std::free(block);
        state._insideBytes -= freed;
        return nullptr;
    }
    // Of a new block the old size is the kind of the object, 0 for what the interpreter needs itself.
    const bool isForCall = !block && oldSize == 0 && newSize <= LARGEST_CALL_BLOCK &&
                           state._insideBytes < state._environment.getOptions().memoryLimit + CALL_RESERVE;
    if (newSize >= REFUSED_BLOCK || (newSize > freed && !isForCall && !state.canAllocate(newSize - freed)))
        return nullptr;
    void* const moved = std::realloc(block, newSize);
    if (moved)
        state._insideBytes += newSize - freed;
    return moved;
}

void LuaState::collectAll(lua_State* lua) {
    lua_gc(lua, LUA_GCCOLLECT);
    lua_gc(lua, LUA_GCCOLLECT);
}

// The interpreter's own last resort runs no finalisers, so that it would not free what lies outside: with
// little memory left everything is collected before.
void LuaState::collectInTime(lua_State* lua, std::size_t growth) {
    _outsideGrowth += growth;
    const std::size_t limit = _environment.getOptions().memoryLimit;
    const std::size_t step =
        limit > 0 ? std::min(OUTSIDE_BYTES_A_STEP, limit / STEPS_TO_LIMIT) : OUTSIDE_BYTES_A_STEP;
    if (_outsideGrowth < step)
        return;
    if (limit > 0 && getUsedMemory() > limit / 4 * 3)
        collectAll(lua);
    else
        lua_gc(lua, LUA_GCSTEP, static_cast<int>(std::min<std::size_t>(_outsideGrowth >> 10, 1 << 20)));
    _outsideGrowth = 0;
}

bool LuaState::canAllocate(std::size_t bytes) const {
    const std::size_t limit = _environment.getOptions().memoryLimit;
    return limit == 0 || (bytes <= limit && getUsedMemory() <= limit - bytes);
}

void LuaState::restartLimits() {
    const EnvironmentOptions& options = _environment.getOptions();
    _isLimitReached = false;
    _steps = 0;
    _deadline =
        std::chrono::steady_clock::now() + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                               std::chrono::duration<double>(options.timeLimit));
    if (mayHaveToEnd(options))
        lua_sethook(_lua, &_lookAtLimits, LUA_MASKCOUNT, STEPS_BETWEEN_LOOKS);
}

// A script may catch the error; it then gets it again at its next instruction, so that it ends after all. An
// ordinary error would call the handler of an xpcall first, here, where no further look interrupts it.
void LuaState::_lookAtLimits(lua_State* lua, lua_Debug*) {
    LuaState& state = of(lua);
    const EnvironmentOptions& options = state._environment.getOptions();
    state._steps += state._isLimitReached ? 1 : STEPS_BETWEEN_LOOKS;
    const bool areStepsUsed = options.stepLimit > 0 && state._steps >= options.stepLimit;
    const bool isTimeUsed = options.timeLimit > 0 && std::chrono::steady_clock::now() >= state._deadline;
    const bool isInterrupted = options.isInterruptible && state._environment.isInterrupted();
    if (!areStepsUsed && !isTimeUsed && !isInterrupted && !state._isLimitReached)
        return;
    if (!state._isLimitReached)
        state._explainLimit(lua, areStepsUsed, isTimeUsed);
    lua_sethook(lua, &_lookAtLimits, LUA_MASKCOUNT, 1);
    lua_newuserdatauv(lua, REFUSED_BLOCK, 0);
}

void LuaState::_explainLimit(lua_State* lua, bool areStepsUsed, bool isTimeUsed) {
    _isLimitReached = true;
    luaL_where(lua, 0);
    _limitError = lua_tostring(lua, -1);
    lua_pop(lua, 1);
    if (areStepsUsed)
        lua_pushfstring(lua, "the limit of %I steps is reached",
                        static_cast<LUAI_UACINT>(_environment.getOptions().stepLimit));
    else if (isTimeUsed)
        lua_pushfstring(lua, "the time limit of %f s is reached",
                        static_cast<LUAI_UACNUMBER>(_environment.getOptions().timeLimit));
    else
        lua_pushliteral(lua, "the script was interrupted");
    _limitError += lua_tostring(lua, -1);
    lua_pop(lua, 1);
    _keepPlace(lua, 0);
}

void LuaState::_keepPlace(lua_State* lua, int level) {
    _place.clear();
    lua_Debug activation;
    for (int i = level; lua_getstack(lua, i, &activation); ++i) {
        lua_getinfo(lua, "Sl", &activation);
        if (activation.currentline <= 0)
            continue;
        _place = ovMemory::String(activation.short_src) + ':' + std::to_string(activation.currentline);
        break;
    }
    luaL_traceback(lua, lua, nullptr, level);
    _traceback = lua_tostring(lua, -1);
    lua_pop(lua, 1);
}

// Turns what was raised into a text, and keeps where it was raised.
int LuaState::_explainError(lua_State* lua) {
    LuaState& state = of(lua);
    if (lua_type(lua, 1) != LUA_TSTRING) {
        if (luaL_callmeta(lua, 1, "__tostring") && lua_type(lua, -1) == LUA_TSTRING)
            lua_replace(lua, 1);
        else {
            lua_pushfstring(lua, "the error is not a text but a value of type %s", luaL_typename(lua, 1));
            lua_replace(lua, 1);
        }
        lua_settop(lua, 1);
    }
    if (!state._isLimitReached)
        state._keepPlace(lua, 1);
    lua_settop(lua, 1);
    return 1;
}

// Scripts warn in pieces. A piece of its own that begins with @ is a command, of which there are none here.
void LuaState::_warn(void* self, const char* text, int isContinued) {
    auto& state = *static_cast<LuaState*>(self);
    if (state._warning.empty() && !isContinued && *text == '@')
        return;
    state._warning += text;
    if (isContinued)
        return;
    if (state._environment._warningReceiver)
        state._environment._warningReceiver(state._warning);
    state._warning.clear();
}

bool LuaState::call(int argumentCount, int resultCount, ExecutionResult& result) {
    lua_State* lua = _running;
    const int handler = lua_gettop(lua) - argumentCount;
    lua_pushcfunction(lua, &_explainError);
    lua_insert(lua, handler);
    result = {};
    const int status = lua_pcall(lua, argumentCount, resultCount, handler);
    lua_remove(lua, handler);
    if (status == LUA_OK)
        return true;
    const char* message = lua_tostring(lua, -1);
    result.error = message ? message : "unknown error";
    result.failureType = EXECUTION_FAILURE_TYPE::RUNTIME;
    if (_isLimitReached) {
        result.error = _limitError;
        result.failureType = EXECUTION_FAILURE_TYPE::LIMIT_REACHED;
    } else if (status == LUA_ERRMEM) {
        collectAll(lua);
        // No handler was called, so that what is kept is that of another error.
        result.failureType = EXECUTION_FAILURE_TYPE::MEMORY_ALLOCATION;
        _place.clear();
        _traceback.clear();
    }
    result.place = _place;
    result.traceback = _traceback;
    lua_pop(lua, 1);
    return false;
}

UserType* LuaState::findType(ovMemory::StringView fullName) {
    const auto address = reinterpret_cast<std::uintptr_t>(fullName.data());
    RememberedType& remembered = _remembered[(address >> 4) % REMEMBERED_TYPES];
    // By the text too: another name may lie at that address by now.
    if (remembered.type && remembered.name.data() == fullName.data() &&
        remembered.type->getFullName() == fullName)
        return remembered.type;
    remembered.type = _environment.getUserType(fullName);
    remembered.name = fullName;
    return remembered.type;
}

} // namespace ovScripts::detail
