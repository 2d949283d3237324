#include <ovVeldris/content/detail/ModelNodes.h>

#include <ovGraphics/scene/Node.h>

namespace ovVeldris::detail {

using ovGraphics::GltfNode;
using ovGraphics::GltfScene;
using ovGraphics::Node;
using ovMemory::UniquePtr;

namespace {

UniquePtr<Node> makeNode(ovGraphics::System& graphics, const GltfNode& source) {
    UniquePtr<Node> node = Node::create(&graphics);
    node->setName(source.name);
    node->setPosition(source.position);
    node->setOrientation(source.orientation);
    node->setScale(source.scale);
    if (node->getLocalMatrix() != source.local) // sheared, or rounded when it was taken apart
        node->setLocalMatrix(source.local);
    return node;
}

} // namespace

ModelNodes makeNodes(ovGraphics::System& graphics, const GltfScene& scene) {
    ModelNodes nodes;
    nodes.root = Node::create(&graphics);
    nodes.root->setName("model root");
    nodes.ofFile.resize(scene.nodes.size());

    ovMemory::Buffer<unsigned int> parentsFirst;
    ovMemory::Buffer<unsigned int> open = scene.roots;
    while (!open.empty()) {
        const unsigned int index = open.back();
        open.pop_back();
        if (nodes.ofFile[index])
            continue;
        nodes.ofFile[index] = makeNode(graphics, scene.nodes[index]);
        parentsFirst.push_back(index);
        const auto& children = scene.nodes[index].children;
        open.insert(open.end(), children.begin(), children.end());
    }

    // Bottom up: hanging a node below another looks at all nodes above that one, so that a chain built from
    // its top would cost the square of its length.
    for (auto index = parentsFirst.rbegin(); index != parentsFirst.rend(); ++index)
        for (const unsigned int child : scene.nodes[*index].children)
            nodes.ofFile[child]->setParent(nodes.ofFile[*index].get());
    for (const unsigned int index : scene.roots)
        nodes.ofFile[index]->setParent(nodes.root.get());
    return nodes;
}

} // namespace ovVeldris::detail
