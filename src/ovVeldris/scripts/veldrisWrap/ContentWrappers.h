// Models, declarations and projects in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovVeldrisWrap {

/// Binds "ovVeldris.Model".
class ModelWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovVeldris.ModelLoader".
class ModelLoaderWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovVeldris.LoadedMaterials": what loading declarations and projects gives.
class LoadedMaterialsWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovVeldris.ContentLoader".
class ContentLoaderWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovVeldris.ProjectLoader".
class ProjectLoaderWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovVeldrisWrap
