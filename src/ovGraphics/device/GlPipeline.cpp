#include <ovGraphics/device/GlPipelineInternal.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <fmt/format.h>
#include <limits>
#include <ovGraphics/device/GlCoreInternal.h>
#include <ovGraphics/device/GlStatesInternal.h>

namespace ovGraphics::device {

namespace {

// Where the cross compiler puts POSITION and TEXCOORD.
constexpr GLuint POSITION_LOCATION = 0;
constexpr GLuint TEXCOORD_LOCATION = 2;

struct QuadVertex {
    std::array<float, 4> position;
    std::array<float, 2> textureCoordinates;
};

// Row 0 of a texture is its top. HLSL's clip space has the top at y = 1; GLSL's, with the lower left origin,
// draws y = -1 to row 0.
std::array<QuadVertex, 4> quadOf(SHADER_LANGUAGE language) {
    const float top = language == SHADER_LANGUAGE::HLSL ? 1.0f : -1.0f;
    return {QuadVertex{{-1.0f, top, 0.0f, 1.0f}, {0.0f, 0.0f}},
            QuadVertex{{1.0f, top, 0.0f, 1.0f}, {1.0f, 0.0f}},
            QuadVertex{{-1.0f, -top, 0.0f, 1.0f}, {0.0f, 1.0f}},
            QuadVertex{{1.0f, -top, 0.0f, 1.0f}, {1.0f, 1.0f}}};
}

// Front faces run clockwise on the target in both languages. OpenGL judges the winding with y up. HLSL's
// upper left origin keeps that (it mirrors the judgement with the picture); GLSL's picture has y = -1 at the
// top, so that what looks clockwise counts as counter-clockwise.
GLenum frontFaceOf(SHADER_LANGUAGE language, bool frontCounterClockwise) {
    const bool mirrored = language == SHADER_LANGUAGE::GLSL;
    return frontCounterClockwise != mirrored ? GL_CCW : GL_CW;
}

bool biased(const RasterStateDesc& state) {
    return state.depthBias != 0.0f || state.slopeScaledDepthBias != 0.0f;
}

// Clear colours are floats in the interface. Converting a float outside an integer's range is undefined in
// C++, so the number is clamped first; doubles hold every 32-bit integer exactly, floats do not.
template <typename INTEGER>
std::array<INTEGER, 4> toIntegers(const std::array<float, 4>& color) {
    std::array<INTEGER, 4> result{};
    for (std::size_t i = 0; i < result.size(); ++i) {
        const double lowest = static_cast<double>(std::numeric_limits<INTEGER>::lowest());
        const double highest = static_cast<double>(std::numeric_limits<INTEGER>::max());
        const double value = std::isnan(color[i]) ? 0.0 : static_cast<double>(color[i]);
        result[i] = static_cast<INTEGER>(std::clamp(value, lowest, highest));
    }
    return result;
}

} // namespace

void GlPipeline::_count() {
    ++_core.statistics.stateChanges;
}

void GlPipeline::_enable(GLenum capability, bool enable) {
    if (enable)
        glEnable(capability);
    else
        glDisable(capability);
    _count();
}

void GlPipeline::open(SHADER_LANGUAGE language) {
    _language = language;
    GLint count = 0;
    glGetIntegerv(GL_MAX_UNIFORM_BUFFER_BINDINGS, &count);
    // Bindings are remembered in arrays of fixed size, so that a draw never allocates. Devices offer more
    // slots and units than the arrays have; programs use few.
    _slotCount = std::min(static_cast<unsigned int>(count), MAX_SLOTS);
    _unitCount = std::min(_core.info.maxTextureUnits, MAX_UNITS);
    _createQuad();
    glCreateSamplers(1, &_pointSampler);
    glSamplerParameteri(_pointSampler, GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_NEAREST);
    glSamplerParameteri(_pointSampler, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R})
        glSamplerParameteri(_pointSampler, wrap, GL_CLAMP_TO_EDGE);
    // A shader that reads a block without a buffer is undefined in OpenGL and may end the program. One buffer
    // of zeros, as large as a block may be, makes it read zeros.
    glCreateBuffers(1, &_zeroBuffer);
    glNamedBufferStorage(_zeroBuffer, static_cast<GLsizeiptr>(_core.info.maxConstantBufferSize), nullptr,
                         GL_DYNAMIC_STORAGE_BIT);
    glClearNamedBufferData(_zeroBuffer, GL_R8, GL_RED, GL_UNSIGNED_BYTE, nullptr);
    reset();
}

