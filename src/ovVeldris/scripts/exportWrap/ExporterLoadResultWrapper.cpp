#include <ovExport/ExporterLoadResult.h>
#include <ovVeldris/scripts/commonWrap/Bind.h>
#include <ovVeldris/scripts/exportWrap/ExporterLoadResultWrapper.h>

namespace ovExportWrap {

void ExporterLoadResultWrapper::updateEnvironment(ovScripts::Environment* environment) {
    using namespace ovCommonWrap;
    using ovExport::ExporterLoadResult;
    ovScripts::UserType& type = *environment->getUserType(TYPE_NAME<ExporterLoadResult>);
    type.setHelp("A tree, or the reason why there is none.");
    destructible<ExporterLoadResult>(type);
    type.setSizeOf([](const void* result) {
        const auto& tree = static_cast<const ExporterLoadResult*>(result)->_tree;
        return tree ? tree->getTreeBytes() : 0;
    });
    // Parts of the result, which keep it alive.
    type.addMemberVariable(
            "_tree", ovScripts::FUNCTION_PARAMETER_TYPE::USER_DATA, TYPE_NAME<ovExport::Node>,
            [](void* result) { return toScript(static_cast<ExporterLoadResult*>(result)->_tree.get()); },
            nullptr)
        ->help = "The root; nil after an error.";
    type.addMemberVariable(
            "_error", ovScripts::FUNCTION_PARAMETER_TYPE::USER_DATA, TYPE_NAME<ovExport::ExportError>,
            [](void* result) { return toScript(&static_cast<ExporterLoadResult*>(result)->_error); }, nullptr)
        ->help = "Its member _activated says whether there was one.";
}

} // namespace ovExportWrap
