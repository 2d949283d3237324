#include <ovGraphics/Managers.h>

#include <ovGraphics/System.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Viewport.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>

namespace ovGraphics {

bool isTheSingleton(const System* system) {
    return system && system->isTheSingletonInstance();
}

TextureManager* TextureManager::getInstance() {
    return System::getInstance()->getTextureManager();
}
SamplerManager* SamplerManager::getInstance() {
    return System::getInstance()->getSamplerManager();
}
ProgramManager* ProgramManager::getInstance() {
    return System::getInstance()->getProgramManager();
}
ShaderManager* ShaderManager::getInstance() {
    return System::getInstance()->getShaderManager();
}
MeshManager* MeshManager::getInstance() {
    return System::getInstance()->getMeshManager();
}
NodeManager* NodeManager::getInstance() {
    return System::getInstance()->getNodeManager();
}
RenderQueueManager* RenderQueueManager::getInstance() {
    return System::getInstance()->getRenderQueueManager();
}
CameraManager* CameraManager::getInstance() {
    return System::getInstance()->getCameraManager();
}
ViewportManager* ViewportManager::getInstance() {
    return System::getInstance()->getViewportManager();
}
CompositorManager* CompositorManager::getInstance() {
    return System::getInstance()->getCompositorManager();
}
RenderContextManager* RenderContextManager::getInstance() {
    return System::getInstance()->getRenderContextManager();
}

Camera* CameraManager::getActiveRenderCamera() const {
    return _activeRenderCamera.get();
}
void CameraManager::setActiveRenderCamera(Camera* camera) {
    _activeRenderCamera = camera;
}

Viewport* ViewportManager::getActiveViewport() const {
    return _activeViewport.get();
}
void ViewportManager::setActiveViewport(Viewport* viewport) {
    _activeViewport = viewport;
}

RenderContext* RenderContextManager::createOrRetrieve(ovMemory::StringView name,
                                                      const RenderContextDescriptor& descriptor) {
    RenderContext* context = createOrRetrieve(name);
    context->setDescriptor(descriptor);
    return context;
}

RenderContext* RenderContextManager::getActiveRenderContext() const {
    return _activeRenderContext.get();
}
void RenderContextManager::setActiveRenderContext(RenderContext* context) {
    _activeRenderContext = context;
}

} // namespace ovGraphics
