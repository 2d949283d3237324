#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ovGraphics/gltf/GltfBuilder.h>
#include <ovGraphics/gltf/GltfEncoder.h>

using namespace ovGraphics;

namespace {

void check(bool condition) {
    if (!condition)
        std::abort();
}

void checkScene(const GltfScene& scene) {
    for (const GltfMesh& mesh : scene.meshes)
        for (const GltfPrimitive& primitive : mesh.primitives) {
            check(primitive.vertices.size() ==
                  std::size_t(primitive.vertexCount) * primitive.composition.getStride());
            check(primitive.material < int(scene.materials.size()));
            for (const std::uint32_t index : primitive.indices)
                check(index < primitive.vertexCount);
        }
    for (const GltfNode& node : scene.nodes) {
        check(node.mesh < int(scene.meshes.size()) && node.camera < int(scene.cameras.size()));
        check(node.parent < int(scene.nodes.size()));
    }
    for (const unsigned int root : scene.roots)
        check(root < scene.nodes.size() && scene.nodes[root].parent < 0);
    for (const GltfTexture& texture : scene.textures)
        check(texture.image < int(scene.images.size()));
}

// A scene refers to nothing that is not there, and a failure has a reason.
void decode(const GltfBytes& bytes) {
    GltfDecodeOptions options;
    options.maxBytes = std::size_t(1) << 22;
    options.optimizeMeshes = bytes.size() % 2 == 0;
    const GltfEncoder encoder;
    encoder.canDecode(bytes);
    const GltfDecodeResult result = encoder.decode(bytes, options);
    check(bool(result) == result.error.empty());
    if (result)
        checkScene(*result.scene);
}

GltfBytes joined(const std::string& json, const GltfBytes& binary) {
    GltfBytes bytes(json.begin(), json.end());
    bytes.push_back(0);
    bytes.insert(bytes.end(), binary.begin(), binary.end());
    return bytes;
}

} // namespace

/// Puts seeds into the corpus, the first folder of the command line.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    const auto end = *argv + *argc;
    const auto folder = std::find_if(
        *argv + 1, end, [](const char* argument) { return std::filesystem::is_directory(argument); });
    if (folder == end)
        return 0;
    const GltfBuilder rich = makeRich();
    const GltfBuilder varied = makeVaried();
    const GltfBytes seeds[] = {rich.toBinary(), rich.toText(), joined(rich.toJson(), rich.getBytes()),
                               joined(varied.toJson(), varied.getBytes())};
    int number = 0;
    for (const GltfBytes& seed : seeds)
        std::ofstream(std::string(*folder) + "/seed" + std::to_string(number++), std::ios::binary)
            .write(reinterpret_cast<const char*>(seed.data()), std::streamsize(seed.size()));
    return 0;
}

/// Reads the data as a file, and as the JSON and, behind a zero, the binary chunk of one: so that changes of
/// the JSON do not have to get the lengths of the chunks right.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const GltfBytes bytes(data, data + size);
    decode(bytes);
    const auto zero = std::find(bytes.begin(), bytes.end(), 0);
    if (zero != bytes.end())
        decode(GltfBuilder::toBinary(std::string(bytes.begin(), zero), GltfBytes(zero + 1, bytes.end())));
    return 0;
}
