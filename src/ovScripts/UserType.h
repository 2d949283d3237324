// Classes of C++ as types of scripts.
#pragma once

#include <map>
#include <ovMemory/Borrowed.h>
#include <ovScripts/Function.h>
#include <ovScripts/UserTypeOperator.h>

namespace ovScripts {

class Environment;

namespace detail {
class UserDataAccess;
}

/// A class of C++ as scripts see it. Belongs to its environment.
///
/// In scripts a type is a table that holds its static functions; calling it makes an object where the type
/// has a constructor. How objects are kept apart from their destruction is declared here, too: a script that
/// uses an object that is gone gets an error with its type and name.
class OV_API UserType {
public:
    using Destructor = std::function<void(void*)>;
    using Getter = std::function<FunctionParameter(void* object)>;
    /// @return FunctionParameter::VOID, or an error
    using Setter = std::function<FunctionParameter(void* object, const FunctionParameter& value)>;
    /// Members whose names are known only when they are asked for. @return nothing for a name that is none
    using NamedGetter =
        std::function<bool(void* object, ovMemory::StringView name, FunctionParameter& value)>;
    /// @return false for a name that is none; result is VOID or an error
    using NamedSetter = std::function<bool(void* object, ovMemory::StringView name,
                                           const FunctionParameter& value, FunctionParameter& result)>;

    /// A member variable. Without a setter it cannot be set, without a getter not be read.
    struct Member {
        ovMemory::String name;
        FunctionArgument value;
        Getter getter;
        Setter setter;
        ovMemory::String help;
    };

    /// Names of members that objects of one kind have.
    struct NamedMembers {
        ovMemory::String kind; ///< as "tone-mapping"; empty: every object
        ovMemory::Buffer<ovMemory::String> names;
    };

    UserType(Environment* environment, ovMemory::StringView fullName);
    UserType(const UserType&) = delete;
    UserType& operator=(const UserType&) = delete;
    ~UserType();

    /// With its namespace: "ovMaths.Vector".
    const ovMemory::String& getFullName() const { return _fullName; }

    /// Lets scripts make objects by calling the type. The callable gives a pointer to a new object of this
    /// type.
    /// @return the declaration, for its arguments and its help
    Function* setConstructor(std::function<void*(ovMemory::BufferView<FunctionParameter>)> constructor);
    /// How an object that scripts own is destroyed, when it is collected or its environment ends.
    void setDestructor(Destructor destructor);
    /// Adds a method. Self is declared already. @return belongs to the type
    Function* addMethod(ovMemory::StringView name);
    /// Adds a function that is called through the type.
    Function* addStaticFunction(ovMemory::StringView name);
    /// Adds a member variable; its setter's value is checked against the type.
    /// @param getter, setter either may be null
    Member* addMemberVariable(ovMemory::StringView name, FUNCTION_PARAMETER_TYPE type,
                              ovMemory::StringView typeName, Getter getter, Setter setter);
    /// Gives an operator a meaning. The function declares two arguments for binary operators and one for the
    /// others; one of two may be of another type, as in 2 * v.
    Function* addOperator(USER_TYPE_OPERATOR kind);
    /// Members by name beyond the declared ones, as the settings of an effect.
    void setNamedMembers(NamedGetter getter, NamedSetter setter);
    /// Everything that completion and the reference tell of the named members.
    void setNamedMemberList(std::function<ovMemory::Buffer<NamedMembers>()> list) {
        _namedMemberList = std::move(list);
    }
    /// One sentence for the reference.
    void setHelp(ovMemory::StringView help) { _help = help; }

