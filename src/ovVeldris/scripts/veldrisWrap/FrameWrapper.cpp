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

/// The effects of a table of a script. Throws an error of the script for anything else.
ovMemory::Buffer<ovVeldris::Effect*> effectsOf(const ovScripts::FunctionParameter& list) {
    constexpr std::size_t MOST = 100;
    const ovScripts::ScriptObjectReference& table = list.getScriptObjectReference();
    const auto elements = table ? table.getEnvironment()->readList(table, MOST) : std::nullopt;
    if (!elements)
        throw ovCommonWrap::ArgumentError("argument 3 (effects) expected a table of up to 100 effects");
    ovMemory::Buffer<ovVeldris::Effect*> effects;
    for (const ovScripts::FunctionParameter& element : *elements) {
        if (element.getUserDataTypeName() != ovCommonWrap::TYPE_NAME<ovVeldris::Effect>)
            throw ovCommonWrap::ArgumentError("argument 3 (effects) expected effects alone; element " +
                                              std::to_string(effects.size() + 1) +
                                              " is none, or was destroyed");
        effects.push_back(element.getValueAsUserData<ovVeldris::Effect>());
    }
    return effects;
}

void drawEffects(Frame& self, ovGraphics::Texture& picture, const ovScripts::FunctionParameter& effects,
                 ovGraphics::Texture& target, ovGraphics::Camera* camera) {
    const ovMemory::Buffer<ovVeldris::Effect*> list = effectsOf(effects);
    if (const ovMemory::Result result = self.drawEffects(picture, list, target, camera); !result)
        throw ovCommonWrap::ArgumentError(result.error);
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
    method(type, "drawEffects", &drawEffects, {"picture", "effects", "target", "camera"},
           "Draws a picture through a list of effects into a target. Gives each its picture and loads it; "
           "colours "
           "are encoded and decoded where an effect wants them so. An error with the reason when it cannot.");
    method(type, "appendNode", &Frame::appendNode, {}, "Where a complex effect draws its passes.");
    method(type, "draw", &Frame::draw, {}, "Draws now; false when it cannot, and the log says why.");
}

} // namespace ovVeldrisWrap
