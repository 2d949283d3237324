// What scripts call the classes of the family.
#pragma once

#include <ovMemory/Memory.h>

namespace ovExport {
struct ExportError;
struct ExporterLoadResult;
class JsonExporter;
class Node;
} // namespace ovExport

namespace ovGraphics {
class BoundingBox;
class Camera;
class Compositor;
class CompositorNode;
class Entity;
class Frustum;
class Mesh;
class Node;
class Program;
class RenderContext;
class RenderQueue;
class Shader;
class Texture;
class Viewport;
} // namespace ovGraphics

namespace ovImages {
class Image;
struct ImageView;
class JpgEncoder;
class CompositeEncoder;
} // namespace ovImages

namespace ovMaths {
class Matrix;
class Quaternion;
class Vector;
} // namespace ovMaths

namespace ovResources {
class ResourceManager;
}

namespace ovScripts {
struct CompilationResult;
class Script;
} // namespace ovScripts

namespace ovCommonWrap {

/// Full name of a class in scripts: namespace, dot, type. One string each, since functions find a type by the
/// address of its name first.
template <typename T>
extern const ovMemory::String TYPE_NAME;

template <>
inline const ovMemory::String TYPE_NAME<ovImages::Image> = "ovImages.Image";
template <>
inline const ovMemory::String TYPE_NAME<ovImages::ImageView> = "ovImages.ImageView";

template <>
inline const ovMemory::String TYPE_NAME<ovMemory::Buffer<unsigned char>> = "ovMemory.Buffer";

template <>
inline const ovMemory::String TYPE_NAME<ovMaths::Vector> = "ovMaths.Vector";
template <>
inline const ovMemory::String TYPE_NAME<ovMaths::Matrix> = "ovMaths.Matrix";
template <>
inline const ovMemory::String TYPE_NAME<ovMaths::Quaternion> = "ovMaths.Quaternion";

template <>
inline const ovMemory::String TYPE_NAME<ovScripts::CompilationResult> = "ovScripts.CompilationResult";
template <>
inline const ovMemory::String TYPE_NAME<ovScripts::Script> = "ovScripts.Script";

} // namespace ovCommonWrap
