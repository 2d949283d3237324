#include <algorithm>
#include <ovScripts/Environment.h>
#include <ovScripts/detail/CallsInternal.h>
#include <ovScripts/detail/ReferencesInternal.h>
#include <ovScripts/detail/SerializationInternal.h>
#include <ovScripts/detail/TablesInternal.h>
#include <ovScripts/detail/UserDataInternal.h>
#include <ovScripts/detail/ValuesInternal.h>

namespace ovScripts {

namespace {

using detail::LuaState;
using detail::ParameterAccess;

template <typename T>
T* findDeclared(const ovMemory::Buffer<ovMemory::UniquePtr<T>>& declared, ovMemory::StringView fullName) {
    const auto found = std::find_if(declared.begin(), declared.end(),
                                    [&](const auto& one) { return one->getFullName() == fullName; });
    return found == declared.end() ? nullptr : found->get();
}

ExecutionResult failure(EXECUTION_FAILURE_TYPE type, ovMemory::String text) {
    auto result = ovMemory::failed<ExecutionResult>(std::move(text));
    result.failureType = type;
    return result;
}

// Puts the arguments on the stack, calls what lies below them, and takes what it returns.
bool callWith(LuaState& state, ovMemory::BufferView<const FunctionParameter> arguments,
              ovMemory::BufferView<FunctionParameter> results, ExecutionResult& result) {
    lua_State* lua = state.getLua();
    const auto argumentCount = static_cast<int>(arguments.size());
    const auto resultCount = static_cast<int>(results.size());
    luaL_checkstack(lua, argumentCount + resultCount, nullptr);
    for (const FunctionParameter& argument : arguments)
        ParameterAccess::push(lua, argument);
    if (!state.call(argumentCount, resultCount, result))
        return false;
    for (int i = 0; i < resultCount; ++i) {
        FunctionParameter value;
        ParameterAccess::readAny(lua, lua_gettop(lua) - resultCount + i + 1, value);
        ParameterAccess::own(value);
        results[static_cast<std::size_t>(i)] = std::move(value);
    }
    return true;
}

} // namespace

ovMemory::UniquePtr<Environment> Environment::create(const EnvironmentOptions& options) {
    return std::make_unique<Environment>(options);
}

Environment::Environment(const EnvironmentOptions& options)
    : _options(options) {}

Environment::~Environment() {
    detail::forgetTickets(*this);
    // Objects that end with the interpreter find neither it nor this any more.
    _forgetBorrowers();
    _lua.reset();
}

bool Environment::setEnvironmentFor(INTERPRETER interpreter) {
    detail::forgetTickets(*this);
    _forgetBorrowers();
    _lua.reset();
    _functions.clear();
    _userTypes.clear();
    _namespaces.clear();
    if (interpreter == INTERPRETER::LUA)
        _lua = LuaState::create(*this);
    return _lua != nullptr;
}

INTERPRETER Environment::getInterpreter() const {
    return _lua ? INTERPRETER::LUA : INTERPRETER::UNKNOWN;
}

void Environment::restartLimits() {
    _forgottenInterruptions = *_interruptions;
    if (_lua)
        _lua->restartLimits();
}

void Environment::interrupt() {
    ++*_interruptions;
}

void Environment::shareInterruptions(const Environment& other) {
    _interruptions = other._interruptions;
    _forgottenInterruptions = *other._interruptions;
}

void Environment::setWarningReceiver(std::function<void(ovMemory::StringView)> receiver) {
    _warningReceiver = std::move(receiver);
}

Namespace* Environment::setNamespace(ovMemory::StringView fullName) {
    if (!_lua)
        return nullptr;
    if (Namespace* declared = getNamespace(fullName))
        return declared;
    return _namespaces.emplace_back(std::make_unique<Namespace>(this, fullName)).get();
}

Namespace* Environment::getNamespace(ovMemory::StringView fullName) const {
    return findDeclared(_namespaces, fullName);
}

UserType* Environment::setUserType(ovMemory::StringView fullName) {
    if (!_lua)
        return nullptr;
    if (UserType* declared = getUserType(fullName))
        return declared;
    return _userTypes.emplace_back(std::make_unique<UserType>(this, fullName)).get();
}

UserType* Environment::getUserType(ovMemory::StringView fullName) const {
    return findDeclared(_userTypes, fullName);
}

Function* Environment::setFunc(ovMemory::StringView name) {
    if (!_lua)
        return nullptr;
    if (Function* declared = getFunc(name))
        return declared;
    Function* function = _functions.emplace_back(std::make_unique<Function>(name)).get();
    _lua->protect([&](lua_State* lua) {
        lua_pushglobaltable(lua);
        detail::setFunctionField(lua, name, &detail::callFunction, function);
    });
    return function;
}

Function* Environment::getFunc(ovMemory::StringView name) const {
    return findDeclared(_functions, name);
}

bool Environment::execute(const Script& script, ovMemory::BufferView<const FunctionParameter> arguments) {
    return execute(script, arguments, {});
}

bool Environment::execute(const Script& script, ovMemory::BufferView<const FunctionParameter> arguments,
                          ovMemory::BufferView<FunctionParameter> results) {
    const ovMemory::String object = "Script '" + script.getName() + "' ";
    if (!_lua || script.getTargetInterpreter() != getInterpreter())
        _result = failure(EXECUTION_FAILURE_TYPE::INTERPRETER_UNKNOWN,
                          object + "cannot be executed: set the interpreter LUA for it and its environment");
    else if (!script.isLoaded())
        _result = failure(EXECUTION_FAILURE_TYPE::BYTECODE_NOT_READY,
                          object + "cannot be executed: it is not loaded; call load() and see its result");
    else
        return _run(
            [&](lua_State* lua) {
                const auto bytes = script.getBytecode();
                const ovMemory::String name = '=' + script.getName();
                if (luaL_loadbufferx(lua, reinterpret_cast<const char*>(bytes.data()), bytes.size(),
                                     name.c_str(), "b") != LUA_OK)
                    lua_error(lua);
            },
            arguments, results);
    return false;
}

bool Environment::callScriptFunction(const ScriptObjectReference& function,
                                     ovMemory::BufferView<const FunctionParameter> arguments,
                                     ovMemory::BufferView<FunctionParameter> results) {
    if (!_lua || !function || function.getEnvironment() != this) {
        _result =
            failure(EXECUTION_FAILURE_TYPE::OBJECT_INVALID,
                    "The function cannot be called: there is none, or it belongs to another environment");
        return false;
    }
    return _run([&](lua_State* lua) { detail::ReferenceAccess::push(lua, function); }, arguments, results);
}

template <typename Push>
bool Environment::_run(Push&& push, ovMemory::BufferView<const FunctionParameter> arguments,
                       ovMemory::BufferView<FunctionParameter> results) {
    ExecutionResult result;
    ovMemory::String message;
    bool isDone = false;
    const int status = _lua->protect(
        [&](lua_State* lua) {
            const LuaState::Running running(*_lua, lua);
            push(lua);
            isDone = callWith(*_lua, arguments, results, result);
        },
        &message);
    if (status != LUA_OK) // before or behind the call itself
        result = failure(status == LUA_ERRMEM ? EXECUTION_FAILURE_TYPE::MEMORY_ALLOCATION
                                              : EXECUTION_FAILURE_TYPE::RUNTIME,
                         std::move(message));
    _result = std::move(result);
    return isDone && status == LUA_OK;
}

ovMemory::Buffer<unsigned char> Environment::serializeScriptObject(const ScriptObjectReference& object,
                                                                   bool forwardOwnership) {
    ovMemory::Buffer<unsigned char> bytes;
    _result = {};
    if (!_lua || !object || object.getEnvironment() != this) {
        _result =
            failure(EXECUTION_FAILURE_TYPE::OBJECT_INVALID,
                    "The object cannot be serialised: there is none, or it belongs to another environment");
        return bytes;
    }
    ovMemory::String message;
    const int status = _lua->protect(
        [&](lua_State* lua) {
            detail::ReferenceAccess::push(lua, object);
            bytes = detail::serialize(lua, forwardOwnership);
        },
        &message);
    if (status == LUA_OK)
        return bytes;
    _result = failure(status == LUA_ERRMEM ? EXECUTION_FAILURE_TYPE::MEMORY_ALLOCATION
                                           : EXECUTION_FAILURE_TYPE::RUNTIME,
                      std::move(message));
    return {};
}

ScriptObjectReference Environment::deserializeScriptObject(ovMemory::BufferView<const unsigned char> bytes) {
    ScriptObjectReference object;
    _result = {};
    if (!_lua) {
        _result = failure(EXECUTION_FAILURE_TYPE::INTERPRETER_UNKNOWN, "The environment has no interpreter");
        return object;
    }
    ovMemory::String message;
    const int status = _lua->protect(
        [&](lua_State* lua) {
            detail::deserialize(lua, bytes);
            object = detail::ReferenceAccess::take(lua);
        },
        &message);
    if (status != LUA_OK)
        _result = failure(status == LUA_ERRMEM ? EXECUTION_FAILURE_TYPE::MEMORY_ALLOCATION
                                               : EXECUTION_FAILURE_TYPE::RUNTIME,
                          std::move(message));
    return object;
}

ScriptObjectReference Environment::referTo(const FunctionParameter& argument) {
    if (!_lua || argument.getStackPosition() == 0)
        return {};
    ScriptObjectReference object;
    lua_State* lua = _lua->getLua();
    if (argument.getStackPosition() <= lua_gettop(lua)) {
        lua_pushvalue(lua, argument.getStackPosition());
        object = detail::ReferenceAccess::take(lua);
    }
    return object;
}

std::optional<ovMemory::Buffer<FunctionParameter>> Environment::readList(const ScriptObjectReference& table,
                                                                         std::size_t longest) {
    if (!_lua)
        return std::nullopt;
    std::optional<ovMemory::Buffer<FunctionParameter>> elements;
    const int status = _lua->protect([&](lua_State* lua) {
        // Raw, so that nothing of the script runs.
        if (!detail::ReferenceAccess::push(lua, table) || !lua_istable(lua, -1) ||
            lua_rawlen(lua, -1) > longest)
            return;
        elements.emplace(lua_rawlen(lua, -1));
        for (std::size_t i = 0; i < elements->size(); ++i) {
            lua_rawgeti(lua, 1, static_cast<lua_Integer>(i) + 1);
            detail::ParameterAccess::readAny(lua, 2, (*elements)[i]);
            detail::ParameterAccess::own((*elements)[i]);
            lua_pop(lua, 1);
        }
    });
    return status == LUA_OK ? std::move(elements) : std::nullopt;
}

ScriptObjectReference Environment::referToGlobal(ovMemory::StringView name) {
    ScriptObjectReference object;
    if (_lua)
        _lua->protect([&](lua_State* lua) {
            lua_pushglobaltable(lua);
            lua_pushlstring(lua, name.data(), name.size());
            lua_rawget(lua, -2);
            object = detail::ReferenceAccess::take(lua);
        });
    return object;
}

void Environment::setGlobal(ovMemory::StringView name, const FunctionParameter& value) {
    if (_lua)
        _lua->protect([&](lua_State* lua) {
            lua_pushglobaltable(lua);
            lua_pushlstring(lua, name.data(), name.size());
            ParameterAccess::push(lua, value);
            lua_rawset(lua, -3);
        });
}

SharedUserData Environment::share(const FunctionParameter& argument, bool forwardOwnership) {
    if (!_lua || argument.getStackPosition() == 0)
        return {};
    lua_State* lua = _lua->getLua();
    const int position = argument.getStackPosition();
    detail::UserData* data = detail::UserDataAccess::at(lua, position);
    if (!data || !detail::UserDataAccess::getSharingObstacle(lua, position, *data).empty())
        return {};
    return SharedUserData(detail::UserDataAccess::share(*data, forwardOwnership));
}

void Environment::collectGarbage() {
    if (_lua)
        _lua->protect([](lua_State* lua) { LuaState::collectAll(lua); });
}

std::size_t Environment::getUsedMemory() const {
    return _lua ? _lua->getUsedMemory() : 0;
}

bool Environment::canAllocate(std::size_t bytes) {
    if (!_lua)
        return false;
    if (!_lua->canAllocate(bytes))
        collectGarbage();
    return _lua->canAllocate(bytes);
}

} // namespace ovScripts
