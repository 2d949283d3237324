// veldris shaders: every program that is generated, as lists, as text, and checked.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <ovGraphics/shading/CrossCompiler.h>
#include <ovVeldris/core/NearestName.h>
#include <veldris/JsonText.h>
#include <veldris/console/Console.h>
#include <veldris/effects/ChainKinds.h>
#include <veldris/programs/ProgramList.h>

namespace veldris {

namespace {

using ovGraphics::shading::STAGE;
using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

struct ShadersOptions {
    String model;
    String effect;
    String print;
    String stage = "both";
    bool translated = false;
    DrawingOptions drawing;
};

/// Every program, or those of one effect, and those of a model.
bool generate(Console& console, const ShadersOptions& options, ProgramList& programs, String& error) {
    const bool isGenerated =
        programs.addEffects(options.effect, error) &&
        (!options.effect.empty() ||
         (programs.addMaterials(error) && programs.addPasses(error) && programs.addTools(error)));
    if (!isGenerated || options.model.empty())
        return isGenerated;
    Buffer<String> warnings;
    const bool isRead = programs.addModel(options.model, warnings, error);
    console.warnEach(warnings);
    return isRead;
}

void printStage(Console& console, const GeneratedProgram& program, STAGE stage, bool translated) {
    const bool isVertex = stage == STAGE::VERTEX;
    console.print(
        fmt::format("// {} stage of {}, {}", isVertex ? "vertex" : "pixel", program.text.name, program.from));
    if (!translated) {
        console.print(ovGraphics::shading::getFullText(program.text, stage));
        return;
    }
    const ovGraphics::shading::CompileResult compiled = ovGraphics::shading::compile(program.text);
    console.print(isVertex ? compiled.program->vertexText : compiled.program->pixelText);
}

int printProgram(Console& console, const Buffer<GeneratedProgram>& programs, const ShadersOptions& options) {
    bool isThere = false;
    for (const GeneratedProgram& program : programs) {
        if (program.text.name != options.print)
            continue;
        isThere = true;
        if (options.stage != "pixel")
            printStage(console, program, STAGE::VERTEX, options.translated);
        if (options.stage != "vertex")
            printStage(console, program, STAGE::PIXEL, options.translated);
    }
    if (isThere)
        return 0;
    Buffer<StringView> names;
    for (const GeneratedProgram& program : programs)
        names.push_back(program.text.name);
    return console.fail(fmt::format("nothing here generates a program '{}'; 'veldris shaders' lists them.{}",
                                    options.print, ovVeldris::nearestNameHint(options.print, names)));
}

void listPrograms(Console& console, const Buffer<GeneratedProgram>& programs, const DrawingOptions& options) {
    Buffer<JsonObject> list;
    for (const GeneratedProgram& program : programs) {
        // Again, and not from a cache, for the compilers' warnings.
        const ovGraphics::shading::CompileResult result = ovGraphics::shading::compile(program.text);
        const auto& compiled = *result.program;
        list.push_back(JsonObject()
                           .text("program", program.text.name)
                           .text("from", program.from)
                           .number("constantBuffers", static_cast<double>(compiled.constantBuffers.size()))
                           .number("textureUnits", static_cast<double>(compiled.textureUnits.size()))
                           .text("warnings", result.warning));
        if (!options.json)
            console.print(fmt::format("{:<40} {}{}", program.text.name, program.from,
                                      result.warning.empty() ? "" : "  warnings: " + result.warning));
    }
    if (options.json)
        console.print(JsonObject().text("language", options.language).array("programs", list).toText());
    else
        console.print(fmt::format("{} programs compile in {}.", programs.size(), options.language));
}

int runShaders(Console& console, const ShadersOptions& options) {
    String error;
    if (!options.effect.empty() && !findChainKind(options.effect, error))
        return console.fail(error);
    console.step("device");
    Session session;
    if (!session.open(options.drawing, error))
        return console.fail(error);
    console.step("programs");
    ProgramList programs(session);
    if (!generate(console, options, programs, error))
        return console.fail(error);
    if (!options.print.empty())
        return printProgram(console, programs.get(), options);
    listPrograms(console, programs.get(), options.drawing);
    return 0;
}

} // namespace

void addShadersCommand(CLI::App& program, Command& command) {
    auto options = std::make_shared<ShadersOptions>();
    CLI::App* shaders = program.add_subcommand(
        "shaders", "list, check and print the programs of effects, materials, passes and tools");
    shaders->add_option("MODEL", options->model,
                        "list the programs of this model's materials too (.glb, .gltf)");
    shaders->add_option("--effect", options->effect, "only the programs of this effect (and of MODEL)");
    shaders->add_option("--print", options->print,
                        "print the text of the programs of this name as the compiler sees it");
    shaders->add_option("--stage", options->stage, "stage to print: vertex, pixel or both")
        ->check(CLI::IsMember({"vertex", "pixel", "both"}))
        ->capture_default_str();
    shaders->add_flag("--translated", options->translated, "print the text that the device gets instead");
    addDeviceOptions(*shaders, options->drawing);
    addJsonOption(*shaders, options->drawing.json);
    shaders->callback([options, &command] {
        command = [options](Console& console) { return runShaders(console, *options); };
    });
}

} // namespace veldris
