// Effects, complex effects and materials in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovVeldrisWrap {

/// Binds "ovVeldris.Effect", with a member for each setting.
class EffectWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovVeldris.EffectManager".
class EffectManagerWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovVeldris.ComplexEffect", with a member for each setting.
class ComplexEffectWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovVeldris.ComplexEffectManager".
class ComplexEffectManagerWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovVeldris.Material", with a member for each setting.
class MaterialWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovVeldris.MaterialManager".
class MaterialManagerWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovVeldrisWrap
