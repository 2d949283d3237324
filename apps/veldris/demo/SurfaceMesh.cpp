#include <veldris/demo/SurfaceMesh.h>

#include <ovGraphics/scene/Mesh.h>

namespace veldris {

using ovMaths::Vector;

namespace {

constexpr unsigned int VECTORS_OF_A_CORNER = 3;

Vector normalAt(const SurfaceMesh::Surface& surface, float u, float v, float stepU, float stepV) {
    const Vector alongU = surface(u + stepU, v) - surface(u - stepU, v);
    const Vector alongV = surface(u, v + stepV) - surface(u, v - stepV);
    return Vector::crossVec3(alongU, alongV).getNormalizedVec3();
}

} // namespace

void SurfaceMesh::addTriangles(ovMemory::BufferView<const SurfaceCorner> corners,
                               ovMemory::BufferView<const uint32_t> indices) {
    const auto first = static_cast<uint32_t>(_vertices.size() / VECTORS_OF_A_CORNER);
    for (const SurfaceCorner& corner : corners)
        _vertices.insert(_vertices.end(), {corner.position, corner.normal, corner.texture});
    for (const uint32_t index : indices)
        _indices.push_back(first + index);
}

void SurfaceMesh::addGrid(unsigned int columns, unsigned int rows, const Surface& surface,
                          const Surface& texture) {
    const float stepU = 0.5f / static_cast<float>(columns - 1);
    const float stepV = 0.5f / static_cast<float>(rows - 1);
    ovMemory::Buffer<SurfaceCorner> corners;
    ovMemory::Buffer<uint32_t> indices;
    for (unsigned int row = 0; row < rows; ++row) {
        for (unsigned int column = 0; column < columns; ++column) {
            const float u = 2.0f * stepU * static_cast<float>(column);
            const float v = 2.0f * stepV * static_cast<float>(row);
            corners.push_back({surface(u, v), normalAt(surface, u, v, stepU, stepV),
                               texture ? texture(u, v) : Vector(u, v)});
            if (column + 1 == columns || row + 1 == rows)
                continue;
            const uint32_t topLeft = row * columns + column;
            const uint32_t bottomLeft = topLeft + columns;
            indices.insert(indices.end(),
                           {topLeft, topLeft + 1, bottomLeft + 1, topLeft, bottomLeft + 1, bottomLeft});
        }
    }
    addTriangles(corners, indices);
}

ovMemory::UniquePtr<ovGraphics::Mesh> SurfaceMesh::make(ovGraphics::System& graphics,
                                                        ovMemory::StringView name) {
    ovGraphics::VertexComposition composition;
    composition.addAttribute("POSITION", ovGraphics::FORMAT::R32G32B32_FLOAT);
    composition.addAttribute("NORMAL", ovGraphics::FORMAT::R32G32B32_FLOAT);
    composition.addAttribute("TEXCOORD", ovGraphics::FORMAT::R32G32_FLOAT);
    auto mesh = ovGraphics::Mesh::create(&graphics);
    mesh->setName(name);
    mesh->setVertexComposition(composition);
    mesh->fillPackedFromUnpacked(_vertices);
    mesh->setNewIndexArray(std::move(_indices));
    return mesh->load() ? std::move(mesh) : nullptr;
}

} // namespace veldris
