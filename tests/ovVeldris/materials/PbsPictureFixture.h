// The base of tests that draw physically based materials: what to draw, and what it should look like.
#pragma once

#include <ovGraphics/resources/Camera.h>
#include <ovMaths/Matrix.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <ovVeldris/materials/PbsReference.h>

/// A texture of the surface as large as the picture, so that each pixel reads one texel. Empty: none.
struct SurfaceTexture {
    FloatPicture picture{};
    ovMemory::String channels = "rgb";

    explicit operator bool() const { return picture.width > 0; }
};

/// Surroundings as a function of the direction and the mip, linear in the mip. Without a function: none.
struct SurroundingsMap {
    std::function<FloatPixel(const Vec3& direction, double mip)> radiance{};
    bool cube = true;
    unsigned int size = 64; ///< of a cube's side, or the height of a flat map
    unsigned int mipCount = 1;
    ovMemory::String channels = "rgb";

    explicit operator bool() const { return bool(radiance); }
};

/// A light's depth map and what it looks from. Without a picture: none.
struct ShadowSetup {
    FloatPicture depths{}; ///< in red
    Vec3 position{};
    Vec3 direction{0.0, 0.0, 1.0};
    double extent = 2.0; ///< side of the square that the light sees, without perspective
    double nearPlane = 0.5;
    double farPlane = 4.5;
    ovVeldris::ShadowMapParameters parameters{};

    explicit operator bool() const { return depths.width > 0; }
};

/// A material and its surroundings, in terms that both the material and the reference understand.
struct PbsSetup {
    Vec3 albedo{0.2, 0.5, 0.8};
    Vec3 specular{0.9, 0.6, 0.3};
    Vec3 emissive{0.01, 0.02, 0.03};
    Vec3 environmentColor{0.3, 0.2, 0.1};
    double metalness = 0.75;
    double roughnessGlossiness = 0.6;
    double alpha = 0.9;
    double alphaCutoff = 0.00001;
    SurfaceTexture albedoTexture, specularTexture, emissiveTexture, metalnessTexture, roughnessTexture,
        alphaTexture, occlusionTexture, normalMap;
    bool mixAlbedo = false, mixSpecular = false, mixEmissive = false, mixMetalness = false,
         mixRoughness = false, mixAlpha = false, mixEnvironment = false;
    bool reconstructBinormals = true;
    bool prefiltered = false;
    SurroundingsMap environment, irradiance;
    ShadowSetup shadow;
    bool glossiness = false;
    bool combine = false;
    Vec3 lightDirection{0.4, -0.6, 1.2};
    Vec3 lightColor{2.0, 1.5, 1.0};
};

/// The mesh: a square that fills the view, by its corners: top left, top right, bottom left, bottom right.
struct PbsSurface {
    std::array<Vec3, 4> normals = {
        Vec3{-0.8, 0.9, -1.0}, {0.7, 0.8, -1.2}, {-0.9, -0.7, -0.9}, {0.8, -0.8, -1.0}};
    std::array<Vec3, 4> tangents = {Vec3{1.0, 0.1, -0.2}, {0.9, -0.2, 0.3}, {1.1, 0.3, 0.1}, {1.0, 0.0, 0.2}};
    std::array<Vec3, 4> binormals = {
        Vec3{0.1, -1.0, 0.3}, {-0.2, -0.8, 0.1}, {0.2, -1.1, -0.1}, {0.1, -0.9, 0.2}};
    /// Mesh to world. The mesh's corners are chosen so that it fills the view all the same.
    ovMaths::Matrix world;
    /// A rotation of everything: camera, mesh, and (by the test) the light.
    ovMaths::Matrix stage;
};

class PbsPictureFixture : public EffectFixture {
protected:
    static constexpr unsigned int SIZE = 16;
    static constexpr FloatPixel UNDRAWN = {-1.0f, -2.0f, -3.0f, -4.0f};
    /// Where the camera stands, looking along +z at the square from (-1, -1, 0) to (1, 1, 0).
    static constexpr Vec3 EYE = {0.0, 0.0, -1.5};

    /// Loads a material of a setup and draws it.
    FloatPicture drawPbs(const PbsSetup& setup, const PbsSurface& surface = {});
    /// The same by the reference.
    static FloatPicture computePbs(const PbsSetup& setup, const PbsSurface& surface = {});

    void TearDown() override;

    /// A picture of the size of those drawn, by the pixel's place in 0 to 1.
    static FloatPicture paint(const std::function<FloatPixel(double a, double b)>& texel);

private:
    void _apply(const PbsSetup& setup, ovVeldris::PbsMaterial& material);
    ovGraphics::Texture* _keep(ovMemory::UniquePtr<ovGraphics::Texture> texture);
    ovGraphics::Texture* _makeTexture(const SurfaceTexture& texture);
    ovGraphics::Texture* _makeMap(const SurroundingsMap& map);
    ovGraphics::Texture* _makeDepths(const FloatPicture& depths);
    FloatPicture _drawMesh(ovGraphics::Shader& shader, const PbsSurface& surface);

    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::Texture>> _textures;
    ovMemory::UniquePtr<ovGraphics::Camera> _lightCamera;
};
