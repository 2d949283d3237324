#include <ovVeldris/effects/ImageEnvironmentEffect.h>
#include <ovVeldris/effects/ProgramTrackersHolder.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <ovVeldris/effects/ToneMappingEffect.h>
#include <ovVeldris/materials/PbsProgramTracker.h>

namespace ovVeldris {

namespace {

template <typename... Trackers>
void createTrackers(TrackerList<Trackers...>& trackers, ovGraphics::System* graphicsSystem) {
    ((std::get<ovMemory::UniquePtr<Trackers>>(trackers) = std::make_unique<Trackers>(graphicsSystem)), ...);
}

} // namespace

ProgramTrackersHolder::ProgramTrackersHolder(ovGraphics::System* graphicsSystem) {
    createTrackers(_trackers, graphicsSystem);
}

ProgramTrackersHolder::~ProgramTrackersHolder() = default;

} // namespace ovVeldris
