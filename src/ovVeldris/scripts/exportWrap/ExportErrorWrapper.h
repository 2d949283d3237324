// Reasons why a text was not read, in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovExportWrap {

/// Binds ovExport::ExportError, to be read.
class ExportErrorWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovExportWrap
