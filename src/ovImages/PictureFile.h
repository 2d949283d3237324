// Pictures of any kind as files: what each format stores, and the conversion to it.
#pragma once

#include <ovImages/Encoder.h>

namespace ovImages {

/// What the pictures of a file are stored as.
struct FileForm {
    COMPONENT_TYPE components = COMPONENT_TYPE::FLOAT;
    COLOR_ENCODING encoding = COLOR_ENCODING::LINEAR;
};

/// The form of a format: linear floats for EXR and HDR, sRGB of 8 bits for the others.
OV_API FileForm formOf(const Encoder& format);

/// Whether alpha says nothing: there is none, or it is exactly 1 everywhere. @param picture valid
OV_API bool isOpaque(const ImageView& picture);

/// Takes away the alpha of a picture of four channels where it is 1 everywhere, in place.
OV_API void dropOpaqueAlpha(Image& picture);

/// The pixels of a picture as a format stores them: encoded or decoded, in the components of its form and
/// without an alpha that is 1 everywhere. Beyond the form, PNG keeps 16 bits and EXR half floats where the
/// picture has them.
/// @param raw numbers as they are, without encoding or decoding them
/// @param converted gets the pixels, if they are others than the picture's
/// @param warning as of convertImage(); cleared when nothing was lost
/// @return a view of the picture or of converted; one that is not valid when the memory does not suffice
OV_API ImageView convertForFile(const Encoder& format, const ImageView& picture, bool raw, Image& converted,
                                ovMemory::String& warning);

/// Writes a picture in the format of the path's extension (PNG, JPEG, EXR, HDR), converted as above, as a
/// whole or not at all. The folder must exist.
/// @return with texts that name the path: a failure for a picture that is not valid, an unknown extension and
///         what cannot be written, and a warning of what the format could not hold
OV_API ovMemory::Result savePicture(ovMemory::StringView path, const ImageView& picture, bool raw = false);

} // namespace ovImages
