// Frames in scripts: what is drawn, where, and when.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovVeldrisWrap {

/// Binds "ovVeldris.Frame".
class FrameWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovVeldrisWrap
