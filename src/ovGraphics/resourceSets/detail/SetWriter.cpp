#include <ovGraphics/resourceSets/detail/SetWriter.h>

#include <fmt/format.h>
#include <ovExport/Node.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resourceSets/detail/SetMembers.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <ovResources/FolderPaths.h>

namespace ovGraphics::detail {

using Tree = ovExport::Node;
using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr unsigned int EVERY_STAGE = 0;
constexpr unsigned int MAX_UNITS = 128; // more than any device has

/// Writes one section, an entry for each resource. Sections without entries are left out.
template <typename T, typename Write>
void writeSection(Tree& root, StringView name, const SetNames<T>& names, Write write) {
    if (names.get().empty())
        return;
    Tree* const section = root.addMember(name);
    for (const auto& [key, resource] : names.get()) {
        Tree* const entry = section->addElement();
        entry->addMember("name")->setAsString(key);
        write(*resource, *entry);
    }
}

/// The matrix that the node's position, orientation and scale make.
ovMaths::Matrix composed(const Node& node) {
    const auto copy = Node::create(node.getSystem());
    copy->setPosition(node.getPosition());
    copy->setOrientation(node.getOrientation());
    copy->setScale(node.getScale());
    return copy->getLocalMatrix();
}

} // namespace

SetWriter::SetWriter(System& system, StringView folder)
    : _folder(folder) {
    _collect(system);
}

void SetWriter::_collect(System& system) {
    _samplers.addManaged(*system.getSamplerManager());
    _textures.addManaged(*system.getTextureManager());
    _meshes.addManaged(*system.getMeshManager());
    _nodes.addManaged(*system.getNodeManager());
    _queues.addManaged(*system.getRenderQueueManager());
    for (const auto& [name, queue] : _queues.get())
        _collectDrawn(*queue);
    for (const auto& [name, texture] : _textures.get())
        _samplers.add(texture->getSampler());
    // Nobody need manage what stands above: a model keeps its nodes to itself.
    ovMemory::Buffer<Node*> open;
    for (const auto& [name, node] : _nodes.get())
        open.push_back(node->getParent());
    for (; !open.empty();) {
        Node* const parent = open.back();
        open.pop_back();
        if (_nodes.add(parent))
            open.push_back(parent->getParent());
    }
}

void SetWriter::_collectDrawn(const RenderQueue& queue) {
    for (unsigned int i = 0; i < queue.getEntityCount(); ++i) {
        const Entity& entity = *queue.getEntity(i);
        _meshes.add(entity.getMesh());
        _nodes.add(entity.getNode());
        const Shader* const shader = entity.getShader();
        for (unsigned int unit = 0; shader && unit < MAX_UNITS; ++unit) {
            Texture* const texture = shader->getTexture(unit, EVERY_STAGE);
            if (!texture || texture->getHidden() || !_textures.nameOf(texture).empty())
                continue;
            // Whoever reads the set knows textures by their names: one of another name would be of no use.
            if (_textures.get().contains(texture->getName()) || texture->getName().empty())
                _warnings.push_back(
                    fmt::format("the texture '{}' is left out: another has its name, or it has "
                                "none; rename it.",
                                texture->getName()));
            else
                _textures.add(texture);
        }
    }
}

void SetWriter::write(Tree& root, StringView dataName) {
    root.addMember("resourceSet")->setAsInt(1);
    writeSection(root, "samplers", _samplers, [](const Sampler& sampler, Tree& entry) {
        for (const SetMember<Sampler>& member : samplerMembers())
            member.write(sampler, *entry.addMember(member.name));
        entry.addMember("loaded")->setAsBool(!sampler.isUnloaded());
    });
    writeSection(root, "textures", _textures,
                 [this](Texture& texture, Tree& entry) { _writeTexture(texture, entry); });
    writeSection(root, "meshes", _meshes, [this](const Mesh& mesh, Tree& entry) { _writeMesh(mesh, entry); });
    writeSection(root, "nodes", _nodes, [this](const Node& node, Tree& entry) { _writeNode(node, entry); });
    writeSection(root, "queues", _queues,
                 [this](const RenderQueue& queue, Tree& entry) { _writeQueue(queue, entry); });
    if (!_data.isEmpty())
        _data.describe(dataName, *root.addMember("data"));
}

void SetWriter::_writeTexture(Texture& texture, Tree& entry) {
    const String& source = texture.getSourceFile();
    const String file = source.empty() ? String() : ovResources::pathFromFolder(_folder, source);
    if (!file.empty()) {
        entry.addMember("file")->setAsString(file);
        entry.addMember("reading")->setAsString(ovMemory::enumToText(texture.getSourceReading()));
    }
    for (const SetMember<Texture>& member : textureMembers())
        if (file.empty() || !member.isOfContent)
            member.write(texture, *entry.addMember(member.name));
    if (const StringView sampler = _samplers.nameOf(texture.getSampler()); !sampler.empty())
        entry.addMember("sampler")->setAsString(sampler);
    entry.addMember("loaded")->setAsBool(!texture.isUnloaded());
    // What is drawn into a target is drawn again.
    if (file.empty() && !texture.getUsableAsRenderTarget())
        _writeTexels(texture, entry);
}

