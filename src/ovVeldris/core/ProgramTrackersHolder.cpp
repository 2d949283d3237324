#include <ovVeldris/core/ProgramTrackersHolder.h>

namespace ovVeldris {

ProgramTrackerBase::~ProgramTrackerBase() = default;

ProgramTrackersHolder::ProgramTrackersHolder(ovGraphics::System* graphicsSystem)
    : _graphicsSystem(graphicsSystem) {}

ProgramTrackersHolder::~ProgramTrackersHolder() {
    while (!_trackers.empty())
        _trackers.pop_back();
}

ProgramTrackerBase* ProgramTrackersHolder::_find(std::type_index type) const {
    for (const Entry& entry : _trackers)
        if (entry.type == type)
            return entry.tracker.get();
    return nullptr;
}

} // namespace ovVeldris
