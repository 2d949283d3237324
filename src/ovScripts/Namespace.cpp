#include <ovScripts/Environment.h>
#include <ovScripts/Namespace.h>
#include <ovScripts/detail/CallsInternal.h>
#include <ovScripts/detail/TablesInternal.h>
#include <ovScripts/detail/ValuesInternal.h>

namespace ovScripts {

Namespace::Namespace(Environment* environment, ovMemory::StringView fullName)
    : _environment(environment)
    , _fullName(fullName) {
    _environment->getState()->protect(
        [&](lua_State* lua) { _table = detail::createNamedTable(lua, _fullName); });
}

void Namespace::addConstant(ovMemory::StringView name, FunctionParameter value) {
    _setMember(name, value);
    _constants.push_back({ovMemory::String(name), std::move(value)});
}

Function* Namespace::addFunction(ovMemory::StringView name) {
    Function* function =
        _functions.emplace_back(std::make_unique<Function>(_fullName + '.' + ovMemory::String(name))).get();
    _environment->getState()->protect([&](lua_State* lua) {
        lua_rawgeti(lua, LUA_REGISTRYINDEX, _table);
        detail::setFunctionField(lua, name, &detail::callFunction, function);
    });
    return function;
}

void Namespace::setUserDataMember(ovMemory::StringView name, ovMemory::StringView typeName, void* object) {
    _setMember(name, FunctionParameter(object, typeName, false));
}

void Namespace::_setMember(ovMemory::StringView name, const FunctionParameter& value) {
    _environment->getState()->protect([&](lua_State* lua) {
        lua_rawgeti(lua, LUA_REGISTRYINDEX, _table);
        lua_pushlstring(lua, name.data(), name.size());
        detail::ParameterAccess::push(lua, value);
        lua_rawset(lua, -3);
    });
}

} // namespace ovScripts