void GlPipeline::_createQuad() {
    const std::array<QuadVertex, 4> quad = quadOf(_language);
    glCreateBuffers(1, &_quadBuffer);
    glNamedBufferStorage(_quadBuffer, sizeof(quad), quad.data(), 0);
    glCreateVertexArrays(1, &_quadArray);
    glVertexArrayVertexBuffer(_quadArray, 0, _quadBuffer, 0, sizeof(QuadVertex));
    const auto attribute = [this](GLuint location, GLint components, std::size_t offset) {
        glEnableVertexArrayAttrib(_quadArray, location);
        glVertexArrayAttribFormat(_quadArray, location, components, GL_FLOAT, GL_FALSE,
                                  static_cast<GLuint>(offset));
        glVertexArrayAttribBinding(_quadArray, location, 0);
    };
    attribute(POSITION_LOCATION, 4, offsetof(QuadVertex, position));
    attribute(TEXCOORD_LOCATION, 2, offsetof(QuadVertex, textureCoordinates));
}

// Called by the device's destructor, with the context current.
void GlPipeline::close() {
    glDeleteVertexArrays(1, &_quadArray);
    glDeleteBuffers(1, &_quadBuffer);
    glDeleteBuffers(1, &_zeroBuffer);
    glDeleteSamplers(1, &_pointSampler);
    for (const auto& pair : _black)
        glDeleteTextures(static_cast<GLsizei>(pair.size()), pair.data());
}

void GlPipeline::reset() {
    _target = nullptr;
    _program = UNKNOWN;
    _units.fill(Unit{});
    _slots.fill(UNKNOWN);
    _sendBaseline();
}

// Puts the context in the state that the default descriptions mean, whatever it was in before.
void GlPipeline::_sendBaseline() {
    const bool upperLeft = _language == SHADER_LANGUAGE::HLSL;
    // A text that computes positions itself keeps the clip space of its language.
    glClipControl(upperLeft ? GL_UPPER_LEFT : GL_LOWER_LEFT,
                  upperLeft ? GL_ZERO_TO_ONE : GL_NEGATIVE_ONE_TO_ONE);
    glBindVertexArray(_quadArray);
    _vertexArray = _quadArray;
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    // With a buffer bound here, pointers of uploads and readback would be offsets into it.
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    // Foreign code may have left any of these on. GL_DITHER is even on by default, and lets drivers change
    // what an 8-bit target gets.
    for (const GLenum capability :
         {GL_BLEND, GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_SAMPLE_ALPHA_TO_COVERAGE, GL_POLYGON_OFFSET_FILL,
          GL_POLYGON_OFFSET_LINE, GL_DEPTH_CLAMP, GL_RASTERIZER_DISCARD, GL_COLOR_LOGIC_OP, GL_DITHER})
        glDisable(capability);
    // GL_FRAMEBUFFER_SRGB stays on: whether a target encodes is decided by its storage (gammaCorrected).
    // Seamless cubes are off by default in OpenGL, and then every filtered map shows the edges of its faces.
    for (const GLenum capability :
         {GL_DEPTH_TEST, GL_CULL_FACE, GL_FRAMEBUFFER_SRGB, GL_TEXTURE_CUBE_MAP_SEAMLESS, GL_MULTISAMPLE,
          GL_PRIMITIVE_RESTART_FIXED_INDEX})
        glEnable(capability);
    const BlendStateDesc blend;
    glBlendFuncSeparate(GL_ONE, GL_ZERO, GL_ONE, GL_ZERO);
    glBlendEquationSeparate(GL_FUNC_ADD, GL_FUNC_ADD);
    glBlendColor(blend.blendFactor[0], blend.blendFactor[1], blend.blendFactor[2], blend.blendFactor[3]);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glPolygonOffset(0.0f, 0.0f);
    glCullFace(GL_BACK);
    glFrontFace(frontFaceOf(_language, false));
    glDepthMask(GL_TRUE);
    glDepthFunc(GL_LESS);
    glStencilMask(0xff);
    glStencilFunc(GL_ALWAYS, 0, 0xff);
    glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
    _blendSent = BlendStateDesc{};
    _rasterSent = RasterStateDesc{};
    _depthSent = DepthStencilStateDesc{};
    // The wanted states are those of before; the next draw compares them with this baseline.
    _blendDirty = _rasterDirty = _depthDirty = true;
}

