#include <ovVeldris/content/ResourceDeclAugmentCallback.h>

namespace ovVeldris {

ResourceDeclAugmentCallback::~ResourceDeclAugmentCallback() = default;

void ResourceDeclAugmentCallback::onMaterial(Material*, ovExport::Node*) {}

} // namespace ovVeldris
