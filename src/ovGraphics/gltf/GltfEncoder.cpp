#include <ovGraphics/gltf/GltfEncoder.h>

#include <algorithm>
#include <exception>
#include <fmt/format.h>
#include <new>
#include <ovGraphics/gltf/detail/GltfContainer.h>
#include <ovGraphics/gltf/detail/GltfMeshes.h>
#include <ovResources/Files.h>

namespace ovGraphics {

using namespace detail;
using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;
using Bytes = ovMemory::BufferView<const unsigned char>;

namespace {

constexpr StringView ASSET_MEMBER = "\"asset\"";

// Extensions that are read, or ignored with a warning of their own where they are used.
constexpr StringView KNOWN_EXTENSIONS[] = {
    "KHR_lights_punctual",
    "KHR_materials_anisotropy",
    "KHR_materials_clearcoat",
    "KHR_materials_diffuse_transmission",
    "KHR_materials_dispersion",
    "KHR_materials_emissive_strength",
    "KHR_materials_ior",
    "KHR_materials_iridescence",
    "KHR_materials_pbrSpecularGlossiness",
    "KHR_materials_sheen",
    "KHR_materials_specular",
    "KHR_materials_transmission",
    "KHR_materials_unlit",
    "KHR_materials_volume",
    "KHR_mesh_quantization",
    "KHR_texture_transform",
};

bool isKnown(StringView extension) {
    return std::find(std::begin(KNOWN_EXTENSIONS), std::end(KNOWN_EXTENSIONS), extension) !=
           std::end(KNOWN_EXTENSIONS);
}

StringView textOf(Bytes bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// The first letter behind a mark of the byte order and spaces; 0 where there is none.
char firstOfText(Bytes bytes) {
    const StringView text = textOf(bytes);
    const std::size_t first = text.find_first_not_of("\xef\xbb\xbf \t\r\n");
    return first == StringView::npos ? '\0' : text[first];
}

/// Whether bytes begin as a binary file or as JSON, or hold nothing.
bool beginsAsGltf(Bytes bytes) {
    const char first = firstOfText(bytes);
    return isBinaryGltf(bytes) || first == '{' || first == '[' || first == '\0';
}

bool checkVersion(const GltfJson& root, GltfReport& report) {
    const GltfJson asset = root["asset"];
    const StringView version = asset["version"].getString().value_or(StringView());
    // The version says what the file was written for, the minimum what a reader must know. Within version 2 a
    // newer file may be read as long as its minimum is 2.0.
    const StringView minimum = asset["minVersion"].getString().value_or(version);
    if (!version.starts_with("2."))
        return report.fail(fmt::format("its version is {}; only glTF 2 can be read",
                                       version.empty() ? "missing" : quoteGltf(version)));
    if (minimum != "2.0" && minimum != version)
        return report.fail(
            fmt::format("it needs a reader of glTF {}; this one is of 2.0", quoteGltf(minimum)));
    return true;
}

bool checkExtensions(const GltfJson& root, GltfReport& report) {
    const GltfJson required = root["extensionsRequired"];
    for (std::size_t i = 0; i < required.getCount(); ++i) {
        const StringView name = required.at(i).getString().value_or(StringView());
        if (!isKnown(name))
            // The format demands this: what a required extension leaves out would be drawn wrong in a way
            // that no warning could describe.
            return report.fail(fmt::format(
                "it requires the extension {}, which is not known; export it without", quoteGltf(name)));
    }
    const GltfJson used = root["extensionsUsed"];
    for (std::size_t i = 0; i < used.getCount(); ++i) {
        const StringView name = used.at(i).getString().value_or(StringView());
        if (!isKnown(name))
            report.warn(fmt::format("the extension {} is not known and is ignored", quoteGltf(name)));
    }
    return true;
}

void fillBox(GltfScene& scene) {
    // Nodes outside the chosen scene are not drawn and must not move the camera that frames the model.
    for (const unsigned int index : listDrawnGltfNodes(scene)) {
        const GltfNode& node = scene.nodes[index];
        if (node.mesh < 0)
            continue;
        for (const GltfPrimitive& primitive : scene.meshes[static_cast<std::size_t>(node.mesh)].primitives)
            scene.boundingBox.add(primitive.boundingBox.getTransformed(node.world));
    }
}

bool readScene(Bytes bytes, const GltfDecodeOptions& options, GltfReport& report, GltfScene& scene) {
    String error;
    const auto container = openGltfContainer(bytes, error);
    const auto tree = container ? parseGltfJson(container->json, error) : nullptr;
    if (!tree)
        // Of a picture the JSON reader's message would be riddles.
        return report.fail(beginsAsGltf(bytes)
                               ? error
                               : "it begins neither as a binary file of glTF nor as JSON; give "
                                 "a .glb or .gltf file");
    const GltfJson root(tree.get());
    if (!checkVersion(root, report) || !checkExtensions(root, report))
        return false;
    GltfData data;
    Buffer<GltfVertexNeeds> needs;
    Buffer<GltfNodeSource> nodes;
    // The order follows the references: materials tell meshes which texture coordinates they need, nodes tell
    // meshes which skins move them, and a light needs the nodes' places.
    if (!data.load(root, container->binary, options.folder, report) ||
        !readGltfMaterials(root, data, options.folder, report, scene, needs) ||
        !readGltfCameras(root, report, scene) || !readGltfNodes(root, report, scene, nodes) ||
        !readGltfMeshes({root, data, needs, options.optimizeMeshes, report}, nodes, scene) ||
        !readGltfLight(root, report, scene, nodes))
        return false;
    fillBox(scene);
    if (const std::size_t count = root["animations"].getCount())
        report.warn(fmt::format("its {} animations are ignored; everything stands still", count));
    return true;
}

} // namespace

bool GltfEncoder::canDecode(Bytes bytes) const {
    // Only enough to choose a reader. A text is not parsed here: looking for one member tells it from the
    // JSON of other programs.
    if (isBinaryGltf(bytes))
        return bytes.size() >= 8 && bytes[4] == 2 && bytes[5] == 0 && bytes[6] == 0 && bytes[7] == 0;
    return firstOfText(bytes) == '{' && textOf(bytes).find(ASSET_MEMBER) != StringView::npos;
}

GltfDecodeResult GltfEncoder::decode(Bytes bytes, const GltfDecodeOptions& options) const {
    GltfDecodeResult result;
    GltfReport report(options.maxBytes);
    try {
        auto scene = std::make_unique<GltfScene>();
        if (readScene(bytes, options, report, *scene)) {
            scene->warnings = report.takeWarnings();
            result.scene = std::move(scene);
        } else {
            result.error = report.getError();
        }
    } catch (const std::exception&) { // only of containers: lack of memory
        result.error = "there is not enough memory for what it holds";
    }
    return result;
}

GltfDecodeResult GltfEncoder::decodeFile(StringView path, const GltfDecodeOptions& options) const {
    Buffer<char> bytes;
    if (const ovMemory::Result read = ovResources::readFile(path, bytes); !read)
        return ovMemory::failed<GltfDecodeResult>(read.error, read.place);
    GltfDecodeOptions ownOptions = options;
    // The addresses in a file are relative to it, wherever the process runs.
    if (ownOptions.folder.empty()) {
        const std::size_t separator = path.rfind('/');
        ownOptions.folder = separator == StringView::npos ? "." : path.substr(0, separator + 1);
    }
    GltfDecodeResult result =
        decode({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()}, ownOptions);
    result.place = path;
    if (!result)
        result.error = fmt::format("the model '{}' cannot be read: {}", path, result.error);
    return result;
}

} // namespace ovGraphics
