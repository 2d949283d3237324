#include <ovVeldris/complexEffects/NodeBlocks.h>

#include <ovGraphics/compositor/Compositor.h>

namespace ovVeldris {

NodeBlocks::~NodeBlocks() {
    remove();
}

void NodeBlocks::append(ovGraphics::CompositorNode& node, ovGraphics::Shader& shader,
                        ovGraphics::Viewport& viewport,
                        const ovMemory::Buffer<ovGraphics::Texture*>& targets) {
    if (_node.get() != &node)
        remove();
    _node = &node;
    ovGraphics::CompositorOperationsBlock* block = node.appendOperationsBlock();
    for (unsigned int i = 0; i < targets.size(); ++i)
        block->setTarget(i, targets[i]);
    block->setViewport(&viewport);
    block->appendPostProcessPass()->setShader(&shader);
    _blocks.push_back(block);
}

void NodeBlocks::remove() {
    // A node that is gone took its blocks along, and a block that is gone is null.
    for (const auto& block : _blocks)
        if (_node && block)
            _node->removeOperationsBlock(block.get());
    _blocks.clear();
    _node = nullptr;
}

} // namespace ovVeldris
