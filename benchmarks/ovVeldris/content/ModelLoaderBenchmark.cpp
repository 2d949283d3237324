// What a model costs whose metalness varies from texel to texel: one material with a base colour and a
// surface of 4096 x 4096 texels each, as JPEG, which the loader turns into diffuse colours and reflectances.
//
// Measured are the CPU seconds of ModelLoader::create(), all of it: decoding, converting, uploading and
// averaging the mips of three textures on the software rasteriser. Memory is the peak of the resident set in
// the first load beyond that before it; the textures of a software rasteriser are part of it.
#include "ovVeldris/content/ModelLoaderBenchmark.h"

#include "support/Aims.h"
#include "support/Pairs.h"

#include <cmath>
#include <cstring>
#include <ovImages/JpgEncoder.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/ModelLoader.h>
#include <sys/resource.h>

namespace ovBenchmarks {

namespace {

constexpr unsigned int SIDE = 4096;
constexpr int ROUNDS = 5;
constexpr double MILLISECONDS_AIM = 1200.0;
constexpr double MEGABYTES_AIM = 400.0;

/// Soft waves of other lengths in each channel, with a grain as photographs have it.
ovMemory::Buffer<unsigned char> makePicture(double turn) {
    ovImages::Image image(SIDE, SIDE, 3, ovImages::COMPONENT_TYPE::UINT8, ovImages::COLOR_ENCODING::SRGB);
    unsigned char* pixel = image.getBytes().data();
    unsigned int grain = 1;
    for (unsigned int y = 0; y < SIDE; ++y) {
        for (unsigned int x = 0; x < SIDE; ++x, pixel += 3) {
            grain = grain * 1664525u + 1013904223u;
            for (unsigned int channel = 0; channel < 3; ++channel)
                pixel[channel] = static_cast<unsigned char>(
                    120.0 + 90.0 * std::sin(turn + 0.002 * (channel + 1.0) * x) * std::cos(0.003 * y) +
                    (grain >> 29));
        }
    }
    return ovImages::JpgEncoder().encode(image.view()).bytes;
}

int addTexture(ovGraphics::GltfScene& scene, const char* name, ovMemory::Buffer<unsigned char> bytes) {
    scene.images.push_back({name, std::move(bytes)});
    ovGraphics::GltfTexture texture;
    texture.name = name;
    texture.image = static_cast<int>(scene.images.size()) - 1;
    scene.textures.push_back(texture);
    return static_cast<int>(scene.textures.size()) - 1;
}

/// A triangle of one material.
ovGraphics::GltfScene makeScene() {
    ovGraphics::GltfScene scene;
    ovGraphics::GltfMaterial material;
    material.name = "material";
    material.baseColorTexture = addTexture(scene, "base", makePicture(0.0));
    material.metallicRoughnessTexture = addTexture(scene, "surface", makePicture(1.0));
    scene.materials.push_back(material);
    ovGraphics::GltfPrimitive primitive;
    primitive.composition.addAttribute("POSITION", ovGraphics::FORMAT::R32G32B32_FLOAT);
    constexpr float CORNERS[] = {-1, -1, 0, -1, 1, 0, 1, -1, 0};
    primitive.vertices.resize(sizeof(CORNERS));
    std::memcpy(primitive.vertices.data(), CORNERS, sizeof(CORNERS));
    primitive.vertexCount = 3;
    primitive.indices = {0, 1, 2};
    primitive.material = 0;
    ovGraphics::GltfMesh mesh;
    mesh.name = "mesh";
    mesh.primitives.push_back(primitive);
    scene.meshes.push_back(mesh);
    ovGraphics::GltfNode node;
    node.name = "node";
    node.mesh = 0;
    scene.nodes.push_back(node);
    scene.roots = {0};
    return scene;
}

double peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void loadVaryingMetalness(benchmark::State& state) {
    ovVeldris::System system;
    ovVeldris::Configuration configuration;
    configuration.graphicsConfiguration.software = true;
    if (!system.initialize(configuration))
        return state.SkipWithError("no device");
    const ovGraphics::GltfScene scene = makeScene();
    const double before = peakMegabytes();
    bool isLoaded = bool(ovVeldris::ModelLoader(&system).create(scene));
    const double megabytes = peakMegabytes() - before;
    const Side loading = {
        {}, [&] { isLoaded = bool(ovVeldris::ModelLoader(&system).create(scene)) && isLoaded; }};
    aimAtMilliseconds(state, runAlone(state, loading, ROUNDS), MILLISECONDS_AIM);
    aimAtMegabytes(state, megabytes, MEGABYTES_AIM);
    if (!isLoaded)
        state.SkipWithError("the model was not loaded");
}

} // namespace

void registerModelLoader() {
    benchmark::RegisterBenchmark("model_loader/varying_metalness_4096", loadVaryingMetalness)
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

} // namespace ovBenchmarks
