#include <ovScripts/detail/ReferencesInternal.h>
#include <ovScripts/detail/UserDataInternal.h>
#include <ovScripts/detail/ValuesInternal.h>

namespace ovScripts::detail {

namespace {

bool isNumber(FUNCTION_PARAMETER_TYPE type) {
    return type == FUNCTION_PARAMETER_TYPE::INT || type == FUNCTION_PARAMETER_TYPE::FLOAT ||
           type == FUNCTION_PARAMETER_TYPE::DOUBLE;
}

// A function belongs to one environment, so that the type that its argument names can be remembered.
bool isOfType(const UserData& data, const FunctionArgument& declared) {
    if (declared.knownType == data.type || declared.typeName.empty())
        return true;
    if (declared.typeName != data.type->getFullName())
        return false;
    declared.knownType = data.type;
    return true;
}

} // namespace

bool ParameterAccess::read(lua_State* lua, int position, const FunctionArgument& declared,
                           FunctionParameter& value) {
    value._stackPosition = position;
    if (declared.isOptional && lua_isnoneornil(lua, position))
        return true;
    switch (declared.type) {
    case FUNCTION_PARAMETER_TYPE::BOOL:
        value._type = declared.type;
        value._value.boolean = lua_toboolean(lua, position) != 0;
        return lua_isboolean(lua, position);
    case FUNCTION_PARAMETER_TYPE::INT:
        return _readInt(lua, position, value);
    case FUNCTION_PARAMETER_TYPE::FLOAT:
    case FUNCTION_PARAMETER_TYPE::DOUBLE:
        return _readNumber(lua, position, declared.type, value);
    case FUNCTION_PARAMETER_TYPE::STRING:
        return _readString(lua, position, value);
    case FUNCTION_PARAMETER_TYPE::USER_DATA_PTR:
    case FUNCTION_PARAMETER_TYPE::USER_DATA:
        return _readUserData(lua, position, declared, value);
    case FUNCTION_PARAMETER_TYPE::FUNCTION:
        if (!lua_isfunction(lua, position))
            return false;
        _readReference(lua, position, value);
        return true;
    case FUNCTION_PARAMETER_TYPE::SCRIPT_OBJECT:
        _readReference(lua, position, value);
        return true;
    case FUNCTION_PARAMETER_TYPE::ANY:
        readAny(lua, position, value);
        return true;
    case FUNCTION_PARAMETER_TYPE::VOID:
        return lua_isnoneornil(lua, position);
    }
    return false;
}

void ParameterAccess::readAny(lua_State* lua, int position, FunctionParameter& value) {
    value._stackPosition = position;
    switch (lua_type(lua, position)) {
    case LUA_TNONE:
    case LUA_TNIL:
        return;
    case LUA_TBOOLEAN:
        value._type = FUNCTION_PARAMETER_TYPE::BOOL;
        value._value.boolean = lua_toboolean(lua, position) != 0;
        return;
    case LUA_TNUMBER:
        if (lua_isinteger(lua, position)) {
            value._type = FUNCTION_PARAMETER_TYPE::INT;
            value._value.integer = lua_tointeger(lua, position);
        } else {
            _readNumber(lua, position, FUNCTION_PARAMETER_TYPE::DOUBLE, value);
        }
        return;
    case LUA_TSTRING:
        _readString(lua, position, value);
        return;
    case LUA_TUSERDATA:
        if (_readUserData(lua, position, {}, value))
            return;
        [[fallthrough]];
    default:
        _readReference(lua, position, value);
    }
}

bool ParameterAccess::_readInt(lua_State* lua, int position, FunctionParameter& value) {
    // Lua would also convert texts.
    if (lua_type(lua, position) != LUA_TNUMBER)
        return false;
    int isWhole = 0;
    value._value.integer = lua_tointegerx(lua, position, &isWhole);
    value._type = FUNCTION_PARAMETER_TYPE::INT;
    return isWhole != 0;
}

bool ParameterAccess::_readNumber(lua_State* lua, int position, FUNCTION_PARAMETER_TYPE type,
                                  FunctionParameter& value) {
    if (lua_type(lua, position) != LUA_TNUMBER)
        return false;
    value._type = type;
    value._value.number = lua_tonumber(lua, position);
    return true;
}

bool ParameterAccess::_readString(lua_State* lua, int position, FunctionParameter& value) {
    if (lua_type(lua, position) != LUA_TSTRING)
        return false;
    std::size_t length = 0;
    const char* text = lua_tolstring(lua, position, &length);
    value._type = FUNCTION_PARAMETER_TYPE::STRING;
    value._text = {text, length};
    return true;
}

bool ParameterAccess::_readUserData(lua_State* lua, int position, const FunctionArgument& declared,
                                    FunctionParameter& value) {
    if (declared.type == FUNCTION_PARAMETER_TYPE::USER_DATA && lua_isnoneornil(lua, position)) {
        value._type = FUNCTION_PARAMETER_TYPE::USER_DATA;
        value._value.object = nullptr;
        return true;
    }
    const UserData* data = UserDataAccess::at(lua, position);
    if (!data || !isOfType(*data, declared))
        return false;
    // Without a type's name an object is only passed on, which foreign ones allow.
    if (declared.typeName.empty() ? UserDataAccess::isGone(*data) : !UserDataAccess::isUsable(*data))
        return false;
    value._type = FUNCTION_PARAMETER_TYPE::USER_DATA;
    value._value.object = data->object;
    value._text = data->type->getFullName();
    return true;
}

void ParameterAccess::_readReference(lua_State* lua, int position, FunctionParameter& value) {
    lua_pushvalue(lua, position);
    value = FunctionParameter(ReferenceAccess::take(lua));
    value._stackPosition = position;
}

void ParameterAccess::push(lua_State* lua, const FunctionParameter& value) {
    switch (value._type) {
    case FUNCTION_PARAMETER_TYPE::BOOL:
        lua_pushboolean(lua, value._value.boolean);
        return;
    case FUNCTION_PARAMETER_TYPE::INT:
        lua_pushinteger(lua, value._value.integer);
        return;
    case FUNCTION_PARAMETER_TYPE::FLOAT:
    case FUNCTION_PARAMETER_TYPE::DOUBLE:
        lua_pushnumber(lua, value._value.number);
        return;
    case FUNCTION_PARAMETER_TYPE::STRING: {
        const ovMemory::StringView text = value.getValueAsString();
        lua_pushlstring(lua, text.data(), text.size());
        return;
    }
    case FUNCTION_PARAMETER_TYPE::USER_DATA_PTR:
    case FUNCTION_PARAMETER_TYPE::USER_DATA:
        _pushUserData(lua, value);
        return;
    case FUNCTION_PARAMETER_TYPE::FUNCTION:
    case FUNCTION_PARAMETER_TYPE::SCRIPT_OBJECT:
        if (!ReferenceAccess::push(lua, value.getScriptObjectReference()))
            luaL_error(lua, "an object of another environment cannot be handed over");
        return;
    case FUNCTION_PARAMETER_TYPE::VOID:
    case FUNCTION_PARAMETER_TYPE::ANY:
        lua_pushnil(lua);
    }
}

void ParameterAccess::_pushUserData(lua_State* lua, const FunctionParameter& value) {
    if (!value._value.object) {
        lua_pushnil(lua);
        return;
    }
    UserType* type = LuaState::of(lua).findType(value._text);
    if (!type)
        luaL_error(lua, "the type of a result was not declared: %s", ovMemory::String(value._text).c_str());
    if (value._shared && value._shared->getShared())
        UserDataAccess::push(lua, *type, *value._shared->getShared());
    else
        UserDataAccess::push(lua, *type, value._value.object, value._isOwnershipForwarded);
    if (value._keptArgument < 0 ||
        value._keptArgument + 1 >= lua_gettop(lua)) // of a function without arguments
        return;
    UserDataAccess::keep(lua, value._keptArgument + 1);
}

ovMemory::String expectationOf(const FunctionArgument& declared) {
    switch (declared.type) {
    case FUNCTION_PARAMETER_TYPE::BOOL:
        return "boolean";
    case FUNCTION_PARAMETER_TYPE::INT:
        return "integer";
    case FUNCTION_PARAMETER_TYPE::FLOAT:
    case FUNCTION_PARAMETER_TYPE::DOUBLE:
        return "number";
    case FUNCTION_PARAMETER_TYPE::STRING:
        return "string";
    case FUNCTION_PARAMETER_TYPE::USER_DATA_PTR:
        return declared.typeName.empty() ? "an object of a declared type" : declared.typeName;
    case FUNCTION_PARAMETER_TYPE::USER_DATA:
        return declared.typeName + " or nil";
    case FUNCTION_PARAMETER_TYPE::FUNCTION:
        return "function";
    case FUNCTION_PARAMETER_TYPE::SCRIPT_OBJECT:
    case FUNCTION_PARAMETER_TYPE::ANY:
        return "any value";
    case FUNCTION_PARAMETER_TYPE::VOID:
        return "nil";
    }
    return {};
}

ovMemory::String ParameterAccess::describe(lua_State* lua, int position, const FunctionArgument& declared) {
    if (const UserData* data = UserDataAccess::at(lua, position)) {
        const ovMemory::String obstacle = UserDataAccess::getObstacle(*data);
        const bool isOfType = declared.typeName.empty() || declared.typeName == data->type->getFullName();
        return isOfType && !obstacle.empty() ? obstacle : data->type->getFullName();
    }
    if (isNumber(declared.type) && lua_type(lua, position) == LUA_TNUMBER)
        return ovMemory::String(
            luaL_tolstring(lua, position, nullptr)); // left on the stack: an error follows
    if (lua_isnone(lua, position))
        return "nothing";
    return luaL_typename(lua, position);
}

void ParameterAccess::own(FunctionParameter& value) {
    value._stackPosition = 0;
    if (value._type == FUNCTION_PARAMETER_TYPE::STRING && !value._owned)
        value._ownText(value._text);
}

} // namespace ovScripts::detail
