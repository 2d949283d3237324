// Vectors in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovMathsWrap {

/// Binds ovMaths::Vector. New ones belong to the script that gets them.
class VectorWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovMathsWrap
