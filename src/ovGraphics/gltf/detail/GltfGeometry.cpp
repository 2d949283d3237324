#include <ovGraphics/gltf/detail/GltfGeometry.h>

#include <cmath>
#include <cstring>
#include <ovGraphics/gltf/detail/GltfSpace.h>

namespace ovGraphics::detail {

using ovMaths::Vector;
using ovMemory::Buffer;

namespace {

using Indices = Buffer<std::uint32_t>;

const Vector NO_NORMAL{0.0f, 0.0f, 1.0f};

bool isFinite(const Vector& vector) {
    return std::isfinite(vector.x) && std::isfinite(vector.y) && std::isfinite(vector.z);
}

// Every second triangle of a strip runs the other way, so two corners change places there. Triangles that use
// an index twice only join the parts of a strip.
Indices listOfStrip(const Indices& strip) {
    Indices list;
    for (std::size_t i = 0; i + 2 < strip.size(); ++i) {
        const std::size_t odd = i % 2;
        const std::uint32_t a = strip[i];
        const std::uint32_t b = strip[i + 1 + odd];
        const std::uint32_t c = strip[i + 2 - odd];
        if (a != b && b != c && c != a)
            list.insert(list.end(), {a, b, c});
    }
    return list;
}

Indices listOfFan(const Indices& fan) {
    Indices list;
    for (std::size_t i = 0; i + 2 < fan.size(); ++i)
        list.insert(list.end(), {fan[i + 1], fan[i + 2], fan[0]});
    return list;
}

// Corners that make up one element that can be left out.
std::size_t cornersOf(PRIMITIVE_TOPOLOGY topology) {
    if (topology == PRIMITIVE_TOPOLOGY::TRIANGLELIST)
        return 3;
    return topology == PRIMITIVE_TOPOLOGY::LINELIST ? 2 : 1;
}

Vector planeOf(const GltfGeometry& geometry, std::size_t firstIndex) {
    const Vector& a = geometry.positions[geometry.indices[firstIndex]];
    const Vector& b = geometry.positions[geometry.indices[firstIndex + 1]];
    const Vector& c = geometry.positions[geometry.indices[firstIndex + 2]];
    return Vector::crossVec3(b - a, c - a);
}

void splitValues(const Indices& indices, Buffer<Vector>& values) {
    if (values.empty())
        return;
    Buffer<Vector> split;
    split.reserve(indices.size());
    for (const std::uint32_t index : indices)
        split.push_back(values[index]);
    values = std::move(split);
}

// Appends numbers to packed vertices. Zeros lose their sign, so that equal vertices are equal bytes.
class Packer {
public:
    explicit Packer(Buffer<unsigned char>& bytes)
        : _bytes(bytes) {}

    void add(const Vector& vector, int components) {
        const float values[3] = {vector.x, vector.y, vector.z};
        for (int i = 0; i < components; ++i) {
            // Adding zero turns -0 into 0. Both are equal as numbers, but the optimiser compares bytes when
            // it joins vertices.
            const float value = std::isfinite(values[i]) ? values[i] + 0.0f : 0.0f;
            const auto* begin = reinterpret_cast<const unsigned char*>(&value);
            _bytes.insert(_bytes.end(), begin, begin + sizeof(float));
        }
    }

private:
    Buffer<unsigned char>& _bytes;
};

void packVertices(const GltfGeometry& geometry, GltfPrimitive& primitive) {
    primitive.vertices.reserve(geometry.positions.size() * primitive.composition.getStride());
    Packer packer(primitive.vertices);
    for (std::size_t i = 0; i < geometry.positions.size(); ++i) {
        packer.add(mirrorGltf(geometry.positions[i]), 3);
        if (!geometry.normals.empty())
            packer.add(mirrorGltf(geometry.normals[i]), 3);
        if (!geometry.uvs.empty())
            packer.add(geometry.uvs[i], 2);
        if (geometry.tangents.empty())
            continue;
        Vector tangent = geometry.tangents[i].getNormalizedVec3();
        Vector binormal = Vector::crossVec3(geometry.normals[i], tangent).getNormalizedVec3();
        // The file's tangent runs along the normal, or is zero: any frame is better than one that collapses.
        if (binormal == Vector()) {
            tangent = perpendicularTo(geometry.normals[i]);
            binormal = Vector::crossVec3(geometry.normals[i], tangent);
        }
        packer.add(mirrorGltf(tangent), 3);
        // The cross product is taken before the mirror. Taken afterwards it would point the other way, as
        // mirrors turn cross products over.
        packer.add(mirrorGltf(geometry.tangents[i].w < 0.0f ? -binormal : binormal), 3);
    }
}

// The same triangles seen from the other side (GltfSpace.h).
Indices turnedTriangles(Indices indices) {
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3)
        std::swap(indices[i + 1], indices[i + 2]);
    return indices;
}

bool isSequence(const Indices& indices, std::size_t vertexCount) {
    if (indices.size() != vertexCount)
        return false;
    for (std::size_t i = 0; i < indices.size(); ++i)
        if (indices[i] != i)
            return false;
    return true;
}

} // namespace

