#include <ovExport/ExportError.h>
#include <ovVeldris/scripts/commonWrap/Bind.h>
#include <ovVeldris/scripts/exportWrap/ExportErrorWrapper.h>

namespace ovExportWrap {

void ExportErrorWrapper::updateEnvironment(ovScripts::Environment* environment) {
    using namespace ovCommonWrap;
    using ovExport::ExportError;
    ovScripts::UserType& type = *environment->getUserType(TYPE_NAME<ExportError>);
    type.setHelp("Why a text was not read.");
    readOnlyField(type, "_errorDesc", &ExportError::_errorDesc)->help = "What is wrong, in a few words.";
    readOnlyField(type, "_errorInfo", &ExportError::_errorInfo)->help = "The whole story in one line.";
    readOnlyField(type, "_index", &ExportError::_index)->help = "The byte at which reading stopped.";
    readOnlyField(type, "_activated", &ExportError::_activated)->help = "Whether there is an error.";
}

} // namespace ovExportWrap