void SetWriter::_writeTexels(Texture& texture, Tree& entry) {
    const auto add = [&](unsigned int slice, unsigned int mip, unsigned int rowPitch, SetBytes bytes) {
        Tree* const block = entry.addMember("texels")->addElement();
        block->addMember("slice")->setAsUint(slice);
        block->addMember("mip")->setAsUint(mip);
        block->addMember("rowPitch")->setAsUint(rowPitch);
        _data.add(bytes, *block);
    };
    for (const Texture::CpuData& data : texture.getCpuData())
        add(data.slice, data.mip, data.rowPitch, data.bytes);
    if (!texture.getCpuData().empty())
        return;
    if (texture.isUnloaded()) {
        if (texture.areCpuCopiesDropped())
            _warnings.push_back(
                fmt::format("the texels of the texture '{}' are left out: it was unloaded, and "
                            "its copies were dropped.",
                            texture.getName()));
        return;
    }
    // Mips that load() computed are computed again.
    const bool areComputed = texture.areCpuCopiesDropped() && !texture.hasOwnMips();
    const unsigned int mips = areComputed ? 1 : texture.getMipCount();
    for (unsigned int slice = 0; slice < texture.getSliceCount(); ++slice) {
        for (unsigned int mip = 0; mip < mips; ++mip) {
            const auto texels = texture.readBack(slice, mip);
            if (!texels) {
                _warnings.push_back(
                    fmt::format("texels of the texture '{}' are left out: the device does not "
                                "give them back.",
                                texture.getName()));
                return;
            }
            add(slice, mip, 0, *texels);
        }
    }
}

void SetWriter::_writeMesh(const Mesh& mesh, Tree& entry) {
    const bool isNew = !mesh.getNewVertexArray().empty();
    const auto& vertices = isNew ? mesh.getNewVertexArray() : mesh.getCurrentVertexArray();
    const auto& indices =
        isNew || !mesh.getNewIndexArray().empty() ? mesh.getNewIndexArray() : mesh.getCurrentIndexArray();
    for (unsigned int i = 0; i < mesh.getVertexComposition().getAttributeCount(); ++i) {
        const VertexAttribute& attribute = mesh.getVertexComposition().getAttribute(i);
        Tree* const element = entry.addMember("attributes")->addElement();
        element->addMember("name")->setAsString(attribute.name);
        element->addMember("format")->setAsString(ovMemory::enumToText(attribute.format));
    }
    entry.addMember("topology")->setAsString(ovMemory::enumToText(mesh.getTopology()));
    if (vertices.empty() && mesh.getVertexCount() > 0)
        _warnings.push_back(fmt::format(
            "the vertices of the mesh '{}' are left out: its copies were dropped.", mesh.getName()));
    const bool hasArrays = !vertices.empty();
    entry.addMember("loaded")->setAsBool(hasArrays && !mesh.isUnloaded());
    if (hasArrays)
        _data.add(vertices, *entry.addMember("vertices"));
    if (hasArrays && !indices.empty())
        _data.add({reinterpret_cast<const unsigned char*>(indices.data()), indices.size() * sizeof(uint32_t)},
                  *entry.addMember("indices"));
}

void SetWriter::_writeNode(const Node& node, Tree& entry) {
    if (const StringView parent = _nodes.nameOf(node.getParent()); !parent.empty())
        entry.addMember("parent")->setAsString(parent);
    if (composed(node) != node.getLocalMatrix()) { // sheared, or rounded when it was taken apart
        for (const auto& row : node.getLocalMatrix().m)
            entry.addMember("matrix")->addElement()->setAsString(
                ovMaths::Vector(row[0], row[1], row[2], row[3]).toExactString());
        return;
    }
    const ovMaths::Quaternion& turn = node.getOrientation();
    entry.addMember("position")->setAsString(node.getPosition().toExactString());
    entry.addMember("orientation")
        ->setAsString(ovMaths::Vector(turn.x, turn.y, turn.z, turn.w).toExactString());
    entry.addMember("scale")->setAsString(node.getScale().toExactString());
}

void SetWriter::_writeQueue(const RenderQueue& queue, Tree& entry) {
    entry.addMember("entities")->setAsArray();
    const auto refer = [](Tree& element, StringView member, StringView name) {
        if (!name.empty())
            element.addMember(member)->setAsString(name);
    };
    for (unsigned int i = 0; i < queue.getEntityCount(); ++i) {
        const Entity& entity = *queue.getEntity(i);
        Tree& element = *entry.addMember("entities")->addElement();
        refer(element, "mesh", _meshes.nameOf(entity.getMesh()));
        refer(element, "node", _nodes.nameOf(entity.getNode()));
        refer(element, "shader", entity.getShader() ? entity.getShader()->getName() : StringView());
        element.addMember("visible")->setAsBool(entity.getVisible());
        element.addMember("doubleSided")->setAsBool(entity.getDoubleSided());
    }
}

} // namespace ovGraphics::detail
