#include <mutex>
#include <ovScripts/detail/SerializationInternal.h>
#include <ovScripts/detail/SipHash.h>
#include <ovScripts/detail/UserDataInternal.h>
#include <random>

namespace ovScripts::detail {

namespace {

// What stands before each value.
enum class TAG : unsigned char {
    NIL,
    FALSE_VALUE,
    TRUE_VALUE,
    INTEGER,
    NUMBER,
    STRING,
    TABLE,    // metatable, pairs, NIL
    FUNCTION, // compiled text, count of what it encloses, that
    SEEN,     // number of a table or function that was written before
    GLOBAL,   // name of what each environment has: "string.format"
    VALUE,    // name of a value type, bytes
    OBJECT    // name of a type, ticket
};

// Tables inside tables; the interpreter's own limit of calls in C is 200.
constexpr int DEEPEST = 150;

// Of this process alone: bytes of another one, or of a script that made them up, have another code.
const SipKey& processKey() {
    static const SipKey key = [] {
        std::random_device device;
        const auto word = [&] { return (static_cast<uint64_t>(device()) << 32) | device(); };
        return SipKey{word(), word()};
    }();
    return key;
}

/// Objects on their way from one environment to another.
class TicketOffice {
public:
    static TicketOffice& get() {
        static TicketOffice office;
        return office;
    }

    uint64_t deposit(const Environment& from, ovMemory::UniquePtr<SharedObject> object, bool isTakenOver) {
        const std::lock_guard lock(_mutex);
        if (_tickets.size() > 2 * _usedTickets + FEW_TICKETS)
            _dropUnused();
        Ticket& ticket = _tickets[++_last];
        ticket.from = &from;
        ticket.isTakenOver = isTakenOver;
        ticket.hadOwner = object->owner != nullptr;
        ticket.owner = object->owner;
        if (!isTakenOver)
            object->owner.reset(); // the environment decides how long it lives
        ticket.object = std::move(object);
        return _last;
    }

    /// Lets a function see the object while nobody else can. @return false when it is gone or was taken over
    template <typename Use>
    bool present(uint64_t number, const Use& use) {
        const std::lock_guard lock(_mutex);
        const auto found = _tickets.find(number);
        if (found == _tickets.end())
            return false;
        SharedObject& object = *found->second.object;
        const std::shared_ptr<void> owner = found->second.owner.lock();
        if (found->second.hadOwner && !owner)
            return false;
        object.owner = owner;
        use(object);
        object.owner.reset();
        if (found->second.isTakenOver)
            _tickets.erase(found);
        return true;
    }

    void forget(const Environment& from) {
        const std::lock_guard lock(_mutex);
        std::erase_if(_tickets, [&](const auto& ticket) { return ticket.second.from == &from; });
    }

private:
    struct Ticket {
        const Environment* from = nullptr;
        ovMemory::UniquePtr<SharedObject> object;
        std::weak_ptr<void> owner;
        bool hadOwner = false;
        bool isTakenOver = false;
    };

    static constexpr std::size_t FEW_TICKETS = 64;

    void _dropUnused() {
        std::erase_if(_tickets, [](const auto& ticket) {
            return ticket.second.hadOwner && ticket.second.owner.expired();
        });
        _usedTickets = _tickets.size();
    }

    std::mutex _mutex;
    std::unordered_map<uint64_t, Ticket> _tickets;
    uint64_t _last = 0;
    std::size_t _usedTickets = 0;
};

// The places that every environment has alike: Lua's own libraries and what was declared. Maps each to its
// name, in a table of the registry that is made when it is first asked for.
class GlobalNames {
public:
    /// The name of the value at a position, or an empty text.
    static ovMemory::String find(lua_State* lua, int position) {
        const int absolute = lua_absindex(lua, position);
        _pushNames(lua);
        lua_pushvalue(lua, absolute);
        lua_rawget(lua, -2);
        const char* name = lua_tostring(lua, -1);
        ovMemory::String result = name ? name : "";
        lua_pop(lua, 2);
        return result;
    }

