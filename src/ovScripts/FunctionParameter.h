// The values that cross the border between scripts and C++.
#pragma once

#include <cstdint>
#include <memory>
#include <ovScripts/FunctionParameterType.h>
#include <ovScripts/ScriptObjectReference.h>
#include <ovScripts/SharedUserData.h>
#include <type_traits>

namespace ovScripts {

namespace detail {
class ParameterAccess;
}

/// A value on its way between a script and C++: an argument or a result of a callable, or a value of a
/// member.
///
/// An argument views what it holds: its string and its user data live as long as the call. A result owns its
/// string.
class OV_API FunctionParameter {
public:
    /// The empty result, which scripts see as nil.
    static const FunctionParameter VOID;

    FunctionParameter() = default;
    FunctionParameter(const FunctionParameter& other);
    FunctionParameter(FunctionParameter&&) noexcept = default;
    FunctionParameter& operator=(const FunctionParameter& other);
    FunctionParameter& operator=(FunctionParameter&&) noexcept = default;
    ~FunctionParameter() = default;
    FunctionParameter(bool value)
        : _type(FUNCTION_PARAMETER_TYPE::BOOL) {
        _value.boolean = value;
    }
    template <typename Integer>
    requires(std::is_integral_v<Integer> && !std::is_same_v<Integer, bool>) FunctionParameter(Integer value)
        : _type(FUNCTION_PARAMETER_TYPE::INT) {
        _value.integer = static_cast<int64_t>(value);
    }
    FunctionParameter(float value)
        : _type(FUNCTION_PARAMETER_TYPE::FLOAT) {
        _value.number = value;
    }
    FunctionParameter(double value)
        : _type(FUNCTION_PARAMETER_TYPE::DOUBLE) {
        _value.number = value;
    }
    FunctionParameter(ovMemory::StringView text)
        : _type(FUNCTION_PARAMETER_TYPE::STRING) {
        _ownText(text);
    }
    FunctionParameter(const ovMemory::String& text)
        : FunctionParameter(ovMemory::StringView(text)) {}
    FunctionParameter(const char* text)
        : FunctionParameter(ovMemory::StringView(text)) {}
    /// Any object of a script: a function, a table. An empty reference is nil.
    FunctionParameter(ScriptObjectReference object);
    /// An object that came out of another environment; not copied, lives until the script has it.
    FunctionParameter(const SharedUserData& object);
    FunctionParameter(SharedUserData&& object) = delete;
    /// An object of C++.
    /// @param object null is nil
    /// @param typeName full name of its user type, as "ovMaths.Vector". Not copied: a literal or a global
    /// @param forwardOwnership whether the script owns the object from now on, and destroys it through the
    ///        destructor of its user type
    template <typename Text>
    FunctionParameter(void* object, const Text& typeName, bool forwardOwnership)
        : _type(FUNCTION_PARAMETER_TYPE::USER_DATA)
        , _isOwnershipForwarded(forwardOwnership)
        , _text(typeName) {
        _value.object = object;
    }
    // The name would be gone before it is read.
    FunctionParameter(void* object, ovMemory::String&& typeName, bool forwardOwnership) = delete;

    /// A result that raises an error in the script: what is wrong and what to do, without the function's
    /// name, which is put before it.
    static FunctionParameter error(ovMemory::String text);

    /// A string that belongs to somebody who outlives this value.
    static FunctionParameter view(ovMemory::StringView text);

    /// For a result that is a view into another object: the script keeps the user data of an argument alive
    /// for as long as it holds this result. @param argument position in the argument list, self is 0
    FunctionParameter&& keeping(unsigned int argument) && {
        _keptArgument = static_cast<short>(argument);
        return std::move(*this);
    }
    /// Position of the argument that keeping() named, or -1.
    int getKeptArgument() const { return _keptArgument; }

    FUNCTION_PARAMETER_TYPE getType() const { return _type; }
    bool isVoid() const { return _type == FUNCTION_PARAMETER_TYPE::VOID; }
    bool isError() const { return _isError; }

    // The value. Whoever asks for another kind than it holds gets 0, false, an empty text or null; but an
    // integer is a number, too.
    bool getValueAsBool() const { return _type == FUNCTION_PARAMETER_TYPE::BOOL && _value.boolean; }
    int64_t getValueAsInt() const { return _type == FUNCTION_PARAMETER_TYPE::INT ? _value.integer : 0; }
    float getValueAsFloat() const { return static_cast<float>(getValueAsDouble()); }
    double getValueAsDouble() const {
        if (_type == FUNCTION_PARAMETER_TYPE::DOUBLE || _type == FUNCTION_PARAMETER_TYPE::FLOAT)
            return _value.number;
        return static_cast<double>(getValueAsInt());
    }
    ovMemory::StringView getValueAsString() const {
        return _type == FUNCTION_PARAMETER_TYPE::STRING ? _text : ovMemory::StringView();
    }
    /// The object; null for nil. The caller knows its type: it was checked, or getUserDataTypeName() says it.
    template <typename T>
    T* getValueAsUserData() const {
        return static_cast<T*>(_type == FUNCTION_PARAMETER_TYPE::USER_DATA ? _value.object : nullptr);
    }
    /// Full name of the user data's type; empty for anything else.
    ovMemory::StringView getUserDataTypeName() const {
        return _type == FUNCTION_PARAMETER_TYPE::USER_DATA ? _text : ovMemory::StringView();
    }
    bool isOwnershipForwarded() const { return _isOwnershipForwarded; }
    /// The script's object behind an argument of the types FUNCTION and SCRIPT_OBJECT; else an empty one.
    const ScriptObjectReference& getScriptObjectReference() const;
    /// The argument's own user data, for whoever keeps it alive or takes it over; see
    /// Environment::referTo(). @return position on the interpreter's stack, 0 for anything but an argument
    int getStackPosition() const { return _stackPosition; }

private:
    friend class detail::ParameterAccess;

    /// What few values own. Apart, so that the many others are made and destroyed in no time.
    struct Owned {
        ovMemory::String text;
        ScriptObjectReference reference;
    };
    struct OV_API OwnedDeleter {
        void operator()(Owned* owned) const;
    };

    void _ownText(ovMemory::StringView text);

    FUNCTION_PARAMETER_TYPE _type = FUNCTION_PARAMETER_TYPE::VOID;
    bool _isOwnershipForwarded = false;
    bool _isError = false;
    short _keptArgument = -1;
    int _stackPosition = 0;
    union {
        bool boolean;
        int64_t integer;
        double number;
        void* object;
    } _value = {.integer = 0};
    ovMemory::StringView _text; ///< a string, or the name of the user type
    const SharedUserData* _shared = nullptr;
    std::unique_ptr<Owned, OwnedDeleter> _owned;
};

} // namespace ovScripts
