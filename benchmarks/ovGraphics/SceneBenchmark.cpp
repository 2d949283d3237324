// What a scene of many entities costs beside hand-written OpenGL that draws the same instances.
//
// 10,000 entities, 100 materials of one program (each with its own constants and texture), 10 meshes, into a
// small target. The baseline binds each material once and draws each mesh with one instanced call, from
// buffers that were filled once: the fewest calls that draw this picture. A measurement is FRAMES frames and
// one wait for the device.
#include "ovGraphics/BenchmarkScene.h"
#include "support/Aims.h"
#include "support/Pairs.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <epoxy/gl.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Camera.h>

namespace {

using namespace ovBenchmarks;
using ovMaths::Matrix;
using ovMaths::Vector;

constexpr std::size_t ENTITIES = 10000;
constexpr std::size_t ENTITIES_OF_A_PAIR = ENTITIES / MATERIALS / MESHES;
constexpr int FRAMES = 5;
constexpr int ROUNDS = 21;

// The same by hand.
constexpr const char* BARE_VERTEX_TEXT = R"glsl(#version 450 core
layout(binding = 0, std140) uniform PassConstants { mat4 viewMat; mat4 projMat; };
layout(location = 0) in vec4 position;
layout(location = 1) in vec4 normal;
layout(location = 5) in mat4 world;
layout(location = 9) in mat4 invTranspose;
layout(location = 0) out vec3 passedNormal;
out gl_PerVertex { vec4 gl_Position; };
vec4 product(mat4 m, vec4 v) { return vec4(dot(m[0], v), dot(m[1], v), dot(m[2], v), dot(m[3], v)); }
void main() {
    gl_Position = product(projMat, product(viewMat, product(world, position)));
    passedNormal = product(invTranspose, vec4(normal.xyz, 0.0)).xyz;
}
)glsl";

constexpr const char* BARE_PIXEL_TEXT = R"glsl(#version 450 core
layout(binding = 1, std140) uniform Constants { vec4 colour; };
layout(binding = 0) uniform sampler2D image;
layout(location = 0) in vec3 passedNormal;
layout(location = 0) out vec4 result;
void main() { result = colour * texture(image, passedNormal.xy); }
)glsl";

GLuint makeBuffer(const void* bytes, std::size_t size) {
    GLuint buffer = 0;
    glCreateBuffers(1, &buffer);
    glNamedBufferStorage(buffer, static_cast<GLsizeiptr>(size), bytes, 0);
    return buffer;
}

GLuint makeProgram() {
    const GLuint program = glCreateProgram();
    const std::array<std::pair<GLenum, const char*>, 2> stages = {
        {{GL_VERTEX_SHADER, BARE_VERTEX_TEXT}, {GL_FRAGMENT_SHADER, BARE_PIXEL_TEXT}}};
    for (const auto& [stage, text] : stages) {
        const GLuint shader = glCreateShader(stage);
        glShaderSource(shader, 1, &text, nullptr);
        glCompileShader(shader);
        glAttachShader(program, shader);
    }
    glLinkProgram(program);
    GLint linked = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (!linked) {
        std::fprintf(stderr, "the baseline's program does not link\n");
        std::abort();
    }
    return program;
}

/// The same scene by hand. Lives as long as its context, which frees what it made.
class BareScene {
public:
    explicit BareScene(const ovGraphics::Camera& camera)
        : _program(makeProgram()) {
        const std::array<Matrix, 2> pass = {camera.getViewMatrix(),
                                            camera.getProjectionMatrix(ovGraphics::SHADER_LANGUAGE::GLSL)};
        _passConstants = makeBuffer(pass.data(), sizeof(pass));
        glCreateTextures(GL_TEXTURE_2D, 1, &_target);
        glTextureStorage2D(_target, 1, GL_RGBA8, SIDE, SIDE);
        glCreateFramebuffers(1, &_framebuffer);
        glNamedFramebufferTexture(_framebuffer, GL_COLOR_ATTACHMENT0, _target, 0);
        glCreateSamplers(1, &_sampler);
        _makeInstances();
        for (std::size_t i = 0; i < MESHES; ++i)
            _arrays.push_back(_makeArray(Box(i)));
        for (std::size_t i = 0; i < MATERIALS; ++i)
            _makeMaterial(i);
    }

    static void bindSharedState() {
        glClipControl(GL_LOWER_LEFT, GL_NEGATIVE_ONE_TO_ONE);
        glDisable(GL_BLEND);
        glDisable(GL_DEPTH_TEST);
        glEnable(GL_CULL_FACE);
        glCullFace(GL_BACK);
        glFrontFace(GL_CCW);
        glDisable(GL_FRAMEBUFFER_SRGB);
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    }

    void draw() const {
        constexpr std::array<float, 4> BLACK{};
        glBindFramebuffer(GL_FRAMEBUFFER, _framebuffer);
        glViewport(0, 0, SIDE, SIDE);
        glClearNamedFramebufferfv(_framebuffer, GL_COLOR, 0, BLACK.data());
        glUseProgram(_program);
        glBindBufferBase(GL_UNIFORM_BUFFER, 0, _passConstants);
        glBindSampler(0, _sampler);
        for (std::size_t material = 0; material < MATERIALS; ++material) {
            glBindBufferBase(GL_UNIFORM_BUFFER, 1, _constants[material]);
            glBindTextureUnit(0, _textures[material]);
            for (std::size_t mesh = 0; mesh < MESHES; ++mesh) {
                glBindVertexArray(_arrays[mesh]);
                glDrawElementsInstancedBaseInstance(
                    GL_TRIANGLES, 36, GL_UNSIGNED_SHORT, nullptr, ENTITIES_OF_A_PAIR,
                    static_cast<GLuint>((material * MESHES + mesh) * ENTITIES_OF_A_PAIR));
            }
        }
    }

