// Trees that were read, in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovExportWrap {

/// Binds ovExport::ExporterLoadResult. Scripts own it, and with it its tree.
class ExporterLoadResultWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovExportWrap
