#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/RenderTarget.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <ovVeldris/scripts/veldrisWrap/Frame.h>
#include <ovVeldris/scripts/veldrisWrap/FrameWrapper.h>
#include <ovVeldris/scripts/veldrisWrap/VeldrisTypes.h>

namespace ovVeldrisWrap {

namespace {

void checkTarget(bool isAdded) {
    if (!isAdded)
        throw ovCommonWrap::ArgumentError("the frame has nothing to draw into; call drawInto() before");
}

ovGraphics::Texture* newTarget(ovMemory::StringView name, unsigned int width, unsigned int height,
                               ovGraphics::FORMAT format) {
    auto* texture = ovGraphics::System::getInstance()->getTextureManager()->createOrRetrieve(name);
    if (!ovGraphics::loadAsRenderTarget(*texture, width, height, format))
        throw ovCommonWrap::ArgumentError("the texture '" + ovMemory::String(name) +
                                          "' cannot be a target; the log says why");
    return texture;
}

} // namespace

void FrameWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = deviceTypeOf<Frame>(environment);
    type.setHelp("Steps that are drawn in order. Belongs to the script.");
    ovCommonWrap::constructible<Frame>(type);
    staticFunction(type, "newTarget", &newTarget, {"name", "width", "height", "format"},
                   "The texture of that name, loaded as a render target, whatever it was; an error when the "
                   "device refuses it. Belongs to its manager.");
    method(type, "drawInto", &Frame::drawInto, {"color", "depth"},
           "What the following steps draw into: loaded render targets. Without depth nothing is tested.");
    method(
        type, "clear", [](Frame& self, const ovMaths::Vector& color) { checkTarget(self.clear(color)); },
        {"color"}, "Fills the colours, and the depth with the far plane.");
    method(
        type, "drawQueue",
        [](Frame& self, ovGraphics::RenderQueue& queue, ovGraphics::Camera& camera,
           std::optional<bool> blended) {
            checkTarget(self.drawQueue(queue, camera, blended.value_or(false)));
        },
        {"queue", "camera", "blended"}, "Draws entities; blended ones over what is there, by their alpha.");
    method(
        type, "drawShader",
        [](Frame& self, ovGraphics::Shader& shader, ovGraphics::Camera* camera) {
            checkTarget(self.drawShader(shader, camera));
        },
        {"shader", "camera"}, "Draws a shader, as of an effect, over the whole target.");
    method(type, "appendNode", &Frame::appendNode, {}, "Where a complex effect draws its passes.");
    method(type, "draw", &Frame::draw, {}, "Draws now; false when it cannot, and the log says why.");
}

} // namespace ovVeldrisWrap
