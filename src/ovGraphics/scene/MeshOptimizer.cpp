#include <ovGraphics/scene/MeshOptimizer.h>

#include <algorithm>
#include <meshoptimizer.h>

namespace ovGraphics {

using Bytes = ovMemory::Buffer<unsigned char>;
using Indices = ovMemory::Buffer<std::uint32_t>;

namespace {

constexpr unsigned int MAX_STRIDE = 256;
// How much worse the use of the vertex cache may become for less overdraw.
constexpr float OVERDRAW_THRESHOLD = 1.05f;
// About a second. The order for the vertex cache takes steps by the squares of the numbers of triangles that
// meet at each vertex: 36 a vertex usually, days where a million meet at one.
constexpr std::size_t MAX_CACHE_STEPS = 1'000'000'000;

bool isTriangleList(const VertexComposition& composition, const Bytes& vertices, const Indices& indices) {
    const unsigned int stride = composition.getStride();
    if (stride == 0 || stride > MAX_STRIDE || vertices.size() % stride != 0)
        return false;
    const std::size_t vertexCount = vertices.size() / stride;
    const std::size_t cornerCount = indices.empty() ? vertexCount : indices.size();
    return cornerCount % 3 == 0 && std::all_of(indices.begin(), indices.end(),
                                               [&](std::uint32_t index) { return index < vertexCount; });
}

// Keeps one of equal vertices, and those only that are used.
void dropDoubles(unsigned int stride, Bytes& vertices, Indices& indices) {
    const std::size_t vertexCount = vertices.size() / stride;
    const std::size_t cornerCount = indices.empty() ? vertexCount : indices.size();
    const unsigned int* used = indices.empty() ? nullptr : indices.data();
    Indices remap(vertexCount);
    const std::size_t uniqueCount =
        meshopt_generateVertexRemap(remap.data(), used, cornerCount, vertices.data(), vertexCount, stride);
    Indices newIndices(cornerCount);
    meshopt_remapIndexBuffer(newIndices.data(), used, cornerCount, remap.data());
    Bytes newVertices(uniqueCount * stride);
    meshopt_remapVertexBuffer(newVertices.data(), vertices.data(), vertexCount, stride, remap.data());
    vertices = std::move(newVertices);
    indices = std::move(newIndices);
}

bool isCacheOrderAffordable(const Indices& indices, std::size_t vertexCount) {
    ovMemory::Buffer<std::size_t> triangleCounts(vertexCount);
    std::size_t steps = 0;
    for (const std::uint32_t index : indices)
        steps += 2 * triangleCounts[index]++ + 1; // the squares, one by one
    return steps <= MAX_CACHE_STEPS;
}

// Positions as floats, if the vertices have them in that form.
const VertexAttribute* findPositions(const VertexComposition& composition) {
    const VertexAttribute* position = composition.find("POSITION");
    const bool usable = position && (position->format == FORMAT::R32G32B32_FLOAT ||
                                     position->format == FORMAT::R32G32B32A32_FLOAT);
    return usable ? position : nullptr;
}

} // namespace

bool optimizeMesh(const VertexComposition& composition, Bytes& vertices, Indices& indices) {
    if (!isTriangleList(composition, vertices, indices))
        return false;
    const unsigned int stride = composition.getStride();
    // The order is meshoptimizer's own recommendation: doubles first, then triangles for the cache and
    // against overdraw, and vertices last, in the order in which the triangles meet them.
    dropDoubles(stride, vertices, indices);
    if (indices.empty())
        return true;
    const std::size_t vertexCount = vertices.size() / stride;
    if (isCacheOrderAffordable(indices, vertexCount))
        meshopt_optimizeVertexCache(indices.data(), indices.data(), indices.size(), vertexCount);
    if (const VertexAttribute* position = findPositions(composition)) {
        const auto* positions = reinterpret_cast<const float*>(vertices.data() + position->offset);
        meshopt_optimizeOverdraw(indices.data(), indices.data(), indices.size(), positions, vertexCount,
                                 stride, OVERDRAW_THRESHOLD);
    }
    meshopt_optimizeVertexFetch(vertices.data(), indices.data(), indices.size(), vertices.data(), vertexCount,
                                stride);
    return true;
}

} // namespace ovGraphics
