#include <cstring>
#include <ovScripts/detail/UserDataInternal.h>

namespace ovScripts::detail {

namespace {

// Only its address counts. Writable, so that no other constant shares it.
char mark; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

constexpr std::size_t VALUE_OFFSET = (sizeof(UserData) + alignof(std::max_align_t) - 1) /
                                     alignof(std::max_align_t) * alignof(std::max_align_t);

void setMetatable(lua_State* lua, UserType& type) {
    lua_rawgeti(lua, LUA_REGISTRYINDEX, UserDataAccess::metatableOf(type));
    lua_setmetatable(lua, -2);
}

} // namespace

UserData* UserDataAccess::at(lua_State* lua, int position) {
    if (lua_type(lua, position) != LUA_TUSERDATA || lua_rawlen(lua, position) < sizeof(UserData))
        return nullptr;
    auto* data = static_cast<UserData*>(lua_touserdata(lua, position));
    return data->mark == &mark ? data : nullptr;
}

ovMemory::String UserDataAccess::getObstacle(const UserData& data) {
    if (!data.isHeld)
        return {};
    const auto& held = static_cast<const HeldObject&>(data);
    const ovMemory::String object =
        held.name.empty() ? data.type->getFullName() : data.type->getFullName() + " '" + held.name + '\'';
    if (held.isForeign)
        return object + " belongs to the thread that renders: this one can only pass it on";
    if (!data.object)
        return object + " was handed to another environment";
    if (held.isTracked && !held.life)
        return object + " is gone: it was destroyed";
    return {};
}

ovMemory::String UserDataAccess::getSharingObstacle(lua_State* lua, int position, const UserData& data) {
    ovMemory::String obstacle = getObstacle(data);
    if (!obstacle.empty() || !data.isHeld)
        return obstacle;
    if (data.type->_staysInEnvironment)
        return data.type->getFullName() + " belongs to its environment";
    // What it keeps alive here nobody would keep alive there. Objects that tell their end need no such care.
    const bool keepsAnother = lua_getiuservalue(lua, position, 1) != LUA_TNIL;
    lua_pop(lua, 1);
    if (keepsAnother && !data.type->_toBorrowable)
        return data.type->getFullName() + " is a part of another object; hand that over";
    return {};
}

bool UserDataAccess::isGone(const UserData& data) {
    if (!data.isHeld)
        return false;
    const auto& held = static_cast<const HeldObject&>(data);
    return !data.object || (held.isTracked && !held.life);
}

void UserDataAccess::push(lua_State* lua, UserType& type, void* object, bool isOwned) {
    if (isValueType(type) && isOwned) {
        const std::unique_ptr<void, const UserType::Destructor&> original(object, type._destructor);
        _pushValue(lua, type, object);
        return;
    }
    struct Guard {
        UserType& type;
        void* object;
        ~Guard() {
            if (object && type._destructor)
                type._destructor(object);
        }
    } guard{type, isOwned ? object : nullptr};
    HeldObject& held = _pushHeld(lua, type, object);
    held.isOwned = isOwned;
    guard.object = nullptr;
    _track(held);
    if (isOwned)
        _countOutside(lua, held);
}

void UserDataAccess::push(lua_State* lua, UserType& type, const SharedObject& shared) {
    if (isValueType(type)) {
        _pushValue(lua, type, shared.object);
        return;
    }
    HeldObject& held = _pushHeld(lua, type, shared.object);
    held.shared = shared.owner;
    const bool isWorker = LuaState::of(lua).getEnvironment().getOptions().isWorker;
    if (shared.owner)
        return;
    if (isWorker && type._toBorrowable) {
        held.isForeign = true;
        return;
    }
    held.isTracked = shared.isTracked;
    held.life = shared.life;
    if (held.life && type._nameOf)
        held.name = type._nameOf(held.object);
}

void UserDataAccess::_pushValue(lua_State* lua, UserType& type, const void* object) {
    auto* data = static_cast<UserData*>(lua_newuserdatauv(lua, VALUE_OFFSET + type._valueSize, 0));
    void* const value = reinterpret_cast<char*>(data) + VALUE_OFFSET;
    new (data) UserData{&mark, &type, value, false};
    std::memcpy(value, object, type._valueSize);
    setMetatable(lua, type);
}

HeldObject& UserDataAccess::_pushHeld(lua_State* lua, UserType& type, void* object) {
    auto* held = new (lua_newuserdatauv(lua, sizeof(HeldObject), 1)) HeldObject;
    held->mark = &mark;
    held->type = &type;
    held->object = object;
    held->isHeld = true;
    setMetatable(lua, type);
    return *held;
}

void UserDataAccess::_track(HeldObject& held) {
    if (!held.type->_toBorrowable)
        return;
    held.isTracked = true;
    held.life = held.type->_toBorrowable(held.object);
    if (held.type->_nameOf)
        held.name = held.type->_nameOf(held.object);
}

void UserDataAccess::_countOutside(lua_State* lua, HeldObject& held) {
    if (!held.type->_sizeOf)
        return;
    const std::size_t before = held.outsideBytes;
    held.outsideBytes = held.type->_sizeOf(held.object);
    LuaState& state = LuaState::of(lua);
    state.countOutside(held.outsideBytes - before);
    if (held.outsideBytes > before)
        state.collectInTime(lua, held.outsideBytes - before);
}

void UserDataAccess::_pushWhole(lua_State* lua, int position) {
    lua_pushvalue(lua, position);
    const UserData* data = at(lua, -1);
    if (!data || !data->isHeld || static_cast<const HeldObject*>(data)->isOwned)
        return;
    lua_getiuservalue(lua, -1, 1);
    lua_remove(lua, lua_isnil(lua, -1) ? -1 : -2);
}

void UserDataAccess::keep(lua_State* lua, int position) {
    _pushWhole(lua, position);
    lua_setiuservalue(lua, -2, 1);
}

void UserDataAccess::recount(lua_State* lua, int position) {
    _pushWhole(lua, position);
    UserData* const whole = at(lua, -1);
    if (whole && whole->isHeld && static_cast<HeldObject*>(whole)->isOwned && !isGone(*whole))
        _countOutside(lua, *static_cast<HeldObject*>(whole));
    lua_pop(lua, 1);
}

ovMemory::UniquePtr<SharedObject> UserDataAccess::share(UserData& data, bool forwardOwnership) {
    auto result = std::make_unique<SharedObject>();
    result->typeName = data.type->getFullName();
    result->object = data.object;
    const UserType& type = *data.type;
    if (isValueType(type)) {
        result->object = type._newCopy(data.object);
        result->owner = std::shared_ptr<void>(result->object, type._destructor);
        return result;
    }
    auto& held = static_cast<HeldObject&>(data);
    if (held.isOwned && !held.shared)
        held.shared = std::shared_ptr<void>(held.object, type._destructor);
    result->owner = held.shared;
    if (!held.shared) {
        result->isTracked = held.isTracked;
        result->life = held.life;
        return result;
    }
    if (!forwardOwnership)
        return result;
    held.shared.reset();
    held.isOwned = false;
    held.isTracked = false;
    held.life = nullptr;
    held.object = nullptr;
    return result;
}

void UserDataAccess::_destroy(HeldObject& held) {
    const bool isAlive = held.object && (!held.isTracked || held.life);
    if (held.isOwned && !held.shared && isAlive && held.type->_destructor)
        held.type->_destructor(held.object);
}

int UserDataAccess::collect(lua_State* lua) {
    UserData* data = at(lua, 1);
    if (!data || !data->isHeld)
        return 0;
    auto& held = static_cast<HeldObject&>(*data);
    LuaState::of(lua).countOutside(std::size_t(0) - held.outsideBytes);
    _destroy(held);
    held.~HeldObject();
    // A finaliser of a script may still see it: it is nothing from now on.
    new (data) UserData;
    return 0;
}

} // namespace ovScripts::detail
