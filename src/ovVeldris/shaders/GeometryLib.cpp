#include <ovVeldris/shaders/GeometryLib.h>

#include <ovVeldris/EmbeddedShaders.h>

namespace ovVeldris {

ovMemory::StringView GeometryLib::ovGetSphereIntersection() {
    return embedded::GeometryLib_ovGetSphereIntersection;
}

ovMemory::StringView GeometryLib::ovSphericalToDirection() {
    return embedded::GeometryLib_ovSphericalToDirection;
}

ovMemory::StringView GeometryLib::ovDirectionToUv() {
    return embedded::GeometryLib_ovDirectionToUv;
}

ovMemory::StringView GeometryLib::ovUvToDirection() {
    return embedded::GeometryLib_ovUvToDirection;
}

} // namespace ovVeldris
