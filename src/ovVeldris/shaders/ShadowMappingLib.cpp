#include <ovVeldris/shaders/ShadowMappingLib.h>

#include <ovVeldris/EmbeddedShaders.h>

namespace ovVeldris {

ovMemory::StringView ShadowMappingLib::ovShadowMap() {
    return embedded::ShadowMappingLib_ovShadowMap;
}

} // namespace ovVeldris
