// Reading models while the user watches.
#pragma once

#include <ovVeldris/content/ModelLoader.h>

namespace veldris {

class Console;
class Session;

/// Loads a model as a step of the run, "decoding", of which "conversion" and "uploading" are counted apart.
/// Its warnings go to the console. @param path of a .glb or .gltf file
ovVeldris::ModelLoadResult readModel(Console& console, Session& session, ovMemory::StringView path);

} // namespace veldris
