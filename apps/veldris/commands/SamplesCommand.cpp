// veldris samples: a sky, a model, a file of materials and a script to try the other subcommands with.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <fmt/format.h>
#include <ovImages/Conversion.h>
#include <ovImages/ExrEncoder.h>
#include <ovImages/Panorama.h>
#include <veldris/EmbeddedShaders.h>
#include <veldris/ImageFiles.h>
#include <veldris/JsonText.h>
#include <veldris/console/Console.h>
#include <veldris/console/OutputFile.h>
#include <veldris/samples/SampleModel.h>
#include <veldris/scene/BuiltInSky.h>
#include <veldris/scene/ModelLight.h>

namespace veldris {

namespace {

using ovMemory::String;

constexpr unsigned int SAMPLE_SKY_WIDTH = 1024; // pixels
// As veldris materials writes it, and then edited: the brass became copper, polished.
constexpr ovMemory::StringView SAMPLE_MATERIALS = R"text([
    {
        "name": "brass",
        "type": "PBS",
        "specularColor": "Vec(0.95, 0.53, 0.4, 0)",
        "roughnessGlossinessValue": 0.12
    }
]
)text";

struct SamplesOptions {
    String folder = ".";
    bool json = false;
};

/// The built-in sky as a photographed panorama would be, in half floats.
ovMemory::Result writeSky(const String& path) {
    ovImages::Image sky = drawSkyPanorama(SAMPLE_SKY_WIDTH, -DEFAULT_LIGHT_DIRECTION.getNormalizedVec3());
    ovImages::mirrorPanorama(sky); // photographs run the other way round
    const ovImages::Image halves = ovImages::convertImage(sky.view(), ovImages::COMPONENT_TYPE::HALF, 3,
                                                          ovImages::COLOR_ENCODING::LINEAR);
    return encodePicture(ovImages::ExrEncoder(), path, halves.view());
}

int runSamples(Console& console, const SamplesOptions& options) {
    std::error_code status;
    std::filesystem::create_directories(options.folder, status);
    if (status)
        return console.fail(fmt::format("could not make the folder '{}': {}; name another.", options.folder,
                                        status.message()));
    const auto pathOf = [&](const char* name) {
        return (std::filesystem::path(options.folder) / name).lexically_normal().native();
    };
    const String sky = pathOf("sky.exr");
    const String model = pathOf("pawn.glb");
    const String materials = pathOf("copper.ovm");
    const String script = pathOf("scene.lua");
    const auto modelBytes = makeSampleModel();
    for (const ovMemory::Result& written :
         {writeSky(sky), writeOutput(model, ovMemory::BufferView<const unsigned char>(modelBytes)),
          writeOutput(materials, ovMemory::BufferView<const char>(SAMPLE_MATERIALS)),
          writeOutput(script, ovMemory::BufferView<const char>(embedded::scene_lua))})
        if (!written)
            return console.fail(written.error);
    if (options.json)
        console.print(JsonObject().texts("files", {sky, model, materials, script}).toText());
    else
        console.print(fmt::format("{}\n{}\n{}\n{}", sky, model, materials, script));
    return 0;
}

} // namespace

void addSamplesCommand(CLI::App& program, Command& command) {
    auto options = std::make_shared<SamplesOptions>();
    CLI::App* samples = program.add_subcommand(
        "samples", "write a sky, a model, materials and a script to try the subcommands with");
    samples->add_option("FOLDER", options->folder, "where to, made if it is not there")
        ->capture_default_str();
    addJsonOption(*samples, options->json);
    samples->footer(
        "Example: veldris samples; veldris render pawn.glb --environment sky.exr --materials copper.ovm -o "
        "pawn.png");
    samples->callback([options, &command] {
        command = [options](Console& console) { return runSamples(console, *options); };
    });
}

} // namespace veldris
