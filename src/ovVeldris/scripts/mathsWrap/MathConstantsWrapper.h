// Constants of the circle in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovMathsWrap {

/// Binds ovMaths::MathConstants, a namespace in scripts.
class MathConstantsWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovMathsWrap
