// What scripts call the classes of the family.
#pragma once

#include <ovMemory/Memory.h>

namespace ovExport {
struct ExportError;
struct ExporterLoadResult;
class JsonExporter;
class Node;
} // namespace ovExport

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

/// Full name of a class in scripts: namespace, dot, type. One view each, since functions find a type by the
/// address of its name first. A literal, since a string would have a destructor: GCC 12 runs that of an
/// inline specialisation once for each library and program that includes it, on one object.
template <typename T>
extern const ovMemory::StringView TYPE_NAME;

template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovExport::ExportError> = "ovExport.ExportError";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovExport::ExporterLoadResult> = "ovExport.ExporterLoadResult";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovExport::JsonExporter> = "ovExport.JsonExporter";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovExport::Node> = "ovExport.Node";

template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovImages::JpgEncoder> = "ovImages.JpgEncoder";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovImages::CompositeEncoder> = "ovImages.CompositeEncoder";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovImages::Image> = "ovImages.Image";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovImages::ImageView> = "ovImages.ImageView";

template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovMemory::Buffer<unsigned char>> = "ovMemory.Buffer";

template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovMaths::Vector> = "ovMaths.Vector";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovMaths::Matrix> = "ovMaths.Matrix";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovMaths::Quaternion> = "ovMaths.Quaternion";

template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovResources::ResourceManager> = "ovResources.ResourceManager";

template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovScripts::CompilationResult> = "ovScripts.CompilationResult";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovScripts::Script> = "ovScripts.Script";

} // namespace ovCommonWrap
