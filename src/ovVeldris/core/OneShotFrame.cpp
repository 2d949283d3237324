#include <ovVeldris/core/OneShotFrame.h>

#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/resources/Viewport.h>

namespace ovVeldris {

bool drawOneShotFrame(ovGraphics::Compositor& compositor, ovGraphics::Texture& backBuffer) {
    ovGraphics::System& graphics = *compositor.getSystem();
    // A frame sets all three, and the application must not notice that one was drawn in between.
    ovGraphics::Camera* const camera = graphics.getCameraManager()->getActiveRenderCamera();
    ovGraphics::RenderContext* const active = graphics.getRenderContextManager()->getActiveRenderContext();
    ovGraphics::Viewport* const viewport = graphics.getViewportManager()->getActiveViewport();

    // Not of the manager: a context of the application may have any name.
    const auto context = ovGraphics::RenderContext::create(&graphics);
    context->setName(compositor.getName());
    context->setHidden(true);
    context->setDescriptor({.texture = &backBuffer});
    context->setCompositor(&compositor);
    const bool drawn = graphics.frame(context.get());

    graphics.getViewportManager()->setActiveViewport(viewport);
    graphics.getRenderContextManager()->setActiveRenderContext(active);
    graphics.getCameraManager()->setActiveRenderCamera(camera);
    return drawn;
}

} // namespace ovVeldris
