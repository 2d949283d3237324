#include <ovScripts/FunctionParameter.h>
#include <ovScripts/detail/SharedObject.h>

namespace ovScripts {

const FunctionParameter FunctionParameter::VOID;

FunctionParameter::FunctionParameter(ScriptObjectReference object)
    : _type(object ? FUNCTION_PARAMETER_TYPE::SCRIPT_OBJECT : FUNCTION_PARAMETER_TYPE::VOID)
    , _reference(std::move(object)) {}

// Without a look at whether a tracked object is gone: this may be another thread than its own.
FunctionParameter::FunctionParameter(const SharedUserData& object)
    : _type(object ? FUNCTION_PARAMETER_TYPE::USER_DATA : FUNCTION_PARAMETER_TYPE::VOID)
    , _typeName(object.getTypeName())
    , _shared(&object) {
    _value.object = object ? object.getShared()->object : nullptr;
}

FunctionParameter FunctionParameter::error(ovMemory::String text) {
    FunctionParameter result(std::move(text));
    result._isError = true;
    return result;
}

FunctionParameter FunctionParameter::view(ovMemory::StringView text) {
    FunctionParameter result;
    result._type = FUNCTION_PARAMETER_TYPE::STRING;
    result._isView = true;
    result._text = text;
    return result;
}

double FunctionParameter::getValueAsDouble() const {
    switch (_type) {
    case FUNCTION_PARAMETER_TYPE::INT:
        return static_cast<double>(_value.integer);
    case FUNCTION_PARAMETER_TYPE::FLOAT:
    case FUNCTION_PARAMETER_TYPE::DOUBLE:
        return _value.number;
    default:
        return 0.0;
    }
}

ovMemory::StringView FunctionParameter::getValueAsString() const {
    if (_type != FUNCTION_PARAMETER_TYPE::STRING)
        return {};
    return _isView ? _text : ovMemory::StringView(_ownText);
}

} // namespace ovScripts
