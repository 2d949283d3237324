#include "ovGraphics/BenchmarkScene.h"

#include <array>
#include <cmath>
#include <ovGraphics/compositor/ScenePass.h>
#include <ovGraphics/device/Device.h>

namespace ovBenchmarks {

using ovMaths::Vector;

namespace {

constexpr const char* VERTEX_TEXT = R"glsl(
ovConstantBufferDecl(passConstants, 0) { ovFloat4x4 viewMat; ovFloat4x4 projMat; };
in vec4 POSITION;
in vec4 NORMAL;
in mat4 INSTANCE_WORLD_MATRIX;
in mat4 INSTANCE_WORLD_MATRIX_INV_TRANSPOSE;
out vec3 PIX_NORMAL;
void main() {
    gl_Position = ovMul(projMat, ovMul(viewMat, ovMul(INSTANCE_WORLD_MATRIX, POSITION)));
    PIX_NORMAL = ovMul(INSTANCE_WORLD_MATRIX_INV_TRANSPOSE, vec4(NORMAL.xyz, 0.0)).xyz;
}
)glsl";

constexpr const char* PIXEL_TEXT = R"glsl(
ovConstantBufferDecl(constants, 1) { ovFloat4 colour; };
ovTexture2dDecl(image, 0);
ovSamplerDecl(state, 0);
in vec3 PIX_NORMAL;
out vec4 OUT_COLOR;
void main() { OUT_COLOR = colour * ovSample(image, state, PIX_NORMAL.xy); }
)glsl";

} // namespace

Vector placeOf(std::size_t entity, std::size_t entities, float time) {
    const auto side = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(entities))));
    const float spacing = 100.0f / static_cast<float>(side);
    const float middle = 0.5f * static_cast<float>(side - 1);
    return {(static_cast<float>(entity % side) - middle) * spacing + time,
            (static_cast<float>(entity / side) - middle) * spacing, 0.0f};
}

ovMaths::Quaternion turnOf(std::size_t entity, float time) {
    const auto axis = static_cast<float>(entity % 7);
    return ovMaths::Quaternion(0.1f * axis, 0.3f * time, 0.2f, 1.0f);
}

Box::Box(std::size_t mesh) {
    const float height = 0.2f + 0.05f * static_cast<float>(mesh);
    for (unsigned int corner = 0; corner < 8; ++corner) {
        const auto side = [corner](unsigned int axis) { return corner >> axis & 1u ? 0.5f : -0.5f; };
        const Vector position(side(0) * 0.8f, side(1) * height, side(2) * 0.8f);
        values.push_back(position);
        values.push_back(position.getNormalizedVec3());
    }
    for (const unsigned int face : {0x0132u, 0x4675u, 0x0451u, 0x2376u, 0x0264u, 0x1573u}) {
        const auto corner = [face](unsigned int place) { return face >> (4 * (3 - place)) & 7u; };
        for (const unsigned int place : {0u, 1u, 2u, 0u, 2u, 3u})
            indices.push_back(corner(place));
    }
}

LibraryScene::LibraryScene(std::size_t entities, ovMemory::UniquePtr<ovGraphics::device::Device> device)
    : _entities(entities) {
    ovGraphics::Configuration configuration;
    configuration.software = true;
    const bool isOpen =
        device ? _system.initialize(configuration, std::move(device)) : _system.initialize(configuration);
    _ready = isOpen && _build();
}

LibraryScene::~LibraryScene() = default;

void LibraryScene::invalidate() {
    _system.getDevice()->invalidateState();
}

void LibraryScene::moveAll(float time) {
    for (std::size_t i = 0; i < _entities; ++i)
        _nodes[i]->setPosition(placeOf(i, _entities, time));
}

void LibraryScene::turnAll(float time) {
    for (std::size_t i = 0; i < _entities; ++i)
        _nodes[i]->setOrientation(turnOf(i, time));
}

ovGraphics::Entity* LibraryScene::add() {
    return _queue->addEntity(_meshes[0].get(), _shaders[0].get(), _nodes[0].get());
}

bool LibraryScene::_build() {
    _camera = ovGraphics::Camera::create(&_system);
    _camera->setPosition({0.0f, 0.0f, -10.0f});
    _camera->setOrthographic(102.0f, 102.0f, 1.0f, 100.0f);
    _queue = ovGraphics::RenderQueue::create(&_system);
    if (!_buildProgram() || !_buildMeshes() || !_buildMaterials())
        return false;
    _buildEntities();
    return _buildPasses();
}

