// The loader of projects.
#pragma once

#include <ovCommon/Api.h>

namespace ovVeldris {

class System;

/// The loader of one System for projects.
class OV_API ProjectLoader {
public:
    /// @param system not owned, outlives this object
    explicit ProjectLoader(System* system)
        : _system(system) {}

    System* getSystem() const { return _system; }

private:
    System* _system;
};

} // namespace ovVeldris
