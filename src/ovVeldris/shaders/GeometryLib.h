// Shader snippets of geometry.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// Constant texts in the shader dialect, to be put before the code that calls them. docs/shader-snippets.md
/// tells more; so does the head of each text.
class OV_API GeometryLib {
public:
    /// `float ovGetSphereIntersection(ovFloat3 o, ovFloat3 d, float radius)`: distance from o along the unit
    /// vector d to a sphere around the origin, the far hit from inside; -1.0 without a hit ahead.
    static ovMemory::StringView ovGetSphereIntersection();
    /// `ovFloat3 ovSphericalToDirection(float theta, float phi)`: (sin phi sin theta, cos phi, sin phi cos
    /// theta); radians, y up, phi from +y.
    static ovMemory::StringView ovSphericalToDirection();
    /// `ovFloat2 ovDirectionToUv(ovFloat3 direction)`: place of a direction in an equirectangular map, v = 0
    /// at +y.
    static ovMemory::StringView ovDirectionToUv();
    /// `ovFloat3 ovUvToDirection(ovFloat2 uv)`: the inverse of ovDirectionToUv.
    static ovMemory::StringView ovUvToDirection();
};

} // namespace ovVeldris
