#include <ovVeldris/content/detail/ModelMeshes.h>

#include <cstring>
#include <numeric>
#include <ovGraphics/scene/Mesh.h>

namespace ovVeldris::detail {

using ovGraphics::GltfPrimitive;

namespace {

using Bytes = ovMemory::Buffer<unsigned char>;
using Indices = ovMemory::Buffer<uint32_t>;

/// Turns the normals of the vertices from a byte on around.
void turnNormals(const ovGraphics::VertexComposition& composition, Bytes& vertices, std::size_t from) {
    const ovGraphics::VertexAttribute* normal = composition.find("NORMAL");
    if (!normal)
        return;
    for (std::size_t at = from + normal->offset; at < vertices.size(); at += composition.getStride()) {
        float values[3];
        std::memcpy(values, &vertices[at], sizeof(values));
        for (float& value : values)
            value = -value;
        std::memcpy(&vertices[at], values, sizeof(values));
    }
}

/// Adds every triangle once more, seen from behind.
// Back faces as triangles of their own: a shader does not know which side it draws, and a pixel's normal must
// look at the viewer to be lit.
void addBackFaces(const GltfPrimitive& primitive, Bytes& vertices, Indices& indices) {
    if (indices.empty()) {
        indices.resize(primitive.vertexCount);
        std::iota(indices.begin(), indices.end(), 0u);
    }
    const std::size_t fronts = vertices.size();
    vertices.insert(vertices.end(), primitive.vertices.begin(), primitive.vertices.end());
    turnNormals(primitive.composition, vertices, fronts);
    const std::size_t count = indices.size();
    indices.reserve(2 * count);
    for (std::size_t i = 0; i + 2 < count; i += 3) {
        // Two corners change places, so that the new triangle is a front seen from behind.
        for (const std::size_t corner : {i, i + 2, i + 1})
            indices.push_back(indices[corner] + primitive.vertexCount);
    }
}

} // namespace

ovMemory::UniquePtr<ovGraphics::Mesh> makeMesh(ovGraphics::System& graphics, const GltfPrimitive& primitive,
                                               ovMemory::StringView name, bool doubleSided) {
    Bytes vertices = primitive.vertices;
    Indices indices = primitive.indices;
    if (doubleSided && primitive.topology == ovGraphics::PRIMITIVE_TOPOLOGY::TRIANGLELIST)
        addBackFaces(primitive, vertices, indices);
    auto mesh = ovGraphics::Mesh::create(&graphics);
    mesh->setName(name);
    mesh->setVertexComposition(primitive.composition);
    mesh->setTopology(primitive.topology);
    mesh->setNewVertexArray(std::move(vertices));
    mesh->setNewIndexArray(std::move(indices));
    return mesh->load() ? std::move(mesh) : nullptr;
}

} // namespace ovVeldris::detail
