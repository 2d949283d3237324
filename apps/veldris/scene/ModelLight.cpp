#include <veldris/scene/ModelLight.h>

#include <algorithm>
#include <ovVeldris/content/Model.h>
#include <ovVeldris/materials/PbsMaterial.h>

namespace veldris {

using ovMaths::Vector;

namespace {

/// The default brightness in the hue of a light.
Vector lightColorOf(const ovGraphics::GltfDirectionalLight& light) {
    const float brightest = std::max({light.color.x, light.color.y, light.color.z});
    // The hue first: the factor of a very faint light would be infinite.
    return brightest > 0.0f ? light.color / brightest * DEFAULT_LIGHT_COLOR.x : Vector();
}

} // namespace

void giveModelLight(const ovVeldris::Model& model) {
    const auto& light = model.getLight();
    for (const ovVeldris::ModelMaterial& own : model.getMaterials()) {
        own.material->setLightDirection(light ? light->direction : DEFAULT_LIGHT_DIRECTION);
        own.material->setLightColor(light ? lightColorOf(*light) : DEFAULT_LIGHT_COLOR);
        own.material->setEnvironmentColor(DEFAULT_AMBIENT_COLOR);
    }
}

ovMemory::Buffer<ovVeldris::PbsMaterial*> materialsOf(const ovVeldris::Model& model) {
    ovMemory::Buffer<ovVeldris::PbsMaterial*> materials;
    for (const ovVeldris::ModelMaterial& own : model.getMaterials())
        materials.push_back(own.material.get());
    return materials;
}

} // namespace veldris
