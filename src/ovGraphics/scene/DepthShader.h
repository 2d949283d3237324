// The shader of passes that draw depth alone, as of shadow maps.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {

class Program;
class Sampler;
class Shader;
class System;
class Texture;

/// The settings that decide where a surface has depth.
struct DepthShaderSettings {
    Texture* alphaTexture = nullptr; ///< null: the surface has no holes. Read at "TEXCOORD"
    Sampler* sampler = nullptr;      ///< of the alpha texture
    unsigned int alphaChannel = 3;   ///< of the texture, 0 to 3 for R to A
    float alpha = 1.0f;              ///< multiplies what the texture holds
    float alphaCutoff = 0.0f;        ///< where the product is this or less, the surface has no depth
    /// Also draws what is seen: to the first target its view-space position, to the second its view-space
    /// normal of length 1, which reads "NORMAL"; alpha 1 in both. Maps of normals do not count.
    bool drawsGeometry = false;
};

/// A loaded shader that draws "POSITION" at the place of the instance and writes no colour unless it is asked
/// for geometry, to be an entity's shader of another variant:
///
///     depthShader = ovGraphics::DepthShader::create(system, {});
///     entity->setShader(depthShader->getShader(), 1);
///     shadowPass->setShaderVariant(1);
class OV_API DepthShader {
public:
    /// @param system null means the singleton; it must be initialised
    /// @return null after one log line when the program or the shader cannot be loaded
    static ovMemory::UniquePtr<DepthShader> create(System* system, const DepthShaderSettings& settings);
    ~DepthShader();

    /// Owned by this object. Never null.
    Shader* getShader() const { return _shader.get(); }

private:
    explicit DepthShader(System* system);
    bool _load(const DepthShaderSettings& settings);

    ovMemory::UniquePtr<Program> _program;
    ovMemory::UniquePtr<Shader> _shader;
};

} // namespace ovGraphics
