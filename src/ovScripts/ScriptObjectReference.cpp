#include <ovScripts/ScriptObjectReference.h>
#include <ovScripts/detail/ReferencesInternal.h>

namespace ovScripts {

ScriptObjectReference::ScriptObjectReference() noexcept = default;

ScriptObjectReference::ScriptObjectReference(const ScriptObjectReference& other) {
    detail::LuaState* state = other.getEnvironment() ? other.getEnvironment()->getState() : nullptr;
    if (!state)
        return;
    state->protect([&](lua_State* lua) {
        if (detail::ReferenceAccess::push(lua, other))
            *this = detail::ReferenceAccess::take(lua);
    });
}

ScriptObjectReference::ScriptObjectReference(ScriptObjectReference&& other) noexcept = default;

ScriptObjectReference& ScriptObjectReference::operator=(const ScriptObjectReference& other) {
    if (this != &other)
        *this = ScriptObjectReference(other);
    return *this;
}

ScriptObjectReference& ScriptObjectReference::operator=(ScriptObjectReference&& other) noexcept {
    if (this == &other)
        return *this;
    reset();
    _slot = std::move(other._slot);
    return *this;
}

ScriptObjectReference::~ScriptObjectReference() {
    reset();
}

Environment* ScriptObjectReference::getEnvironment() const {
    return _slot ? _slot->environment.get() : nullptr;
}

int ScriptObjectReference::getInterpreterReference() const {
    return getEnvironment() ? _slot->reference : 0;
}

void ScriptObjectReference::reset() {
    if (Environment* environment = getEnvironment(); environment && environment->getState())
        luaL_unref(environment->getState()->getLua(), LUA_REGISTRYINDEX, _slot->reference);
    _slot.reset();
}

namespace detail {

ScriptObjectReference ReferenceAccess::take(lua_State* lua) {
    ScriptObjectReference result;
    if (lua_isnil(lua, -1)) {
        lua_pop(lua, 1);
        return result;
    }
    result._slot = std::make_unique<ObjectSlot>();
    result._slot->reference = luaL_ref(lua, LUA_REGISTRYINDEX);
    result._slot->environment = &LuaState::of(lua).getEnvironment();
    return result;
}

bool ReferenceAccess::push(lua_State* lua, const ScriptObjectReference& reference) {
    const int number = reference.getInterpreterReference();
    if (number == 0) {
        lua_pushnil(lua);
        return true;
    }
    if (reference.getEnvironment() != &LuaState::of(lua).getEnvironment())
        return false;
    lua_rawgeti(lua, LUA_REGISTRYINDEX, number);
    return true;
}

} // namespace detail

} // namespace ovScripts
