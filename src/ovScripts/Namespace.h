// Named groups of constants and objects in scripts.
#pragma once

#include <ovScripts/Function.h>

namespace ovScripts {

class Environment;

/// A table of scripts that holds types, functions, constants and objects: "ovGraphics", or
/// "ovScripts.INTERPRETER" inside "ovScripts". Belongs to its environment.
class OV_API Namespace {
public:
    /// A constant as declared, for the reference.
    struct Constant {
        ovMemory::String name;
        FunctionParameter value;
    };

    Namespace(Environment* environment, ovMemory::StringView fullName);
    Namespace(const Namespace&) = delete;
    Namespace& operator=(const Namespace&) = delete;

    const ovMemory::String& getFullName() const { return _fullName; }

    /// Adds a constant: an integer, a number or a text.
    void addConstant(ovMemory::StringView name, FunctionParameter value);
    /// Adds each value of an enumeration, named as its enumerator.
    template <typename Enum>
    void addEnumeration() {
        for (const ovMemory::EnumEntry<Enum>& entry : ovMemory::enumTableOf<Enum>())
            addConstant(entry.text, static_cast<int64_t>(entry.value));
    }
    /// Adds a function that needs no object. @return belongs to the environment
    Function* addFunction(ovMemory::StringView name);
    /// Sets a member to an object that the script does not own. @param object null makes the member nil
    /// @param typeName full name of the object's user type
    void setUserDataMember(ovMemory::StringView name, ovMemory::StringView typeName, void* object);

    const ovMemory::Buffer<Constant>& getConstants() const { return _constants; }
    const ovMemory::Buffer<ovMemory::UniquePtr<Function>>& getFunctions() const { return _functions; }

private:
    void _setMember(ovMemory::StringView name, const FunctionParameter& value);

    Environment* _environment;
    ovMemory::String _fullName;
    int _table = 0; ///< the interpreter's number of its table
    ovMemory::Buffer<Constant> _constants;
    ovMemory::Buffer<ovMemory::UniquePtr<Function>> _functions;
};

} // namespace ovScripts
