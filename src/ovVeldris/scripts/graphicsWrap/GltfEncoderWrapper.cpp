#include <algorithm>
#include <ovGraphics/gltf/GltfEncoder.h>
#include <ovVeldris/scripts/graphicsWrap/GltfEncoderWrapper.h>
#include <ovVeldris/scripts/graphicsWrap/GraphicsTypes.h>
#include <ovVeldris/scripts/memoryWrap/MemoryTypeNames.h>

namespace ovGraphicsWrap {

using ovGraphics::GltfDecodeOptions;
using ovGraphics::GltfDecodeResult;
using ovGraphics::GltfEncoder;
using ovMemory::StringView;
using ovMemoryWrap::ByteBuffer;

namespace {

// Small files can ask for a lot, so that the limit of a script holds for what is made on the way.
GltfDecodeOptions optionsWithin(std::size_t memoryLimit) {
    GltfDecodeOptions options;
    if (memoryLimit > 0)
        options.maxBytes = std::min(options.maxBytes, memoryLimit);
    return options;
}

std::size_t sizeOf(const void* object) {
    const auto& result = *static_cast<const GltfDecodeResult*>(object);
    std::size_t bytes = 0;
    if (!result.scene)
        return bytes;
    for (const ovGraphics::GltfMesh& mesh : result.scene->meshes)
        for (const ovGraphics::GltfPrimitive& primitive : mesh.primitives)
            bytes += primitive.vertices.size() + primitive.indices.size() * sizeof(std::uint32_t);
    for (const ovGraphics::GltfImage& image : result.scene->images)
        bytes += image.bytes.size();
    return bytes;
}

void addResult(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<GltfDecodeResult>(environment);
    type.setHelp("A glTF file's content, or why there is none.");
    ovCommonWrap::destructible<GltfDecodeResult>(type);
    type.setSizeOf(&sizeOf);
    readOnlyProperty<GltfDecodeResult>(type, "scene", [](GltfDecodeResult& self) {
        return self.scene.get();
    })->help = "A GltfScene; nil when the file cannot be read.";
    readOnlyProperty<GltfDecodeResult>(type, "error", [](GltfDecodeResult& self) {
        return self.error;
    })->help = "Why there is no scene; empty when there is one.";
    readOnlyProperty<GltfDecodeResult>(type, "place", [](GltfDecodeResult& self) {
        return self.place;
    })->help = "The path of the file, of decodeFile().";
}

} // namespace

void GltfEncoderWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<GltfEncoder>(environment);
    const std::size_t limit = environment->getOptions().memoryLimit;
    staticFunction(
        type, "canDecode", [](const ByteBuffer& bytes) { return GltfEncoder().canDecode(bytes); }, {"bytes"},
        "Whether the bytes begin as glTF does. Says nothing about the rest.");
    staticFunction(
        type, "decode",
        [limit](const ByteBuffer& bytes, std::optional<StringView> folder) {
            GltfDecodeOptions options = optionsWithin(limit);
            options.folder = folder.value_or("");
            return GltfEncoder().decode(bytes, options);
        },
        {"bytes", "folder"}, "Reads a file; outside buffers and images are looked for in the folder.");
    staticFunction(
        type, "decodeFile",
        [limit](StringView path) { return GltfEncoder().decodeFile(path, optionsWithin(limit)); }, {"path"},
        "Reads a file; outside buffers and images are looked for beside it.");
    addResult(environment);
}

} // namespace ovGraphicsWrap
