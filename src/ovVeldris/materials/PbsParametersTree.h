// The settings of PBS materials in trees.
#pragma once

#include <ovCommon/Api.h>

namespace ovExport {
class Node;
}
namespace ovGraphics {
class TextureManager;
}

namespace ovVeldris {

struct PbsSettings;

/// Adds the settings that are kept in files to an object node.
OV_API void exportPbsParameters(const PbsSettings& settings, ovExport::Node& node);

/// Takes over what the members of a node say; absent members and those of another kind change nothing.
/// @param textures finds the textures by name, and creates the missing ones; null leaves textures alone
OV_API void importPbsParameters(PbsSettings& settings, const ovExport::Node& node,
                                ovGraphics::TextureManager* textures);

} // namespace ovVeldris