void GlPipeline::setTarget(GlTarget& target, const Rectangle& viewport) {
    // Also a target that is set already: it may have been resolved since.
    target.markDrawn();
    if (_target != &target) {
        glBindFramebuffer(GL_FRAMEBUFFER, target.getName());
        _count();
    }
    // Viewports do not belong to a framebuffer: another target keeps an equal one.
    if (!_target || _viewport != viewport) {
        glViewport(viewport.x, viewport.y, static_cast<GLsizei>(viewport.width),
                   static_cast<GLsizei>(viewport.height));
        _count();
    }
    _target = &target;
    _viewport = viewport;
}

void GlPipeline::clearColor(unsigned int index, const std::array<float, 4>& color) {
    if (!_target || index >= _target->getColorCount()) {
        _core.report(fmt::format("Colour {} was not cleared: {}", index,
                                 _target ? fmt::format("the target has {}", _target->getColorCount())
                                         : ovMemory::String("no target is set")));
        return;
    }
    const GLint buffer = static_cast<GLint>(index);
    // OpenGL applies the write mask to clears, Direct3D does not. The next draw puts its own back.
    _sendWriteMask(index, 1, COLOR_WRITE_ALL);
    switch (_target->getClearKind(index)) {
    case GL_CLEAR_KIND::FLOAT:
        glClearNamedFramebufferfv(_target->getName(), GL_COLOR, buffer, color.data());
        break;
    case GL_CLEAR_KIND::SIGNED:
        glClearNamedFramebufferiv(_target->getName(), GL_COLOR, buffer, toIntegers<GLint>(color).data());
        break;
    case GL_CLEAR_KIND::UNSIGNED:
        glClearNamedFramebufferuiv(_target->getName(), GL_COLOR, buffer, toIntegers<GLuint>(color).data());
        break;
    case GL_CLEAR_KIND::NOTHING:
        break;
    }
}

void GlPipeline::clearDepthStencil(bool clearDepth, float depth, bool clearStencil, unsigned int stencil) {
    if (!_target) {
        _core.report("The depth buffer was not cleared: no target is set");
        return;
    }
    // A target may lack either buffer, and a mask that is opened for nothing is a call for nothing.
    const bool clearsDepth = clearDepth && _target->hasDepth();
    const bool clearsStencil = clearStencil && _target->hasStencil();
    const GLint stencilValue = static_cast<GLint>(stencil & 0xffu);
    if (clearsDepth)
        _sendDepthWrite(true);
    if (clearsStencil)
        _sendStencilWriteMask(0xff);
    // One call for both, because the two mostly lie interleaved in memory.
    if (clearsDepth && clearsStencil)
        glClearNamedFramebufferfi(_target->getName(), GL_DEPTH_STENCIL, 0, depth, stencilValue);
    else if (clearsDepth)
        glClearNamedFramebufferfv(_target->getName(), GL_DEPTH, 0, &depth);
    else if (clearsStencil)
        glClearNamedFramebufferiv(_target->getName(), GL_STENCIL, 0, &stencilValue);
}

void GlPipeline::setProgram(GlProgram& program) {
    if (_program == program.getName())
        return;
    _program = program.getName();
    glUseProgram(_program);
    _count();
}

