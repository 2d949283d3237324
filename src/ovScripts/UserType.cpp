#include <ovScripts/Environment.h>
#include <ovScripts/UserType.h>
#include <ovScripts/detail/CallsInternal.h>
#include <ovScripts/detail/TablesInternal.h>
#include <ovScripts/detail/UserDataInternal.h>

namespace ovScripts {

namespace {

// The interpreter's name of each operator, by its number.
constexpr ovMemory::StringView OPERATOR_FIELDS[] = {"__tostring", "__call", "__add",    "__sub", "__mul",
                                                    "__div",      "__mod",  "__pow",    "__unm", "__eq",
                                                    "__lt",       "__le",   "__concat", "__len"};
static_assert(std::size(OPERATOR_FIELDS) == ovMemory::enumTableOf<USER_TYPE_OPERATOR>().size());

void setTextField(lua_State* lua, const char* field, const ovMemory::String& text) {
    lua_pushlstring(lua, text.data(), text.size());
    lua_setfield(lua, -2, field);
}

// A closure over the type and its two tables.
void setMemberField(lua_State* lua, const char* field, lua_CFunction function, UserType* type, int methods,
                    int members) {
    lua_pushlightuserdata(lua, type);
    lua_rawgeti(lua, LUA_REGISTRYINDEX, methods);
    lua_rawgeti(lua, LUA_REGISTRYINDEX, members);
    lua_pushcclosure(lua, function, 3);
    lua_setfield(lua, -2, field);
}

// Makes calls of the type's table, which registry holds, calls of a function with one upvalue.
void setCall(lua_State* lua, int table, lua_CFunction function, const void* upvalue,
             const ovMemory::String& fullName) {
    lua_rawgeti(lua, LUA_REGISTRYINDEX, table);
    lua_newtable(lua);
    detail::setFunctionField(lua, "__call", function, upvalue);
    setTextField(lua, "__metatable", fullName);
    lua_setmetatable(lua, -2);
    lua_pop(lua, 1);
}

// A table that raises an error for names that it lacks. @return the interpreter's number of the hold on it
int createMethodTable(lua_State* lua, UserType* type) {
    lua_newtable(lua);
    lua_newtable(lua);
    detail::setFunctionField(lua, "__index", &detail::refuseMethod, type);
    lua_setmetatable(lua, -2);
    return luaL_ref(lua, LUA_REGISTRYINDEX);
}

} // namespace

UserType::UserType(Environment* environment, ovMemory::StringView fullName)
    : _environment(environment)
    , _fullName(fullName) {
    _environment->getState()->protect([&](lua_State* lua) {
        _table = detail::createNamedTable(lua, _fullName);
        setCall(lua, _table, &detail::refuseConstruction, this, _fullName);
        _methods = createMethodTable(lua, this);
        lua_newtable(lua);
        _members = luaL_ref(lua, LUA_REGISTRYINDEX);
        lua_newtable(lua);
        lua_pushvalue(lua, -1);
        _metatable = luaL_ref(lua, LUA_REGISTRYINDEX);
        setTextField(lua, "__name", _fullName);
        setTextField(lua, "__metatable", _fullName); // what getmetatable() gives; the table itself stays ours
        // As long as there are no members this is quicker than a function.
        lua_rawgeti(lua, LUA_REGISTRYINDEX, _methods);
        lua_setfield(lua, -2, "__index");
        setMemberField(lua, "__newindex", &detail::writeMember, this, _methods, _members);
        detail::setFunctionField(lua, "__eq", &detail::isSameObject, this);
        detail::setFunctionField(lua, "__tostring", &detail::printObject, this);
        detail::setFunctionField(lua, "__gc", &detail::UserDataAccess::collect, this);
    });
}

UserType::~UserType() = default;

ovMemory::UniquePtr<Function> UserType::_newFunction(ovMemory::StringView name) const {
    auto function = std::make_unique<Function>(_fullName + '.' + ovMemory::String(name));
    if (_isRenderThreadOnly)
        function->setRenderThreadOnly();
    return function;
}

void UserType::_declareSelf(Function& function) const {
    function.addParameter(FUNCTION_PARAMETER_TYPE::USER_DATA_PTR, _fullName, "self");
}

Function*
UserType::setConstructor(std::function<void*(ovMemory::BufferView<FunctionParameter>)> constructor) {
    // Named as it is called: ovMaths.Vector().
    _constructor = std::make_unique<Function>(_fullName);
    if (_isRenderThreadOnly)
        _constructor->setRenderThreadOnly();
    _constructor->setResult(FUNCTION_PARAMETER_TYPE::USER_DATA_PTR, _fullName);
    _constructor->setFunction(
        [this, constructor = std::move(constructor)](ovMemory::BufferView<FunctionParameter> arguments) {
            return FunctionParameter(constructor(arguments), _fullName, true);
        });
    _environment->getState()->protect([&](lua_State* lua) {
        setCall(lua, _table, &detail::callConstructor, _constructor.get(), _fullName);
    });
    return _constructor.get();
}

void UserType::setDestructor(Destructor destructor) {
    _destructor = std::move(destructor);
}

Function* UserType::addMethod(ovMemory::StringView name) {
    Function* function = _methodList.emplace_back(_newFunction(name)).get();
    _declareSelf(*function);
    _environment->getState()->protect([&](lua_State* lua) {
        lua_rawgeti(lua, LUA_REGISTRYINDEX, _methods);
        detail::setFunctionField(lua, name, &detail::callFunction, function);
    });
    return function;
}

Function* UserType::addStaticFunction(ovMemory::StringView name) {
    Function* function = _statics.emplace_back(_newFunction(name)).get();
    _environment->getState()->protect([&](lua_State* lua) {
        lua_rawgeti(lua, LUA_REGISTRYINDEX, _table);
        detail::setFunctionField(lua, name, &detail::callFunction, function);
    });
    return function;
}

UserType::Member* UserType::addMemberVariable(ovMemory::StringView name, FUNCTION_PARAMETER_TYPE type,
                                              ovMemory::StringView typeName, Getter getter, Setter setter) {
    Member* member = _memberList.emplace_back(std::make_unique<Member>()).get();
    member->name = name;
    member->value = {type, ovMemory::String(typeName), ovMemory::String(name), false, nullptr};
    member->getter = std::move(getter);
    member->setter = std::move(setter);
    _environment->getState()->protect([&](lua_State* lua) {
        lua_rawgeti(lua, LUA_REGISTRYINDEX, _members);
        lua_pushlstring(lua, name.data(), name.size());
        lua_pushlightuserdata(lua, member);
        lua_rawset(lua, -3);
    });
    _lookMembersUp();
    return member;
}

void UserType::_lookMembersUp() {
    _environment->getState()->protect([&](lua_State* lua) {
        lua_rawgeti(lua, LUA_REGISTRYINDEX, _metatable);
        setMemberField(lua, "__index", &detail::readMember, this, _methods, _members);
    });
}

Function* UserType::addOperator(USER_TYPE_OPERATOR kind) {
    ovMemory::UniquePtr<Function>& function = _operators[kind];
    const ovMemory::StringView field = OPERATOR_FIELDS[static_cast<unsigned int>(kind)];
    function = _newFunction(field.substr(2));
    _environment->getState()->protect([&](lua_State* lua) {
        lua_rawgeti(lua, LUA_REGISTRYINDEX, _metatable);
        detail::setFunctionField(lua, field, &detail::callFunction, function.get());
    });
    return function.get();
}

void UserType::setNamedMembers(NamedGetter getter, NamedSetter setter) {
    _namedGetter = std::move(getter);
    _namedSetter = std::move(setter);
    _lookMembersUp();
}

void UserType::_setValueType(std::size_t size, void* (*newCopy)(const void*), Destructor destructor) {
    _valueSize = size;
    _newCopy = newCopy;
    if (!_destructor)
        _destructor = std::move(destructor);
    // Without a finaliser the interpreter frees them as cheaply as its own numbers.
    _environment->getState()->protect([&](lua_State* lua) {
        lua_rawgeti(lua, LUA_REGISTRYINDEX, _metatable);
        lua_pushnil(lua);
        lua_setfield(lua, -2, "__gc");
    });
}

void UserType::_setBorrowable(ovMemory::Borrowable* (*toBorrowable)(void*),
                              std::function<ovMemory::String(const void*)> nameOf) {
    _toBorrowable = toBorrowable;
    _nameOf = std::move(nameOf);
}

ovMemory::Buffer<UserType::NamedMembers> UserType::getNamedMembers() const {
    return _namedMemberList ? _namedMemberList() : ovMemory::Buffer<NamedMembers>();
}

} // namespace ovScripts
