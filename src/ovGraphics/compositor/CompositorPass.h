// The passes of an operations block.
#pragma once

#include <array>
#include <ovCommon/Api.h>
#include <ovGraphics/resources/BlendState.h>
#include <ovGraphics/resources/DepthStencilState.h>
#include <ovGraphics/resources/RasterState.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {

class Camera;
class Shader;
class System;
class Texture;

namespace device {
class Device;
}

/// What a pass draws with: the device, its target already bound, and what its block and context say.
struct PassExecution {
    const System* system = nullptr;
    device::Device* device = nullptr;
    unsigned int colorTargetCount = 0;
    bool hasDepth = false;
    Camera* activeCamera = nullptr;
};

/// One step of an operations block, owned by it.
class OV_API CompositorPass : public ovMemory::Borrowable {
public:
    virtual ~CompositorPass();

    /// Name shown beside the pass's time. Default: the kind of the pass.
    ovMemory::StringView getName() const { return _name; }
    void setName(ovMemory::StringView name) { _name = name; }

    /// Draws. @return false when something that it needs is missing; the frame goes on, and the first of
    /// consecutive failures is logged.
    virtual bool execute(const PassExecution& execution) = 0;
    /// Frees what drawing made on the device; the next frame makes it again.
    virtual void unload() {}
    /// What the pass needs, for the log line of an execute() that fails.
    virtual ovMemory::StringView getRequirement() const { return "something that it needs is missing."; }

protected:
    explicit CompositorPass(ovMemory::StringView name)
        : _name(name) {}

private:
    friend class System;

    ovMemory::String _name;
    bool _failureLogged = false;
};

/// Clears the block's whole targets, also beyond its viewport (as in Direct3D). New: every colour target to
/// (0, 0, 0, 0), depth to 1, stencil untouched.
class OV_API ClearPass : public CompositorPass {
public:
    ClearPass();
    /// @param index of a colour target, 0 to 7; others are ignored
    void setColor(unsigned int index, float red, float green, float blue, float alpha);
    void setClearColor(bool clear) { _clearColor = clear; }
    void setDepth(bool clear, float depth) {
        _clearDepth = clear;
        _depth = depth;
    }
    void setStencil(bool clear, unsigned int stencil) {
        _clearStencil = clear;
        _stencil = stencil;
    }
    bool execute(const PassExecution& execution) override;

private:
    std::array<std::array<float, 4>, device::MAX_COLOR_TARGETS> _colors{};
    bool _clearColor = true;
    bool _clearDepth = true;
    bool _clearStencil = false;
    float _depth = 1.0f;
    unsigned int _stencil = 0;
};

/// Draws a shader on the full-screen quad. New: no shader, no camera of its own, no blending, no culling, no
/// depth.
class OV_API PostProcessPass : public CompositorPass {
public:
    PostProcessPass();

    /// Borrowed; a pass without a loaded shader draws nothing.
    void setShader(Shader* shader);
    Shader* getShader() const;
    /// The camera that the shader's slots mean when they name none; null: the context's rendering camera.
    void setCamera(Camera* camera);
    Camera* getCamera() const;

    // States to be changed in place.
    BlendState& getBlendState() { return _blendState; }
    RasterState& getRasterState() { return _rasterState; }
    DepthStencilState& getDepthStencilState() { return _depthStencilState; }

    bool execute(const PassExecution& execution) override;
    ovMemory::StringView getRequirement() const override;

private:
    ovMemory::Borrowed<Shader> _shader;
    ovMemory::Borrowed<Camera> _camera;
    BlendState _blendState;
    RasterState _rasterState;
    DepthStencilState _depthStencilState;
};

/// Fills the mips of a texture from its first, after earlier passes have drawn that.
class OV_API MipGenerationPass : public CompositorPass {
public:
    MipGenerationPass();
    /// Borrowed; must be loaded when the pass runs.
    void setTexture(Texture* texture);
    bool execute(const PassExecution& execution) override;
    ovMemory::StringView getRequirement() const override;

private:
    ovMemory::Borrowed<Texture> _texture;
};

} // namespace ovGraphics
