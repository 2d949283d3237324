#include <veldris/scene/SceneGeometry.h>

#include <ovGraphics/compositor/ScenePass.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Texture.h>
#include <veldris/pictures/PictureTextures.h>

namespace veldris {

using ovGraphics::FORMAT;

ovMemory::UniquePtr<SceneGeometry> SceneGeometry::create(ovGraphics::System& graphics, unsigned int width,
                                                         unsigned int height, bool withNormals,
                                                         unsigned int variant) {
    ovMemory::UniquePtr<SceneGeometry> geometry(new SceneGeometry(graphics, variant));
    // Half floats would be off by a metre at two kilometres.
    geometry->_positions = makeTarget(graphics, "positions", FORMAT::R32G32B32A32_FLOAT, width, height);
    if (withNormals)
        geometry->_normals = makeTarget(graphics, "normals", FORMAT::R16G16B16A16_FLOAT, width, height);
    const bool made = geometry->_positions && (geometry->_normals || !withNormals);
    return made ? std::move(geometry) : nullptr;
}

SceneGeometry::SceneGeometry(ovGraphics::System& graphics, unsigned int variant)
    : _variant(variant)
    , _surfaces(graphics, variant, true) {}

void SceneGeometry::appendPass(ovGraphics::CompositorNode& node, ovGraphics::Texture& depth,
                               ovGraphics::RenderQueue& queue, ovGraphics::Camera& camera) {
    ovGraphics::CompositorOperationsBlock* block = node.appendOperationsBlock();
    block->setTarget(0, _positions.get());
    if (_normals)
        block->setTarget(1, _normals.get());
    block->setDepthBuffer(&depth);
    block->appendClearPass();
    ovGraphics::ScenePass* pass = block->appendScenePass();
    pass->setName("positions and normals");
    pass->setRenderQueue(&queue);
    pass->setCamera(&camera);
    pass->setShaderVariant(_variant);
}

bool SceneGeometry::add(ovGraphics::RenderQueue& queue, const ovVeldris::PbsMaterial& material,
                        ovGraphics::GLTF_ALPHA_MODE alphaMode) {
    return _surfaces.add(queue, material, alphaMode, material.getAlphaCutoff());
}

} // namespace veldris
