// Matrices in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovMathsWrap {

/// Binds ovMaths::Matrix. New ones belong to the script that gets them.
class MatrixWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovMathsWrap
