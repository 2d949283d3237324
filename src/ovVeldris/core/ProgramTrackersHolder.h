// Every program tracker of a graphics system, one per kind.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>
#include <typeindex>

namespace ovGraphics {
class System;
}

namespace ovVeldris {

/// A tracker of any kind, see ProgramTracker.
class OV_API ProgramTrackerBase {
public:
    ProgramTrackerBase() = default;
    ProgramTrackerBase(const ProgramTrackerBase&) = delete;
    ProgramTrackerBase& operator=(const ProgramTrackerBase&) = delete;
    virtual ~ProgramTrackerBase();
};

/// Owns the trackers of one graphics system. It lists no kinds: a tracker is made when it is first asked for,
/// so that a new kind needs no line here.
class OV_API ProgramTrackersHolder {
public:
    /// @param graphicsSystem creates the programs; outlives the holder
    explicit ProgramTrackersHolder(ovGraphics::System* graphicsSystem);
    ProgramTrackersHolder(const ProgramTrackersHolder&) = delete;
    ProgramTrackersHolder& operator=(const ProgramTrackersHolder&) = delete;
    /// Destroys the trackers, the last one made first, with the programs that are still held; whoever
    /// borrowed one forgets it.
    ~ProgramTrackersHolder();

    /// The tracker of a kind, always the same. Never null. @param Tracker derives from ProgramTrackerBase and
    /// is made from a graphics system
    template <typename Tracker>
    Tracker* get() const {
        const std::type_index type = typeid(Tracker);
        if (ProgramTrackerBase* existing = _find(type))
            return static_cast<Tracker*>(existing);
        auto tracker = std::make_unique<Tracker>(_graphicsSystem);
        Tracker* made = tracker.get();
        _trackers.push_back({type, std::move(tracker)});
        return made;
    }

private:
    struct Entry {
        std::type_index type;
        ovMemory::UniquePtr<ProgramTrackerBase> tracker;
    };

    ProgramTrackerBase* _find(std::type_index type) const;

    ovGraphics::System* _graphicsSystem;
    mutable ovMemory::Buffer<Entry> _trackers; ///< few: about ten kinds
};

} // namespace ovVeldris
