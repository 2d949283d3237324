// veldris shaders: the programs that effects generate, as lists, as text, and checked.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/shading/CrossCompiler.h>
#include <ovVeldris/content/ModelLoader.h>
#include <ovVeldris/core/settings/SettingCombinations.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <veldris/JsonText.h>
#include <veldris/console/Console.h>
#include <veldris/effects/EffectChain.h>
#include <veldris/scene/ModelLight.h>

namespace veldris {

namespace {

using ovGraphics::shading::STAGE;
using ovMemory::Buffer;
using ovMemory::String;

struct ShadersOptions {
    String model;
    String effect;
    String print;
    String stage = "both";
    bool translated = false;
    DrawingOptions drawing;
};

/// One program and the settings that lead to it.
struct GeneratedProgram {
    String spec;
    ovGraphics::shading::ProgramText text;
    ovGraphics::shading::CompileResult compiled;
};

/// Settings that select the text of a shader, as a list of effects has them.
PlannedEffect plannedWith(const ovVeldris::EffectKind& kind,
                          const Buffer<ovVeldris::SettingAssignment>& settings) {
    PlannedEffect effect;
    effect.kind = &kind;
    effect.settings = settings;
    effect.text = kind.getName();
    // The spelling of --effects, so that a line of the list can be pasted into a command.
    char separator = ':';
    for (const ovVeldris::SettingAssignment& assignment : settings) {
        const ovVeldris::Setting& setting = *kind.settings().find(assignment.name);
        effect.text += separator;
        effect.text.append(setting.name).append("=").append(toText(setting, assignment.value));
        separator = ',';
    }
    return effect;
}

bool isSameText(const ovGraphics::shading::ProgramText& a, const ovGraphics::shading::ProgramText& b) {
    const auto isSame = [&](STAGE stage) {
        return ovGraphics::shading::getFullText(a, stage) == ovGraphics::shading::getFullText(b, stage);
    };
    // The full texts, since the defines make programs of one source differ.
    return a.name == b.name && isSame(STAGE::VERTEX) && isSame(STAGE::PIXEL);
}

/// Adds a loaded program, in the place of an equal one.
void keepProgram(const String& spec, const ovGraphics::Shader& shader, Buffer<GeneratedProgram>& programs) {
    const auto text = shader.getProgram()->getText();
    // Compared by name and text. Programs of one name and different texts would be a mistake of an id, and
    // both must show.
    std::erase_if(programs, [&](const GeneratedProgram& other) { return isSameText(other.text, text); });
    programs.push_back({spec, text, ovGraphics::shading::compile(text)});
}

/// Adds the program of an effect, loaded on the device. Where a setting may mean "choose for me", the choice
/// comes later in the list and says more: it takes the place of an equal program.
bool addProgram(Session& session, const PlannedEffect& planned, Buffer<GeneratedProgram>& programs,
                String& error) {
    const auto effect = makeEffect(session, planned);
    if (!effect->load()) {
        error = session.getLogger().take();
        return false;
    }
    keepProgram(planned.text, *effect->getShader(), programs);
    return true;
}

/// The programs of a model's materials, lit by a light alone.
bool generateMaterials(Console& console, Session& session, const String& path,
                       Buffer<GeneratedProgram>& programs, String& error) {
    const ovVeldris::ModelLoadResult loaded = ovVeldris::ModelLoader(&session.getSystem()).load(path);
    error = loaded.error;
    if (!loaded)
        return false;
    console.warnEach(loaded.model->getWarnings());
    giveModelLight(*loaded.model);
    if (!loaded.model->loadMaterials()) {
        error = session.getLogger().take();
        return false;
    }
    for (const ovVeldris::PbsMaterial* material : materialsOf(*loaded.model))
        keepProgram("material '" + String(material->getName()) + "'", *material->getShader(), programs);
    return true;
}

/// Every program of every kind of effect, or of one.
bool generate(Session& session, const String& onlyEffect, Buffer<GeneratedProgram>& programs, String& error) {
    for (const ovVeldris::EffectKind& kind : ovVeldris::effectKinds()) {
        if (!onlyEffect.empty() && kind.getName() != onlyEffect)
            continue;
        for (const auto& settings : finiteCombinations(kind.settings()))
            if (!addProgram(session, plannedWith(kind, settings), programs, error))
                return false;
    }
    return true;
}

void printStage(Console& console, const GeneratedProgram& program, STAGE stage, bool translated) {
    const bool isVertex = stage == STAGE::VERTEX;
    console.print(fmt::format("// {} stage of {}", isVertex ? "vertex" : "pixel", program.text.name));
    if (translated)
        console.print(isVertex ? program.compiled.program->vertexText : program.compiled.program->pixelText);
    else
        console.print(ovGraphics::shading::getFullText(program.text, stage));
}

int printProgram(Console& console, const Buffer<GeneratedProgram>& programs, const ShadersOptions& options) {
    for (const GeneratedProgram& program : programs) {
        if (program.text.name != options.print)
            continue;
        if (options.stage != "pixel")
            printStage(console, program, STAGE::VERTEX, options.translated);
        if (options.stage != "vertex")
            printStage(console, program, STAGE::PIXEL, options.translated);
        return 0;
    }
    return console.fail(
        fmt::format("nothing here generates a program '{}'; 'veldris shaders' lists them.", options.print));
}

void listPrograms(Console& console, const Buffer<GeneratedProgram>& programs, const DrawingOptions& options) {
    Buffer<JsonObject> list;
    for (const GeneratedProgram& program : programs) {
        const auto& compiled = *program.compiled.program;
        list.push_back(JsonObject()
                           .text("program", program.text.name)
                           .text("effect", program.spec)
                           .number("constantBuffers", static_cast<double>(compiled.constantBuffers.size()))
                           .number("textureUnits", static_cast<double>(compiled.textureUnits.size()))
                           .text("warnings", program.compiled.warning));
        if (!options.json)
            console.print(fmt::format(
                "{:<32} {}{}", program.text.name, program.spec,
                program.compiled.warning.empty() ? "" : "  warnings: " + program.compiled.warning));
    }
    if (options.json)
        console.print(JsonObject().text("language", options.language).array("programs", list).toText());
    else
        console.print(fmt::format("{} programs compile in {}.", programs.size(), options.language));
}

int runShaders(Console& console, const ShadersOptions& options) {
    String error;
    if (!options.effect.empty() && !ovVeldris::findEffectKind(options.effect, error))
        return console.fail(error);
    Session session;
    Buffer<GeneratedProgram> programs;
    if (!session.open(options.drawing, error) || !generate(session, options.effect, programs, error))
        return console.fail(error);
    if (!options.model.empty() && !generateMaterials(console, session, options.model, programs, error))
        return console.fail(error);
    if (!options.print.empty())
        return printProgram(console, programs, options);
    listPrograms(console, programs, options.drawing);
    return 0;
}

} // namespace

void addShadersCommand(CLI::App& program, Command& command) {
    auto options = std::make_shared<ShadersOptions>();
    CLI::App* shaders = program.add_subcommand(
        "shaders", "list, check and print the programs that effects and materials generate");
    shaders->add_option("MODEL", options->model,
                        "list the programs of this model's materials too (.glb, .gltf)");
    shaders->add_option("--effect", options->effect, "only the programs of this effect");
    shaders->add_option("--print", options->print, "print this program's text as the compiler sees it");
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
