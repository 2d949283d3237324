#include <ovGraphics/scene/Mesh.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovGraphics/resources/ProgramLibrary.h>
#include <ovGraphics/scene/VertexPacking.h>
#include <utility>

namespace ovGraphics {

namespace {

constexpr uint32_t STRIP_CUT = std::numeric_limits<uint32_t>::max();
constexpr std::size_t MAX_SHORT_VERTICES = std::numeric_limits<uint16_t>::max(); // the last index cuts strips
constexpr unsigned int ROW_SIZE = 16;                                            // bytes: four floats

bool isStrip(PRIMITIVE_TOPOLOGY topology) {
    return topology == PRIMITIVE_TOPOLOGY::LINESTRIP || topology == PRIMITIVE_TOPOLOGY::TRIANGLESTRIP ||
           topology == PRIMITIVE_TOPOLOGY::LINESTRIP_ADJ || topology == PRIMITIVE_TOPOLOGY::TRIANGLESTRIP_ADJ;
}

bool isDrawable(PRIMITIVE_TOPOLOGY topology) {
    return topology >= PRIMITIVE_TOPOLOGY::POINTLIST && topology <= PRIMITIVE_TOPOLOGY::TRIANGLESTRIP_ADJ;
}

template <typename T>
ovMemory::BufferView<const unsigned char> bytesOf(const ovMemory::Buffer<T>& values) {
    return {reinterpret_cast<const unsigned char*>(values.data()), values.size() * sizeof(T)};
}

template <typename T>
ovMemory::UniquePtr<device::GpuBuffer> uploaded(device::Device& device, device::BUFFER_USAGE usage,
                                                const ovMemory::Buffer<T>& values, ovMemory::String& error) {
    const auto bytes = bytesOf(values);
    auto buffer = device.createBuffer(static_cast<unsigned int>(bytes.size()), usage, error);
    if (buffer)
        device.updateBuffer(*buffer, 0, bytes);
    return buffer;
}

/// Two bits for each slot; the first slot is marked by its place.
// One number to compare for each draw. Programs of equal inputs share a vertex array, so a mesh has few.
uint64_t keyOf(const LoadedProgram& program, InstanceSlots slots) {
    uint64_t order = 1;
    for (const auto& slot : slots)
        order = order << 2 | static_cast<uint64_t>(slot->getValue());
    return order << 32 | program.inputLayout;
}

/// The place of the attribute of an instance in the data that the slots describe; nothing for other names.
std::optional<unsigned int> instanceOffset(ovMemory::StringView attribute, InstanceSlots slots) {
    for (unsigned int slot = 0; slot < slots.size(); ++slot) {
        for (unsigned int row = 0; row < ShaderInstanceMemorySlot::ROW_COUNT; ++row) {
            if (attribute == ShaderInstanceMemorySlot::getAttributeName(slots[slot]->getValue(), row))
                return (slot * ShaderInstanceMemorySlot::ROW_COUNT + row) * ROW_SIZE;
        }
    }
    return std::nullopt;
}

} // namespace

ovMemory::UniquePtr<Mesh> Mesh::create(System* system) {
    return std::make_unique<Mesh>(system);
}

Mesh::Mesh(System* system)
    : Resource(system, "mesh") {}

Mesh::~Mesh() {
    _noteSceneChange();
}

void Mesh::setVertexComposition(const VertexComposition& composition) {
    _composition = composition;
    _settingChanged();
}

void Mesh::setTopology(PRIMITIVE_TOPOLOGY topology) {
    _topology = topology;
    _settingChanged();
}

void Mesh::setNewVertexArray(ovMemory::Buffer<unsigned char> vertices) {
    _newVertices = std::move(vertices);
    _settingChanged();
}

void Mesh::setNewIndexArray(ovMemory::Buffer<uint32_t> indices) {
    _newIndices = std::move(indices);
    _settingChanged();
}

bool Mesh::fillPackedFromUnpacked(ovMemory::BufferView<const ovMaths::Vector> values) {
    const unsigned int attributes = _composition.getAttributeCount();
    if (attributes == 0 || values.size() % attributes != 0)
        return false;
    setNewVertexArray(packVertices(_composition, values));
    return true;
}

bool Mesh::updateVertices(unsigned int firstVertex, ovMemory::BufferView<const unsigned char> vertices) {
    ovMemory::String error = _reasonNotToUpdate(firstVertex, vertices.size());
    const auto size = static_cast<unsigned int>(vertices.size());
    ovMemory::UniquePtr<device::GpuBuffer> staging;
    if (error.empty() && size == 0)
        return true;
    if (error.empty())
        staging = getSystem()->getDevice()->createBuffer(size, device::BUFFER_USAGE::VERTICES, error);
    if (!staging) {
        _logFailure("update vertices of", error);
        return false;
    }
    const unsigned int offset = firstVertex * _composition.getStride();
    // By way of another buffer: the device copies in the order of its work, so that an upload need not wait
    // for the frames that still read the vertices.
    device::Device& device = *getSystem()->getDevice();
    device.updateBuffer(*staging, 0, vertices);
    device.copyBuffer(*staging, 0, *_vertexBuffer, offset, size);
    if (_copiesAreDropped) {
        _addToBoundingBox(vertices);
    } else {
        std::copy(vertices.begin(), vertices.end(), _vertices.begin() + static_cast<std::ptrdiff_t>(offset));
        _boundingBox = {};
        _addToBoundingBox(_vertices);
    }
    _noteSceneChange();
    return true;
}

ovMemory::String Mesh::_reasonNotToUpdate(unsigned int firstVertex, std::size_t bytes) const {
    if (!_vertexBuffer)
        return "it is not loaded; load it first.";
    const unsigned int stride = _composition.getStride();
    if (std::size_t{_vertexCount} * stride != _vertexBuffer->getSize())
        return "its vertex composition was changed after it was loaded; load it first.";
    if (bytes % stride != 0)
        return std::to_string(bytes) + " bytes were given, no whole number of " + std::to_string(stride) +
               " bytes, the size of a vertex of its composition.";
    if (firstVertex > _vertexCount || bytes / stride > _vertexCount - firstVertex)
        return std::to_string(bytes / stride) + " vertices from vertex " + std::to_string(firstVertex) +
               " on were given, and it has " + std::to_string(_vertexCount) + ".";
    return {};
}

bool Mesh::dropCpuCopies() {
    if (!_vertexBuffer) {
        _logFailure("drop the CPU copies of", "it is not loaded, and they are all there is; load it first.");
        return false;
    }
    _vertices = {};
    _indices = {};
    _copiesAreDropped = true;
    return true;
}

void Mesh::reset() {
    Resource::reset();
    _composition = {};
    _topology = PRIMITIVE_TOPOLOGY::TRIANGLELIST;
    _newVertices.clear();
    _vertices.clear();
    _newIndices.clear();
    _indices.clear();
    _vertexCount = _indexCount = 0;
    _copiesAreDropped = false;
    _boundingBox = {};
}

bool Mesh::_load(ovMemory::String& error) {
    device::Device* device = _getDevice(error);
    if (!device)
        return false;
    _takeNewArrays();
    if (!_check(error) || !_upload(*device, error))
        return false;
    _boundingBox = {};
    _addToBoundingBox(_vertices);
    _noteSceneChange();
    return true;
}

void Mesh::_takeNewArrays() {
    // The current arrays stay then: a system that was shut down can load its meshes again.
    if (_newVertices.empty() && _newIndices.empty())
        return;
    if (!_newVertices.empty()) {
        _vertices = std::exchange(_newVertices, {});
        _copiesAreDropped = false;
        _indices.clear(); // those of other vertices
    }
    if (!_newIndices.empty())
        _indices = std::exchange(_newIndices, {});
}

bool Mesh::_check(ovMemory::String& error) const {
    const unsigned int stride = _composition.getStride();
    if (stride == 0)
        error = "it has no vertex composition; call Mesh::setVertexComposition first.";
    else if (_copiesAreDropped)
        error = "its arrays were dropped by Mesh::dropCpuCopies; call Mesh::setNewVertexArray first.";
    else if (_vertices.empty())
        error = "it has no vertices; call Mesh::setNewVertexArray first.";
    else if (_vertices.size() % stride != 0)
        error = "its vertices are " + std::to_string(_vertices.size()) + " bytes, no whole number of " +
                std::to_string(stride) + " bytes, the size of a vertex of its composition.";
    else if (std::max(_vertices.size(), _indices.size() * sizeof(uint32_t)) >
             static_cast<std::size_t>(std::numeric_limits<int>::max()))
        error = "its arrays are larger than the 2 GiB that a buffer of a device may have; split the mesh.";
    else if (!isDrawable(_topology))
        error = "its topology " + std::to_string(static_cast<unsigned int>(_topology)) +
                " is not offered; points, lines, triangles and their strips are.";
    if (!error.empty())
        return false;
    const std::size_t vertexCount = _vertices.size() / stride;
    const bool strip = isStrip(_topology);
    // Checked once at loading: an index beyond the vertices makes drivers without robust access read foreign
    // memory.
    const auto wrong = std::find_if(_indices.begin(), _indices.end(), [&](uint32_t index) {
        return index >= vertexCount && !(strip && index == STRIP_CUT);
    });
    if (wrong == _indices.end())
        return true;
    error = "index " + std::to_string(wrong - _indices.begin()) + " names vertex " + std::to_string(*wrong) +
            " of " + std::to_string(vertexCount) + ".";
    return false;
}

bool Mesh::_upload(device::Device& device, ovMemory::String& error) {
    _vertexCount = static_cast<unsigned int>(_vertices.size() / _composition.getStride());
    _indexCount = static_cast<unsigned int>(_indices.size());
    _vertexBuffer = uploaded(device, device::BUFFER_USAGE::VERTICES, _vertices, error);
    if (!_vertexBuffer || _indices.empty())
        return _vertexBuffer != nullptr;
    // Half the memory and bandwidth, for nearly every mesh.
    _shortIndices = getVertexCount() <= MAX_SHORT_VERTICES;
    if (_shortIndices) {
        ovMemory::Buffer<uint16_t> shortened(_indices.size());
        std::transform(_indices.begin(), _indices.end(), shortened.begin(),
                       [](uint32_t index) { return static_cast<uint16_t>(index); });
        _indexBuffer = uploaded(device, device::BUFFER_USAGE::INDICES, shortened, error);
    } else {
        _indexBuffer = uploaded(device, device::BUFFER_USAGE::INDICES, _indices, error);
    }
    return _indexBuffer != nullptr;
}

void Mesh::_addToBoundingBox(ovMemory::BufferView<const unsigned char> vertices) {
    const VertexAttribute* position = _composition.find("POSITION");
    if (!position ||
        (position->format != FORMAT::R32G32B32_FLOAT && position->format != FORMAT::R32G32B32A32_FLOAT))
        return;
    for (std::size_t at = position->offset; at < vertices.size(); at += _composition.getStride()) {
        float values[3];
        std::memcpy(values, &vertices[at], sizeof(values));
        _boundingBox.add({values[0], values[1], values[2]});
    }
}

void Mesh::_unload() {
    _noteSceneChange();
    _geometries.clear();
    _vertexBuffer.reset();
    _indexBuffer.reset();
}

device::GpuGeometry* Mesh::getGeometry(const LoadedProgram& program, InstanceSlots slots) {
    if (!_vertexBuffer)
        return nullptr;
    const uint64_t key = keyOf(program, slots);
    for (const Geometry& geometry : _geometries) {
        if (geometry.key == key)
            return geometry.gpuGeometry.get();
    }
    return _geometries.emplace_back(Geometry{key, _createGeometry(program, slots)}).gpuGeometry.get();
}

ovMemory::UniquePtr<device::GpuGeometry> Mesh::_createGeometry(const LoadedProgram& program,
                                                               InstanceSlots slots) const {
    device::GeometryDesc desc{
        _vertexBuffer.get(), _composition.getStride(), {}, _indexBuffer.get(), _shortIndices, {}};
    for (const shading::AttributeInfo& wanted : program.compiled.attributes) {
        // An instance's data wins over a vertex attribute of the same name.
        if (const auto offset = instanceOffset(wanted.name, slots))
            desc.instanceAttributes.push_back({wanted.location, FORMAT::R32G32B32A32_FLOAT, *offset});
        else if (const VertexAttribute* own = _composition.find(wanted.name))
            desc.attributes.push_back({wanted.location, own->format, own->offset});
    }
    ovMemory::String error;
    auto geometry = getSystem()->getDevice()->createGeometry(desc, error);
    if (!geometry)
        _logFailure("draw", error);
    return geometry;
}

} // namespace ovGraphics
