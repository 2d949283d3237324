#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/scripts/graphicsWrap/CompositorWrappers.h>
#include <ovVeldris/scripts/graphicsWrap/GraphicsTypes.h>

namespace ovGraphicsWrap {

void CompositorWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = deviceTypeOf<ovGraphics::Compositor>(environment);
    addName<ovGraphics::Compositor>(type);
    method(type, "getNode", &ovGraphics::Compositor::getNode, {"position"},
           "The node at a position from 0, or nil.");
}

void CompositorNodeWrapper::updateEnvironment(ovScripts::Environment* environment) {
    method(deviceTypeOf<ovGraphics::CompositorNode>(environment), "setActive",
           &ovGraphics::CompositorNode::setActive, {"active"}, "An inactive node draws nothing.");
}

void RenderContextWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = deviceTypeOf<ovGraphics::RenderContext>(environment);
    addName<ovGraphics::RenderContext>(type);
    method(type, "getBackBuffer", &ovGraphics::RenderContext::getBackBuffer, {},
           "The texture that blocks without targets draw into, or nil.");
}

} // namespace ovGraphicsWrap
