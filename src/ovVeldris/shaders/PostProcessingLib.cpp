#include <ovVeldris/shaders/PostProcessingLib.h>

#include <ovVeldris/EmbeddedShaders.h>

namespace ovVeldris {

ovMemory::StringView PostProcessingLib::ovPostProcessDefaultVertex() {
    return embedded::PostProcessingLib_ovPostProcessDefaultVertex;
}

} // namespace ovVeldris
