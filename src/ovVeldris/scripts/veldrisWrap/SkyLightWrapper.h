// The light of a sky in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovVeldrisWrap {

/// Binds "ovVeldris.SkyLight".
class SkyLightWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovVeldrisWrap
