#include <ovGraphics/gltf/detail/TangentSpace.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <meshoptimizer.h>

namespace ovGraphics::detail {

using ovMaths::Vector;
using ovMemory::Buffer;

namespace {

// In doubles: differences of texture coordinates are small, and their products lose half of a float's digits.
using Double3 = std::array<double, 3>;

Double3 toDouble(const Vector& vector) {
    return {vector.x, vector.y, vector.z};
}

Double3 subtract(const Double3& a, const Double3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

double dot(const Double3& a, const Double3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

// Zero for a vector without a direction.
Double3 normalized(const Double3& vector) {
    const double length = std::sqrt(dot(vector, vector));
    if (!(length > 0.0) || !std::isfinite(length))
        return {};
    return {vector[0] / length, vector[1] / length, vector[2] / length};
}

Double3 projectedOnPlane(const Double3& vector, const Double3& normal) {
    const double along = dot(vector, normal);
    return normalized(
        {vector[0] - along * normal[0], vector[1] - along * normal[1], vector[2] - along * normal[2]});
}

// The direction in which u grows on a triangle, and whether its mapping is mirrored.
struct Mapping {
    Double3 direction{};
    bool mirrored = false;
    bool usable = false;
};

Mapping mappingOf(const GltfGeometry& geometry, std::size_t corner) {
    const Double3 origin = toDouble(geometry.positions[corner]);
    const Double3 edge1 = subtract(toDouble(geometry.positions[corner + 1]), origin);
    const Double3 edge2 = subtract(toDouble(geometry.positions[corner + 2]), origin);
    const Vector& uv = geometry.uvs[corner];
    const double u1 = double(geometry.uvs[corner + 1].x) - uv.x;
    const double u2 = double(geometry.uvs[corner + 2].x) - uv.x;
    const double v1 = double(uv.y) - geometry.uvs[corner + 1].y; // upwards
    const double v2 = double(uv.y) - geometry.uvs[corner + 2].y;
    // The direction of growing u solves edge = u * tangent + v * bitangent for both edges. Its length does
    // not matter, so the division by the area is left out, and only its sign kept.
    const double area = u1 * v2 - u2 * v1;
    const double sign = area < 0.0 ? -1.0 : 1.0;
    Mapping mapping;
    mapping.mirrored = area < 0.0;
    for (std::size_t i = 0; i < 3; ++i)
        mapping.direction[i] = sign * (v2 * edge1[i] - v1 * edge2[i]);
    mapping.direction = normalized(mapping.direction);
    mapping.usable = area != 0.0 && std::isfinite(area) && dot(mapping.direction, mapping.direction) > 0.0;
    return mapping;
}

// The angle between the edges that meet at a corner, seen along the normal.
// Weighted by angle, so that the result does not depend on how a flat polygon was cut into triangles.
double angleAt(const GltfGeometry& geometry, std::size_t triangle, std::size_t corner,
               const Double3& normal) {
    const Double3 here = toDouble(geometry.positions[triangle + corner]);
    const Double3 next = toDouble(geometry.positions[triangle + (corner + 1) % 3]);
    const Double3 last = toDouble(geometry.positions[triangle + (corner + 2) % 3]);
    const Double3 a = projectedOnPlane(subtract(next, here), normal);
    const Double3 b = projectedOnPlane(subtract(last, here), normal);
    if (dot(a, a) == 0.0 || dot(b, b) == 0.0)
        return 0.0;
    return std::acos(std::clamp(dot(a, b), -1.0, 1.0));
}

// For each corner the number of those that are equal to it in all that decides about tangents.
Buffer<unsigned int> weld(const GltfGeometry& geometry) {
    using Key = std::array<float, 8>;
    Buffer<Key> keys;
    keys.reserve(geometry.positions.size());
    for (std::size_t i = 0; i < geometry.positions.size(); ++i) {
        const Vector& p = geometry.positions[i];
        const Vector& n = geometry.normals[i];
        const Vector& t = geometry.uvs[i];
        Key& key = keys.emplace_back(Key{p.x, p.y, p.z, n.x, n.y, n.z, t.x, t.y});
        for (float& value : key)
            value += 0.0f; // the two zeros are equal
    }
    Buffer<unsigned int> groups(keys.size());
    meshopt_generateVertexRemap(groups.data(), nullptr, keys.size(), keys.data(), keys.size(), sizeof(Key));
    return groups;
}

// Sums for unmirrored and mirrored triangles at one welded corner.
struct Sums {
    std::array<Double3, 2> tangents{};
};

Buffer<Sums> sumTangents(const GltfGeometry& geometry, const Buffer<Mapping>& mappings,
                         const Buffer<unsigned int>& groups) {
    Buffer<Sums> sums(groups.size());
    for (std::size_t triangle = 0; triangle < mappings.size(); ++triangle) {
        const Mapping& mapping = mappings[triangle];
        for (std::size_t corner = 0; mapping.usable && corner < 3; ++corner) {
            const std::size_t index = 3 * triangle + corner;
            const Double3 normal = toDouble(geometry.normals[index]);
            const Double3 direction = projectedOnPlane(mapping.direction, normal);
            const double weight = angleAt(geometry, 3 * triangle, corner, normal);
            for (std::size_t i = 0; i < 3; ++i)
                sums[groups[index]].tangents[mapping.mirrored][i] += weight * direction[i];
        }
    }
    return sums;
}

Vector tangentAt(const Sums& sums, const Mapping& mapping, const Vector& normal) {
    // A triangle without a mapping takes what its neighbours have, unmirrored first, so that it does not
    // break their shading.
    for (const bool mirrored : {mapping.usable && mapping.mirrored, true}) {
        const Double3 tangent = normalized(sums.tangents[mirrored]);
        if (dot(tangent, tangent) > 0.0)
            return {float(tangent[0]), float(tangent[1]), float(tangent[2]), mirrored ? -1.0f : 1.0f};
        if (mapping.usable)
            break;
    }
    Vector tangent = perpendicularTo(normal);
    tangent.w = mapping.usable && mapping.mirrored ? -1.0f : 1.0f;
    return tangent;
}

} // namespace

void makeTangents(GltfGeometry& geometry) {
    const std::size_t triangleCount = geometry.positions.size() / 3;
    Buffer<Mapping> mappings;
    mappings.reserve(triangleCount);
    for (std::size_t i = 0; i < triangleCount; ++i)
        mappings.push_back(mappingOf(geometry, 3 * i));
    const Buffer<unsigned int> groups = weld(geometry);
    const Buffer<Sums> sums = sumTangents(geometry, mappings, groups);
    geometry.tangents.resize(geometry.positions.size());
    for (std::size_t i = 0; i < 3 * triangleCount; ++i)
        geometry.tangents[i] = tangentAt(sums[groups[i]], mappings[i / 3], geometry.normals[i]);
}

} // namespace ovGraphics::detail
