// Pairs of programs that complex effects share, counted by reference.
#pragma once

#include <ovVeldris/core/ProgramTracker.h>

namespace ovVeldris {

/// Two programs of one id. They become null when their tracker goes.
struct ProgramPair {
    ovMemory::Borrowed<ovGraphics::Program> first;
    ovMemory::Borrowed<ovGraphics::Program> second;
};

/// A ProgramTracker of pairs. NameGenerator also has FIRST_SUFFIX and SECOND_SUFFIX, which end the names.
template <typename Info, typename IdGenerator, typename NameGenerator>
class ProgramPairTracker : public ProgramTrackerBase {
public:
    /// @param graphicsSystem creates the programs; outlives the tracker's use
    explicit ProgramPairTracker(ovGraphics::System* graphicsSystem)
        : _first(graphicsSystem)
        , _second(graphicsSystem) {}

    /// The programs of a record, with one more reference. Never null; new ones are unloaded, and the caller
    /// fills and loads them.
    ProgramPair getPrograms(const Info& info) {
        return {_get(_first, info, NameGenerator::FIRST_SUFFIX),
                _get(_second, info, NameGenerator::SECOND_SUFFIX)};
    }

    /// Takes one reference away; the last one destroys the programs. A record without programs is ignored.
    void releasePrograms(const Info& info) {
        _first.releaseProgram(info);
        _second.releaseProgram(info);
    }

private:
    using Tracker = ProgramTracker<Info, IdGenerator, NameGenerator>;

    static ovGraphics::Program* _get(Tracker& tracker, const Info& info, ovMemory::StringView suffix) {
        ovGraphics::Program* program = tracker.getProgram(info);
        ovMemory::String name{NameGenerator()()};
        name.append(std::to_string(IdGenerator()(info))).append(suffix);
        program->setName(name);
        return program;
    }

    Tracker _first;
    Tracker _second;
};

} // namespace ovVeldris