void GlPipeline::setBlendState(const BlendStateDesc& state) {
    // Comparing the description is cheaper than the calls that it saves.
    if (_blendWanted == state)
        return;
    _blendWanted = state;
    _blendDirty = true;
}

void GlPipeline::setRasterState(const RasterStateDesc& state) {
    if (_rasterWanted == state)
        return;
    _rasterWanted = state;
    _rasterDirty = true;
}

void GlPipeline::setDepthStencilState(const DepthStencilStateDesc& state) {
    if (_depthWanted == state)
        return;
    _depthWanted = state;
    _depthDirty = true;
}

void GlPipeline::setTextureUnit(unsigned int unit, GlTexture* texture, GlSampler* sampler,
                                TEXTURE_TYPE expected, bool array) {
    if (unit >= _unitCount) {
        _core.report(fmt::format("Texture unit {} is beyond the device's limit of {}", unit, _unitCount));
        return;
    }
    GLuint name = texture ? texture->getSampledName(expected, array) : 0;
    // OpenGL leaves it undefined to sample a unit whose texture is missing or of another kind than the shader
    // declares. A black texture of the right kind makes both read the same everywhere.
    if (name == 0)
        name = _blackTexture(expected, array, sampler && sampler->compares());
    const GLuint samplerName = sampler ? sampler->getName() : _pointSampler;
    Unit& sent = _units[unit];
    if (sent.texture != name) {
        sent.texture = name;
        glBindTextureUnit(unit, name);
        _count();
    }
    if (sent.sampler != samplerName) {
        sent.sampler = samplerName;
        glBindSampler(unit, samplerName);
        _count();
    }
}

// One texture for each kind and for comparison, made when first needed: few programs leave a unit empty. A
// comparison sampler on a colour texture is undefined, so shadows get a depth texture of 0.
GLuint GlPipeline::_blackTexture(TEXTURE_TYPE type, bool array, bool comparison) {
    constexpr std::array<GLenum, SAMPLED_KINDS> TARGETS = {GL_TEXTURE_2D, GL_TEXTURE_2D_ARRAY,
                                                           GL_TEXTURE_CUBE_MAP, GL_TEXTURE_CUBE_MAP_ARRAY};
    constexpr std::array<unsigned char, 4> BLACK = {0, 0, 0, 255};
    const unsigned int kind = (type == TEXTURE_TYPE::CUBE ? 2u : 0u) + (array ? 1u : 0u);
    GLuint& name = _black[kind][comparison ? 1 : 0];
    if (name != 0)
        return name;
    const GLenum storage = comparison ? GL_DEPTH_COMPONENT32F : GL_RGBA8;
    glCreateTextures(TARGETS[kind], 1, &name);
    if (array)
        glTextureStorage3D(name, 1, storage, 1, 1, type == TEXTURE_TYPE::CUBE ? 6 : 1);
    else
        glTextureStorage2D(name, 1, storage, 1, 1);
    const float zero = 0.0f;
    if (comparison)
        glClearTexImage(name, 0, GL_DEPTH_COMPONENT, GL_FLOAT, &zero);
    else
        glClearTexImage(name, 0, GL_RGBA, GL_UNSIGNED_BYTE, BLACK.data());
    return name;
}

void GlPipeline::setConstantBuffer(unsigned int slot, GlBuffer* buffer) {
    if (slot >= _slotCount) {
        _core.report(
            fmt::format("Constant buffer slot {} is beyond the device's limit of {}", slot, _slotCount));
        return;
    }
    const GLuint name = buffer ? buffer->getName() : _zeroBuffer;
    if (_slots[slot] == name)
        return;
    _slots[slot] = name;
    glBindBufferBase(GL_UNIFORM_BUFFER, slot, name);
    _count();
}

