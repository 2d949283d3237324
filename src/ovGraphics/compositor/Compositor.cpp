#include <ovGraphics/compositor/Compositor.h>

#include <algorithm>

namespace ovGraphics {

namespace {

/// Removes an owned object from its list. @return false when it is not there
template <typename T>
bool removeOwned(ovMemory::Buffer<ovMemory::UniquePtr<T>>& list, const T* object) {
    const auto entry =
        std::find_if(list.begin(), list.end(), [&](const auto& owned) { return owned.get() == object; });
    if (entry == list.end())
        return false;
    list.erase(entry);
    return true;
}

} // namespace

CompositorOperationsBlock* CompositorNode::appendOperationsBlock() {
    return insertOperationsBlock(getOperationsBlockCount());
}

CompositorOperationsBlock* CompositorNode::insertOperationsBlock(unsigned int position) {
    const unsigned int place = std::min(position, getOperationsBlockCount());
    return _blocks.insert(_blocks.begin() + place, std::make_unique<CompositorOperationsBlock>())->get();
}

CompositorOperationsBlock* CompositorNode::getOperationsBlock(unsigned int position) const {
    return position < _blocks.size() ? _blocks[position].get() : nullptr;
}

bool CompositorNode::removeOperationsBlock(const CompositorOperationsBlock* block) {
    return removeOwned(_blocks, block);
}

void CompositorNode::unload() {
    for (const auto& block : _blocks)
        block->unload();
}

ovMemory::UniquePtr<Compositor> Compositor::create(System* system) {
    return std::make_unique<Compositor>(system);
}

Compositor::Compositor(System* system)
    : Resource(system, "compositor") {}

Compositor::~Compositor() = default;

CompositorNode* Compositor::appendNode() {
    return _nodes.emplace_back(std::make_unique<CompositorNode>()).get();
}

CompositorNode* Compositor::getNode(unsigned int position) const {
    return position < _nodes.size() ? _nodes[position].get() : nullptr;
}

bool Compositor::removeNode(const CompositorNode* node) {
    return removeOwned(_nodes, node);
}

void Compositor::reset() {
    Resource::reset();
    _nodes.clear();
}

void Compositor::_unload() {
    for (const auto& node : _nodes)
        node->unload();
}

} // namespace ovGraphics