    /// Objects of T tell when they are destroyed: scripts then get an error with the type and the name.
    /// @param name of an object, asked for when it is handed to a script
    template <typename T>
    void setBorrowable(std::function<ovMemory::String(const T&)> name = {}) {
        std::function<ovMemory::String(const void*)> nameOf;
        if (name)
            nameOf = [name](const void* object) { return name(*static_cast<const T*>(object)); };
        _setBorrowable([](void* object) -> ovMemory::Borrowable* { return static_cast<T*>(object); },
                       std::move(nameOf));
    }
    /// Objects of T are values of a few plain numbers: scripts hold copies, which need no destructor. T is
    /// trivially copyable. Several times as fast as objects with a destructor.
    template <typename T>
    void setValueType() {
        static_assert(std::is_trivially_copyable_v<T> && alignof(T) <= alignof(std::max_align_t));
        _setValueType(
            sizeof(T), [](const void* object) -> void* { return new T(*static_cast<const T*>(object)); },
            [](void* object) { delete static_cast<T*>(object); });
    }
    /// Bytes that an object owned by a script holds besides itself, for the environment's collector and
    /// limit. Asked when scripts get the object, and after each of their calls on it or on a part of it.
    void setSizeOf(std::function<std::size_t(const void*)> sizeOf) { _sizeOf = std::move(sizeOf); }
    /// Objects of this type belong to the thread that renders: in the environment of a worker every use is an
    /// error. Concerns the functions that are added afterwards.
    void setRenderThreadOnly() { _isRenderThreadOnly = true; }
    /// Objects of this type cannot be handed to another environment, because they hold on to their own.
    void setStaysInEnvironment() { _staysInEnvironment = true; }

    // What was declared, in order, for the reference, for completion and for the interpreter.
    const Function* getConstructor() const { return _constructor.get(); }
    const Destructor& getDestructor() const { return _destructor; }
    const ovMemory::Buffer<ovMemory::UniquePtr<Function>>& getMethods() const { return _methodList; }
    const ovMemory::Buffer<ovMemory::UniquePtr<Function>>& getStaticFunctions() const { return _statics; }
    const ovMemory::Buffer<ovMemory::UniquePtr<Member>>& getMembers() const { return _memberList; }
    const std::map<USER_TYPE_OPERATOR, ovMemory::UniquePtr<Function>>& getOperators() const {
        return _operators;
    }
    ovMemory::Buffer<NamedMembers> getNamedMembers() const;
    const ovMemory::String& getHelp() const { return _help; }
    bool isRenderThreadOnly() const { return _isRenderThreadOnly; }

private:
    friend class detail::UserDataAccess;

    ovMemory::UniquePtr<Function> _newFunction(ovMemory::StringView name) const;
    void _declareSelf(Function& function) const;
    void _lookMembersUp();
    void _setValueType(std::size_t size, void* (*newCopy)(const void*), Destructor destructor);
    void _setBorrowable(ovMemory::Borrowable* (*toBorrowable)(void*),
                        std::function<ovMemory::String(const void*)> nameOf);

    Environment* _environment;
    ovMemory::String _fullName;
    ovMemory::UniquePtr<Function> _constructor;
    Destructor _destructor;
    ovMemory::Buffer<ovMemory::UniquePtr<Function>> _methodList;
    ovMemory::Buffer<ovMemory::UniquePtr<Function>> _statics;
    ovMemory::Buffer<ovMemory::UniquePtr<Member>> _memberList;
    std::map<USER_TYPE_OPERATOR, ovMemory::UniquePtr<Function>> _operators;
    NamedGetter _namedGetter;
    NamedSetter _namedSetter;
    std::function<ovMemory::Buffer<NamedMembers>()> _namedMemberList;
    ovMemory::String _help;
    ovMemory::Borrowable* (*_toBorrowable)(void*) = nullptr;
    std::function<ovMemory::String(const void*)> _nameOf;
    std::size_t _valueSize = 0;
    void* (*_newCopy)(const void*) = nullptr;
    std::function<std::size_t(const void*)> _sizeOf;
    bool _isRenderThreadOnly = false;
    bool _staysInEnvironment = false;

    // The interpreter's numbers of its tables.
    int _table = 0;     ///< of the static functions: the type as scripts see it
    int _metatable = 0; ///< of each object
    int _methods = 0;
    int _members = 0;
};

} // namespace ovScripts
