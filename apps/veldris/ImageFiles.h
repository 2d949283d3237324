// Image files with what their numbers mean.
#pragma once

#include <ovImages/PictureFile.h>
#include <ovMaths/Vector.h>
#include <veldris/effects/ContentConversions.h>

namespace veldris {

/// What the numbers of an image that was read mean: linear ones are scene light, encoded ones a display
/// picture.
PICTURE_CONTENT contentOf(const ovImages::ImageView& image);

/// What the format of a path holds: SRGB_ENCODED for PNG and JPEG. Nothing for EXR and HDR, because both
/// kinds of linear light will do.
/// @return false with one line in error when the extension is of no format that can be written
bool contentOfFormat(const ovMemory::String& path, std::optional<PICTURE_CONTENT>& content,
                     ovMemory::String& error);

/// Encodes a picture as it is and writes it to an output (OutputFile.h), with a warning of what the format
/// could not hold.
ovMemory::Result encodePicture(const ovImages::Encoder& format, ovMemory::StringView output,
                               const ovImages::ImageView& picture);

/// Lays a colour behind a picture of four floats a pixel, whose colours stand beside their alpha. Where the
/// picture does not cover, it has exactly that colour afterwards. @param color linear, of scene or display
/// @param content what the picture's numbers mean; encoded ones are blended as light
void layBehind(ovImages::Image& picture, const ovMaths::Vector& color, PICTURE_CONTENT content);

/// The form of a path's format: sRGB of 8 bits for PNG and JPEG, linear floats for EXR and HDR, and for what
/// names no format.
ovImages::FileForm formOfFile(const ovMemory::String& path);

/// Writes a picture of three or four channels, floats or of the form of its file already, in the format of
/// the path's extension: 8 bits a component for PNG and JPEG, floats for EXR. Alpha is dropped where it is 1
/// everywhere.
/// @param path or an output (OutputFile.h) @param raw numbers as they are, without encoding them
/// @return false with one line in error; the path then holds what it held before
bool writePicture(const ovMemory::String& path, const ovImages::ImageView& picture, bool raw,
                  ovMemory::String& warning, ovMemory::String& error);

} // namespace veldris