    ovMemory::Buffer<unsigned char> read() const {
        ovMemory::Buffer<unsigned char> bytes(std::size_t{SIDE} * SIDE * 4);
        glGetTextureImage(_target, 0, GL_RGBA, GL_UNSIGNED_BYTE, static_cast<GLsizei>(bytes.size()),
                          bytes.data());
        return bytes;
    }

private:
    void _makeInstances() {
        ovMemory::Buffer<Matrix> matrices;
        for (std::size_t i = 0; i < ENTITIES; ++i) {
            Matrix world;
            world.setPositionComponent(placeOf(i, ENTITIES, 0.0f));
            matrices.push_back(world);
            matrices.push_back(world.getInverseMat4().getTranspose());
        }
        _instances = makeBuffer(matrices.data(), matrices.size() * sizeof(Matrix));
    }

    GLuint _makeArray(const Box& box) const {
        ovMemory::Buffer<float> vertices;
        for (const Vector& value : box.values)
            vertices.insert(vertices.end(), {value.x, value.y, value.z});
        const ovMemory::Buffer<uint16_t> indices(box.indices.begin(), box.indices.end());
        GLuint array = 0;
        glCreateVertexArrays(1, &array);
        glVertexArrayVertexBuffer(array, 0, makeBuffer(vertices.data(), vertices.size() * sizeof(float)), 0,
                                  6 * sizeof(float));
        glVertexArrayVertexBuffer(array, 1, _instances, 0, 2 * sizeof(Matrix));
        glVertexArrayBindingDivisor(array, 1, 1);
        glVertexArrayElementBuffer(array, makeBuffer(indices.data(), indices.size() * sizeof(uint16_t)));
        const auto attribute = [array](GLuint location, GLint components, GLuint offset, GLuint binding) {
            glEnableVertexArrayAttrib(array, location);
            glVertexArrayAttribFormat(array, location, components, GL_FLOAT, GL_FALSE, offset);
            glVertexArrayAttribBinding(array, location, binding);
        };
        attribute(0, 3, 0, 0);
        attribute(1, 3, 3 * sizeof(float), 0);
        for (GLuint row = 0; row < 8; ++row)
            attribute(5 + row, 4, row * 4 * sizeof(float), 1);
        return array;
    }

    void _makeMaterial(std::size_t material) {
        const std::array<float, 4> color = {static_cast<float>(material) / MATERIALS, 1.0f, 1.0f, 1.0f};
        const std::array<unsigned char, 4> texel = {255, static_cast<unsigned char>(material), 0, 255};
        GLuint texture = 0;
        glCreateTextures(GL_TEXTURE_2D, 1, &texture);
        glTextureStorage2D(texture, 1, GL_RGBA8, 1, 1);
        glTextureSubImage2D(texture, 0, 0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, texel.data());
        _textures.push_back(texture);
        _constants.push_back(makeBuffer(color.data(), sizeof(color)));
    }

    GLuint _program;
    GLuint _passConstants = 0;
    GLuint _target = 0;
    GLuint _framebuffer = 0;
    GLuint _sampler = 0;
    GLuint _instances = 0;
    ovMemory::Buffer<GLuint> _arrays;
    ovMemory::Buffer<GLuint> _constants;
    ovMemory::Buffer<GLuint> _textures;
};

bool drawTheSame(LibraryScene& library, const BareScene& bare) {
    library.draw();
    const auto ours = library.read();
    BareScene::bindSharedState();
    bare.draw();
    glFinish();
    const bool same = ours == bare.read();
    library.invalidate();
    return same;
}

void tenThousandEntities(benchmark::State& state, bool moving) {
    LibraryScene library(ENTITIES);
    if (!library.isReady()) {
        state.SkipWithError("the library's scene could not be loaded");
        return;
    }
    const BareScene bare(library.getCamera());
    if (!drawTheSame(library, bare)) {
        state.SkipWithError("the two sides draw different pictures");
        return;
    }
    float time = 0.0f;
    const ovBenchmarks::Side baseline{BareScene::bindSharedState, [&] {
                                          for (int frame = 0; frame < FRAMES; ++frame)
                                              bare.draw();
                                          glFinish();
                                      }};
    const ovBenchmarks::Side ours{[&] {
                                      library.invalidate();
                                      library.draw();
                                      glFinish();
                                  },
                                  [&] {
                                      for (int frame = 0; frame < FRAMES; ++frame) {
                                          if (moving)
                                              library.moveAll(time = 0.5f - time);
                                          library.draw();
                                      }
                                      glFinish();
                                  }};
    ovBenchmarks::runPair(state, baseline, ours, ROUNDS);
    ovBenchmarks::aimAtRatio(state, moving ? 2.0 : 1.3);
}

BENCHMARK_CAPTURE(tenThousandEntities, still, false)
    ->Name("scene/10000_entities_still_over_bare_opengl")
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(tenThousandEntities, moving, true)
    ->Name("scene/10000_entities_moving_over_still_bare_opengl")
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
