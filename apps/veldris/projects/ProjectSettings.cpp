#include <veldris/projects/ProjectSettings.h>

#include <algorithm>
#include <fmt/format.h>
#include <ovExport/JsonExporter.h>
#include <ovExport/Node.h>
#include <ovExport/TextPosition.h>
#include <ovVeldris/core/NearestName.h>

namespace veldris {

using ovExport::Node;
using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

namespace {

// Not the output, and not what belongs to the machine.
constexpr StringView NAMES[] = {
    "environment", "input-layout", "environment-rotation", "camera",  "light", "light-color",
    "shadows",     "ground",       "background",           "effects", "size",  "samples",
    "time",
};

bool isSettingName(StringView name) {
    return std::ranges::find(NAMES, name) != std::end(NAMES);
}

} // namespace

ovMemory::BufferView<const StringView> projectSettingNames() {
    return NAMES;
}

String writeSettings(const Buffer<ProjectSetting>& settings) {
    const auto root = Node::create();
    for (const ProjectSetting& setting : settings)
        root->addMember(setting.name)->setAsString(setting.value);
    return ovExport::JsonExporter().exportTreeIntoString(root.get()) + "\n";
}

Buffer<ProjectSetting> readSettings(StringView text, Buffer<String>& problems) {
    const ovExport::ExporterLoadResult parsed = ovExport::JsonExporter().importIntoTree(text);
    if (!parsed || !parsed._tree->isObject()) {
        problems.push_back(parsed ? String("1: this is no object.")
                                  : fmt::format("{}: {}", parsed._error._line, parsed._error._errorInfo));
        return {};
    }
    Buffer<ProjectSetting> settings;
    for (unsigned int i = 0; i < parsed._tree->getMemberCount(); ++i) {
        const StringView name = parsed._tree->getMemberKey(i);
        const Node& value = *parsed._tree->getMemberValueIndex(i);
        const auto line = ovExport::findTextPosition(text, value.getSourceIndex()).line;
        if (!isSettingName(name))
            problems.push_back(
                fmt::format("{}: there is no setting \"{}\".{}", line, name,
                            ovVeldris::nearestNameHint(name, {std::begin(NAMES), std::end(NAMES)})));
        else if (!value.isString() && !value.isValueTypeNumber() && !value.isBool())
            problems.push_back(fmt::format("{}: \"{}\" is no text, number or bool.", line, name));
        else
            settings.push_back({String(name), value.getValueAsString()});
    }
    return settings;
}

} // namespace veldris
