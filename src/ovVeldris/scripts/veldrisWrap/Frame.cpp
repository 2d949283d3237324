#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/ScenePass.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/OneShotFrame.h>
#include <ovVeldris/effects/EffectPasses.h>
#include <ovVeldris/scripts/veldrisWrap/Frame.h>

namespace ovVeldrisWrap {

Frame::Frame()
    : _compositor(ovGraphics::Compositor::create(nullptr)) {
    _compositor->setName("frame of a script");
    _compositor->setHidden(true);
}

Frame::~Frame() = default;

void Frame::drawInto(ovGraphics::Texture& color, ovGraphics::Texture* depth) {
    ovGraphics::CompositorOperationsBlock* block = _compositor->appendNode()->appendOperationsBlock();
    block->setTarget(0, &color);
    if (depth)
        block->setDepthBuffer(depth);
    _block = block;
    _target = &color;
}

bool Frame::clear(const ovMaths::Vector& color) {
    if (!_block)
        return false;
    _block->appendClearPass()->setColor(0, color.x, color.y, color.z, color.w);
    return true;
}

bool Frame::drawQueue(ovGraphics::RenderQueue& queue, ovGraphics::Camera& camera, bool blended) {
    if (!_block)
        return false;
    ovGraphics::ScenePass* pass = _block->appendScenePass();
    pass->setRenderQueue(&queue);
    pass->setCamera(&camera);
    if (!blended)
        return true;
    pass->setOrder(ovGraphics::SCENE_ORDER::BACK_TO_FRONT);
    pass->getDepthStencilState().setDepthWriteEnabled(false);
    ovGraphics::BlendState& blend = pass->getBlendState();
    blend.setBlendEnabled(true, 0);
    blend.setSourceFactor(ovGraphics::BLEND::SRC_ALPHA, 0);
    blend.setDestinationFactor(ovGraphics::BLEND::INV_SRC_ALPHA, 0);
    // What is covered stays covered: a saved picture has no holes where glass stands before something.
    blend.setAlphaSourceFactor(ovGraphics::BLEND::ONE, 0);
    blend.setAlphaDestinationFactor(ovGraphics::BLEND::INV_SRC_ALPHA, 0);
    return true;
}

bool Frame::drawShader(ovGraphics::Shader& shader, ovGraphics::Camera* camera) {
    if (!_block)
        return false;
    ovGraphics::PostProcessPass* pass = _block->appendPostProcessPass();
    pass->setShader(&shader);
    pass->setCamera(camera);
    return true;
}

ovMemory::Result Frame::drawEffects(ovGraphics::Texture& picture,
                                    ovMemory::BufferView<ovVeldris::Effect* const> effects,
                                    ovGraphics::Texture& target, ovGraphics::Camera* camera) {
    auto passes = std::make_unique<ovVeldris::EffectPasses>(ovVeldris::System::getInstance());
    ovMemory::Result appended = passes->append(*_compositor->appendNode(), picture, effects, target, camera);
    if (!appended)
        return appended;
    _effects.push_back(std::move(passes));
    _block = nullptr;
    _target = &target;
    return appended;
}

ovGraphics::CompositorNode* Frame::appendNode() {
    return _compositor->appendNode();
}

bool Frame::draw() {
    return _target && ovVeldris::drawOneShotFrame(*_compositor, *_target);
}

} // namespace ovVeldrisWrap
