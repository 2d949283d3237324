// Programs shared by every object whose shader text is equal, counted by reference.
#pragma once

#include <cstdint>
#include <ovGraphics/resources/Program.h>
#include <ovMemory/NameMap.h>
#include <ovVeldris/core/ProgramTrackersHolder.h>
#include <unordered_map>

namespace ovVeldris {

/// 64-bit FNV-1a of an id's eight bytes.
struct ProgramIdHash {
    std::size_t operator()(uint64_t id) const {
        return ovMemory::hashFnv1a64({reinterpret_cast<const char*>(&id), sizeof(id)});
    }
};

/// Owns the programs of one kind of effect or material. A program lives while it is held.
///
/// IdGenerator()(info) is the id of an Info record: equal for records whose shader text is equal, so that
/// settings that do not change the text (textures, numbers in constant buffers) take no part in it.
/// NameGenerator()() is the prefix of the programs' names, which end in the id in decimal.
template <typename Info, typename IdGenerator, typename NameGenerator>
class ProgramTracker : public ProgramTrackerBase {
public:
    /// @param graphicsSystem creates the programs; outlives the tracker's use
    explicit ProgramTracker(ovGraphics::System* graphicsSystem)
        : _graphicsSystem(graphicsSystem)
        , _programs(INITIAL_BUCKETS) {}

    /// The program of a record, with one more reference. Never null; a new one is named and unloaded, and the
    /// caller fills and loads it.
    ovGraphics::Program* getProgram(const Info& info);

    /// Takes one reference away; the last one destroys the program. A record without a program is ignored.
    void releaseProgram(const Info& info);

private:
    struct Entry {
        ovMemory::UniquePtr<ovGraphics::Program> program;
        uint32_t references = 0;
    };

    static constexpr std::size_t INITIAL_BUCKETS = 8;

    ovGraphics::System* _graphicsSystem;
    std::unordered_map<uint64_t, Entry, ProgramIdHash> _programs;
};

template <typename Info, typename IdGenerator, typename NameGenerator>
ovGraphics::Program* ProgramTracker<Info, IdGenerator, NameGenerator>::getProgram(const Info& info) {
    const uint64_t id = IdGenerator()(info);
    Entry& entry = _programs[id];
    if (!entry.program) {
        entry.program = ovGraphics::Program::create(_graphicsSystem);
        entry.program->setName(ovMemory::String(NameGenerator()()) + std::to_string(id));
    }
    ++entry.references;
    return entry.program.get();
}

template <typename Info, typename IdGenerator, typename NameGenerator>
void ProgramTracker<Info, IdGenerator, NameGenerator>::releaseProgram(const Info& info) {
    const auto entry = _programs.find(IdGenerator()(info));
    if (entry != _programs.end() && --entry->second.references == 0)
        _programs.erase(entry);
}

} // namespace ovVeldris
