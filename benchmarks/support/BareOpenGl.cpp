#include "support/BareOpenGl.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <epoxy/gl.h>

namespace ovBenchmarks {

namespace {

constexpr const char* VERTEX_TEXT = R"glsl(#version 450 core
layout(location = 0) in vec4 position;
layout(location = 2) in vec2 texCoord;
layout(location = 0) out vec2 uvs;
out gl_PerVertex { vec4 gl_Position; };
void main() {
    gl_Position = position;
    uvs = texCoord;
}
)glsl";

GLuint compileStage(GLenum stage, const char* text) {
    const GLuint shader = glCreateShader(stage);
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    GLint compiled = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (!compiled) {
        std::array<char, 4096> log{};
        glGetShaderInfoLog(shader, log.size(), nullptr, log.data());
        std::fprintf(stderr, "a baseline shader does not compile: %s\n", log.data());
        std::abort();
    }
    return shader;
}

GLuint linkProgram(const char* pixelText) {
    const GLuint program = glCreateProgram();
    for (const GLuint shader :
         {compileStage(GL_VERTEX_SHADER, VERTEX_TEXT), compileStage(GL_FRAGMENT_SHADER, pixelText)}) {
        glAttachShader(program, shader);
        glDeleteShader(shader);
    }
    glLinkProgram(program);
    return program;
}

GLuint createTexture(GLenum format, int width, int height) {
    GLuint texture = 0;
    glCreateTextures(GL_TEXTURE_2D, 1, &texture);
    glTextureStorage2D(texture, 1, format, width, height);
    return texture;
}

/// The quad that all passes draw, made once for the context.
GLuint quadArray() {
    static GLuint array = 0;
    if (array != 0)
        return array;
    // POSITION (x, y, z, w), TEXCOORD (u, v): row 0 of a target is the top with OpenGL's own clip rules.
    constexpr float VERTICES[] = {-1, -1, 0, 1, 0, 0, 1, -1, 0, 1, 1, 0, -1, 1, 0, 1, 0, 1, 1, 1, 0, 1, 1, 1};
    GLuint buffer = 0;
    glCreateBuffers(1, &buffer);
    glNamedBufferStorage(buffer, sizeof(VERTICES), VERTICES, 0);
    glCreateVertexArrays(1, &array);
    glVertexArrayVertexBuffer(array, 0, buffer, 0, 6 * sizeof(float));
    for (const GLuint location : {0u, 2u}) {
        glEnableVertexArrayAttrib(array, location);
        glVertexArrayAttribBinding(array, location, 0);
    }
    glVertexArrayAttribFormat(array, 0, 4, GL_FLOAT, GL_FALSE, 0);
    glVertexArrayAttribFormat(array, 2, 2, GL_FLOAT, GL_FALSE, 4 * sizeof(float));
    return array;
}

} // namespace

BareOpenGlPass::BareOpenGlPass(const std::string& pixelText, unsigned int format, int width, int height,
                               const std::vector<float>& constants)
    : _program(linkProgram(pixelText.c_str()))
    , _source(createTexture(format, width, height))
    , _width(width)
    , _height(height) {
    glCreateFramebuffers(1, &_framebuffer);
    addTarget(format);
    glCreateSamplers(1, &_sampler);
    glSamplerParameteri(_sampler, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glSamplerParameteri(_sampler, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glSamplerParameteri(_sampler, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glSamplerParameteri(_sampler, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glSamplerParameterf(_sampler, GL_TEXTURE_MIN_LOD, 0.0f);
    glSamplerParameterf(_sampler, GL_TEXTURE_MAX_LOD, 0.0f);
    if (constants.empty())
        return;
    glCreateBuffers(1, &_constants);
    glNamedBufferStorage(_constants, static_cast<GLsizeiptr>(constants.size() * sizeof(float)),
                         constants.data(), 0);
}

BareOpenGlPass::~BareOpenGlPass() {
    glDeleteProgram(_program);
    glDeleteTextures(1, &_source);
    glDeleteTextures(static_cast<GLsizei>(_targets.size()), _targets.data());
    glDeleteFramebuffers(1, &_framebuffer);
    glDeleteSamplers(1, &_sampler);
    glDeleteBuffers(1, &_constants);
    for (const UsedTexture& used : _more)
        if (used.isOwned)
            glDeleteTextures(1, &used.texture);
}

void BareOpenGlPass::setLinear() {
    glSamplerParameteri(_sampler, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glSamplerParameteri(_sampler, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
}

void BareOpenGlPass::setSource(unsigned int componentType, const void* texels) {
    glTextureSubImage2D(_source, 0, 0, 0, _width, _height, GL_RGBA, componentType, texels);
}

void BareOpenGlPass::addTexture(unsigned int unit, unsigned int format, int width, int height,
                                int componentCount, unsigned int componentType, const void* texels) {
    constexpr GLenum LAYOUTS[] = {GL_RED, GL_RG, GL_RGB, GL_RGBA};
    const GLuint texture = createTexture(format, width, height);
    glTextureSubImage2D(texture, 0, 0, 0, width, height, LAYOUTS[componentCount - 1], componentType, texels);
    _more.push_back({unit, texture, true});
}

void BareOpenGlPass::addTarget(unsigned int format) {
    std::vector<GLenum> attachments;
    _targets.push_back(createTexture(format, _width, _height));
    for (GLenum i = 0; i < _targets.size(); ++i)
        attachments.push_back(GL_COLOR_ATTACHMENT0 + i);
    glNamedFramebufferTexture(_framebuffer, attachments.back(), _targets.back(), 0);
    glNamedFramebufferDrawBuffers(_framebuffer, static_cast<GLsizei>(attachments.size()), attachments.data());
}

void BareOpenGlPass::readTargetOf(const BareOpenGlPass& other, unsigned int unit, std::size_t target) {
    _more.push_back({unit, other._targets[target], false});
}

void BareOpenGlPass::setZeroBorder() {
    glSamplerParameteri(_sampler, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_BORDER);
    glSamplerParameteri(_sampler, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_BORDER);
}

void BareOpenGlPass::bindSharedState() {
    glClipControl(GL_LOWER_LEFT, GL_NEGATIVE_ONE_TO_ONE);
    glDisable(GL_BLEND);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    glDisable(GL_SCISSOR_TEST);
    glDisable(GL_FRAMEBUFFER_SRGB);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glBindVertexArray(quadArray());
}

void BareOpenGlPass::draw() const {
    glBindFramebuffer(GL_FRAMEBUFFER, _framebuffer);
    glViewport(0, 0, _width, _height);
    glUseProgram(_program);
    glBindTextureUnit(0, _source);
    glBindSampler(0, _sampler);
    for (const UsedTexture& used : _more) {
        glBindTextureUnit(used.unit, used.texture);
        glBindSampler(used.unit, _sampler);
    }
    if (_constants != 0)
        glBindBufferBase(GL_UNIFORM_BUFFER, 0, _constants);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

std::vector<float> BareOpenGlPass::read() const {
    std::vector<float> texels(4 * static_cast<std::size_t>(_width) * static_cast<std::size_t>(_height));
    glGetTextureImage(_targets.front(), 0, GL_RGBA, GL_FLOAT,
                      static_cast<GLsizei>(texels.size() * sizeof(float)), texels.data());
    return texels;
}

void finish() {
    glFinish();
}

} // namespace ovBenchmarks
