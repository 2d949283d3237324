// JSON in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovExportWrap {

/// Binds ovExport::JsonExporter, as static functions.
class JsonExporterWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovExportWrap
