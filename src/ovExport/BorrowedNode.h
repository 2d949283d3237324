// Pointers to nodes of trees that others own.
#pragma once

#include <ovExport/Node.h>

namespace ovExport {

/// A pointer to a node that becomes null when its tree is destroyed. As long as the tree lives every node of
/// it does, so that one link for each pointer on the tree serves, and nodes themselves stay small.
///
/// Borrowing is not reading: it belongs to the thread that destroys the tree.
class BorrowedNode {
public:
    BorrowedNode() = default;
    BorrowedNode(Node* node)
        : _tree(node ? &node->getTree() : nullptr)
        , _node(node) {}

    /// The node; null when none was given or its tree was destroyed.
    Node* get() const { return _tree ? _node : nullptr; }
    Node* operator->() const { return get(); }
    Node& operator*() const { return *get(); }
    explicit operator bool() const { return get() != nullptr; }

private:
    ovMemory::Borrowed<ovMemory::Borrowable> _tree;
    Node* _node = nullptr;
};

} // namespace ovExport
