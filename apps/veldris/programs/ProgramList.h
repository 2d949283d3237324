// The programs that the library and the passes of this program generate.
#pragma once

#include <ovGraphics/shading/CompiledProgram.h>
#include <ovMemory/Memory.h>
#include <ovVeldris/complexEffects/ComplexEffectKind.h>
#include <ovVeldris/effects/EffectKind.h>

namespace veldris {

class Session;

/// A program, and what leads to it.
struct GeneratedProgram {
    ovMemory::String from; ///< an effect as --effects has it, "material ...", "pass ..." or "tool ..."
    ovGraphics::shading::ProgramText text;
};

/// Loads everything that has a program, and lists what the device was given: each program once.
///
/// All return false with one line in error when something cannot be loaded.
class ProgramList {
public:
    /// @param session borrowed, open, and watched until this object goes
    explicit ProgramList(Session& session);
    ~ProgramList();
    ProgramList(const ProgramList&) = delete;
    ProgramList& operator=(const ProgramList&) = delete;

    /// The programs of every kind of effect: by itself and in each way that it reads a scene, with every
    /// combination of settings, or each by itself where those are many. @param only the name of one kind;
    /// empty: all
    bool addEffects(ovMemory::StringView only, ovMemory::String& error);
    /// Those of physically based materials, one setting after another: without textures, with each alone,
    /// with all, and all of them with each switch and choice turned. Which channels a texture is read from
    /// changes no more than the letters of a swizzle, and is left out.
    bool addMaterials(ovMemory::String& error);
    /// Those of the materials of a file, lit by a light alone. @param warnings of the reading
    bool addModel(ovMemory::StringView path, ovMemory::Buffer<ovMemory::String>& warnings,
                  ovMemory::String& error);
    /// Those that render and apply draw with besides effects and materials.
    bool addPasses(ovMemory::String& error);
    /// Those of the library's tools for environments.
    bool addTools(ovMemory::String& error);

    const ovMemory::Buffer<GeneratedProgram>& get() const { return _programs; }

private:
    void _keep(const ovGraphics::shading::ProgramText& text);
    bool _fail(ovMemory::String& error) const;
    bool _addEffect(const ovVeldris::EffectKind& kind, const ovVeldris::SceneReading* reading,
                    ovMemory::String& error);
    bool _addComplexEffect(const ovVeldris::ComplexEffectKind& kind, ovMemory::String& error);
    bool _addMaterial(ovMemory::String from,
                      ovMemory::BufferView<const ovVeldris::SettingAssignment> settings);

    Session& _session;
    ovMemory::String _from; ///< of what is loaded next
    ovMemory::Buffer<GeneratedProgram> _programs;
};

} // namespace veldris
