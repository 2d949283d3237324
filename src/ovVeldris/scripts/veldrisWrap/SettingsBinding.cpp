#include <algorithm>
#include <cmath>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Node.h>
#include <ovVeldris/core/settings/SettingText.h>
#include <ovVeldris/scripts/veldrisWrap/SettingsBinding.h>

namespace ovVeldrisWrap {

using ovCommonWrap::TYPE_NAME;
using ovMemory::String;
using ovMemory::StringView;
using ovScripts::FUNCTION_PARAMETER_TYPE;
using ovScripts::FunctionParameter;
using ovVeldris::Configurable;
using ovVeldris::Setting;
using ovVeldris::SETTING_KIND;
using ovVeldris::SettingValue;

namespace {

// Members of scripts cannot have dashes.
String settingNameOf(StringView member) {
    String name(member);
    std::replace(name.begin(), name.end(), '_', '-');
    return name;
}

const Setting* findRow(const Configurable& object, StringView name, FunctionParameter& error) {
    ovMemory::Result result;
    const Setting* setting = ovVeldris::findSetting(object.getSettings(), settingNameOf(name), result);
    if (!setting)
        error = FunctionParameter::error(result.error);
    return setting;
}

/// Turns values of settings into values of scripts.
struct ToScript {
    template <typename T>
    FunctionParameter operator()(T value) const {
        return ovCommonWrap::toScript<T>(std::move(value));
    }
    // Scripts have no samplers; they know them by name.
    FunctionParameter operator()(ovGraphics::Sampler* sampler) const {
        return sampler ? FunctionParameter(sampler->getName()) : FunctionParameter::VOID;
    }
};

SettingValue nullOf(SETTING_KIND kind) {
    switch (kind) {
    case SETTING_KIND::SAMPLER:
        return static_cast<ovGraphics::Sampler*>(nullptr);
    case SETTING_KIND::CAMERA:
        return static_cast<ovGraphics::Camera*>(nullptr);
    case SETTING_KIND::NODE:
        return static_cast<ovGraphics::Node*>(nullptr);
    default:
        return static_cast<ovGraphics::Texture*>(nullptr);
    }
}

std::optional<SettingValue> objectOf(const FunctionParameter& value) {
    const StringView type = value.getUserDataTypeName();
    if (type == TYPE_NAME<ovMaths::Vector>)
        return *value.getValueAsUserData<ovMaths::Vector>();
    if (type == TYPE_NAME<ovMaths::Matrix>)
        return *value.getValueAsUserData<ovMaths::Matrix>();
    if (type == TYPE_NAME<ovGraphics::Texture>)
        return value.getValueAsUserData<ovGraphics::Texture>();
    if (type == TYPE_NAME<ovGraphics::Camera>)
        return value.getValueAsUserData<ovGraphics::Camera>();
    if (type == TYPE_NAME<ovGraphics::Node>)
        return value.getValueAsUserData<ovGraphics::Node>();
    return std::nullopt;
}

std::optional<SettingValue> numberOf(double number, SETTING_KIND kind) {
    const bool isInt = number == std::floor(number) && std::abs(number) <= std::numeric_limits<int>::max();
    if (kind == SETTING_KIND::INTEGER)
        return isInt ? std::optional<SettingValue>(static_cast<int>(number)) : std::nullopt;
    return static_cast<float>(number);
}

bool isNumber(const FunctionParameter& value) {
    return value.getType() == FUNCTION_PARAMETER_TYPE::INT ||
           value.getType() == FUNCTION_PARAMETER_TYPE::FLOAT ||
           value.getType() == FUNCTION_PARAMETER_TYPE::DOUBLE;
}

/// A vector of a table of a script, {4, 3.8, 3.5}, which has as many numbers as the vector.
std::optional<SettingValue> vectorOf(const FunctionParameter& value, unsigned int components) {
    const ovScripts::ScriptObjectReference& table = value.getScriptObjectReference();
    const auto numbers = table ? table.getEnvironment()->readList(table, components) : std::nullopt;
    if (!numbers || numbers->size() != components || !std::all_of(numbers->begin(), numbers->end(), isNumber))
        return std::nullopt;
    ovMaths::Vector vector;
    float* const targets[] = {&vector.x, &vector.y, &vector.z, &vector.w};
    for (unsigned int i = 0; i < components; ++i)
        *targets[i] = (*numbers)[i].getValueAsFloat();
    return vector;
}

/// Nothing for a value that no setting of that kind takes. Texts are read elsewhere.
std::optional<SettingValue> valueOf(const FunctionParameter& value, const Setting& setting) {
    const SETTING_KIND kind = setting.kind;
    switch (value.getType()) {
    case FUNCTION_PARAMETER_TYPE::BOOL:
        return value.getValueAsBool();
    case FUNCTION_PARAMETER_TYPE::INT:
    case FUNCTION_PARAMETER_TYPE::FLOAT:
    case FUNCTION_PARAMETER_TYPE::DOUBLE:
        return numberOf(value.getValueAsDouble(), kind);
    case FUNCTION_PARAMETER_TYPE::USER_DATA:
    case FUNCTION_PARAMETER_TYPE::USER_DATA_PTR:
        return objectOf(value);
    case FUNCTION_PARAMETER_TYPE::SCRIPT_OBJECT:
        return kind == SETTING_KIND::VECTOR ? vectorOf(value, setting.components) : std::nullopt;
    case FUNCTION_PARAMETER_TYPE::VOID:
        return ovVeldris::isResource(kind) ? std::optional(nullOf(kind)) : std::nullopt;
    default:
        return std::nullopt;
    }
}

// What a person would call it.
String describeValue(const FunctionParameter& value) {
    switch (value.getType()) {
    case FUNCTION_PARAMETER_TYPE::USER_DATA:
    case FUNCTION_PARAMETER_TYPE::USER_DATA_PTR:
        return String(value.getUserDataTypeName());
    case FUNCTION_PARAMETER_TYPE::VOID:
        return "nil";
    case FUNCTION_PARAMETER_TYPE::INT:
        return std::to_string(value.getValueAsInt());
    case FUNCTION_PARAMETER_TYPE::FLOAT:
    case FUNCTION_PARAMETER_TYPE::DOUBLE:
        return std::to_string(value.getValueAsDouble());
    default:
        return "a table or a function";
    }
}

ovMemory::Result write(Configurable& object, const Setting& setting, const FunctionParameter& value) {
    if (value.getType() == FUNCTION_PARAMETER_TYPE::STRING)
        return object.setSettingFromText(setting.name, value.getValueAsString(),
                                         ovGraphics::System::getInstanceIfExisting());
    if (const std::optional<SettingValue> converted = valueOf(value, setting))
        return object.setSetting(setting.name, *converted);
    return ovMemory::failed(ovVeldris::valueProblem(setting, describeValue(value)));
}

} // namespace

FunctionParameter readSetting(const Configurable& object, StringView name) {
    FunctionParameter result;
    if (const Setting* setting = findRow(object, name, result))
        result = std::visit(ToScript(), setting->get(object));
    return result;
}

FunctionParameter writeSetting(Configurable& object, StringView name, const FunctionParameter& value) {
    FunctionParameter error;
    const Setting* setting = findRow(object, name, error);
    if (!setting)
        return error;
    const ovMemory::Result result = write(object, *setting, value);
    return result ? FunctionParameter::VOID : FunctionParameter::error(result.error);
}

FunctionParameter describeSetting(const Configurable& object, StringView name) {
    FunctionParameter result;
    if (const Setting* setting = findRow(object, name, result))
        result = String(setting->help) + ": " + ovVeldris::expectedText(*setting);
    return result;
}

ovMemory::Buffer<String> memberNamesOf(const ovVeldris::SettingTable& settings) {
    ovMemory::Buffer<String> names;
    for (const Setting& setting : settings) {
        names.emplace_back(setting.name);
        std::replace(names.back().begin(), names.back().end(), '-', '_');
    }
    return names;
}

} // namespace ovVeldrisWrap
