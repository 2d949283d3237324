#include <ovVeldris/scripts/graphicsWrap/CompositorWrappers.h>
#include <ovVeldris/scripts/graphicsWrap/EnumerationWrapper.h>
#include <ovVeldris/scripts/graphicsWrap/GltfEncoderWrapper.h>
#include <ovVeldris/scripts/graphicsWrap/GltfSceneWrappers.h>
#include <ovVeldris/scripts/graphicsWrap/GraphicsWrappers.h>
#include <ovVeldris/scripts/graphicsWrap/ManagerWrappers.h>
#include <ovVeldris/scripts/graphicsWrap/MeshWrappers.h>
#include <ovVeldris/scripts/graphicsWrap/ProgramWrappers.h>
#include <ovVeldris/scripts/graphicsWrap/SceneWrappers.h>
#include <ovVeldris/scripts/graphicsWrap/TextureWrappers.h>
#include <ovVeldris/scripts/graphicsWrap/VolumeWrappers.h>

namespace ovGraphicsWrap {

namespace {

void updateGltf(ovScripts::Environment* environment) {
    GltfSceneWrapper::updateEnvironment(environment);
    GltfMeshWrapper::updateEnvironment(environment);
    GltfPrimitiveWrapper::updateEnvironment(environment);
    GltfMaterialWrapper::updateEnvironment(environment);
    GltfTextureWrapper::updateEnvironment(environment);
    GltfImageWrapper::updateEnvironment(environment);
    GltfNodeWrapper::updateEnvironment(environment);
    GltfCameraWrapper::updateEnvironment(environment);
    GltfDirectionalLightWrapper::updateEnvironment(environment);
}

} // namespace

void updateGraphics(ovScripts::Environment* environment) {
    EnumerationWrapper::updateEnvironment(environment);
    BoundingBoxWrapper::updateEnvironment(environment);
    CameraWrapper::updateEnvironment(environment);
    CameraManagerWrapper::updateEnvironment(environment);
    FrustumWrapper::updateEnvironment(environment);
    CompositorWrapper::updateEnvironment(environment);
    CompositorManagerWrapper::updateEnvironment(environment);
    CompositorNodeWrapper::updateEnvironment(environment);
    EntityWrapper::updateEnvironment(environment);
    NodeWrapper::updateEnvironment(environment);
    NodeManagerWrapper::updateEnvironment(environment);
    GltfEncoderWrapper::updateEnvironment(environment);
    MeshWrapper::updateEnvironment(environment);
    MeshManagerWrapper::updateEnvironment(environment);
    VertexComponentWrapper::updateEnvironment(environment);
    VertexComponentArrayWrapper::updateEnvironment(environment);
    VertexCompositionWrapper::updateEnvironment(environment);
    ProgramWrapper::updateEnvironment(environment);
    ProgramManagerWrapper::updateEnvironment(environment);
    RenderContextWrapper::updateEnvironment(environment);
    RenderContextManagerWrapper::updateEnvironment(environment);
    RenderQueueWrapper::updateEnvironment(environment);
    RenderQueueManagerWrapper::updateEnvironment(environment);
    ShaderWrapper::updateEnvironment(environment);
    ShaderManagerWrapper::updateEnvironment(environment);
    TextureWrapper::updateEnvironment(environment);
    TextureManagerWrapper::updateEnvironment(environment);
    TextureSaverWrapper::updateEnvironment(environment);
    TextureUtilsWrapper::updateEnvironment(environment);
    ViewportWrapper::updateEnvironment(environment);
    ViewportManagerWrapper::updateEnvironment(environment);
    updateGltf(environment);
}

} // namespace ovGraphicsWrap
