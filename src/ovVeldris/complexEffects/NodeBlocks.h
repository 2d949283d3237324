// The operations blocks that an effect has in the compositor node of an application.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {
class CompositorNode;
class CompositorOperationsBlock;
class Shader;
class Texture;
class Viewport;
} // namespace ovGraphics

namespace ovVeldris {

/// Remembers what was appended to a node, and takes exactly that away again. The application owns the node:
/// it may destroy it, or single blocks, at any time.
class OV_API NodeBlocks {
public:
    NodeBlocks() = default;
    NodeBlocks(const NodeBlocks&) = delete;
    NodeBlocks& operator=(const NodeBlocks&) = delete;
    /// remove()
    ~NodeBlocks();

    /// Appends a block with one post-process pass. @param node not owned; blocks of another are removed first
    void append(ovGraphics::CompositorNode& node, ovGraphics::Shader& shader, ovGraphics::Viewport& viewport,
                const ovMemory::Buffer<ovGraphics::Texture*>& targets);
    /// Destroys the blocks that are still there, and forgets the node.
    void remove();

private:
    ovMemory::Borrowed<ovGraphics::CompositorNode> _node;
    ovMemory::Buffer<ovMemory::Borrowed<ovGraphics::CompositorOperationsBlock>> _blocks;
};

} // namespace ovVeldris
