// The demo's pictures of materials.
#pragma once

#include <functional>
#include <ovImages/Image.h>
#include <ovMemory/Memory.h>

namespace veldris {

class Session;

/// One picture, scene-linear.
struct MaterialPicture {
    ovMemory::StringView name;    ///< of its file, without extension
    ovMemory::StringView caption; ///< what is to be seen
    ovImages::Image image;
    double milliseconds = 0.0; ///< of its passes together
};

/// Draws every picture of materials, one after another, and hands each on.
/// @param take stops by returning false, with one line in error
/// @return false with one line in error
bool drawMaterialPictures(Session& session, unsigned int width, unsigned int height,
                          const std::function<bool(const MaterialPicture&, ovMemory::String& error)>& take,
                          ovMemory::String& error);

} // namespace veldris
