// Paths and files in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovResourcesWrap {

/// Binds ovResources::ResourceManager.
class ResourceManagerWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovResourcesWrap
