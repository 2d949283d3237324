// The settings of effects and materials in scripts.
#pragma once

#include <ovVeldris/core/settings/Configurable.h>
#include <ovVeldris/scripts/veldrisWrap/VeldrisTypes.h>

namespace ovVeldrisWrap {

/// A setting of an object. @param name as the table has it, or with underscores for the dashes
/// @return nil for a resource that is not set; an error that lists the names for an unknown one
ovScripts::FunctionParameter readSetting(const ovVeldris::Configurable& object, ovMemory::StringView name);

/// Sets a setting: to a value of its kind, or to a text as command lines take it, for any kind.
/// @return VOID, or an error that says what the setting takes
ovScripts::FunctionParameter writeSetting(ovVeldris::Configurable& object, ovMemory::StringView name,
                                          const ovScripts::FunctionParameter& value);

/// What a setting does and takes, for people. @return an error for an unknown name
ovScripts::FunctionParameter describeSetting(const ovVeldris::Configurable& object,
                                             ovMemory::StringView name);

/// Names of settings as members have them, with underscores for the dashes.
ovMemory::Buffer<ovMemory::String> memberNamesOf(const ovVeldris::SettingTable& settings);

/// Adds "set", "get", the functions that list settings, and a member for each setting.
template <typename T>
void addSettings(ovScripts::UserType& type) {
    using ovMemory::StringView;
    using ovScripts::FunctionParameter;
    type.setNamedMembers(
        [](void* object, StringView name, FunctionParameter& value) {
            value = readSetting(*static_cast<const T*>(object), name);
            return true;
        },
        [](void* object, StringView name, const FunctionParameter& value, FunctionParameter& result) {
            result = writeSetting(*static_cast<T*>(object), name, value);
            return true;
        });
    method(
        type, "set",
        [](T& self, StringView name, const FunctionParameter& value) {
            return writeSetting(self, name, value);
        },
        {"name", "value"}, "Sets a setting to a value of its kind or to a text, as \"1,0.5,0\".");
    method(
        type, "get", [](T& self, StringView name) { return readSetting(self, name); }, {"name"},
        "The value of a setting.");
    method(
        type, "getSettingCount", [](T& self) { return self.getSettings().size(); }, {},
        "How many settings there are.");
    method(
        type, "getSettingName",
        [](T& self, std::size_t index) {
            return index < self.getSettings().size()
                       ? std::optional(ovMemory::String(self.getSettings().begin()[index].name))
                       : std::nullopt;
        },
        {"index"}, "The name of the setting at a position from 0; nil past the end.");
    method(
        type, "getSettingHelp", [](T& self, StringView name) { return describeSetting(self, name); },
        {"name"}, "What a setting does and takes.");
}

} // namespace ovVeldrisWrap
