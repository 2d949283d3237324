// The renderer of environment maps.
#pragma once

#include <ovCommon/Api.h>

namespace ovVeldris {

class System;

/// The tool of one System that renders environment maps.
class OV_API EnvironmentRenderer {
public:
    /// @param system not owned, outlives this object
    explicit EnvironmentRenderer(System* system)
        : _system(system) {}

    System* getSystem() const { return _system; }

private:
    System* _system;
};

} // namespace ovVeldris
