// veldris project: makes, checks and packs projects.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <veldris/JsonText.h>
#include <veldris/commands/RenderOptions.h>
#include <veldris/console/Console.h>
#include <veldris/projects/ProjectCheck.h>
#include <veldris/projects/ProjectMaking.h>
#include <veldris/projects/ProjectPack.h>
#include <veldris/projects/SettingOptions.h>
#include <veldris/scene/ModelLight.h>
#include <veldris/scene/ModelReading.h>

namespace veldris {

namespace {

using ovMemory::Buffer;
using ovMemory::Result;
using ovMemory::String;

struct ProjectOptions {
    String project;
    String folder; ///< to pack into
    bool scripts = false;
    RenderOptions render; ///< of new: the model, and what the project keeps
};

/// Prints the files of a result.
int tellFiles(Console& console, const Buffer<String>& files, bool json) {
    if (json)
        console.print(JsonObject().texts("files", files).toText());
    for (const String& file : files)
        if (!json)
            console.print(file);
    return 0;
}

Result writeProject(Console& console, const ProjectOptions& options, const ProjectFiles& files) {
    if (options.render.model.empty())
        return writeEmptyProject(files);
    console.step("device");
    Session session(&console.getProgress());
    String error;
    if (!session.open(options.render.drawing, error))
        return ovMemory::failed(error);
    const ovVeldris::ModelLoadResult loaded = readModel(console, session, options.render.model);
    if (!loaded)
        return ovMemory::failed(loaded.error);
    giveModelLight(*loaded.model);
    console.step("writing");
    return writeModelProject(session, *loaded.model, files);
}

int runProjectNew(Console& console, const ProjectOptions& options, const Buffer<ProjectSetting>& settings) {
    ProjectFiles files;
    String error;
    if (!ProjectFiles::find(options.project, files, error) || !checkSceneOptions(options.render, error))
        return console.fail(error);
    if (options.render.camera == "file")
        return console.fail(
            "a project keeps no cameras of the model's file; give --camera AZIMUTH,ELEVATION or a "
            "place.");
    Result made = prepareProject(files);
    if (made)
        made = writeProject(console, options, files);
    if (made && options.scripts)
        made = writeScriptsSwitch(files);
    if (made)
        made = writeProjectSettings(files, settings);
    if (!made)
        return console.fail(made.error);
    return tellFiles(console, files.listExisting(), options.render.drawing.json);
}

int runProjectCheck(Console& console, const ProjectOptions& options) {
    ProjectFiles files;
    String error;
    if (!ProjectFiles::find(options.project, files, error))
        return console.fail(error);
    const Buffer<ProjectProblem> problems = checkProject(files);
    Buffer<JsonObject> objects;
    for (const ProjectProblem& problem : problems) {
        objects.push_back(JsonObject()
                              .text("file", problem.file)
                              .number("line", problem.problem.line)
                              .text("message", problem.problem.message));
        if (!options.render.drawing.json)
            console.print(toText(problem.file, problem.problem));
    }
    if (options.render.drawing.json)
        console.print(JsonObject().text("project", files.set).array("problems", objects).toText());
    else if (problems.empty())
        console.print(fmt::format("{}: no problems", files.set));
    return problems.empty() ? 0 : 1;
}

int runProjectPack(Console& console, const ProjectOptions& options) {
    ProjectFiles files;
    String error;
    if (!ProjectFiles::find(options.project, files, error))
        return console.fail(error);
    Buffer<String> copied;
    if (const Result packed = packProject(files, options.folder, copied); !packed)
        return console.fail(packed.error);
    return tellFiles(console, copied, options.render.drawing.json);
}

void addNew(CLI::App& project, const std::shared_ptr<ProjectOptions>& options, Command& command) {
    CLI::App* made = project.add_subcommand("new", "write a project, empty or of a model");
    made->add_option("PROJECT", options->project, "file to write: NAME.ovs, in a folder of its own")
        ->required();
    made->add_option("MODEL", options->render.model, "model (.glb, .gltf) whose surfaces it draws");
    made->add_flag(
        "--scripts", options->scripts,
        "also write NAME_scripts.ovScripts, spelt with a large S: the library reads scripts only beside it");
    addSceneOptions(*made, options->render);
    addTimeOption(*made, options->render.drawing.time);
    addDeviceOptions(*made, options->render.drawing);
    addJsonOption(*made, options->render.drawing.json);
    made->footer(
        "Options of the picture are kept for veldris render --project.\n"
        "Example: veldris project new helmet/helmet.ovs helmet.glb --environment sky.exr --camera 20,10");
    made->callback([options, made, &command] {
        command = [options, made](Console& console) {
            return runProjectNew(console, *options, givenSettings(*made));
        };
    });
}

} // namespace

void addProjectCommand(CLI::App& program, Command& command) {
    CLI::App* project = program.add_subcommand("project", "make, check and pack projects");
    project->require_subcommand(1);
    auto options = std::make_shared<ProjectOptions>();
    addNew(*project, options, command);

    CLI::App* check = project->add_subcommand("check", "list every problem of a project");
    check->add_option("PROJECT", options->project, "project to look at (NAME.ovs)")->required();
    addJsonOption(*check, options->render.drawing.json);
    check->footer("Prints FILE:LINE: and what is wrong there; the exit status is 1 if anything is.");
    check->callback([options, &command] {
        command = [options](Console& console) { return runProjectCheck(console, *options); };
    });

    CLI::App* pack = project->add_subcommand("pack", "copy a project with everything it needs to a folder");
    pack->add_option("PROJECT", options->project, "project to copy (NAME.ovs)")->required();
    pack->add_option("-o,--output", options->folder, "folder to copy to, made if it is not there")
        ->required();
    addJsonOption(*pack, options->render.drawing.json);
    pack->footer("Example: veldris project pack helmet/helmet.ovs -o /tmp/helmet");
    pack->callback([options, &command] {
        command = [options](Console& console) { return runProjectPack(console, *options); };
    });
}

} // namespace veldris