// Sends what a draw needs and was not sent yet. False, reported, without a target or a program.
bool GlPipeline::_prepareDraw(GLuint vertexArray) {
    // A draw without a program is undefined in a core context, so it must not reach the driver.
    if (!_target || _program == UNKNOWN) {
        _core.report(fmt::format("Nothing was drawn: no {} is set", _target ? "program" : "target"));
        return false;
    }
    if (_blendDirty)
        _sendBlend();
    if (_rasterDirty)
        _sendRaster();
    if (_depthDirty)
        _sendDepth();
    if (_vertexArray != vertexArray) {
        _vertexArray = vertexArray;
        glBindVertexArray(vertexArray);
        _count();
    }
    return true;
}

void GlPipeline::drawFullScreenQuad() {
    if (!_prepareDraw(_quadArray))
        return;
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    ++_core.statistics.drawCalls;
}

void GlPipeline::drawGeometry(GlGeometry& geometry, const GeometryDraw& draw) {
    const std::optional<GLenum> mode = glTopologyOf(draw.topology);
    if (!mode) {
        _core.report(fmt::format("Nothing was drawn: topology {} is not offered",
                                 static_cast<unsigned int>(draw.topology)));
        return;
    }
    // Reading vertex data beyond its buffer may crash the process on drivers without robust access.
    if (!geometry.canReadInstances(draw)) {
        _core.report(fmt::format(
            "Nothing was drawn: {} instances of {} bytes from instance {} on are not in their buffer",
            draw.instanceCount, draw.instanceStride, draw.firstInstance));
        return;
    }
    if (!_prepareDraw(geometry.getName()))
        return;
    geometry.setInstances(static_cast<GlBuffer*>(draw.instances), draw.instanceStride);
    const GLsizei count = static_cast<GLsizei>(draw.count);
    const GLsizei instances = static_cast<GLsizei>(draw.instanceCount);
    if (geometry.getIndexType() == GL_NONE)
        glDrawArraysInstancedBaseInstance(*mode, 0, count, instances, draw.firstInstance);
    else
        glDrawElementsInstancedBaseInstance(*mode, count, geometry.getIndexType(), nullptr, instances,
                                            draw.firstInstance);
    ++_core.statistics.drawCalls;
}

void GlPipeline::_sendBlend() {
    const BlendStateDesc& wanted = _blendWanted;
    if (wanted.alphaToCoverage != _blendSent.alphaToCoverage)
        _enable(GL_SAMPLE_ALPHA_TO_COVERAGE, wanted.alphaToCoverage);
    if (wanted.blendFactor != _blendSent.blendFactor) {
        glBlendColor(wanted.blendFactor[0], wanted.blendFactor[1], wanted.blendFactor[2],
                     wanted.blendFactor[3]);
        _count();
    }
    _blendSent.alphaToCoverage = wanted.alphaToCoverage;
    _blendSent.blendFactor = wanted.blendFactor;
    // One call for all. Values are kept for each target, as clears open single masks.
    if (!wanted.independentBlend)
        _sendTargetBlend(0, MAX_COLOR_TARGETS, wanted.targets[0]);
    else
        for (unsigned int i = 0; i < MAX_COLOR_TARGETS; ++i)
            _sendTargetBlend(i, 1, wanted.targets[i]);
    _blendDirty = false;
}

