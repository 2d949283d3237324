#include <ovVeldris/content/Model.h>

#include <algorithm>
#include <ovGraphics/Managers.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/materials/MaterialManager.h>
#include <ovVeldris/materials/PbsMaterial.h>

namespace ovVeldris {

namespace {

/// Destroys an object if it still belongs to the manager, under its present name.
template <typename Manager, typename Object>
void eraseFrom(Manager& manager, const Object* object) {
    if (object && manager.get(object->getName()) == object)
        manager.erase(ovMemory::String(object->getName()));
}

} // namespace

Model::Model(System* system)
    : _system(system) {}

Model::~Model() {
    if (MaterialManager* materials = _system ? _system->getMaterialManager() : nullptr) {
        for (const ModelMaterial& own : _materials)
            eraseFrom(*materials, own.material.get());
    }
    ovGraphics::System* graphics = graphicsSystemOf(_system.get());
    if (!graphics)
        return;
    for (const SampledTexture& own : _textures) {
        eraseFrom(*graphics->getTextureManager(), own.texture.get());
        eraseFrom(*graphics->getSamplerManager(), own.sampler.get());
    }
}

ovGraphics::Node* Model::getCameraNode(unsigned int camera) const {
    return camera < _cameraNodes.size() ? _cameraNodes[camera] : nullptr;
}

ovGraphics::Node* Model::findNode(ovMemory::StringView name) const {
    const auto found = std::find_if(_nodes.begin(), _nodes.end(),
                                    [&](const auto& node) { return node && node->getName() == name; });
    return found != _nodes.end() ? found->get() : nullptr;
}

ovGraphics::BoundingBox Model::getBoundingBox() const {
    ovGraphics::BoundingBox box;
    for (const ModelPart& part : _parts)
        box.add(part.mesh->getBoundingBox().getTransformed(part.node->getWorldMatrix()));
    return box;
}

ovGraphics::Sampler* Model::getSampler(const ovGraphics::Texture* texture) const {
    const auto found = std::find_if(_textures.begin(), _textures.end(), [&](const SampledTexture& own) {
        return own.texture.get() == texture && texture;
    });
    return found != _textures.end() ? found->sampler.get() : nullptr;
}

bool Model::loadMaterials() {
    bool loaded = true;
    for (const ModelMaterial& own : _materials) {
        if (!own.material)
            logMessage(_system.get(),
                       "Could not load the material '" + own.name +
                           "' of a model: it was destroyed; load the model anew.",
                       "Model");
        loaded = own.material && own.material->load() && loaded;
    }
    return loaded;
}

void Model::addTo(ovGraphics::RenderQueue& solid, ovGraphics::RenderQueue& blended) const {
    for (const ModelPart& part : _parts) {
        const ModelMaterial& own = _materials[part.material];
        if (!own.material)
            continue;
        const bool blends = own.alphaMode == ovGraphics::GLTF_ALPHA_MODE::BLEND;
        (blends ? blended : solid).addEntity(part.mesh, own.material->getShader(), part.node);
    }
}

} // namespace ovVeldris
