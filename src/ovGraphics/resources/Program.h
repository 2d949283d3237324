// Programs: compiled vertex and pixel code.
#pragma once

#include <ovGraphics/resources/ProgramSourcesHolder.h>
#include <ovGraphics/resources/Resource.h>
#include <ovGraphics/shading/CompiledProgram.h>

namespace ovGraphics {

struct LoadedProgram;

/// Compiled vertex and pixel code. Programs whose full texts are equal share one compilation, also when they
/// are different objects; with a cache folder (see Configuration) also between processes.
///
/// load() fails with one log line that names the stage, the author's file and line, and the compiler's words.
class OV_API Program : public Resource {
public:
    /// A new, unloaded program without text; a null system means the singleton.
    static ovMemory::UniquePtr<Program> create(System* system);
    explicit Program(System* system);
    ~Program() override;

    void setSources(const ProgramSourcesHolder& sources);
    const ProgramSourcesHolder& getSources() const { return _sources; }

    /// Whether the dual-dialect macros of the system's language are put before the texts. Default false.
    void setActivateCrossCompilerDefines(bool activate);
    bool getActivateCrossCompilerDefines() const { return _crossCompilerDefines; }

    /// What is compiled: sources, defines and the system's language.
    shading::ProgramText getText() const;

    void reset() override;

    /// The device's program with its interface; null when unloaded.
    const LoadedProgram* getLoadedProgram() const { return _loadedProgram; }

private:
    bool _load(ovMemory::String& error) override;
    void _unload() override;

    ProgramSourcesHolder _sources;
    bool _crossCompilerDefines = false;
    const LoadedProgram* _loadedProgram = nullptr;
};

} // namespace ovGraphics
