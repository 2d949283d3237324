// The library's own classes in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovVeldrisWrap {

/// Binds effects, materials, models, environment tools and loaders of the System singleton.
void updateVeldris(ovScripts::Environment* environment);

} // namespace ovVeldrisWrap
