// The tools of environment maps in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovVeldrisWrap {

/// Binds "ovVeldris.PbsEnvironmentMapFilter": static functions of the System singleton's filter.
class PbsEnvironmentMapFilterWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovVeldris.EnvironmentRenderer": static functions of the System singleton's renderer.
class EnvironmentRendererWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovVeldrisWrap
