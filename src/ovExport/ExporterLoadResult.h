// What reading a text gives.
#pragma once

#include <ovExport/ExportError.h>
#include <ovExport/Node.h>

namespace ovExport {

/// A tree, or the reason why there is none. One made by default is empty: neither tree nor error.
struct ExporterLoadResult {
    /// The root, which owns the tree; null after an error.
    ovMemory::UniquePtr<Node> _tree;
    ExportError _error;

    /// Whether there is a tree.
    explicit operator bool() const { return _tree != nullptr; }
};

} // namespace ovExport
