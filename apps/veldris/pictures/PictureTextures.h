// Pictures on the device.
#pragma once

#include <ovGraphics/resources/BlendState.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/Image.h>

namespace ovGraphics {
class Camera;
class Compositor;
class Shader;
class Viewport;
} // namespace ovGraphics

namespace veldris {

/// A loaded texture to draw into, with one mip. @return null after one log line when it cannot be loaded
ovMemory::UniquePtr<ovGraphics::Texture> makeTarget(ovGraphics::System& graphics, ovMemory::StringView name,
                                                    ovGraphics::FORMAT format, unsigned int width,
                                                    unsigned int height);

/// The numbers of a picture as a texture of four channels of the picture's own components, without any
/// conversion of colours; alpha that is not there is 1. @param picture goes when it is on the device
/// @return null after one log line when the device cannot hold it
ovMemory::UniquePtr<ovGraphics::Texture> uploadPicture(ovGraphics::System& graphics, ovImages::Image picture);
/// The same of a copy.
ovMemory::UniquePtr<ovGraphics::Texture> uploadPicture(ovGraphics::System& graphics,
                                                       const ovImages::ImageView& picture);

/// Reads a texture of four linear floats back. The texture goes before the image is made: a large picture is
/// in memory twice at most. @return null after one log line when it cannot be read
ovMemory::UniquePtr<ovImages::Image> downloadPicture(ovMemory::UniquePtr<ovGraphics::Texture> picture);

/// Draws a compositor in one frame; when passes are measured, a second time, so that what is measured
/// compiles nothing. @param backBuffer what blocks without a target draw into
/// @return false after one log line when that fails
bool drawCompositor(ovGraphics::System& graphics, ovGraphics::Compositor& compositor,
                    ovGraphics::Texture& backBuffer);

/// What is drawn over a whole target.
struct PicturePass {
    ovGraphics::Shader& shader;
    ovMemory::StringView name;
    ovGraphics::BlendState blending = {}; ///< none by default: the pass replaces what the target holds
    ovGraphics::Camera* camera = nullptr; ///< of a shader that looks somewhere and names no camera
};

/// Draws passes one over another, as drawCompositor() does. @param viewport of a picture of which the target
/// shows a part; null: the whole target @return false after one log line when that fails
bool drawPasses(ovGraphics::System& graphics, ovMemory::BufferView<const PicturePass> passes,
                ovGraphics::Texture& target, ovGraphics::Viewport* viewport = nullptr);
/// One pass alone.
bool drawPicture(ovGraphics::System& graphics, ovGraphics::Shader& shader, ovGraphics::Texture& target,
                 ovMemory::StringView name);

} // namespace veldris
