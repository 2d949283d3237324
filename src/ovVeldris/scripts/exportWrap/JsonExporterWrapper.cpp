#include <ovExport/JsonExporter.h>
#include <ovVeldris/scripts/commonWrap/Bind.h>
#include <ovVeldris/scripts/exportWrap/JsonExporterWrapper.h>

namespace ovExportWrap {

void JsonExporterWrapper::updateEnvironment(ovScripts::Environment* environment) {
    using namespace ovCommonWrap;
    using namespace ovExport;
    ovScripts::UserType& type = *environment->getUserType(TYPE_NAME<JsonExporter>);
    type.setHelp("JSON.");
    staticFunction(
        type, "exportTreeIntoString",
        [](const Node& node) { return JsonExporter().exportTreeIntoString(&node); }, {"node"},
        "The node and all below it as a text.");
    staticFunction(
        type, "importIntoTree",
        [](ovMemory::StringView text) {
            return std::make_unique<ExporterLoadResult>(JsonExporter().importIntoTree(text));
        },
        {"text"}, "Reads a text; the result has a tree or an error.");
}

} // namespace ovExportWrap