    static void push(lua_State* lua, ovMemory::StringView name) {
        lua_pushglobaltable(lua);
        if (name == LUA_GNAME)
            return;
        while (!name.empty()) {
            const std::size_t dot = std::min(name.find('.'), name.size());
            if (!lua_istable(lua, -1))
                luaL_error(lua, "this environment lacks a function or type that the object uses");
            lua_pushlstring(lua, name.data(), dot);
            lua_rawget(lua, -2);
            lua_remove(lua, -2);
            name.remove_prefix(std::min(dot + 1, name.size()));
        }
    }

private:
    static void _pushNames(lua_State* lua) {
        static const char key = 0; // only its address counts
        if (lua_rawgetp(lua, LUA_REGISTRYINDEX, &key) == LUA_TTABLE)
            return;
        lua_pop(lua, 1);
        lua_newtable(lua);
        lua_pushvalue(lua, -1);
        lua_rawsetp(lua, LUA_REGISTRYINDEX, &key);
        lua_pushglobaltable(lua);
        lua_pushliteral(lua, LUA_GNAME);
        lua_rawset(lua, -3);
        for (const char* library : {LUA_COLIBNAME, LUA_TABLIBNAME, LUA_STRLIBNAME, LUA_MATHLIBNAME,
                                    LUA_UTF8LIBNAME, LUA_OSLIBNAME, LUA_IOLIBNAME, LUA_DBLIBNAME})
            _addTable(lua, library);
        lua_pushglobaltable(lua);
        _addFunctions(lua, "");
        const Environment& environment = LuaState::of(lua).getEnvironment();
        for (const auto& space : environment.getNamespaces())
            _addTable(lua, space->getFullName());
        for (const auto& type : environment.getUserTypes())
            _addTable(lua, type->getFullName());
    }

    static void _addTable(lua_State* lua, const ovMemory::String& name) {
        push(lua, name);
        if (!lua_istable(lua, -1)) {
            lua_pop(lua, 1);
            return;
        }
        lua_pushvalue(lua, -1);
        lua_pushstring(lua, name.c_str());
        lua_rawset(lua, -4);
        _addFunctions(lua, name + '.');
    }

    // Adds the functions of C in the table on top of the stack, and takes it off.
    static void _addFunctions(lua_State* lua, const ovMemory::String& prefix) {
        lua_pushnil(lua);
        while (lua_next(lua, -2)) {
            if (lua_iscfunction(lua, -1) && lua_type(lua, -2) == LUA_TSTRING) {
                const ovMemory::String name = prefix + lua_tostring(lua, -2);
                lua_pushstring(lua, name.c_str());
                lua_rawset(lua, -5);
            } else {
                lua_pop(lua, 1);
            }
        }
        lua_pop(lua, 1);
    }
};

class Writer {
public:
    Writer(lua_State* lua, bool forwardOwnership)
        : _lua(lua)
        , _forwardOwnership(forwardOwnership) {}

    ovMemory::Buffer<unsigned char> write() {
        _bytes.resize(sizeof(uint64_t));
        _write(lua_gettop(_lua), 0);
        const uint64_t code = sipHash24(processKey(), std::span(_bytes).subspan(sizeof(uint64_t)));
        std::memcpy(_bytes.data(), &code, sizeof(code));
        return std::move(_bytes);
    }

private:
    template <typename T>
    void _put(const T& value) {
        const auto* first = reinterpret_cast<const unsigned char*>(&value);
        _bytes.insert(_bytes.end(), first, first + sizeof(T));
    }

    void _putText(ovMemory::StringView text) {
        _put(static_cast<uint64_t>(text.size()));
        _bytes.insert(_bytes.end(), text.begin(), text.end());
    }

    void _write(int position, int depth) {
        luaL_checkstack(_lua, 8, nullptr);
        if (depth > DEEPEST)
            luaL_error(_lua, "the object cannot be serialised: it is nested deeper than %d", DEEPEST);
        switch (lua_type(_lua, position)) {
        case LUA_TNIL:
            _put(TAG::NIL);
            return;
        case LUA_TBOOLEAN:
            _put(lua_toboolean(_lua, position) ? TAG::TRUE_VALUE : TAG::FALSE_VALUE);
            return;
        case LUA_TNUMBER:
            _writeNumber(position);
            return;
        case LUA_TSTRING: {
            std::size_t size = 0;
            const char* text = lua_tolstring(_lua, position, &size);
            _put(TAG::STRING);
            _putText({text, size});
            return;
        }
        case LUA_TTABLE:
        case LUA_TFUNCTION:
            if (!_writeKnown(position))
                lua_istable(_lua, position) ? _writeTable(position, depth) : _writeFunction(position, depth);
            return;
        case LUA_TUSERDATA:
            _writeUserData(position);
            return;
        default:
            luaL_error(_lua, "the object cannot be serialised: it holds a %s", luaL_typename(_lua, position));
        }
    }

