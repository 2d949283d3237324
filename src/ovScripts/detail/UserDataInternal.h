// Objects of C++ inside the interpreter.
#pragma once

#include <memory>
#include <new>
#include <ovScripts/detail/LuaStateInternal.h>
#include <ovScripts/detail/SharedObject.h>

namespace ovScripts::detail {

/// Head of each user data of this library. A value of a value type lies behind it; other objects have a
/// HeldObject.
struct UserData {
    const void* mark = nullptr; ///< tells this library's user data from those of others
    UserType* type = nullptr;
    void* object = nullptr;
    bool isHeld = false; ///< whether it is a HeldObject
};

/// An object that can go, is owned by scripts, or only passes through.
struct HeldObject : UserData {
    bool isOwned = false;   ///< the type's destructor destroys it, unless it is shared
    bool isForeign = false; ///< of another thread: can be passed on, not used
    bool isTracked = false;
    ovMemory::Borrowed<ovMemory::Borrowable> life; ///< null when a tracked object is gone
    std::shared_ptr<void> shared;
    std::size_t outsideBytes = 0;
    ovMemory::String name; ///< of an object that can go, for the message
};

/// What the interpreter's side needs of user types and user data.
class UserDataAccess {
public:
    static int& metatableOf(UserType& type) { return type._metatable; }
    static std::size_t valueSizeOf(const UserType& type) { return type._valueSize; }
    static bool isValueType(const UserType& type) { return type._valueSize > 0; }
    static const UserType::NamedGetter& namedGetterOf(const UserType& type) { return type._namedGetter; }
    static const UserType::NamedSetter& namedSetterOf(const UserType& type) { return type._namedSetter; }

    /// The user data at a position of the stack; null when there is none of this library.
    static UserData* at(lua_State* lua, int position);
    /// Whether the object can be used now.
    static bool isUsable(const UserData& data) {
        if (!data.isHeld)
            return true;
        const auto& held = static_cast<const HeldObject&>(data);
        return held.object && !held.isForeign && (!held.isTracked || held.life);
    }
    /// Why it cannot be used now; empty when it can.
    static ovMemory::String getObstacle(const UserData& data);

    /// Why an object cannot be handed to another environment; empty when it can.
    static ovMemory::String getSharingObstacle(lua_State* lua, int position, const UserData& data);

    /// Whether there is nothing left to pass on.
    static bool isGone(const UserData& data);

    /// Puts an object on the stack. Objects that are handed over are destroyed even when that fails.
    static void push(lua_State* lua, UserType& type, void* object, bool isOwned);
    static void push(lua_State* lua, UserType& type, const SharedObject& shared);
    /// Takes the user data out for another environment.
    static ovMemory::UniquePtr<SharedObject> share(UserData& data, bool forwardOwnership);

    /// Makes the user data on top of the stack keep the one at a position alive. Of a part it keeps the
    /// whole: a chain of parts would never let go of those in between.
    static void keep(lua_State* lua, int position);
    /// Looks again at what an object holds, or the whole that it is a part of: a call may have changed that.
    static void recount(lua_State* lua, int position);

    /// The finaliser of held objects.
    static int collect(lua_State* lua);

private:
    static void _pushValue(lua_State* lua, UserType& type, const void* object);
    static HeldObject& _pushHeld(lua_State* lua, UserType& type, void* object);
    static void _track(HeldObject& held);
    static void _countOutside(lua_State* lua, HeldObject& held);
    /// Puts the object on the stack that the one at a position is a part of, else that one.
    static void _pushWhole(lua_State* lua, int position);
    static void _destroy(HeldObject& held);
};

} // namespace ovScripts::detail
