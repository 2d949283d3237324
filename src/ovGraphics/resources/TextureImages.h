// Between images on the CPU and the texels of textures.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/formats/Format.h>
#include <ovImages/Image.h>

namespace ovGraphics {

/// The texels of an image as a texture takes them.
struct TextureContent {
    FORMAT format = FORMAT::UNKNOWN;
    bool gammaCorrected = false;
    ovImages::Image converted; ///< empty when the image's own bytes serve
};

/// Chooses the format for an image. One and two channels stay as they are when linear or raw, three become
/// four with alpha 1 (but for floats, which have a three-channel format). sRGB-encoded images become
/// gamma-corrected textures where the format allows it (four channels of 8 bits), linear floats of three
/// channels, or four with an alpha, otherwise; raw leaves the numbers alone. An image that isValid() refuses
/// gives the format UNKNOWN or bytes that no texture loads.
OV_API TextureContent textureContentOf(const ovImages::ImageView& image, bool raw);

/// The image of tight texels of a format: UNORM of 8 and 16 bits, half and float, 1 to 4 channels, and depth.
/// @return null when images cannot hold the format
OV_API ovMemory::UniquePtr<ovImages::Image> imageOf(ovMemory::Buffer<unsigned char> texels, FORMAT format,
                                                    bool gammaCorrected, unsigned int width,
                                                    unsigned int height);

} // namespace ovGraphics