bool LibraryScene::_buildProgram() {
    ovGraphics::ProgramSourcesHolder sources;
    sources.setVertexMemory(VERTEX_TEXT);
    sources.setPixelMemory(PIXEL_TEXT);
    _program = ovGraphics::Program::create(&_system);
    _program->setSources(sources);
    _program->setActivateCrossCompilerDefines(true);
    _sampler = ovGraphics::Sampler::create(&_system);
    return _program->load() && _sampler->load();
}

bool LibraryScene::_buildMeshes() {
    ovGraphics::VertexComposition composition;
    composition.addAttribute("POSITION", ovGraphics::FORMAT::R32G32B32_FLOAT);
    composition.addAttribute("NORMAL", ovGraphics::FORMAT::R32G32B32_FLOAT);
    bool loaded = true;
    for (std::size_t i = 0; i < MESHES; ++i) {
        const Box box(i);
        auto mesh = ovGraphics::Mesh::create(&_system);
        mesh->setVertexComposition(composition);
        mesh->fillPackedFromUnpacked(box.values);
        mesh->setNewIndexArray(box.indices);
        loaded = mesh->load() && loaded;
        _meshes.push_back(std::move(mesh));
    }
    return loaded;
}

bool LibraryScene::_buildMaterials() {
    bool loaded = true;
    for (std::size_t i = 0; i < MATERIALS; ++i) {
        auto texture = ovGraphics::Texture::create(&_system);
        const std::array<unsigned char, 4> texel = {255, static_cast<unsigned char>(i), 0, 255};
        texture->setCpuData(0, 0, texel);
        auto shader = ovGraphics::Shader::create(&_system);
        shader->setProgram(_program.get());
        ovGraphics::ConstantBuffer* pass = shader->addConstantBuffer(0, 0);
        pass->addPassMemorySlot()->setAsViewMatrix();
        pass->addPassMemorySlot()->setAsProjectionMatrix();
        shader->addConstantBuffer(1, 0)->addPassMemorySlot()->setFromVector(
            {static_cast<float>(i) / MATERIALS, 1.0f, 1.0f, 1.0f});
        shader->addInstanceMemorySlot()->setAsWorldMatrix();
        shader->addInstanceMemorySlot()->setAsWorldMatrixInvTranspose();
        shader->addTexture(texture.get(), 0, 0);
        shader->addSampler(_sampler.get(), 0, 0);
        loaded = texture->load() && shader->load() && loaded;
        _textures.push_back(std::move(texture));
        _shaders.push_back(std::move(shader));
    }
    return loaded;
}

void LibraryScene::_buildEntities() {
    for (std::size_t i = 0; i < _entities; ++i) {
        _nodes.push_back(ovGraphics::Node::create(&_system));
        _queue->addEntity(_meshes[i / (_entities / MATERIALS / MESHES) % MESHES].get(),
                          _shaders[i / (_entities / MATERIALS)].get(), _nodes.back().get());
    }
    moveAll(0.0f);
    _otherQueue = ovGraphics::RenderQueue::create(&_system);
    _otherQueue->addEntity(_meshes[0].get(), _shaders[0].get(), _nodes[0].get());
}

bool LibraryScene::_buildPasses() {
    _target = ovGraphics::Texture::create(&_system);
    _target->setWidth(SIDE);
    _target->setHeight(SIDE);
    _target->setUsableAsRenderTarget(true);
    _compositor = ovGraphics::Compositor::create(&_system);
    ovGraphics::CompositorOperationsBlock* block = _compositor->appendNode()->appendOperationsBlock();
    block->setTarget(0, _target.get());
    block->appendClearPass();
    ovGraphics::ScenePass* pass = block->appendScenePass();
    pass->setRenderQueue(_queue.get());
    pass->setCamera(_camera.get());
    pass->getDepthStencilState().setDepthTestEnabled(false);
    _context = ovGraphics::RenderContext::create(&_system);
    _context->setDescriptor({.texture = _target.get()});
    _context->setCompositor(_compositor.get());
    return _target->load();
}

} // namespace ovBenchmarks
