#include <ovGraphics/resourceSets/detail/SetReader.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fmt/format.h>
#include <ovExport/Node.h>
#include <ovExport/TextPosition.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovGraphics/resourceSets/detail/SetMembers.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <ovResources/FolderPaths.h>

namespace ovGraphics::detail {

using ovMaths::Vector;
using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

namespace {

// What a file of a few bytes may ask the memory for. Larger textures can only be made by programs.
constexpr std::size_t MAX_TEXTURE_BYTES = std::size_t{2} << 30;

// Line numbers count from the text's start. One text is read once, however many problems it has.
constexpr std::size_t MAX_PROBLEMS = 1000;

bool readVector(const ovExport::Node* node, Vector& vector) {
    return node && node->isString() && vector.fromString(node->getValueAsStringView());
}

/// How far each node is from its root; nothing for those of a ring.
Buffer<std::optional<unsigned int>> depthsOf(const Buffer<int>& parents) {
    Buffer<std::optional<unsigned int>> depths(parents.size());
    Buffer<char> isOpen(parents.size(), 0);
    for (std::size_t start = 0; start < parents.size(); ++start) {
        Buffer<std::size_t> path;
        auto at = static_cast<int>(start);
        while (at >= 0 && !depths[static_cast<std::size_t>(at)] && !isOpen[static_cast<std::size_t>(at)]) {
            isOpen[static_cast<std::size_t>(at)] = 1;
            path.push_back(static_cast<std::size_t>(at));
            at = parents[static_cast<std::size_t>(at)];
        }
        if (at >= 0 && !depths[static_cast<std::size_t>(at)])
            continue; // a ring, or what hangs on one: its flags stay, and so does the lack of depths
        unsigned int depth = at < 0 ? 0 : *depths[static_cast<std::size_t>(at)] + 1;
        for (auto index = path.rbegin(); index != path.rend(); ++index)
            depths[*index] = depth++;
    }
    return depths;
}

} // namespace

SetReader::SetReader(System& system, StringView text, StringView folder, bool loading,
                     ResourceSetLoadResult& result)
    : _system(system)
    , _text(text)
    , _folder(folder)
    , _loading(loading)
    , _result(result) {}

bool SetReader::read(const Tree& root) {
    const Tree* const version = root.getMemberValue("resourceSet");
    if (!root.isObject() || !version || !version->isValueTypeNumber() || version->getValueAsDouble() != 1.0)
        return _refuse(root, "This is no resource set of version 1: the member \"resourceSet\" must be 1.");
    if (const Tree* const data = root.getMemberValue("data")) {
        _dataError = _data.open(*data, _folder);
        if (!_dataError.empty())
            _refuse(*data, "The data of the set cannot be read: " + _dataError);
    }
    _readSection(root, "samplers", "sampler", std::bind_front(&SetReader::_readSampler, this));
    _readSection(root, "textures", "texture", std::bind_front(&SetReader::_readTexture, this));
    _readSection(root, "meshes", "mesh", std::bind_front(&SetReader::_readMesh, this));
    _readSection(root, "nodes", "node", std::bind_front(&SetReader::_readNode, this));
    _hangNodes(root);
    _readSection(root, "queues", "queue", std::bind_front(&SetReader::_readQueue, this));
    return true;
}

bool SetReader::_refuse(const Tree& place, const String& message) {
    if (_result._problems.size() < MAX_PROBLEMS) {
        const bool hasPlace = place.getSourceIndex() != Tree::NO_SOURCE_INDEX;
        _result._problems.push_back(
            {hasPlace ? ovExport::findTextPosition(_text, place.getSourceIndex()).line : 0,
             _subject.empty() ? message : _subject + ": " + message});
    }
    return false;
}

void SetReader::_readSection(const Tree& root, StringView section, StringView kind,
                             const ReadEntry& readEntry) {
    const Tree* const entries = root.getMemberValue(section);
    if (!entries)
        return;
    _subject.clear();
    if (!entries->isArray()) {
        _refuse(*entries, fmt::format("\"{}\" is no array.", section));
        return;
    }
    std::set<String, std::less<>> names;
    for (unsigned int i = 0; i < entries->getArraySize(); ++i) {
        const Tree& entry = *entries->getArrayElement(i);
        const Tree* const name = entry.getMemberValue("name");
        _subject = fmt::format("{} {}", kind, i + 1);
        if (!name || !name->isString() || name->getValueAsStringView().empty()) {
            _refuse(entry, "it has no \"name\"; give it a text.");
            continue;
        }
        _subject = fmt::format("{} '{}'", kind, name->getValueAsStringView());
        if (names.insert(name->getValueAsString()).second)
            readEntry(name->getValueAsStringView(), entry);
        else
            _refuse(entry, "the name is given twice; this entry is left out.");
    }
    _subject.clear();
}

template <typename T>
bool SetReader::_readMembers(T& resource, const Tree& entry, ovMemory::BufferView<const SetMember<T>> members,
                             bool withContent) {
    bool isRight = true;
    for (const SetMember<T>& member : members) {
        const Tree* const value = entry.getMemberValue(member.name);
        if (!value || (member.isOfContent && !withContent))
            continue;
        const String expected = member.read(resource, *value);
        if (!expected.empty())
            isRight = _refuse(*value, fmt::format("\"{}\" is not {}.", member.name, expected));
    }
    return isRight;
}

template <typename T>
void SetReader::_load(T& resource, const Tree& entry) {
    if (_flagOf(entry, "loaded", true) && _loading && !resource.load())
        _refuse(entry, "it cannot be loaded; the log says why.");
}

StringView SetReader::_textOf(const Tree& entry, StringView member) {
    const Tree* const value = entry.getMemberValue(member);
    if (value && !value->isString())
        _refuse(*value, fmt::format("\"{}\" is no text.", member));
    return value ? value->getValueAsStringView() : StringView();
}

bool SetReader::_flagOf(const Tree& entry, StringView member, bool otherwise) {
    const Tree* const value = entry.getMemberValue(member);
    if (value && !value->isBool())
        _refuse(*value, fmt::format("\"{}\" is not true or false.", member));
    return value && value->isBool() ? value->getValueAsBool() : otherwise;
}

bool SetReader::_findBlock(const Tree* place, StringView member, const Tree& entry, SetBytes& bytes) {
    if (!place)
        return _refuse(entry, fmt::format("it has no \"{}\".", member));
    if (!_dataError.empty())
        return _refuse(*place, "its content is lost with the data of the set.");
    const String error = _data.find(*place, bytes);
    return error.empty() || _refuse(*place, fmt::format("\"{}\": {}.", member, error));
}

void SetReader::_readSampler(StringView name, const Tree& entry) {
    // Read aside first: what is wrong must not change a sampler that is there.
    if (!_readMembers(*Sampler::create(&_system), entry, samplerMembers(), true))
        return;
    Sampler* const sampler = _system.getSamplerManager()->createOrRetrieve(name);
    sampler->reset();
    _readMembers(*sampler, entry, samplerMembers(), true);
    _result._samplers.push_back(sampler);
    _load(*sampler, entry);
}

void SetReader::_readTexture(StringView name, const Tree& entry) {
    const bool hasFile = entry.getMemberValue("file") != nullptr;
    const auto aside = Texture::create(&_system);
    if (!_readMembers(*aside, entry, textureMembers(), !hasFile) || !_checkSize(*aside, entry) ||
        (!hasFile && !_readTexels(*aside, entry)))
        return;
    Texture* const texture = _system.getTextureManager()->createOrRetrieve(name);
    if (hasFile && !_readTextureFile(*texture, entry))
        return;
    if (!hasFile)
        texture->reset();
    _readMembers(*texture, entry, textureMembers(), !hasFile);
    if (!hasFile)
        _readTexels(*texture, entry);
    const StringView sampler = _textOf(entry, "sampler");
    texture->setSampler(_system.getSamplerManager()->get(sampler));
    if (!sampler.empty() && !texture->getSampler())
        _refuse(entry, fmt::format("there is no sampler '{}'; it is read with another.", sampler));
    _result._textures.push_back(texture);
    _load(*texture, entry);
    // On the device from now on, as models have it. What it does not give back stays for the next save.
    if (!texture->isUnloaded() && !TextureUtils::isFormatCompressed(texture->getFormat()))
        texture->dropCpuCopies();
}

bool SetReader::_readTextureFile(Texture& texture, const Tree& entry) {
    const Tree& file = *entry.getMemberValue("file");
    const String path = ovResources::pathInside(_folder, file.getValueAsStringView());
    if (path.empty())
        return _refuse(file,
                       fmt::format("the file '{}' does not lie inside the folder of the set; copy it there.",
                                   file.getValueAsStringView()));
    const Tree* const reading = entry.getMemberValue("reading");
    const auto how = reading ? ovMemory::enumFromText<TEXTURE_READING>(reading->getValueAsStringView())
                             : std::optional(TEXTURE_READING::AS_STORED);
    if (!how)
        return _refuse(*reading,
                       fmt::format("\"reading\" is not {}.", ovMemory::enumTexts<TEXTURE_READING>()));
    const ovMemory::Result read = texture.setFromFile(path, *how);
    return read || _refuse(file, read.error);
}

bool SetReader::_checkSize(const Texture& texture, const Tree& entry) {
    const std::size_t bytes =
        TextureUtils::getSliceSize(texture.getFormat(), texture.getWidth(), texture.getHeight()) *
        texture.getSliceCount() * (texture.getMultisampleQuality() + std::size_t{1});
    return bytes <= MAX_TEXTURE_BYTES ||
           _refuse(entry,
                   fmt::format("{} x {} texels of {} slices are more than the {} bytes that a texture of a "
                               "set may have.",
                               texture.getWidth(), texture.getHeight(), texture.getSliceCount(),
                               MAX_TEXTURE_BYTES));
}

bool SetReader::_readTexels(Texture& texture, const Tree& entry) {
    const Tree* const blocks = entry.getMemberValue("texels");
    const unsigned int count = blocks ? blocks->getArraySize() : 0;
    // Each block is compared with those before it, so a file must not have more than a texture has places.
    const std::size_t places = std::size_t{texture.getSliceCount()} * texture.getNeededMipsForSize();
    if (blocks && (!blocks->isArray() || count > std::max<std::size_t>(places, 1)))
        return _refuse(*blocks, "\"texels\" is no array with at most one block for each mip of each slice.");
    for (unsigned int i = 0; i < count; ++i) {
        const Tree& block = *blocks->getArrayElement(i);
        SetBytes bytes;
        std::array<unsigned int, 3> numbers{};
        constexpr std::array<StringView, 3> MEMBERS = {"slice", "mip", "rowPitch"};
        for (std::size_t n = 0; n < MEMBERS.size(); ++n) {
            const Tree* const number = block.getMemberValue(MEMBERS[n]);
            if (number && (!number->isValueTypeNumber() || number->getValueAsDouble() < 0.0))
                return _refuse(*number, fmt::format("\"{}\" is no whole number.", MEMBERS[n]));
            numbers[n] = number ? number->getValueAsUint() : 0;
        }
        if (!_findBlock(&block, "texels", entry, bytes))
            return false;
        texture.setCpuData(numbers[0], numbers[1], bytes, numbers[2]);
    }
    return true;
}

void SetReader::_readMesh(StringView name, const Tree& entry) {
    const auto aside = Mesh::create(&_system);
    if (!_readArrays(*aside, entry))
        return;
    Mesh* const mesh = _system.getMeshManager()->createOrRetrieve(name);
    mesh->reset();
    _readArrays(*mesh, entry);
    _result._meshes.push_back(mesh);
    _load(*mesh, entry);
}

bool SetReader::_readArrays(Mesh& mesh, const Tree& entry) {
    VertexComposition composition;
    const Tree* const attributes = entry.getMemberValue("attributes");
    for (unsigned int i = 0; attributes && i < attributes->getArraySize(); ++i) {
        const Tree& attribute = *attributes->getArrayElement(i);
        const auto format = ovMemory::enumFromText<FORMAT>(_textOf(attribute, "format"));
        if (!composition.addAttribute(_textOf(attribute, "name"), format.value_or(FORMAT::UNKNOWN)))
            return _refuse(attribute, fmt::format("attribute {} has no name of its own, or no format that "
                                                  "vertices can have.",
                                                  i + 1));
    }
    mesh.setVertexComposition(composition);
    const StringView topologyText = _textOf(entry, "topology");
    const auto topology = ovMemory::enumFromText<PRIMITIVE_TOPOLOGY>(topologyText);
    if (!topologyText.empty() && !topology)
        return _refuse(entry, fmt::format("\"topology\" is '{}', which is none.", topologyText));
    mesh.setTopology(topology.value_or(PRIMITIVE_TOPOLOGY::TRIANGLELIST));
    const Tree* const vertices = entry.getMemberValue("vertices");
    const Tree* const indices = entry.getMemberValue("indices");
    SetBytes bytes;
    if (vertices) {
        if (!_findBlock(vertices, "vertices", entry, bytes))
            return false;
        if (composition.getStride() == 0 || bytes.size() % composition.getStride() != 0)
            return _refuse(*vertices, fmt::format("{} bytes are no whole number of vertices of {} bytes.",
                                                  bytes.size(), composition.getStride()));
        mesh.setNewVertexArray({bytes.begin(), bytes.end()});
    }
    if (indices) {
        if (!_findBlock(indices, "indices", entry, bytes))
            return false;
        if (bytes.size() % sizeof(uint32_t) != 0)
            return _refuse(*indices, fmt::format("{} bytes are no whole number of indices.", bytes.size()));
        Buffer<uint32_t> numbers(bytes.size() / sizeof(uint32_t));
        if (!bytes.empty())
            std::memcpy(numbers.data(), bytes.data(), bytes.size());
        mesh.setNewIndexArray(std::move(numbers));
    }
    return true;
}

void SetReader::_readNode(StringView name, const Tree& entry) {
    Vector position;
    Vector scale(1.0f, 1.0f, 1.0f);
    Vector turn(0.0f, 0.0f, 0.0f, 1.0f);
    const std::pair<StringView, Vector*> vectors[] = {
        {"position", &position}, {"orientation", &turn}, {"scale", &scale}};
    for (const auto& [member, vector] : vectors) {
        const Tree* const value = entry.getMemberValue(member);
        if (value && !readVector(value, *vector)) {
            _refuse(*value, fmt::format("\"{}\" is no text such as \"Vec(0, 1, 0, 0)\".", member));
            return;
        }
    }
    ovMaths::Matrix matrix;
    const Tree* const rows = entry.getMemberValue("matrix");
    for (unsigned int i = 0; rows && i < 4; ++i) {
        Vector row;
        if (rows->getArraySize() != 4 || !readVector(rows->getArrayElement(i), row)) {
            _refuse(*rows, "\"matrix\" is not four rows such as \"Vec(1, 0, 0, 0)\".");
            return;
        }
        const float values[] = {row.x, row.y, row.z, row.w};
        std::copy_n(values, 4, matrix.m[i]);
    }
    Node* const node = _system.getNodeManager()->createOrRetrieve(name);
    node->reset();
    node->setPosition(position);
    node->setOrientation({turn.x, turn.y, turn.z, turn.w});
    node->setScale(scale);
    if (rows)
        node->setLocalMatrix(matrix);
    _result._nodes.push_back(node);
}

// Bottom up: hanging a node below another looks at all nodes above that one, so that a chain built from its
// top would cost the square of its length. Rings are found before, since a node refuses only the last link.
void SetReader::_hangNodes(const Tree& root) {
    const Tree* const entries = root.getMemberValue("nodes");
    std::map<StringView, int> places;
    for (std::size_t i = 0; i < _result._nodes.size(); ++i)
        places.emplace(_result._nodes[i]->getName(), static_cast<int>(i));
    Buffer<int> parents(_result._nodes.size(), -1);
    for (unsigned int i = 0; entries && i < entries->getArraySize(); ++i) {
        const Tree& entry = *entries->getArrayElement(i);
        const Tree* const name = entry.getMemberValue("name");
        const auto place = places.find(name ? name->getValueAsStringView() : StringView());
        if (place == places.end())
            continue;
        _subject = fmt::format("node '{}'", place->first);
        const StringView parent = _textOf(entry, "parent");
        const auto found = places.find(parent);
        if (found != places.end())
            parents[static_cast<std::size_t>(place->second)] = found->second;
        else if (!parent.empty())
            _refuse(entry, fmt::format("there is no node '{}' to hang it below.", parent));
    }
    const auto depths = depthsOf(parents);
    Buffer<std::size_t> order;
    for (std::size_t i = 0; i < parents.size(); ++i) {
        _subject = fmt::format("node '{}'", _result._nodes[i]->getName());
        if (!depths[i])
            _refuse(root, "it hangs below itself, and is left without a parent.");
        else if (parents[i] >= 0)
            order.push_back(i);
    }
    std::ranges::stable_sort(order, [&](std::size_t a, std::size_t b) { return *depths[a] > *depths[b]; });
    for (const std::size_t i : order)
        _result._nodes[i]->setParent(_result._nodes[static_cast<std::size_t>(parents[i])]);
    _subject.clear();
}

void SetReader::_readQueue(StringView name, const Tree& entry) {
    const Tree* const entities = entry.getMemberValue("entities");
    if (entities && !entities->isArray()) {
        _refuse(*entities, "\"entities\" is no array.");
        return;
    }
    RenderQueue* const queue = _system.getRenderQueueManager()->createOrRetrieve(name);
    queue->clearQueue();
    _result._queues.push_back(queue);
    for (unsigned int i = 0; entities && i < entities->getArraySize(); ++i)
        _readEntity(*queue, *entities->getArrayElement(i));
}

void SetReader::_readEntity(RenderQueue& queue, const Tree& entry) {
    if (!entry.isObject()) {
        _refuse(entry, "an entity is no object.");
        return;
    }
    const StringView meshName = _textOf(entry, "mesh");
    const StringView nodeName = _textOf(entry, "node");
    const StringView shaderName = _textOf(entry, "shader");
    Mesh* const mesh = _system.getMeshManager()->get(meshName);
    Node* const node = _system.getNodeManager()->get(nodeName);
    if (!mesh && !meshName.empty())
        _refuse(entry, fmt::format("there is no mesh '{}' for an entity.", meshName));
    if (!node && !nodeName.empty())
        _refuse(entry,
                fmt::format("there is no node '{}' for an entity; it stands at the origin.", nodeName));
    Shader* const shader = _system.getShaderManager()->get(shaderName);
    Entity* const entity = queue.addEntity(mesh, shader, node);
    entity->setVisible(_flagOf(entry, "visible", true));
    entity->setDoubleSided(_flagOf(entry, "doubleSided", false));
    if (!shader && !shaderName.empty())
        _result._entities.push_back({entity, String(shaderName)});
}

} // namespace ovGraphics::detail