void setGltfTopology(GLTF_MODE mode, GltfGeometry& geometry) {
    Indices& indices = geometry.indices;
    switch (mode) {
    case GLTF_MODE::POINTS:
        geometry.topology = PRIMITIVE_TOPOLOGY::POINTLIST;
        break;
    case GLTF_MODE::LINES:
        geometry.topology = PRIMITIVE_TOPOLOGY::LINELIST;
        break;
    case GLTF_MODE::LINE_LOOP:
        if (indices.size() > 1)
            indices.push_back(indices.front());
        [[fallthrough]];
    case GLTF_MODE::LINE_STRIP:
        geometry.topology = PRIMITIVE_TOPOLOGY::LINESTRIP;
        // One point makes no line.
        if (indices.size() == 1)
            indices.clear();
        break;
    case GLTF_MODE::TRIANGLES:
    case GLTF_MODE::TRIANGLE_STRIP:
    case GLTF_MODE::TRIANGLE_FAN:
        geometry.topology = PRIMITIVE_TOPOLOGY::TRIANGLELIST;
        if (mode != GLTF_MODE::TRIANGLES)
            indices = mode == GLTF_MODE::TRIANGLE_STRIP ? listOfStrip(indices) : listOfFan(indices);
        break;
    }
    indices.resize(indices.size() - indices.size() % cornersOf(geometry.topology));
}

std::size_t dropNonFinitePositions(GltfGeometry& geometry) {
    Buffer<char> bad(geometry.positions.size(), 0);
    std::size_t count = 0;
    for (std::size_t i = 0; i < bad.size(); ++i) {
        if (isFinite(geometry.positions[i]))
            continue;
        bad[i] = 1;
        // The vertex stays, so that the other indices stay valid; nothing touches it any more.
        geometry.positions[i] = Vector();
        ++count;
    }
    if (count == 0)
        return 0;
    const std::size_t corners = cornersOf(geometry.topology);
    Indices kept;
    for (std::size_t i = 0; i + corners <= geometry.indices.size(); i += corners) {
        bool whole = true;
        for (std::size_t corner = 0; corner < corners; ++corner)
            whole = whole && !bad[geometry.indices[i + corner]];
        for (std::size_t corner = 0; whole && corner < corners; ++corner)
            kept.push_back(geometry.indices[i + corner]);
    }
    geometry.indices = std::move(kept);
    return count;
}

void splitGltfCorners(GltfGeometry& geometry) {
    for (Buffer<Vector>* values : {&geometry.positions, &geometry.normals, &geometry.uvs, &geometry.tangents})
        splitValues(geometry.indices, *values);
    for (std::size_t i = 0; i < geometry.indices.size(); ++i)
        geometry.indices[i] = static_cast<std::uint32_t>(i);
}

void makeFlatNormals(GltfGeometry& geometry) {
    geometry.normals.assign(geometry.positions.size(), NO_NORMAL);
    for (std::size_t i = 0; i + 2 < geometry.indices.size(); i += 3) {
        const Vector normal = planeOf(geometry, i).getNormalizedVec3();
        if (normal == Vector())
            continue;
        for (std::size_t corner = i; corner < i + 3; ++corner)
            geometry.normals[geometry.indices[corner]] = normal;
    }
}

std::size_t repairNormals(GltfGeometry& geometry) {
    Buffer<char> bad(geometry.normals.size(), 0);
    std::size_t count = 0;
    for (std::size_t i = 0; i < bad.size(); ++i) {
        geometry.normals[i] = geometry.normals[i].getNormalizedVec3();
        if (geometry.normals[i] != Vector())
            continue;
        bad[i] = 1;
        ++count;
    }
    if (count == 0)
        return 0;
    // The cross product is as long as twice the triangle's area, so the sum is weighted by area without
    // further work.
    for (std::size_t i = 0; geometry.isTriangles() && i + 2 < geometry.indices.size(); i += 3) {
        const Vector plane = planeOf(geometry, i);
        for (std::size_t corner = i; corner < i + 3; ++corner)
            if (bad[geometry.indices[corner]])
                geometry.normals[geometry.indices[corner]] =
                    geometry.normals[geometry.indices[corner]] + plane;
    }
    for (std::size_t i = 0; i < bad.size(); ++i) {
        if (bad[i])
            geometry.normals[i] = geometry.normals[i].getNormalizedVec3();
        if (geometry.normals[i] == Vector())
            geometry.normals[i] = NO_NORMAL;
    }
    return count;
}

Vector perpendicularTo(const Vector& direction) {
    // Across the axis that the direction is furthest from.
    const bool alongX = std::abs(direction.x) > 0.7f;
    const Vector axis = alongX ? Vector(0.0f, 1.0f, 0.0f) : Vector(1.0f, 0.0f, 0.0f);
    return (axis - direction * Vector::dotVec3(axis, direction)).getNormalizedVec3();
}

void packGltfGeometry(const GltfGeometry& geometry, GltfPrimitive& primitive) {
    primitive.composition.addAttribute("POSITION", FORMAT::R32G32B32_FLOAT);
    if (!geometry.normals.empty())
        primitive.composition.addAttribute("NORMAL", FORMAT::R32G32B32_FLOAT);
    if (!geometry.uvs.empty())
        primitive.composition.addAttribute("TEXCOORD", FORMAT::R32G32_FLOAT);
    if (!geometry.tangents.empty()) {
        primitive.composition.addAttribute("TANGENT", FORMAT::R32G32B32_FLOAT);
        primitive.composition.addAttribute("BINORMAL", FORMAT::R32G32B32_FLOAT);
    }
    packVertices(geometry, primitive);
    primitive.vertexCount = static_cast<unsigned int>(geometry.positions.size());
    primitive.topology = geometry.topology;
    if (geometry.isTriangles())
        primitive.indices = turnedTriangles(geometry.indices);
    // Indices that only count up say nothing, and drawing without them saves their memory.
    else if (!isSequence(geometry.indices, geometry.positions.size()))
        primitive.indices = geometry.indices;
    for (const std::uint32_t index : geometry.indices)
        // Only vertices that are drawn count: unused ones may lie anywhere.
        primitive.boundingBox.add(mirrorGltf(geometry.positions[index]));
}

} // namespace ovGraphics::detail
