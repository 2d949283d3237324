#include <cstring>
#include <ovScripts/detail/LuaStateInternal.h>
#include <ovScripts/detail/StandardLibrariesInternal.h>

namespace ovScripts::detail {

namespace {

constexpr luaL_Reg SAFE_LIBRARIES[] = {
    {LUA_GNAME, luaopen_base},        {LUA_COLIBNAME, luaopen_coroutine}, {LUA_TABLIBNAME, luaopen_table},
    {LUA_STRLIBNAME, luaopen_string}, {LUA_MATHLIBNAME, luaopen_math},    {LUA_UTF8LIBNAME, luaopen_utf8},
    {LUA_OSLIBNAME, luaopen_os},
};

constexpr luaL_Reg FILE_LIBRARIES[] = {
    {LUA_IOLIBNAME, luaopen_io},
    {LUA_LOADLIBNAME, luaopen_package},
};

// Of the operating system scripts may always ask the time.
constexpr const char* SAFE_OS_FUNCTIONS[] = {"clock", "date", "difftime", "time"};

void openLibrary(lua_State* lua, const luaL_Reg& library) {
    luaL_requiref(lua, library.name, library.func, 1);
    lua_pop(lua, 1);
}

void removeGlobal(lua_State* lua, const char* name) {
    lua_pushnil(lua);
    lua_setglobal(lua, name);
}

void keepSafeOsFunctions(lua_State* lua) {
    lua_newtable(lua);
    lua_getglobal(lua, LUA_OSLIBNAME);
    for (const char* name : SAFE_OS_FUNCTIONS) {
        lua_getfield(lua, -1, name);
        lua_setfield(lua, -3, name);
    }
    lua_pop(lua, 1);
    luaL_getsubtable(lua, LUA_REGISTRYINDEX, LUA_LOADED_TABLE);
    lua_pushvalue(lua, -2);
    lua_setfield(lua, -2, LUA_OSLIBNAME);
    lua_pop(lua, 1);
    lua_setglobal(lua, LUA_OSLIBNAME);
}

// Calls Lua's own function, its first upvalue, with the mode of texts in place of the one that was asked for.
int callWithTextMode(lua_State* lua, int modeArgument) {
    const char* mode = luaL_optstring(lua, modeArgument, "t");
    if (!std::strchr(mode, 't')) {
        lua_pushnil(lua);
        lua_pushliteral(lua, "compiled programs are refused; load the text");
        return 2;
    }
    if (lua_gettop(lua) < modeArgument)
        lua_settop(lua, modeArgument);
    lua_pushliteral(lua, "t");
    lua_replace(lua, modeArgument);
    lua_pushvalue(lua, lua_upvalueindex(1));
    lua_insert(lua, 1);
    lua_call(lua, lua_gettop(lua) - 1, LUA_MULTRET);
    return lua_gettop(lua);
}

int loadText(lua_State* lua) {
    return callWithTextMode(lua, 3);
}

int loadTextFile(lua_State* lua) {
    return callWithTextMode(lua, 2);
}

int doTextFile(lua_State* lua) {
    const char* name = luaL_optstring(lua, 1, nullptr);
    lua_settop(lua, 1);
    if (luaL_loadfilex(lua, name, "t") != LUA_OK)
        return lua_error(lua);
    lua_call(lua, 0, LUA_MULTRET);
    return lua_gettop(lua) - 1;
}

void replaceGlobal(lua_State* lua, const char* name, lua_CFunction replacement) {
    lua_getglobal(lua, name);
    lua_pushcclosure(lua, replacement, 1);
    lua_setglobal(lua, name);
}

} // namespace

void openStandardLibraries(lua_State* lua) {
    const EnvironmentOptions& options = LuaState::of(lua).getEnvironment().getOptions();
    for (const luaL_Reg& library : SAFE_LIBRARIES)
        openLibrary(lua, library);
    replaceGlobal(lua, "load", &loadText);
    replaceGlobal(lua, "loadfile", &loadTextFile);
    replaceGlobal(lua, "dofile", &doTextFile);
    if (options.debugLibrary)
        openLibrary(lua, {LUA_DBLIBNAME, luaopen_debug});
    if (options.filesAndProcesses) {
        for (const luaL_Reg& library : FILE_LIBRARIES)
            openLibrary(lua, library);
        return;
    }
    keepSafeOsFunctions(lua);
    removeGlobal(lua, "loadfile");
    removeGlobal(lua, "dofile");
}

} // namespace ovScripts::detail
