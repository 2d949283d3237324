// Quaternions in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovMathsWrap {

/// Binds ovMaths::Quaternion. New ones belong to the script that gets them.
class QuaternionWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovMathsWrap
