#include <ovGraphics/gltf/detail/GltfWinding.h>

#include <cmath>
#include <utility>

namespace ovGraphics::detail {

using ovMaths::Vector;

namespace {

// Of the angle between a triangle's plane normal and its corners' mean normal: about six degrees from the
// plane, where normals say nothing of sides.
constexpr float TELLING_COSINE = 0.1f;

// The share of a surface's area that may be missing from a closed one. Models of one piece have holes for
// eyes and no underside, up to 0.11 among those tried; a cube without a side has 0.2.
constexpr double OPEN_SHARE = 0.15;

// Unit length; zero without an area. Edges are scaled first, as the product of two short ones underflows.
Vector sideOf(const GltfGeometry& geometry, std::size_t firstIndex) {
    const Vector& a = geometry.positions[geometry.indices[firstIndex]];
    const Vector& b = geometry.positions[geometry.indices[firstIndex + 1]];
    const Vector& c = geometry.positions[geometry.indices[firstIndex + 2]];
    return Vector::crossVec3((b - a).getNormalizedVec3(), (c - a).getNormalizedVec3()).getNormalizedVec3();
}

// Sums of a surface over its triangles, each twice as large as its name says.
struct Areas {
    double vector[3] = {};
    double total = 0.0;
    double volume = 0.0; // three times as large again
};

Areas sumAreas(const GltfGeometry& geometry) {
    Areas areas;
    for (std::size_t i = 0; i + 2 < geometry.indices.size(); i += 3) {
        // From a corner of the mesh: a volume far from the origin would be a small difference of large terms.
        const Vector& origin = geometry.positions[geometry.indices[0]];
        double corners[3][3];
        for (std::size_t corner = 0; corner < 3; ++corner) {
            const Vector& position = geometry.positions[geometry.indices[i + corner]];
            corners[corner][0] = double{position.x} - origin.x;
            corners[corner][1] = double{position.y} - origin.y;
            corners[corner][2] = double{position.z} - origin.z;
        }
        double square = 0.0;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const std::size_t u = (axis + 1) % 3;
            const std::size_t v = (axis + 2) % 3;
            const double across = (corners[1][u] - corners[0][u]) * (corners[2][v] - corners[0][v]) -
                                  (corners[1][v] - corners[0][v]) * (corners[2][u] - corners[0][u]);
            areas.vector[axis] += across;
            areas.volume += across * corners[0][axis];
            square += across * across;
        }
        areas.total += std::sqrt(square);
    }
    return areas;
}

// Whether the triangles, as they run, are the outside of a closed surface. The directed areas of a closed one
// cancel out, and by the divergence theorem its volume is a third of the sum of area times distance.
bool enclosesVolume(const GltfGeometry& geometry) {
    const Areas areas = sumAreas(geometry);
    const double left = std::hypot(areas.vector[0], areas.vector[1], areas.vector[2]);
    // A sphere has 0.094 of its area to the power of 1.5; a sheet with two sides has rounding errors.
    constexpr double THINNEST = 1e-4;
    return left <= OPEN_SHARE * areas.total &&
           areas.volume / 6.0 > THINNEST * std::pow(areas.total / 2.0, 1.5);
}

} // namespace

GltfWinding compareWinding(const GltfGeometry& geometry) {
    GltfWinding winding;
    if (!geometry.isTriangles() || geometry.normals.empty())
        return winding;
    for (std::size_t i = 0; i + 2 < geometry.indices.size(); i += 3) {
        const Vector side = sideOf(geometry, i);
        if (side == Vector())
            continue;
        ++winding.triangles;
        const Vector normals = geometry.normals[geometry.indices[i]] +
                               geometry.normals[geometry.indices[i + 1]] +
                               geometry.normals[geometry.indices[i + 2]];
        if (Vector::dotVec3(side, normals.getNormalizedVec3()) < -TELLING_COSINE)
            ++winding.against;
    }
    return winding;
}

void repairWinding(GltfGeometry& geometry) {
    if (!enclosesVolume(geometry)) {
        for (std::size_t i = 0; i + 2 < geometry.indices.size(); i += 3)
            std::swap(geometry.indices[i + 1], geometry.indices[i + 2]);
        return;
    }
    for (Vector& normal : geometry.normals)
        normal = -normal;
    for (Vector& tangent : geometry.tangents)
        tangent.w = -tangent.w;
}

} // namespace ovGraphics::detail
