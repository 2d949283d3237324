// The filter of environment maps.
#pragma once

#include <ovCommon/Api.h>

namespace ovVeldris {

class System;

/// The tool of one System that filters environment maps for glossy reflections.
class OV_API PbsEnvironmentMapFilter {
public:
    /// @param system not owned, outlives this object
    explicit PbsEnvironmentMapFilter(System* system)
        : _system(system) {}

    System* getSystem() const { return _system; }

private:
    System* _system;
};

} // namespace ovVeldris
