#include <cstring>
#include <ovGraphics/scene/Mesh.h>
#include <ovVeldris/scripts/commonWrap/Elements.h>
#include <ovVeldris/scripts/graphicsWrap/GraphicsTypes.h>
#include <ovVeldris/scripts/graphicsWrap/MeshWrappers.h>
#include <ovVeldris/scripts/memoryWrap/MemoryTypeNames.h>

namespace ovGraphicsWrap {

using ovGraphics::Mesh;
using ovGraphics::VertexAttribute;
using ovGraphics::VertexComposition;
using ovMemoryWrap::ByteBuffer;
using Components = ovMemory::Buffer<VertexAttribute>;

namespace {

// Copies: the mesh frees its arrays whenever it takes new ones, also while a script looks at them.
template <typename T>
ByteBuffer bytesOf(const ovMemory::Buffer<T>& elements) {
    const auto* first = reinterpret_cast<const unsigned char*>(elements.data());
    return {first, first + elements.size() * sizeof(T)};
}

void setIndices(Mesh& mesh, const ByteBuffer& bytes) {
    ovMemory::Buffer<uint32_t> indices(bytes.size() / sizeof(uint32_t));
    if (indices.size() * sizeof(uint32_t) != bytes.size())
        throw ovCommonWrap::ArgumentError("argument 2 expected indices of 4 bytes each, got " +
                                          std::to_string(bytes.size()) + " bytes");
    if (!indices.empty())
        std::memcpy(indices.data(), bytes.data(), bytes.size());
    mesh.setNewIndexArray(std::move(indices));
}

void addArrays(ovScripts::UserType& type) {
    method(
        type, "fillPackedFromUnpacked",
        [](Mesh& self, const ovMemory::BufferView<ovMaths::Vector>& values) {
            return self.fillPackedFromUnpacked(values);
        },
        {"values"},
        "Packs the new vertices from one vector for each component of each vertex; false when they are not "
        "a whole number of vertices.");
    method(
        type, "getNewVertexArray", [](Mesh& self) { return bytesOf(self.getNewVertexArray()); }, {},
        "A copy of the vertices that the next load() uploads.");
    method(
        type, "getCurrentVertexArray", [](Mesh& self) { return bytesOf(self.getCurrentVertexArray()); }, {},
        "A copy of the vertices that the last load() uploaded.");
    method(
        type, "getNewIndexArray", [](Mesh& self) { return bytesOf(self.getNewIndexArray()); }, {},
        "A copy of the indices that the next load() uploads, 4 bytes each.");
    method(
        type, "getCurrentIndexArray", [](Mesh& self) { return bytesOf(self.getCurrentIndexArray()); }, {},
        "A copy of the indices that the last load() uploaded, 4 bytes each.");
    method(type, "setNewVertexArray", &Mesh::setNewVertexArray, {"vertices"},
           "The vertices that the next load() uploads, as the composition lays them out.");
    method(type, "setNewIndexArray", &setIndices, {"indices"},
           "The indices that the next load() uploads, 4 bytes each.");
}

} // namespace

void MeshWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = deviceTypeOf<Mesh>(environment);
    property<Mesh>(type, "vertexComposition", &Mesh::getVertexComposition, &Mesh::setVertexComposition);
    readOnlyProperty<Mesh>(type, "vertexCount", &Mesh::getVertexCount);
    readOnlyProperty<Mesh>(type, "indexCount", &Mesh::getIndexCount);
    property<Mesh>(type, "hidden", &Mesh::getHidden, &Mesh::setHidden);
    addLoadState<Mesh>(type);
    addName<Mesh>(type);
    addLoading<Mesh>(type);
    addArrays(type);
    method(type, "getTopology", &Mesh::getTopology, {}, "A PRIMITIVE_TOPOLOGY.");
    method(type, "setTopology", &Mesh::setTopology, {"topology"}, "A PRIMITIVE_TOPOLOGY.");
    method(type, "getBoundingBox", &Mesh::getBoundingBox, {}, "Around the positions of the loaded vertices.");
}

void VertexComponentWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<VertexAttribute>(environment);
    type.setHelp("One named value of a vertex.");
    ovCommonWrap::destructible<VertexAttribute>(type);
    readOnlyField(type, "name", &VertexAttribute::name);
    readOnlyField(type, "format", &VertexAttribute::format);
    readOnlyField(type, "offset", &VertexAttribute::offset);
}

void VertexComponentArrayWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<Components>(environment);
    type.setHelp("The components of a vertex in the order of memory; the first is number 0.");
    ovCommonWrap::destructible<Components>(type);
    method(
        type, "getSize", [](Components& self) { return self.size(); }, {}, "Count of the components.");
    method(
        type, "getData",
        [](Components& self, std::size_t index) {
            ovCommonWrap::checkIndex(index, self.size());
            return self[index];
        },
        {"index"}, "The component of a number; the first is 0. Past the end an error.");
}

void VertexCompositionWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<VertexComposition>(environment);
    type.setHelp("What the vertices of a mesh are made of.");
    ovCommonWrap::constructible<VertexComposition>(type);
    method(type, "addAttribute", &VertexComposition::addAttribute, {"name", "format"},
           "Appends a component; false for a name that is taken and a format that vertices cannot have.");
    method(type, "getAttributeCount", &VertexComposition::getAttributeCount, {}, "Count of the components.");
    method(
        type, "getComponents",
        [](VertexComposition& self) {
            Components components;
            for (unsigned int i = 0; i < self.getAttributeCount(); ++i)
                components.push_back(self.getAttribute(i));
            return components;
        },
        {}, "A copy of the components.");
    method(
        type, "find",
        [](VertexComposition& self, ovMemory::StringView name) -> std::optional<VertexAttribute> {
            const VertexAttribute* component = self.find(name);
            return component ? std::optional(*component) : std::nullopt;
        },
        {"name"}, "The component of a name, or nil.");
    method(type, "getStride", &VertexComposition::getStride, {}, "Bytes from one vertex to the next.");
}

} // namespace ovGraphicsWrap
