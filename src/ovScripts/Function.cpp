#include <ovScripts/Function.h>

namespace ovScripts {

Function& Function::addParameter(FUNCTION_PARAMETER_TYPE type, ovMemory::StringView typeName,
                                 ovMemory::StringView name) {
    _arguments.push_back({type, ovMemory::String(typeName), ovMemory::String(name), false, nullptr});
    _requiredCount = static_cast<unsigned int>(_arguments.size());
    return *this;
}

Function& Function::addOptionalParameter(FUNCTION_PARAMETER_TYPE type, ovMemory::StringView typeName,
                                         ovMemory::StringView name) {
    _arguments.push_back({type, ovMemory::String(typeName), ovMemory::String(name), true, nullptr});
    return *this;
}

Function& Function::setResult(FUNCTION_PARAMETER_TYPE type, ovMemory::StringView typeName) {
    _result.type = type;
    _result.typeName = typeName;
    return *this;
}

Function& Function::setHelp(ovMemory::StringView help) {
    _help = help;
    return *this;
}

Function& Function::setFunction(Callable callable) {
    _callable = std::move(callable);
    return *this;
}

ovMemory::StringView Function::getName() const {
    const ovMemory::StringView fullName = _fullName;
    return fullName.substr(fullName.rfind('.') + 1);
}

} // namespace ovScripts
