#include <ovScripts/FunctionParameter.h>
#include <ovScripts/detail/SharedObject.h>

namespace ovScripts {

const FunctionParameter FunctionParameter::VOID;

void FunctionParameter::OwnedDeleter::operator()(Owned* owned) const {
    delete owned;
}

FunctionParameter::FunctionParameter(ScriptObjectReference object)
    : _type(object ? FUNCTION_PARAMETER_TYPE::SCRIPT_OBJECT : FUNCTION_PARAMETER_TYPE::VOID) {
    if (object)
        _owned.reset(new Owned{{}, std::move(object)});
}

// Without a look at whether a tracked object is gone: this may be another thread than its own.
FunctionParameter::FunctionParameter(const SharedUserData& object)
    : _type(object ? FUNCTION_PARAMETER_TYPE::USER_DATA : FUNCTION_PARAMETER_TYPE::VOID)
    , _text(object.getTypeName())
    , _shared(&object) {
    _value.object = object ? object.getShared()->object : nullptr;
}

FunctionParameter::FunctionParameter(const FunctionParameter& other)
    : _type(other._type)
    , _isOwnershipForwarded(other._isOwnershipForwarded)
    , _isError(other._isError)
    , _keptArgument(other._keptArgument)
    , _stackPosition(other._stackPosition)
    , _value(other._value)
    , _text(other._text)
    , _shared(other._shared) {
    if (!other._owned)
        return;
    _owned.reset(new Owned(*other._owned));
    if (_type == FUNCTION_PARAMETER_TYPE::STRING)
        _text = _owned->text;
}

FunctionParameter& FunctionParameter::operator=(const FunctionParameter& other) {
    if (this != &other)
        *this = FunctionParameter(other);
    return *this;
}

FunctionParameter FunctionParameter::error(ovMemory::String text) {
    FunctionParameter result(text);
    result._isError = true;
    return result;
}

FunctionParameter FunctionParameter::view(ovMemory::StringView text) {
    FunctionParameter result;
    result._type = FUNCTION_PARAMETER_TYPE::STRING;
    result._text = text;
    return result;
}

const ScriptObjectReference& FunctionParameter::getScriptObjectReference() const {
    static const ScriptObjectReference none;
    return _owned ? _owned->reference : none;
}

void FunctionParameter::_ownText(ovMemory::StringView text) {
    _owned.reset(new Owned{ovMemory::String(text), {}});
    _text = _owned->text;
}

} // namespace ovScripts
