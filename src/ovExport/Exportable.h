// What can be written to a tree of nodes and read from one.
#pragma once

#include <ovCommon/Api.h>
#include <ovExport/Node.h>

namespace ovExport {

/// An object that writes itself to a tree and reads itself from one.
class OV_API Exportable {
public:
    virtual ~Exportable() = default;

    /// Adds what is worth keeping as members of a node; members that the node has already, and that have
    /// other names, stay.
    /// @param node never null; belongs to the caller
    virtual void exportClassToTree(Node* node) = 0;

    /// Takes over what the members of a node say. What is absent or of another kind leaves the object as it
    /// is; no input makes it fail.
    /// @param node never null; belongs to the caller and is not kept
    virtual void importClassFromTree(Node* node) = 0;
};

} // namespace ovExport
