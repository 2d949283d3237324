#include <lua.hpp>
#include <ovScripts/Script.h>

namespace ovScripts {

namespace {

constexpr ovMemory::StringView BYTE_ORDER_MARK = "\xEF\xBB\xBF";

// What Lua's own program skips of a file: a byte order mark and a first line for shells. The line's end
// stays, so that lines keep their numbers.
ovMemory::StringView textOf(ovMemory::StringView sources) {
    if (sources.starts_with(BYTE_ORDER_MARK))
        sources.remove_prefix(BYTE_ORDER_MARK.size());
    if (sources.starts_with('#'))
        sources.remove_prefix(std::min(sources.find('\n'), sources.size()));
    return sources;
}

int append(lua_State*, const void* bytes, std::size_t size, void* buffer) {
    const auto* first = static_cast<const unsigned char*>(bytes);
    auto& whole = *static_cast<ovMemory::Buffer<unsigned char>*>(buffer);
    whole.insert(whole.end(), first, first + size);
    return 0;
}

CompilationResult failed(COMPILATION_FAILURE_TYPE type, ovMemory::String message) {
    return {std::move(message), type, false};
}

// Compiles with an interpreter of its own: no environment is needed, and none is touched.
CompilationResult compile(const ovMemory::String& name, ovMemory::StringView text,
                          ovMemory::Buffer<unsigned char>& bytecode) {
    const std::unique_ptr<lua_State, decltype(&lua_close)> lua(luaL_newstate(), &lua_close);
    if (!lua)
        return failed(COMPILATION_FAILURE_TYPE::MEMORY_ALLOCATION, name + ": not enough memory");
    const ovMemory::String chunkName = '=' + name;
    const int status = luaL_loadbufferx(lua.get(), text.data(), text.size(), chunkName.c_str(), "t");
    if (status == LUA_OK) {
        lua_dump(lua.get(), &append, &bytecode, 0);
        return {};
    }
    const char* message = lua_tostring(lua.get(), -1);
    return failed(status == LUA_ERRMEM ? COMPILATION_FAILURE_TYPE::MEMORY_ALLOCATION
                                       : COMPILATION_FAILURE_TYPE::SYNTAX,
                  message ? message : name + ": unknown error");
}

} // namespace

bool Script::load() {
    unload();
    const ovMemory::StringView text = textOf(_sources);
    if (_interpreter != INTERPRETER::LUA)
        _result = failed(COMPILATION_FAILURE_TYPE::INTERPRETER_UNKNOWN,
                         "Script '" + _name + "' says no language: set the interpreter LUA");
    else if (text.starts_with(LUA_SIGNATURE[0]))
        _result = failed(COMPILATION_FAILURE_TYPE::SYNTAX,
                         "Script '" + _name + "' is compiled already: give its text");
    else
        _result = compile(_name, text, _bytecode);
    return _result._success;
}

} // namespace ovScripts
