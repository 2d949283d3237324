// Every program tracker of the library, one per kind.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>
#include <tuple>

namespace ovGraphics {
class System;
}

namespace ovVeldris {

/// Trackers in the order of their creation.
template <typename... Trackers>
using TrackerList = std::tuple<ovMemory::UniquePtr<Trackers>...>;

/// Every tracker of the library. A new kind is a line here, and an include of its header in the source.
using ProgramTrackers = TrackerList<      //
    class ImageEnvironmentProgramTracker, //
    class PbsProgramTracker,              //
    class TextureCopyProgramTracker,      //
    class ToneMappingProgramTracker>;

/// Owns the trackers of one graphics system.
class OV_API ProgramTrackersHolder {
public:
    /// Creates every tracker. @param graphicsSystem creates the programs; outlives the holder
    explicit ProgramTrackersHolder(ovGraphics::System* graphicsSystem);
    ProgramTrackersHolder(const ProgramTrackersHolder&) = delete;
    ProgramTrackersHolder& operator=(const ProgramTrackersHolder&) = delete;
    /// Destroys every tracker with the programs that are still held; whoever borrowed one forgets it.
    ~ProgramTrackersHolder();

    /// The tracker of a kind. Never null.
    template <typename Tracker>
    Tracker* get() const {
        return std::get<ovMemory::UniquePtr<Tracker>>(_trackers).get();
    }

private:
    ProgramTrackers _trackers;
};

} // namespace ovVeldris
