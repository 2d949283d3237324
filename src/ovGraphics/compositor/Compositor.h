// Compositors: what a frame draws, as lists of nodes, blocks and passes.
#pragma once

#include <ovGraphics/compositor/CompositorOperationsBlock.h>
#include <ovGraphics/resources/Resource.h>

namespace ovGraphics {

/// An ordered list of operations blocks that is drawn or skipped as a whole. Owned by its compositor. Effects
/// add their blocks to nodes that belong to others, and take exactly those away again.
class OV_API CompositorNode : public ovMemory::Borrowable {
public:
    bool getActive() const { return _active; }
    /// An inactive node draws nothing. Default active.
    void setActive(bool active) { _active = active; }

    CompositorOperationsBlock* appendOperationsBlock();
    /// Puts a new block before the one at position; a position beyond the end appends.
    CompositorOperationsBlock* insertOperationsBlock(unsigned int position);
    unsigned int getOperationsBlockCount() const { return static_cast<unsigned int>(_blocks.size()); }
    /// The block at a position, or null.
    CompositorOperationsBlock* getOperationsBlock(unsigned int position) const;
    /// Destroys a block. @return false when it is not of this node
    bool removeOperationsBlock(const CompositorOperationsBlock* block);

    /// Frees what drawing made on the device; the next frame makes it again.
    void unload();

private:
    bool _active = true;
    ovMemory::Buffer<ovMemory::UniquePtr<CompositorOperationsBlock>> _blocks;
};

/// A list of nodes that a render context draws in order.
class OV_API Compositor : public Resource {
public:
    /// A new, empty compositor; a null system means the singleton.
    static ovMemory::UniquePtr<Compositor> create(System* system);
    explicit Compositor(System* system);
    ~Compositor() override;

    CompositorNode* appendNode();
    unsigned int getNodeCount() const { return static_cast<unsigned int>(_nodes.size()); }
    /// The node at a position, or null.
    CompositorNode* getNode(unsigned int position) const;
    /// Destroys a node. @return false when it is not of this compositor
    bool removeNode(const CompositorNode* node);

    void reset() override;

private:
    void _unload() override;

    ovMemory::Buffer<ovMemory::UniquePtr<CompositorNode>> _nodes;
};

} // namespace ovGraphics
