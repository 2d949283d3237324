#include <ovVeldris/effects/atmosphere/AtmosphereConstants.h>

#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/EmbeddedShaders.h>
#include <ovVeldris/effects/ScreenEffect.h>
#include <ovVeldris/shaders/GeometryLib.h>
#include <ovVeldris/shaders/MathsLib.h>
#include <ovVeldris/shaders/ShaderText.h>
#include <ovVeldris/shaders/ShadowMappingLib.h>

namespace ovVeldris {

namespace {

using ovMaths::Vector;

constexpr unsigned int CORNERS = 0;
constexpr unsigned int PIXEL = 1;
constexpr unsigned int AIR = 2;

/// A coefficient per megametre as one per kilometre, beside a number that stays.
Vector perKilometre(const Vector& perMegametre, float beside = 0.0f) {
    constexpr float MEGAMETRES = 0.001f;
    return {perMegametre.x * MEGAMETRES, perMegametre.y * MEGAMETRES, perMegametre.z * MEGAMETRES, beside};
}

} // namespace

void writeCornerConstants(ovGraphics::Shader& shader) {
    constantSlot(shader, 0, CORNERS).setAsCamCornersWorld();
    constantSlot(shader, 1, CORNERS).setAsCamCornersView();
}

void writePixelConstants(ovGraphics::Shader& shader, const AtmosphereEffectInfo& info, bool withShadows) {
    constantSlot(shader, 0, PIXEL).setAsProjectionParameters();
    constantSlot(shader, 1, PIXEL).setAsCameraPosition();
    constantSlot(shader, 2, PIXEL).setFromVector(info.sunPosition);
    if (!withShadows)
        return;
    constantSlot(shader, 3, PIXEL).setAsViewMatrix(info.shadowCamera.get());
    constantSlot(shader, 4, PIXEL).setAsProjectionMatrix(info.shadowCamera.get());
    constantSlot(shader, 5, PIXEL).setAsTextureSize(info.shadowTexture.get());
}

void writeAirConstants(ovGraphics::Shader& shader, const AtmosphereEffectInfo& info) {
    const Vector& albedo = info.planetAlbedo;
    const Vector rows[] = {
        {albedo.x, albedo.y, albedo.z, info.distanceFactor},
        perKilometre(info.rayleigh.scattering, info.rayleigh.heightDensityFactor),
        perKilometre(info.rayleigh.extinction),
        perKilometre(info.rayleigh.absorb),
        perKilometre(info.mie.scattering, info.mie.heightDensityFactor),
        perKilometre(info.mie.extinction),
        perKilometre(info.mie.absorb, info.mieG),
        perKilometre(info.ozone.scattering, info.ozone.heightDensityFactor),
        perKilometre(info.ozone.extinction),
        perKilometre(info.ozone.absorb),
        {info.sunIlluminanceFactor, info.sunAngularRadius, 0.0f, 0.0f},
    };
    for (unsigned int i = 0; i < std::size(rows); ++i)
        constantSlot(shader, i, AIR).setFromVector(rows[i]);
}

ovMemory::String toUnsignedLiteral(unsigned int count) {
    return std::to_string(count) + "u";
}

ovMemory::String assembleAtmosphereText(ovMemory::StringView file, ovMemory::StringView pixelText) {
    return assembleShaderText({
        {"ovShadowMap", ShadowMappingLib::ovShadowMap()},
        {"ovMathsConstants", MathsLib::ovMathsConstants()},
        {"ovSafeAcos", MathsLib::ovSafeAcos()},
        {"ovIsNan", MathsLib::ovIsNan()},
        {"ovComputeLinearDepth", MathsLib::ovComputeLinearDepth()},
        {"ovGetSphereIntersection", GeometryLib::ovGetSphereIntersection()},
        {"ovSphericalToDirection", GeometryLib::ovSphericalToDirection()},
        {"AtmosphereEffect.prelude.ovsl", embedded::AtmosphereEffect_prelude},
        {file, pixelText},
    });
}

const ovMemory::String& atmosphereVertexText() {
    static const ovMemory::String TEXT =
        assembleShaderText({{"AtmosphereEffect.vertex.ovsl", embedded::AtmosphereEffect_vertex}});
    return TEXT;
}

} // namespace ovVeldris