// Sends to one target, or to all of them at once (count is then MAX_COLOR_TARGETS and index 0).
void GlPipeline::_sendTargetBlend(unsigned int index, unsigned int count, const TargetBlendDesc& wanted) {
    const bool all = count > 1;
    TargetBlendDesc* sent = &_blendSent.targets[index];
    const auto differs = [&](auto... fields) {
        return std::any_of(sent, sent + count, [&](const TargetBlendDesc& has) {
            return ((has.*fields != wanted.*fields) || ...);
        });
    };
    const auto store = [&](auto... fields) {
        std::for_each(sent, sent + count,
                      [&](TargetBlendDesc& has) { ((has.*fields = wanted.*fields), ...); });
        _count();
    };
    using T = TargetBlendDesc;
    if (differs(&T::enabled)) {
        const auto change = all ? (wanted.enabled ? glEnable : glDisable) : nullptr;
        if (change)
            change(GL_BLEND);
        else
            (wanted.enabled ? glEnablei : glDisablei)(GL_BLEND, index);
        store(&T::enabled);
    }
    // The mask counts without blending too; equations and factors do not.
    _sendWriteMask(index, count, wanted.writeMask);
    if (!wanted.enabled)
        return;
    if (differs(&T::operation, &T::alphaOperation)) {
        const GLenum color = glBlendOperationOf(wanted.operation);
        const GLenum alpha = glBlendOperationOf(wanted.alphaOperation);
        all ? glBlendEquationSeparate(color, alpha) : glBlendEquationSeparatei(index, color, alpha);
        store(&T::operation, &T::alphaOperation);
    }
    if (differs(&T::sourceFactor, &T::destinationFactor, &T::alphaSourceFactor, &T::alphaDestinationFactor)) {
        const GLenum source = glBlendFactorOf(wanted.sourceFactor);
        const GLenum destination = glBlendFactorOf(wanted.destinationFactor);
        const GLenum alphaSource = glBlendFactorOf(wanted.alphaSourceFactor);
        const GLenum alphaDestination = glBlendFactorOf(wanted.alphaDestinationFactor);
        all ? glBlendFuncSeparate(source, destination, alphaSource, alphaDestination)
            : glBlendFuncSeparatei(index, source, destination, alphaSource, alphaDestination);
        store(&T::sourceFactor, &T::destinationFactor, &T::alphaSourceFactor, &T::alphaDestinationFactor);
    }
}

void GlPipeline::_sendWriteMask(unsigned int index, unsigned int count, unsigned int mask) {
    TargetBlendDesc* sent = &_blendSent.targets[index];
    if (std::all_of(sent, sent + count, [mask](const TargetBlendDesc& has) { return has.writeMask == mask; }))
        return;
    const auto bit = [mask](unsigned int component) -> GLboolean {
        return (mask & component) ? GL_TRUE : GL_FALSE;
    };
    if (count > 1)
        glColorMask(bit(COLOR_WRITE_RED), bit(COLOR_WRITE_GREEN), bit(COLOR_WRITE_BLUE),
                    bit(COLOR_WRITE_ALPHA));
    else
        glColorMaski(index, bit(COLOR_WRITE_RED), bit(COLOR_WRITE_GREEN), bit(COLOR_WRITE_BLUE),
                     bit(COLOR_WRITE_ALPHA));
    std::for_each(sent, sent + count, [mask](TargetBlendDesc& has) { has.writeMask = mask; });
    _blendDirty = true;
    _count();
}

void GlPipeline::_sendRaster() {
    const RasterStateDesc& wanted = _rasterWanted;
    const RasterStateDesc& sent = _rasterSent;
    if (wanted.fill != sent.fill) {
        glPolygonMode(GL_FRONT_AND_BACK, wanted.fill == FILL_MODE::WIREFRAME ? GL_LINE : GL_FILL);
        _count();
    }
    if ((wanted.cull == CULL_MODE::NONE) != (sent.cull == CULL_MODE::NONE))
        _enable(GL_CULL_FACE, wanted.cull != CULL_MODE::NONE);
    if (wanted.cull != sent.cull && wanted.cull != CULL_MODE::NONE) {
        glCullFace(wanted.cull == CULL_MODE::FRONT ? GL_FRONT : GL_BACK);
        _count();
    }
    if (wanted.frontCounterClockwise != sent.frontCounterClockwise) {
        glFrontFace(frontFaceOf(_language, wanted.frontCounterClockwise));
        _count();
    }
    if (biased(wanted) != biased(sent)) {
        _enable(GL_POLYGON_OFFSET_FILL, biased(wanted));
        // Wireframe triangles are lines to OpenGL and have a switch of their own.
        _enable(GL_POLYGON_OFFSET_LINE, biased(wanted));
    }
    if (wanted.depthBias != sent.depthBias || wanted.slopeScaledDepthBias != sent.slopeScaledDepthBias) {
        // OpenGL names the slope first and the constant second.
        glPolygonOffset(wanted.slopeScaledDepthBias, wanted.depthBias);
        _count();
    }
    // The opposite: clamped, geometry beyond near and far is drawn at the limits.
    if (wanted.depthClip != sent.depthClip)
        _enable(GL_DEPTH_CLAMP, !wanted.depthClip);
    _rasterSent = wanted;
    _rasterDirty = false;
}

