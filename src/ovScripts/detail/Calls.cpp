#include <exception>
#include <ovScripts/detail/CallsInternal.h>
#include <ovScripts/detail/UserDataInternal.h>
#include <ovScripts/detail/ValuesInternal.h>

namespace ovScripts::detail {

namespace {

/// The arguments of a call. Few of them, as always, need no memory of their own.
class Arguments {
public:
    explicit Arguments(std::size_t count)
        : _count(count)
        , _first(count <= FEW
                     ? reinterpret_cast<FunctionParameter*>(_storage)
                     : static_cast<FunctionParameter*>(operator new(count * sizeof(FunctionParameter)))) {
        std::uninitialized_value_construct_n(_first, count);
    }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;
    ~Arguments() {
        std::destroy_n(_first, _count);
        if (_count > FEW)
            operator delete(_first);
    }

    ovMemory::BufferView<FunctionParameter> get() { return {_first, _count}; }

private:
    static constexpr std::size_t FEW = 6;

    std::size_t _count;
    FunctionParameter* _first;
    alignas(FunctionParameter) unsigned char _storage[FEW * sizeof(FunctionParameter)];
};

template <typename T>
T& upvalue(lua_State* lua) {
    return *static_cast<T*>(lua_touserdata(lua, lua_upvalueindex(1)));
}

// Raises "script:12: text". Everything of C++ on the way is destroyed by then: the text is the interpreter's.
int raise(lua_State* lua) {
    luaL_where(lua, 1);
    lua_insert(lua, -2);
    lua_concat(lua, 2);
    return lua_error(lua);
}

void pushText(lua_State* lua, const ovMemory::String& text) {
    lua_pushlstring(lua, text.data(), text.size());
}

// Puts the message on the stack.
void explainArgument(lua_State* lua, const Function& function, std::size_t argument, int position) {
    const FunctionArgument& declared = function.getArguments()[argument];
    const ovMemory::String got = ParameterAccess::describe(lua, position, declared);
    ovMemory::String text = function.getFullName() + ": argument " + std::to_string(argument + 1);
    if (!declared.name.empty() && declared.name != "self")
        text += " (" + declared.name + ')';
    pushText(lua, text + " expected " + expectationOf(declared) + ", got " + got);
}

// Runs a body of C++. What it throws is an error; what the interpreter throws is no exception of the
// standard's and passes.
template <typename Body>
FunctionParameter guarded(lua_State* lua, Body&& body) {
    try {
        const LuaState::Running running(LuaState::of(lua), lua);
        return body();
    } catch (const std::bad_alloc&) {
        return FunctionParameter::error("not enough memory");
    } catch (const std::exception& error) {
        return FunctionParameter::error(error.what());
    }
}

void pushError(lua_State* lua, const ovMemory::String& name, const FunctionParameter& error) {
    pushText(lua, name + ": " + ovMemory::String(error.getValueAsString()));
}

// Runs the body and puts what it gives on the stack. @return false with the message there
bool runBody(lua_State* lua, const Function& function, ovMemory::BufferView<FunctionParameter> arguments) {
    const FunctionParameter result = guarded(lua, [&] { return function.getFunction()(arguments); });
    if (result.isError())
        pushError(lua, function.getFullName(), result);
    else
        ParameterAccess::push(lua, result);
    return !result.isError();
}

// Checks the arguments from a position of the stack on and runs the body. @return as runBody()
bool callChecked(lua_State* lua, const Function& function, int first) {
    const ovMemory::Buffer<FunctionArgument>& declared = function.getArguments();
    Arguments arguments(declared.size());
    for (std::size_t i = 0; i < declared.size(); ++i) {
        const int position = first + static_cast<int>(i);
        if (ParameterAccess::read(lua, position, declared[i], arguments.get()[i]))
            continue;
        explainArgument(lua, function, i, position);
        return false;
    }
    if (!runBody(lua, function, arguments.get()))
        return false;
    if (!declared.empty() && declared[0].knownType && !UserDataAccess::isValueType(*declared[0].knownType))
        UserDataAccess::recount(lua, first);
    return true;
}

// The object of a member access, usable; else raises an error.
UserData& objectOfMember(lua_State* lua, const UserType& type) {
    UserData* data = UserDataAccess::at(lua, 1);
    if (!data || data->type != &type) {
        lua_pushfstring(lua, "%s expected, got %s", type.getFullName().c_str(), luaL_typename(lua, 1));
        raise(lua);
    }
    if (!UserDataAccess::isUsable(*data)) {
        pushText(lua, UserDataAccess::getObstacle(*data));
        raise(lua);
    }
    return *data;
}

// The declared member of the key at position 2; null when there is none.
const UserType::Member* findMember(lua_State* lua) {
    lua_pushvalue(lua, 2);
    lua_rawget(lua, lua_upvalueindex(3));
    const auto* member = static_cast<const UserType::Member*>(lua_touserdata(lua, -1));
    lua_pop(lua, 1);
    return member;
}

ovMemory::String nameOfMember(const UserType& type, const ovMemory::String& name) {
    return type.getFullName() + '.' + name;
}

// Puts the value or the message on the stack. @return whether it is the value
bool pushMember(lua_State* lua, const UserType& type, const ovMemory::String& name, FunctionParameter value) {
    if (value.isError()) {
        pushError(lua, nameOfMember(type, name), value);
        return false;
    }
    if (value.getType() == FUNCTION_PARAMETER_TYPE::USER_DATA && !value.isOwnershipForwarded())
        value = std::move(value).keeping(0); // a part of the object
    ParameterAccess::push(lua, value);
    return true;
}

// @return 1 with the value, 0 without such a member, -1 with a message
int readNamedMember(lua_State* lua, const UserType& type, void* object) {
    const UserType::NamedGetter& getter = UserDataAccess::namedGetterOf(type);
    if (!getter || lua_type(lua, 2) != LUA_TSTRING)
        return 0;
    const ovMemory::String name = lua_tostring(lua, 2);
    bool isThere = true;
    FunctionParameter value = guarded(lua, [&] {
        FunctionParameter read;
        isThere = getter(object, name, read);
        return read;
    });
    if (!isThere)
        return 0;
    return pushMember(lua, type, name, std::move(value)) ? 1 : -1;
}

bool readDeclaredMember(lua_State* lua, const UserType& type, const UserType::Member& member, void* object) {
    if (!member.getter) {
        pushText(lua, nameOfMember(type, member.name) + " can be set, not read");
        return false;
    }
    return pushMember(lua, type, member.name, guarded(lua, [&] { return member.getter(object); }));
}

void pushUnknownMember(lua_State* lua, const UserType& type) {
    const char* key = luaL_tolstring(lua, 2, nullptr);
    lua_pushfstring(lua, "%s has no member '%s'", type.getFullName().c_str(), key);
}

// @return whether it was set; else the message is on the stack
bool writeDeclaredMember(lua_State* lua, const UserType& type, const UserType::Member& member, void* object) {
    if (!member.setter) {
        pushText(lua, nameOfMember(type, member.name) + " can be read, not set");
        return false;
    }
    FunctionParameter value;
    if (!ParameterAccess::read(lua, 3, member.value, value)) {
        pushText(lua, nameOfMember(type, member.name) + " expected " + expectationOf(member.value) +
                          ", got " + ParameterAccess::describe(lua, 3, member.value));
        return false;
    }
    const FunctionParameter result = guarded(lua, [&] { return member.setter(object, value); });
    if (result.isError())
        pushError(lua, nameOfMember(type, member.name), result);
    return !result.isError();
}

// @return 1 when it was set, 0 without such a member, -1 with a message
int writeNamedMember(lua_State* lua, const UserType& type, void* object) {
    const UserType::NamedSetter& setter = UserDataAccess::namedSetterOf(type);
    if (!setter || lua_type(lua, 2) != LUA_TSTRING)
        return 0;
    const ovMemory::String name = lua_tostring(lua, 2);
    FunctionParameter value;
    ParameterAccess::readAny(lua, 3, value);
    bool isThere = true;
    const FunctionParameter result = guarded(lua, [&] {
        FunctionParameter written;
        isThere = setter(object, name, value, written);
        return written;
    });
    if (!isThere)
        return 0;
    if (!result.isError())
        return 1;
    pushError(lua, nameOfMember(type, name), result);
    return -1;
}

bool refuseOnWorker(lua_State* lua, const Function& function) {
    if (!function.isRenderThreadOnly() || !LuaState::of(lua).getEnvironment().getOptions().isWorker)
        return false;
    pushText(lua, function.getFullName() + " belongs to the thread that renders; hand data over instead");
    return true;
}

} // namespace

int callFunction(lua_State* lua) {
    const Function& function = upvalue<const Function>(lua);
    if (refuseOnWorker(lua, function) || !callChecked(lua, function, 1))
        return raise(lua);
    return 1;
}

int callConstructor(lua_State* lua) {
    const Function& function = upvalue<const Function>(lua);
    lua_remove(lua, 1);
    if (refuseOnWorker(lua, function) || !callChecked(lua, function, 1))
        return raise(lua);
    return 1;
}

int readMember(lua_State* lua) {
    lua_pushvalue(lua, 2);
    if (lua_rawget(lua, lua_upvalueindex(2)) != LUA_TNIL)
        return 1;
    const UserType& type = upvalue<const UserType>(lua);
    void* const object = objectOfMember(lua, type).object;
    if (const UserType::Member* member = findMember(lua))
        return readDeclaredMember(lua, type, *member, object) ? 1 : raise(lua);
    const int found = readNamedMember(lua, type, object);
    if (found == 0)
        pushUnknownMember(lua, type);
    return found == 1 ? 1 : raise(lua);
}

int writeMember(lua_State* lua) {
    const UserType& type = upvalue<const UserType>(lua);
    void* const object = objectOfMember(lua, type).object;
    if (const UserType::Member* member = findMember(lua))
        return writeDeclaredMember(lua, type, *member, object) ? 0 : raise(lua);
    const int found = writeNamedMember(lua, type, object);
    if (found == 0)
        pushUnknownMember(lua, type);
    return found == 1 ? 0 : raise(lua);
}

int refuseConstruction(lua_State* lua) {
    lua_pushfstring(lua, "%s: scripts cannot make one; take one that a function or a member gives",
                    upvalue<const UserType>(lua).getFullName().c_str());
    return raise(lua);
}

int refuseMethod(lua_State* lua) {
    pushUnknownMember(lua, upvalue<const UserType>(lua));
    return raise(lua);
}

int isSameObject(lua_State* lua) {
    const UserData* left = UserDataAccess::at(lua, 1);
    const UserData* right = UserDataAccess::at(lua, 2);
    lua_pushboolean(lua, left && right && left->type == right->type && left->object == right->object &&
                             !UserDataAccess::isGone(*left) && !UserDataAccess::isGone(*right));
    return 1;
}

int printObject(lua_State* lua) {
    const UserData* data = UserDataAccess::at(lua, 1);
    if (!data) {
        lua_pushliteral(lua, "an object that was collected");
        return 1;
    }
    const ovMemory::String obstacle = UserDataAccess::getObstacle(*data);
    const bool hasName = data->isHeld && !static_cast<const HeldObject*>(data)->name.empty();
    if (!obstacle.empty())
        pushText(lua, obstacle);
    else if (hasName)
        pushText(lua, data->type->getFullName() + " '" + static_cast<const HeldObject*>(data)->name + '\'');
    else
        lua_pushfstring(lua, "%s: %p", data->type->getFullName().c_str(), data->object);
    return 1;
}

} // namespace ovScripts::detail
