// Functions of C++ that scripts call.
#pragma once

#include <functional>
#include <ovScripts/FunctionParameter.h>

namespace ovScripts {

class UserType;

/// What a function expects at one position.
struct FunctionArgument {
    FUNCTION_PARAMETER_TYPE type = FUNCTION_PARAMETER_TYPE::VOID;
    ovMemory::String typeName; ///< full name of the user type; empty where none is asked for
    ovMemory::String name;     ///< for people; may be empty
    bool isOptional = false;   ///< may be left out, or nil: the callable gets FunctionParameter::VOID
    mutable const UserType* knownType = nullptr; ///< the named type, once an argument was of it
};

/// A function as scripts see it: its name, the arguments that it declares, its body.
///
/// Arguments are checked before the body runs. A body of a method gets the object itself as the first
/// argument, checked like the others. What a script passes beyond the declared arguments is ignored.
class OV_API Function {
public:
    using Callable = std::function<FunctionParameter(ovMemory::BufferView<FunctionParameter>)>;

    /// @param fullName as messages and the reference say it: "ovGraphics.TextureManager.get"
    explicit Function(ovMemory::StringView fullName)
        : _fullName(fullName) {}
    Function(const Function&) = delete;
    Function& operator=(const Function&) = delete;

    /// Declares the next argument.
    /// @param typeName full name of a user type that is declared already; for the two kinds of user data only
    /// @param name for the reference and for messages
    Function& addParameter(FUNCTION_PARAMETER_TYPE type, ovMemory::StringView typeName = {},
                           ovMemory::StringView name = {});
    /// Declares the next argument, which may be left out. Only such may follow it.
    Function& addOptionalParameter(FUNCTION_PARAMETER_TYPE type, ovMemory::StringView typeName = {},
                                   ovMemory::StringView name = {});
    /// Declares what comes back, for the reference. Without it nothing does.
    Function& setResult(FUNCTION_PARAMETER_TYPE type, ovMemory::StringView typeName = {});
    /// One sentence for the reference.
    Function& setHelp(ovMemory::StringView help);
    /// Refuses every call in the environment of a worker.
    Function& setRenderThreadOnly() {
        _isRenderThreadOnly = true;
        return *this;
    }
    bool isRenderThreadOnly() const { return _isRenderThreadOnly; }
    /// The body. It may throw: what is thrown becomes an error of the script.
    Function& setFunction(Callable callable);

    const ovMemory::String& getFullName() const { return _fullName; }
    /// The last part of the full name.
    ovMemory::StringView getName() const;
    const ovMemory::Buffer<FunctionArgument>& getArguments() const { return _arguments; }
    const FunctionArgument& getResult() const { return _result; }
    const ovMemory::String& getHelp() const { return _help; }
    const Callable& getFunction() const { return _callable; }
    /// Arguments that may not be left out.
    unsigned int getRequiredCount() const { return _requiredCount; }

private:
    ovMemory::String _fullName;
    ovMemory::Buffer<FunctionArgument> _arguments;
    FunctionArgument _result;
    ovMemory::String _help;
    Callable _callable = [](ovMemory::BufferView<FunctionParameter>) { return FunctionParameter(); };
    unsigned int _requiredCount = 0;
    bool _isRenderThreadOnly = false;
};

} // namespace ovScripts