void GlPipeline::_sendDepth() {
    if (_depthWanted.depthTest != _depthSent.depthTest)
        _enable(GL_DEPTH_TEST, _depthWanted.depthTest);
    _sendDepthWrite(_depthWanted.depthWrite);
    if (_depthWanted.depthComparison != _depthSent.depthComparison) {
        glDepthFunc(glComparisonOf(_depthWanted.depthComparison));
        _count();
    }
    _sendStencil();
    _depthSent = _depthWanted;
    _depthDirty = false;
}

// Apart from the other depth states, because a clear needs the mask open and nothing else.
void GlPipeline::_sendDepthWrite(bool write) {
    if (_depthSent.depthWrite == write)
        return;
    _depthSent.depthWrite = write;
    _depthDirty = true;
    glDepthMask(write ? GL_TRUE : GL_FALSE);
    _count();
}

void GlPipeline::_sendStencilWriteMask(unsigned int mask) {
    if (_depthSent.stencilWriteMask == mask)
        return;
    _depthSent.stencilWriteMask = mask;
    _depthDirty = true;
    glStencilMask(mask);
    _count();
}

void GlPipeline::_sendStencil() {
    if (_depthWanted.stencilTest != _depthSent.stencilTest)
        _enable(GL_STENCIL_TEST, _depthWanted.stencilTest);
    _sendStencilWriteMask(_depthWanted.stencilWriteMask);
    _sendStencilFace(GL_FRONT, _depthWanted.front, _depthSent.front);
    _sendStencilFace(GL_BACK, _depthWanted.back, _depthSent.back);
}

void GlPipeline::_sendStencilFace(GLenum face, const StencilFaceDesc& wanted, const StencilFaceDesc& sent) {
    const bool sameReference = _depthWanted.stencilReference == _depthSent.stencilReference &&
                               _depthWanted.stencilReadMask == _depthSent.stencilReadMask;
    if (!sameReference || wanted.comparison != sent.comparison) {
        glStencilFuncSeparate(face, glComparisonOf(wanted.comparison),
                              static_cast<GLint>(_depthWanted.stencilReference),
                              _depthWanted.stencilReadMask);
        _count();
    }
    if (wanted.stencilFail != sent.stencilFail || wanted.depthFail != sent.depthFail ||
        wanted.pass != sent.pass) {
        glStencilOpSeparate(face, glStencilOperationOf(wanted.stencilFail),
                            glStencilOperationOf(wanted.depthFail), glStencilOperationOf(wanted.pass));
        _count();
    }
}

// OpenGL gives the name of a deleted object to a new one. Without these functions the filter would take the
// new object for the old one and not bind it.
void GlPipeline::forgetTexture(GLuint name) {
    for (Unit& unit : _units)
        if (unit.texture == name)
            unit.texture = UNKNOWN;
}

void GlPipeline::forgetSampler(GLuint name) {
    for (Unit& unit : _units)
        if (unit.sampler == name)
            unit.sampler = UNKNOWN;
}

void GlPipeline::forgetBuffer(GLuint name) {
    std::replace(_slots.begin(), _slots.end(), name, UNKNOWN);
}

void GlPipeline::forgetProgram(GLuint name) {
    if (_program != name)
        return;
    // A program that is in use is only marked for deletion and would live on until another one is used.
    glUseProgram(0);
    _program = UNKNOWN;
}

void GlPipeline::forgetVertexArray(GLuint name) {
    if (_vertexArray == name) // deleting what is bound binds nothing
        _vertexArray = UNKNOWN;
}

void GlPipeline::forgetTarget(GLuint name) {
    if (_target && _target->getName() == name)
        _target = nullptr;
}

} // namespace ovGraphics::device
