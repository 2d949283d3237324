#include <veldris/scene/ShadowGround.h>

#include <algorithm>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <ovVeldris/shaders/ShadowMappingLib.h>
#include <veldris/EmbeddedShaders.h>

namespace veldris {

using ovGraphics::BoundingBox;
using ovMaths::Vector;
using ovMemory::String;

namespace {

constexpr ovMemory::StringView NAME = "VELDRIS_SHADOW_GROUND";
constexpr unsigned int PASS_CONSTANTS = 0;
constexpr unsigned int SHADOW_CONSTANTS = 1;
constexpr unsigned int SHADOW_UNIT = 0;
constexpr unsigned int ALL_STAGES = 0;
constexpr float MISSING_LIGHT = 0.62f; // of a low sun in a bright sky; the rest comes from all around
constexpr float EDGE_SHARE = 0.02f;    // of the radius: the edge of a shadow of the sun, seen from nearby
constexpr float LONGEST_SHADOW = 6.0f; // radii
constexpr float DEPTH_SHARE = 0.001f;  // of the radius, so that a model's own base hides the ground
constexpr float LEAST_SLOPE = 0.05f;   // of the light, downwards

/// The box of where the light through a box meets the ground.
BoundingBox shadowOf(const BoundingBox& box, const Vector& direction, float height, float furthest) {
    BoundingBox shadow;
    const Vector corners[] = {box.getMinimum(), box.getMaximum()};
    for (unsigned int i = 0; i < 8; ++i) {
        const Vector corner(corners[i & 1u].x, corners[i >> 1 & 1u].y, corners[i >> 2 & 1u].z);
        const Vector way = direction * ((corner.y - height) / -direction.y);
        const float length = Vector(way.x, 0.0f, way.z).getLengthVec3();
        const float kept = length > furthest ? furthest / length : 1.0f;
        shadow.add(BoundingBox::newCube({corner.x + kept * way.x, height, corner.z + kept * way.z}, 0.0f));
    }
    return shadow;
}

} // namespace

ovMemory::UniquePtr<ShadowGround> ShadowGround::create(ovGraphics::System& graphics,
                                                       ovGraphics::Texture& shadowMap,
                                                       ovGraphics::Camera& lightCamera) {
    ovMemory::UniquePtr<ShadowGround> ground(new ShadowGround(graphics));
    return ground->_load(shadowMap, lightCamera) ? std::move(ground) : nullptr;
}

ShadowGround::ShadowGround(ovGraphics::System& graphics)
    : _program(ovGraphics::Program::create(&graphics))
    , _sampler(ovGraphics::Sampler::create(&graphics))
    , _shader(ovGraphics::Shader::create(&graphics))
    , _mesh(ovGraphics::Mesh::create(&graphics))
    , _node(ovGraphics::Node::create(&graphics)) {}

ShadowGround::~ShadowGround() = default;

bool ShadowGround::_load(ovGraphics::Texture& shadowMap, ovGraphics::Camera& lightCamera) {
    ovGraphics::ProgramSourcesHolder sources;
    const String pixel =
        String(ovVeldris::ShadowMappingLib::ovShadowMap()) + String(embedded::ShadowGround_pixel);
    sources.setVertexMemory(embedded::ShadowGround_vertex);
    sources.setPixelMemory(pixel);
    _program->setName(NAME);
    _program->setSources(sources);
    _program->setActivateCrossCompilerDefines(true);
    _sampler->setFilter(ovGraphics::FILTER::COMPARISON_MIN_MAG_MIP_LINEAR);
    _sampler->setComparison(ovGraphics::COMPARISON::LESS_EQUAL);
    if (!_program->load() || !_sampler->load())
        return false;
    _shader->setName(NAME);
    _shader->setProgram(_program.get());
    ovGraphics::ConstantBuffer* pass = _shader->addConstantBuffer(PASS_CONSTANTS, ALL_STAGES);
    pass->addPassMemorySlot()->setAsViewMatrix();
    pass->addPassMemorySlot()->setAsProjectionMatrix();
    ovGraphics::ConstantBuffer* shadow = _shader->addConstantBuffer(SHADOW_CONSTANTS, ALL_STAGES);
    shadow->addPassMemorySlot()->setFromVector({0.0f, MISSING_LIGHT, float(shadowMap.getWidth()), 0.0f});
    shadow->addPassMemorySlot()->setAsViewMatrix(&lightCamera);
    shadow->addPassMemorySlot()->setAsProjectionMatrix(&lightCamera);
    _shader->addInstanceMemorySlot()->setAsWorldMatrix();
    _shader->addTexture(&shadowMap, SHADOW_UNIT, ALL_STAGES);
    _shader->addSampler(_sampler.get(), SHADOW_UNIT, ALL_STAGES);

    ovGraphics::VertexComposition composition;
    composition.addAttribute("POSITION", ovGraphics::FORMAT::R32G32B32_FLOAT);
    _mesh->setName(NAME);
    _mesh->setVertexComposition(composition);
    const Vector corners[] = {{-1, 0, 1}, {1, 0, 1}, {-1, 0, -1}, {1, 0, -1}};
    _mesh->fillPackedFromUnpacked(corners);
    _mesh->setNewIndexArray({0, 1, 3, 0, 3, 2}); // clockwise from above
    return _shader->load() && _mesh->load();
}

void ShadowGround::addTo(ovGraphics::RenderQueue& queue) {
    queue.addEntity(_mesh.get(), _shader.get(), _node.get());
}

float ShadowGround::place(const BoundingBox& box, const Vector& direction) {
    const float radius = 0.5f * box.getSize().getLengthVec3();
    if (direction.y > -LEAST_SLOPE) {
        _node->setScale(Vector());
        return 0.0f;
    }
    const float height = box.getMinimum().y - DEPTH_SHARE * radius;
    const float edge = EDGE_SHARE * radius;
    _shader->addConstantBuffer(SHADOW_CONSTANTS, ALL_STAGES)
        ->getPassMemorySlot(0)
        ->setFromVector(
            {edge, MISSING_LIGHT, float(_shader->getTexture(SHADOW_UNIT, ALL_STAGES)->getWidth()), 0.0f});
    const BoundingBox shadow = shadowOf(box, direction, height, LONGEST_SHADOW * radius);
    const Vector half = shadow.getSize() * 0.5f;
    _node->setPosition(shadow.getCenter());
    _node->setScale({half.x + edge, 1.0f, half.z + edge});
    float reach = 0.0f;
    for (const Vector& corner : {shadow.getMinimum(), shadow.getMaximum(),
                                 Vector(shadow.getMinimum().x, height, shadow.getMaximum().z),
                                 Vector(shadow.getMaximum().x, height, shadow.getMinimum().z)})
        reach = std::max(reach, (corner - box.getCenter()).dotProductVec3(direction));
    return reach + edge;
}

} // namespace veldris
