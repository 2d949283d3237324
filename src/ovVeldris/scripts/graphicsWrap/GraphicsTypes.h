// What scripts call the classes of the graphics library, and what the bindings of all of them share.
#pragma once

#include <ovGraphics/Managers.h>
#include <ovVeldris/scripts/commonWrap/Bind.h>
#include <ovVeldris/scripts/commonWrap/MaybeSingletonClassWrapper.h>

namespace ovGraphics {
class BoundingBox;
class CompositorNode;
class Entity;
class Frustum;
class GltfEncoder;
class TextureSaver;
class TextureUtils;
class VertexComposition;
struct GltfCamera;
struct GltfDecodeResult;
struct GltfDirectionalLight;
struct GltfImage;
struct GltfMaterial;
struct GltfMesh;
struct GltfNode;
struct GltfPrimitive;
struct GltfScene;
struct GltfTexture;
struct VertexAttribute;
} // namespace ovGraphics

namespace ovCommonWrap {

template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::BoundingBox> = "ovGraphics.BoundingBox";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::Camera> = "ovGraphics.Camera";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::CameraManager> = "ovGraphics.CameraManager";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::Compositor> = "ovGraphics.Compositor";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::CompositorManager> =
    "ovGraphics.CompositorManager";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::CompositorNode> = "ovGraphics.CompositorNode";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::Entity> = "ovGraphics.Entity";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::Frustum> = "ovGraphics.Frustum";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::GltfCamera> = "ovGraphics.GltfCamera";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::GltfDecodeResult> = "ovGraphics.GltfDecodeResult";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::GltfDirectionalLight> =
    "ovGraphics.GltfDirectionalLight";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::GltfEncoder> = "ovGraphics.GltfEncoder";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::GltfImage> = "ovGraphics.GltfImage";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::GltfMaterial> = "ovGraphics.GltfMaterial";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::GltfMesh> = "ovGraphics.GltfMesh";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::GltfNode> = "ovGraphics.GltfNode";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::GltfPrimitive> = "ovGraphics.GltfPrimitive";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::GltfScene> = "ovGraphics.GltfScene";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::GltfTexture> = "ovGraphics.GltfTexture";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::Mesh> = "ovGraphics.Mesh";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::MeshManager> = "ovGraphics.MeshManager";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::Node> = "ovGraphics.Node";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::NodeManager> = "ovGraphics.NodeManager";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::Program> = "ovGraphics.Program";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::ProgramManager> = "ovGraphics.ProgramManager";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::RenderContext> = "ovGraphics.RenderContext";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::RenderContextManager> =
    "ovGraphics.RenderContextManager";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::RenderQueue> = "ovGraphics.RenderQueue";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::RenderQueueManager> =
    "ovGraphics.RenderQueueManager";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::Shader> = "ovGraphics.Shader";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::ShaderManager> = "ovGraphics.ShaderManager";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::Texture> = "ovGraphics.Texture";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::TextureManager> = "ovGraphics.TextureManager";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::TextureSaver> = "ovGraphics.TextureSaver";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::TextureUtils> = "ovGraphics.TextureUtils";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::VertexComposition> =
    "ovGraphics.VertexComposition";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::Viewport> = "ovGraphics.Viewport";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::ViewportManager> = "ovGraphics.ViewportManager";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovGraphics::VertexAttribute> = "ovGraphics.VertexComponent";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovMemory::Buffer<ovGraphics::VertexAttribute>> =
    "ovGraphics.VertexComponentArray";

} // namespace ovCommonWrap

namespace ovGraphicsWrap {

using ovCommonWrap::method;
using ovCommonWrap::methodOf;
using ovCommonWrap::property;
using ovCommonWrap::readOnlyField;
using ovCommonWrap::readOnlyProperty;
using ovCommonWrap::staticFunction;
using ovCommonWrap::TYPE_NAME;

template <typename T>
ovScripts::UserType& typeOf(ovScripts::Environment* environment) {
    return *environment->getUserType(TYPE_NAME<T>);
}

/// The type of a class whose objects live on the device: of the thread that renders alone, and an error once
/// the object is gone.
template <typename T>
ovScripts::UserType& deviceTypeOf(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<T>(environment);
    type.setRenderThreadOnly();
    if constexpr (requires(const T& object) { object.getName(); })
        type.setBorrowable<T>([](const T& object) { return ovMemory::String(object.getName()); });
    else
        type.setBorrowable<T>();
    return type;
}

/// "getName" of a resource.
template <typename T>
void addName(ovScripts::UserType& type) {
    methodOf<T>(type, "getName", &T::getName, {}, "Its name in its manager.");
}

/// "load" and "unload" of a resource.
template <typename T>
void addLoading(ovScripts::UserType& type) {
    methodOf<T>(type, "load", &T::load, {},
                "Makes it usable with its present settings; false when it cannot be, and the log says why.");
    methodOf<T>(type, "unload", &T::unload, {}, "Frees what load() made; the settings stay.");
}

/// "loadState" of a resource, a value of RESOURCE_LOAD_STATE.
template <typename T>
void addLoadState(ovScripts::UserType& type) {
    readOnlyProperty<T>(type, "loadState", [](const T& self) { return self.getLoadState(); });
}

} // namespace ovGraphicsWrap
