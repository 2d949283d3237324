// The states of an OpenGL context: what is wanted, what the context has, and the draws between.
#pragma once

#include <array>
#include <ovGraphics/device/GlBufferInternal.h>
#include <ovGraphics/device/GlGeometryInternal.h>
#include <ovGraphics/device/GlProgramInternal.h>
#include <ovGraphics/device/GlSamplerInternal.h>
#include <ovGraphics/device/GlTargetInternal.h>
#include <ovGraphics/device/GlTextureInternal.h>

namespace ovGraphics::device {

/// Sends a state to OpenGL only when it differs from what was sent before. Nothing in here allocates or looks
/// anything up by name.
class GlPipeline {
public:
    explicit GlPipeline(GlCore& core)
        : _core(core) {}

    /// Makes the objects that draws need and sets the language's clip rules.
    void open(SHADER_LANGUAGE language);
    void close();
    /// Sends everything anew; target, program, textures and buffers must be set again.
    void reset();

    void setTarget(GlTarget& target, const Rectangle& viewport);
    void clearColor(unsigned int index, const std::array<float, 4>& color);
    void clearDepthStencil(bool clearDepth, float depth, bool clearStencil, unsigned int stencil);
    void setProgram(GlProgram& program);
    void setBlendState(const BlendStateDesc& state);
    void setRasterState(const RasterStateDesc& state);
    void setDepthStencilState(const DepthStencilStateDesc& state);
    void setTextureUnit(unsigned int unit, GlTexture* texture, GlSampler* sampler, TEXTURE_TYPE expected,
                        bool array);
    void setConstantBuffer(unsigned int slot, GlBuffer* buffer);
    void drawFullScreenQuad();
    void drawGeometry(GlGeometry& geometry, const GeometryDraw& draw);

    // OpenGL gives the names of deleted objects to new ones.
    void forgetTexture(GLuint name);
    void forgetSampler(GLuint name);
    void forgetBuffer(GLuint name);
    void forgetProgram(GLuint name);
    void forgetTarget(GLuint name);
    void forgetVertexArray(GLuint name);

private:
    static constexpr GLuint UNKNOWN = ~0u;
    static constexpr unsigned int MAX_UNITS = 192;
    static constexpr unsigned int MAX_SLOTS = 96;

    struct Unit {
        GLuint texture = UNKNOWN;
        GLuint sampler = UNKNOWN;
    };

    void _createQuad();
    GLuint _blackTexture(TEXTURE_TYPE type, bool array, bool comparison);
    void _sendBaseline();
    bool _prepareDraw(GLuint vertexArray);
    void _sendBlend();
    void _sendTargetBlend(unsigned int index, unsigned int count, const TargetBlendDesc& wanted);
    void _sendWriteMask(unsigned int index, unsigned int count, unsigned int mask);
    void _sendRaster();
    void _sendDepth();
    void _sendStencil();
    void _sendStencilFace(GLenum face, const StencilFaceDesc& wanted, const StencilFaceDesc& sent);
    void _sendDepthWrite(bool write);
    void _sendStencilWriteMask(unsigned int mask);
    void _enable(GLenum capability, bool enable);
    void _count();

    GlCore& _core;
    SHADER_LANGUAGE _language = SHADER_LANGUAGE::GLSL;
    GLuint _quadArray = 0;
    GLuint _quadBuffer = 0;
    GLuint _zeroBuffer = 0;   ///< what a constant buffer reads where none is bound
    GLuint _pointSampler = 0; ///< for units without a sampler
    std::array<std::array<GLuint, 2>, SAMPLED_KINDS> _black{};
    unsigned int _unitCount = 0;
    unsigned int _slotCount = 0;

    GlTarget* _target = nullptr;
    Rectangle _viewport;
    GLuint _program = UNKNOWN;
    GLuint _vertexArray = UNKNOWN;
    std::array<Unit, MAX_UNITS> _units;
    std::array<GLuint, MAX_SLOTS> _slots;

    BlendStateDesc _blendWanted;
    BlendStateDesc _blendSent; ///< every target's own values, as if blending were independent
    RasterStateDesc _rasterWanted;
    RasterStateDesc _rasterSent;
    DepthStencilStateDesc _depthWanted;
    DepthStencilStateDesc _depthSent;
    bool _blendDirty = true;
    bool _rasterDirty = true;
    bool _depthDirty = true;
};

} // namespace ovGraphics::device
