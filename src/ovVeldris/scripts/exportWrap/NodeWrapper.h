// Nodes of trees in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovExportWrap {

/// Binds ovExport::Node. Nodes are parts of their tree and keep it alive.
class NodeWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovExportWrap
