#include <algorithm>
#include <cctype>
#include <ovScripts/Environment.h>
#include <ovScripts/detail/UserDataInternal.h>

namespace ovScripts {

namespace {

bool isPartOfName(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) || character == '_' || character == '.' ||
           character == ':';
}

// "a.b:" of "x = a.b:c", and "c" as what it begins with.
struct TypedName {
    ovMemory::StringView owner;
    ovMemory::StringView start;
};

TypedName lastNameOf(ovMemory::StringView text) {
    std::size_t first = text.size();
    while (first > 0 && isPartOfName(text[first - 1]))
        --first;
    const ovMemory::StringView name = text.substr(first);
    const std::size_t separator = name.find_last_of(".:");
    if (separator == ovMemory::StringView::npos)
        return {{}, name};
    return {name.substr(0, separator + 1), name.substr(separator + 1)};
}

// Puts what the owner names on the stack, looking into plain tables only: completion calls nothing.
bool pushOwner(lua_State* lua, ovMemory::StringView owner) {
    lua_pushglobaltable(lua);
    while (!owner.empty()) {
        const std::size_t end = owner.find_first_of(".:");
        if (!lua_istable(lua, -1))
            return false;
        lua_pushlstring(lua, owner.data(), end);
        lua_rawget(lua, -2);
        owner.remove_prefix(end + 1);
    }
    return true;
}

void collectKeys(lua_State* lua, ovMemory::Buffer<ovMemory::String>& names) {
    lua_pushnil(lua);
    while (lua_next(lua, -2)) {
        if (lua_type(lua, -2) == LUA_TSTRING)
            names.emplace_back(lua_tostring(lua, -2));
        lua_pop(lua, 1);
    }
}

void collectMembers(const UserType& type, bool methodsOnly, ovMemory::Buffer<ovMemory::String>& names) {
    for (const auto& method : type.getMethods())
        names.emplace_back(method->getName());
    if (methodsOnly)
        return;
    for (const auto& member : type.getMembers())
        names.push_back(member->name);
    for (const UserType::NamedMembers& members : type.getNamedMembers())
        names.insert(names.end(), members.names.begin(), members.names.end());
}

} // namespace

ovMemory::Buffer<ovMemory::String> Environment::getCompletions(ovMemory::StringView text) {
    ovMemory::Buffer<ovMemory::String> names;
    const TypedName typed = lastNameOf(text);
    if (!_lua)
        return names;
    _lua->protect([&](lua_State* lua) {
        if (!pushOwner(lua, typed.owner))
            return;
        if (lua_istable(lua, -1))
            collectKeys(lua, names);
        else if (const detail::UserData* data = detail::UserDataAccess::at(lua, -1))
            collectMembers(*data->type, typed.owner.ends_with(':'), names);
    });
    std::erase_if(names, [&](const ovMemory::String& name) { return !name.starts_with(typed.start); });
    for (ovMemory::String& name : names)
        name.insert(0, typed.owner);
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

} // namespace ovScripts