    void _writeNumber(int position) {
        if (lua_isinteger(_lua, position)) {
            _put(TAG::INTEGER);
            _put(static_cast<int64_t>(lua_tointeger(_lua, position)));
        } else {
            _put(TAG::NUMBER);
            _put(static_cast<double>(lua_tonumber(_lua, position)));
        }
    }

    bool _writeKnown(int position) {
        const void* object = lua_topointer(_lua, position);
        const auto [seen, isNew] = _seen.try_emplace(object, _seen.size());
        if (!isNew) {
            _put(TAG::SEEN);
            _put(static_cast<uint64_t>(seen->second));
            return true;
        }
        const ovMemory::String name = GlobalNames::find(_lua, position);
        if (name.empty())
            return false;
        _seen.erase(seen);
        _put(TAG::GLOBAL);
        _putText(name);
        return true;
    }

    void _writeTable(int position, int depth) {
        _put(TAG::TABLE);
        if (!lua_getmetatable(_lua, position))
            lua_pushnil(_lua);
        _write(lua_gettop(_lua), depth + 1);
        lua_pop(_lua, 1);
        lua_pushnil(_lua);
        while (lua_next(_lua, position)) {
            const int value = lua_gettop(_lua);
            _write(value - 1, depth + 1);
            _write(value, depth + 1);
            lua_pop(_lua, 1);
        }
        _put(TAG::NIL);
    }

    void _writeFunction(int position, int depth) {
        if (lua_iscfunction(_lua, position))
            luaL_error(_lua,
                       "the object cannot be serialised: it holds a function of C++ that was not declared");
        _put(TAG::FUNCTION);
        lua_pushvalue(_lua, position);
        ovMemory::String compiled;
        const auto append = [](lua_State*, const void* bytes, std::size_t size, void* text) {
            static_cast<ovMemory::String*>(text)->append(static_cast<const char*>(bytes), size);
            return 0;
        };
        lua_dump(_lua, append, &compiled, 0);
        lua_pop(_lua, 1);
        _putText(compiled);
        unsigned char count = 0;
        const std::size_t countAt = _bytes.size();
        _put(count);
        while (lua_getupvalue(_lua, position, count + 1)) {
            ++count;
            _write(lua_gettop(_lua), depth + 1);
            lua_pop(_lua, 1);
        }
        _bytes[countAt] = count;
    }

    void _writeUserData(int position) {
        UserData* data = UserDataAccess::at(_lua, position);
        if (!data)
            luaL_error(_lua, "the object cannot be serialised: it holds foreign user data");
        const ovMemory::String obstacle = UserDataAccess::getSharingObstacle(_lua, position, *data);
        if (!obstacle.empty())
            luaL_error(_lua, "the object cannot be serialised: %s", obstacle.c_str());
        auto shared = UserDataAccess::share(*data, _forwardOwnership);
        const ovMemory::StringView typeName = data->type->getFullName();
        if (const std::size_t size = UserDataAccess::valueSizeOf(*data->type)) {
            _put(TAG::VALUE);
            _putText(typeName);
            _putText({static_cast<const char*>(shared->object), size});
            return;
        }
        _put(TAG::OBJECT);
        _putText(typeName);
        const bool isTakenOver = _forwardOwnership && shared->owner;
        _put(
            TicketOffice::get().deposit(LuaState::of(_lua).getEnvironment(), std::move(shared), isTakenOver));
    }

    lua_State* _lua;
    bool _forwardOwnership;
    ovMemory::Buffer<unsigned char> _bytes;
    std::unordered_map<const void*, std::size_t> _seen;
};

// The code has shown that the bytes are ours, so that they need no check of their own.
class Reader {
public:
    Reader(lua_State* lua, ovMemory::BufferView<const unsigned char> bytes)
        : _lua(lua)
        , _bytes(bytes) {}

    void read() {
        lua_newtable(_lua);
        _seenTable = lua_gettop(_lua);
        _read();
        lua_remove(_lua, _seenTable);
    }

private:
    template <typename T>
    T _get() {
        T value;
        std::memcpy(&value, _bytes.data(), sizeof(T));
        _bytes = _bytes.subspan(sizeof(T));
        return value;
    }

    ovMemory::StringView _getText() {
        const auto size = static_cast<std::size_t>(_get<uint64_t>());
        const ovMemory::StringView text(reinterpret_cast<const char*>(_bytes.data()), size);
        _bytes = _bytes.subspan(size);
        return text;
    }

