#include <veldris/demo/DemoSet.h>

#include <ovGraphics/System.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <veldris/Session.h>

namespace veldris {

using ovMaths::Vector;
using ovMemory::String;
using ovVeldris::PbsMaterial;

DemoSet::DemoSet(Session& session, ScenePicture& scene)
    : _session(session)
    , _graphics(session.getGraphics())
    , _scene(scene) {}

DemoSet::~DemoSet() = default;

void DemoSet::addSphere(ovGraphics::Mesh& mesh, const Vector& position, float radius,
                        const Configure& configure) {
    addShape(mesh, position, {radius, radius, radius}, configure);
}

void DemoSet::addShape(ovGraphics::Mesh& mesh, const Vector& position, const Vector& half,
                       const Configure& configure) {
    _box.add(ovGraphics::BoundingBox::newBox(position, half * 2.0f));
    const Placement placement = {position, half};
    addCopies(mesh, {&placement, 1}, configure);
}

void DemoSet::addGround(ovGraphics::Mesh& mesh, float height, float halfSide, const Configure& configure) {
    const Placement placement = {{0.0f, height, 0.0f}, {halfSide, halfSide, halfSide}};
    addCopies(mesh, {&placement, 1}, configure);
}

ovGraphics::Texture* DemoSet::keep(ovMemory::UniquePtr<ovGraphics::Texture> texture) {
    return _textures.emplace_back(std::move(texture)).get();
}

void DemoSet::addCopies(ovGraphics::Mesh& mesh, ovMemory::BufferView<const Placement> placements,
                        const Configure& configure) {
    auto material = PbsMaterial::create(&_session.getSystem());
    material->setName("demo material " + std::to_string(_materials.size()));
    material->setReconstructBinormals(false);
    _scene.light(*material);
    configure(*material);
    // Noted and told when drawing: adding objects has no error to return.
    _loaded = material->load() && _loaded;
    for (const Placement& placement : placements) {
        auto node = ovGraphics::Node::create(&_graphics);
        node->setPosition(placement.position);
        node->setScale(placement.half);
        ovMaths::Quaternion turn;
        ovMaths::Quaternion lean;
        turn.setFromAxisAngle({0.0f, 1.0f, 0.0f}, placement.turn);
        lean.setFromAxisAngle({1.0f, 0.0f, 0.0f}, placement.lean);
        node->setOrientation(turn * lean);
        _scene.getSolid().addEntity(&mesh, material->getShader(), node.get());
        _nodes.push_back(std::move(node));
    }
    // Nothing in the demo blends: alpha means holes.
    const auto alphaMode =
        material->getAlphaTexture() ? ovGraphics::GLTF_ALPHA_MODE::MASK : ovGraphics::GLTF_ALPHA_MODE::OPAQUE;
    _loaded = _scene.prepareSurface(*material, alphaMode) && _loaded;
    _materials.push_back(std::move(material));
}

bool DemoSet::draw(const CameraChoice& camera, MaterialPicture& picture, String& error) {
    _scene.fitShadow(_box);
    return placeCamera(camera, _box, nullptr, _scene.getAspect(), _scene.getCamera(), error) &&
           drawAsPlaced(picture, error);
}

bool DemoSet::drawAsPlaced(MaterialPicture& picture, String& error) {
    if (!_loaded) {
        error = _session.getLogger().take();
        return false;
    }
    String warning;
    picture.texture = _scene.draw(warning, error);
    picture.passes = _scene.getTimings();
    return picture.texture != nullptr;
}

double sumOf(const ovMemory::Buffer<ovGraphics::PassTiming>& timings) {
    double sum = 0.0;
    for (const ovGraphics::PassTiming& timing : timings)
        sum += timing.milliseconds;
    return sum;
}

} // namespace veldris
