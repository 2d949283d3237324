#include <veldris/projects/SettingOptions.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <fmt/format.h>
#include <veldris/commands/RenderOptions.h>

namespace veldris {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

bool isEnvironmentFile(StringView environment) {
    return environment != BUILT_IN_SKY && environment != NO_ENVIRONMENT && !isSkyChoice(environment);
}

Buffer<ProjectSetting> givenSettings(const CLI::App& command) {
    Buffer<ProjectSetting> settings;
    for (const StringView name : projectSettingNames()) {
        const CLI::Option* const option = command.get_option_no_throw("--" + String(name));
        if (!option || option->count() == 0)
            continue;
        settings.push_back({String(name), option->results().front()});
    }
    return settings;
}

Buffer<String> applySettings(const Buffer<ProjectSetting>& settings, const String& folder,
                             CLI::App& command) {
    Buffer<String> problems;
    for (const ProjectSetting& setting : settings) {
        CLI::Option* const option = command.get_option_no_throw("--" + setting.name);
        if (!option || option->count() > 0)
            continue;
        const bool isFile = setting.name == "environment" && isEnvironmentFile(setting.value);
        try {
            option->add_result(isFile ? (std::filesystem::path(folder) / setting.value).native()
                                      : setting.value);
            option->run_callback();
        } catch (const CLI::Error& error) {
            problems.push_back(fmt::format("\"{}\" is '{}': {}", setting.name, setting.value, error.what()));
            option->clear();
        }
    }
    return problems;
}

} // namespace veldris
