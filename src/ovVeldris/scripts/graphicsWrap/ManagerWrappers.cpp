#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/resources/Viewport.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <ovVeldris/scripts/graphicsWrap/GraphicsTypes.h>
#include <ovVeldris/scripts/graphicsWrap/ManagerWrappers.h>

namespace ovGraphicsWrap {

namespace {

using ovMemory::StringView;

template <typename Manager>
ovScripts::UserType& managerTypeOf(ovScripts::Environment* environment) {
    ovScripts::UserType& type = deviceTypeOf<Manager>(environment);
    ovCommonWrap::MaybeSingletonClassWrapper<Manager>::inherit(type);
    return type;
}

template <typename Manager>
void addCreateOrRetrieve(ovScripts::UserType& type) {
    method(
        type, "createOrRetrieve", [](Manager& self, StringView name) { return self.createOrRetrieve(name); },
        {"name"}, "The object of that name, made unloaded when there is none. Belongs to the manager.");
}

template <typename Manager>
void addGet(ovScripts::UserType& type) {
    method(
        type, "get", [](Manager& self, StringView name) { return self.get(name); }, {"name"},
        "The object of that name, or nil.");
}

template <typename Manager>
void addRename(ovScripts::UserType& type) {
    method(
        type, "rename",
        [](Manager& self, StringView oldName, StringView newName) { self.rename(oldName, newName); },
        {"oldName", "newName"}, "Renames an object; does nothing when oldName is unknown or newName taken.");
}

template <typename Manager>
void addErase(ovScripts::UserType& type) {
    method(
        type, "erase", [](Manager& self, StringView name) { self.erase(name); }, {"name"},
        "Destroys the object of that name; an unknown name is ignored.");
}

template <typename Manager>
void bindAll(ovScripts::Environment* environment) {
    ovScripts::UserType& type = managerTypeOf<Manager>(environment);
    addCreateOrRetrieve<Manager>(type);
    addGet<Manager>(type);
    addRename<Manager>(type);
    addErase<Manager>(type);
}

template <typename Manager>
ovScripts::UserType& bindWithoutGet(ovScripts::Environment* environment) {
    ovScripts::UserType& type = managerTypeOf<Manager>(environment);
    addCreateOrRetrieve<Manager>(type);
    addErase<Manager>(type);
    addRename<Manager>(type);
    return type;
}

// Objects that scripts may make but not take away.
template <typename Manager>
void bindKeeping(ovScripts::Environment* environment) {
    ovScripts::UserType& type = managerTypeOf<Manager>(environment);
    addCreateOrRetrieve<Manager>(type);
    addGet<Manager>(type);
}

} // namespace

void CameraManagerWrapper::updateEnvironment(ovScripts::Environment* environment) {
    method(bindWithoutGet<ovGraphics::CameraManager>(environment), "getActiveRenderCamera",
           &ovGraphics::CameraManager::getActiveRenderCamera, {},
           "The camera that passes without one of their own render with, or nil.");
}

void CompositorManagerWrapper::updateEnvironment(ovScripts::Environment* environment) {
    bindAll<ovGraphics::CompositorManager>(environment);
}

void NodeManagerWrapper::updateEnvironment(ovScripts::Environment* environment) {
    bindWithoutGet<ovGraphics::NodeManager>(environment);
}

void MeshManagerWrapper::updateEnvironment(ovScripts::Environment* environment) {
    bindKeeping<ovGraphics::MeshManager>(environment);
}

void ProgramManagerWrapper::updateEnvironment(ovScripts::Environment* environment) {
    bindAll<ovGraphics::ProgramManager>(environment);
}

void RenderContextManagerWrapper::updateEnvironment(ovScripts::Environment* environment) {
    method(managerTypeOf<ovGraphics::RenderContextManager>(environment), "getActiveRenderContext",
           &ovGraphics::RenderContextManager::getActiveRenderContext, {},
           "The context that the last frame drew, or nil.");
}

void RenderQueueManagerWrapper::updateEnvironment(ovScripts::Environment* environment) {
    bindKeeping<ovGraphics::RenderQueueManager>(environment);
}

void ShaderManagerWrapper::updateEnvironment(ovScripts::Environment* environment) {
    bindAll<ovGraphics::ShaderManager>(environment);
}

void TextureManagerWrapper::updateEnvironment(ovScripts::Environment* environment) {
    bindAll<ovGraphics::TextureManager>(environment);
}

void ViewportManagerWrapper::updateEnvironment(ovScripts::Environment* environment) {
    method(bindWithoutGet<ovGraphics::ViewportManager>(environment), "getActiveViewport",
           &ovGraphics::ViewportManager::getActiveViewport, {},
           "The viewport of the operations block that was drawn last, or nil.");
}

} // namespace ovGraphicsWrap
