#include <ovVeldris/scripts/commonWrap/Bind.h>
#include <ovVeldris/scripts/scriptsWrap/EnvironmentWrapper.h>

namespace ovScriptsWrap {

namespace {

using namespace ovCommonWrap;
using ovScripts::Environment;
using ovScripts::FUNCTION_PARAMETER_TYPE;
using ovScripts::FunctionParameter;

using Bytes = ovMemory::Buffer<unsigned char>;

void declareSerialize(Environment* environment, ovMemory::StringView name, bool forwardOwnership,
                      ovMemory::StringView help) {
    environment->setFunc(name)
        ->addParameter(FUNCTION_PARAMETER_TYPE::SCRIPT_OBJECT, {}, "object")
        .setResult(FUNCTION_PARAMETER_TYPE::USER_DATA, TYPE_NAME<Bytes>)
        .setHelp(help)
        .setFunction([environment, forwardOwnership](Arguments arguments) {
            Bytes bytes =
                environment->serializeScriptObject(arguments[0].getScriptObjectReference(), forwardOwnership);
            if (bytes.empty())
                return FunctionParameter::error(environment->getLastExecutionResult().error);
            return toScript(std::make_unique<Bytes>(std::move(bytes)));
        });
}

FunctionParameter deserialize(Environment& environment, const Bytes& bytes) {
    ovScripts::ScriptObjectReference object = environment.deserializeScriptObject(bytes);
    if (!environment.getLastExecutionResult())
        return FunctionParameter::error(environment.getLastExecutionResult().error);
    return object;
}

} // namespace

void EnvironmentWrapper::updateEnvironment(Environment* environment) {
    declareSerialize(environment, "serialize", false, "Writes an object down for another environment.");
    declareSerialize(environment, "serializeForwardOwnership", true,
                     "The same; what scripts own goes over to whoever reads it.");
    bind(
        *environment->setFunc("deserialize"),
        [environment](const Bytes& bytes) { return deserialize(*environment, bytes); }, {"bytes"},
        "Reads what serialize of this process wrote; everything else is an error.");
}

} // namespace ovScriptsWrap
