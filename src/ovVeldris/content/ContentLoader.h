// The loader of material declarations.
#pragma once

#include <ovCommon/Api.h>

namespace ovVeldris {

class System;

/// The loader of one System for declared content.
class OV_API ContentLoader {
public:
    /// @param system not owned, outlives this object
    explicit ContentLoader(System* system)
        : _system(system) {}

    System* getSystem() const { return _system; }

private:
    System* _system;
};

} // namespace ovVeldris
