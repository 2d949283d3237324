// veldris materials: the materials of a model as a file to be edited.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <veldris/JsonText.h>
#include <veldris/console/Console.h>
#include <veldris/console/InputFile.h>
#include <veldris/console/OutputFile.h>
#include <veldris/materials/MaterialFile.h>
#include <veldris/scene/ModelLight.h>
#include <veldris/scene/ModelReading.h>

namespace veldris {

namespace {

using ovMemory::String;

struct MaterialsOptions {
    String model;
    String output;
    DrawingOptions drawing;
};

int runMaterials(Console& console, MaterialsOptions options) {
    // The loader uploads the textures too, so that even writing declarations needs a device.
    String error = checkOutput(options.output).error;
    InputFile standardInput;
    if (!error.empty() || !standardInput.open(options.model, console, error))
        return console.fail(error);
    if (isStandardOutput(options.output))
        console.leaveOutputToData();
    console.step("device");
    Session session(&console.getProgress());
    if (!session.open(options.drawing, error))
        return console.fail(error);
    const ovVeldris::ModelLoadResult loaded = readModel(console, session, options.model);
    if (!loaded)
        return console.fail(loaded.error);
    giveModelLight(*loaded.model);
    const ovMemory::Buffer<ovVeldris::PbsMaterial*> materials = materialsOf(*loaded.model);
    const String text = writeMaterialFile(materials);
    const ovMemory::Result written = writeOutput(options.output, ovMemory::BufferView<const char>(text));
    if (!written)
        return console.fail(written.error);
    if (options.drawing.json)
        console.print(JsonObject()
                          .text("output", options.output)
                          .number("materials", static_cast<double>(materials.size()))
                          .toText());
    else
        printPath(console, options.output);
    return 0;
}

} // namespace

void addMaterialsCommand(CLI::App& program, Command& command) {
    auto options = std::make_shared<MaterialsOptions>();
    CLI::App* materials =
        program.add_subcommand("materials", "write the materials of a model to a file that render reads");
    materials->add_option("MODEL", options->model, "model to read (.glb, .gltf)")->required();
    materials->add_option("-o,--output", options->output, "file of declarations (JSON) to write")->required();
    addDeviceOptions(*materials, options->drawing);
    addJsonOption(*materials, options->drawing.json);
    materials->footer(
        "Example: veldris materials helmet.glb -o helmet.ovm, then edit it, then\n"
        "veldris check helmet.ovm; veldris render helmet.glb --materials helmet.ovm -o helmet.png");
    materials->callback([options, &command] {
        command = [options](Console& console) { return runMaterials(console, *options); };
    });
}

} // namespace veldris