    // Numbers the table or function on top of the stack.
    void _remember() {
        lua_pushvalue(_lua, -1);
        lua_rawseti(_lua, _seenTable, static_cast<lua_Integer>(_seenCount++));
    }

    // Puts the next value on the stack.
    void _read() {
        luaL_checkstack(_lua, 8, nullptr);
        switch (_get<TAG>()) {
        case TAG::NIL:
            lua_pushnil(_lua);
            return;
        case TAG::FALSE_VALUE:
        case TAG::TRUE_VALUE:
            lua_pushboolean(_lua, *(_bytes.data() - 1) == static_cast<unsigned char>(TAG::TRUE_VALUE));
            return;
        case TAG::INTEGER:
            lua_pushinteger(_lua, _get<int64_t>());
            return;
        case TAG::NUMBER:
            lua_pushnumber(_lua, _get<double>());
            return;
        case TAG::STRING: {
            const ovMemory::StringView text = _getText();
            lua_pushlstring(_lua, text.data(), text.size());
            return;
        }
        case TAG::TABLE:
            _readTable();
            return;
        case TAG::FUNCTION:
            _readFunction();
            return;
        case TAG::SEEN:
            lua_rawgeti(_lua, _seenTable, static_cast<lua_Integer>(_get<uint64_t>()));
            return;
        case TAG::GLOBAL:
            GlobalNames::push(_lua, _getText());
            return;
        case TAG::VALUE:
        case TAG::OBJECT:
            _readUserData(static_cast<TAG>(*(_bytes.data() - 1)));
        }
    }

    void _readTable() {
        lua_newtable(_lua);
        _remember();
        _read();
        const bool hasMetatable = !lua_isnil(_lua, -1);
        const int table = lua_gettop(_lua) - 1;
        while (true) {
            _read();
            if (lua_isnil(_lua, -1))
                break;
            _read();
            lua_rawset(_lua, table);
        }
        lua_pop(_lua, 1);
        // Last, so that filling the table calls nothing.
        if (hasMetatable)
            lua_setmetatable(_lua, table);
        else
            lua_pop(_lua, 1);
    }

    void _readFunction() {
        const ovMemory::StringView compiled = _getText();
        if (luaL_loadbufferx(_lua, compiled.data(), compiled.size(), "serialised", "b") != LUA_OK)
            lua_error(_lua);
        _remember();
        const int function = lua_gettop(_lua);
        const int count = _get<unsigned char>();
        for (int i = 1; i <= count; ++i) {
            _read();
            if (!lua_setupvalue(_lua, function, i))
                lua_pop(_lua, 1);
        }
    }

    void _readUserData(TAG tag) {
        const ovMemory::StringView typeName = _getText();
        UserType* type = LuaState::of(_lua).findType(typeName);
        if (!type)
            luaL_error(_lua, "this environment lacks the type %s", ovMemory::String(typeName).c_str());
        if (tag == TAG::VALUE) {
            SharedObject value;
            value.object = const_cast<char*>(_getText().data());
            UserDataAccess::push(_lua, *type, value);
            return;
        }
        const bool isThere = TicketOffice::get().present(
            _get<uint64_t>(), [&](const SharedObject& object) { UserDataAccess::push(_lua, *type, object); });
        if (!isThere)
            luaL_error(_lua, "an object of type %s is gone, or another environment has taken it",
                       type->getFullName().c_str());
    }

    lua_State* _lua;
    ovMemory::BufferView<const unsigned char> _bytes;
    int _seenTable = 0;
    std::size_t _seenCount = 0;
};

} // namespace

ovMemory::Buffer<unsigned char> serialize(lua_State* lua, bool forwardOwnership) {
    return Writer(lua, forwardOwnership).write();
}

void deserialize(lua_State* lua, ovMemory::BufferView<const unsigned char> bytes) {
    uint64_t code = 0;
    if (bytes.size() > sizeof(code))
        std::memcpy(&code, bytes.data(), sizeof(code));
    if (bytes.size() <= sizeof(code) || sipHash24(processKey(), bytes.subspan(sizeof(code))) != code)
        luaL_error(lua, "the bytes are not those of an object that this process serialised");
    Reader(lua, bytes.subspan(sizeof(code))).read();
}

void forgetTickets(const Environment& environment) {
    TicketOffice::get().forget(environment);
}

} // namespace ovScripts::detail
