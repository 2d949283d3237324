// The subcommands of veldris, one source each.
#pragma once

#include <chrono>
#include <functional>
#include <ovImages/Encoder.h>
#include <ovMemory/Memory.h>
#include <veldris/Session.h>

namespace CLI {
class App;
}

namespace veldris {

class Console;

/// What a subcommand runs when it was chosen. @return the process's exit status
using Command = std::function<int(Console&)>;

/// Each adds its subcommand to the program; the chosen one stores what it runs in command.
void addApplyCommand(CLI::App& program, Command& command);
void addBakeCommand(CLI::App& program, Command& command);
void addCheckCommand(CLI::App& program, Command& command);
void addCompletionCommand(CLI::App& program, Command& command);
void addDemoCommand(CLI::App& program, Command& command);
void addHelpCommand(CLI::App& program, Command& command);
void addInfoCommand(CLI::App& program, Command& command);
void addManualCommand(CLI::App& program, Command& command);
void addMaterialsCommand(CLI::App& program, Command& command);
void addProjectCommand(CLI::App& program, Command& command);
void addRenderCommand(CLI::App& program, Command& command);
void addRunCommand(CLI::App& program, Command& command);
void addSamplesCommand(CLI::App& program, Command& command);
void addShadersCommand(CLI::App& program, Command& command);
void addSkyCommand(CLI::App& program, Command& command);

/// Adds --language, --device, --cache and --no-cache, of commands that start the library.
void addDeviceOptions(CLI::App& command, DrawingOptions& options);

/// Adds --json, of commands that have a result.
void addJsonOption(CLI::App& command, bool& json);

/// Adds --timings, of commands whose work takes its time.
void addTimingsOption(CLI::App& command, bool& timings);

/// Adds --time, of commands that draw effects.
void addTimeOption(CLI::App& command, double& seconds);

/// Adds all of them but --time, of commands that draw.
void addDrawingOptions(CLI::App& command, DrawingOptions& options);

/// Adds --layer and --strict, of commands that read pictures.
void addReadingOptions(CLI::App& command, ovImages::DecodeOptions& options);

struct EnvironmentReading;
/// Adds --input-layout and the options of addReadingOptions(), of commands that read environments.
void addEnvironmentOptions(CLI::App& command, EnvironmentReading& reading);

/// Runs the program. @param start of the first step @return its exit status: 0 done, 1 failed, 2 wrong usage
int runProgram(int argumentCount, const char* const* arguments,
               std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now());

} // namespace veldris
