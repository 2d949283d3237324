// Turning pictures upright, and the EXIF field that says how. Internal to the library.
#pragma once

#include <ovImages/Image.h>

namespace ovImages::detail {

/// The orientation tag (0x0112) of the first directory of a TIFF block, which EXIF data is (EXIF 2.3, 4.6.4
/// A): 1 to 8. Anything that is not a sound block with that tag gives 1, upright.
unsigned readExifOrientation(ovMemory::BufferView<const unsigned char> tiff);

/// Turns a stored picture upright. The numbers are EXIF's: 1 as it is, 2 mirrored left to right, 3 turned by
/// half, 4 mirrored top to bottom, 5 transposed, 6 needs a quarter turn clockwise, 7 transposed over the
/// other diagonal, 8 needs a quarter turn counter-clockwise. Others return the picture as it is.
Image applyOrientation(Image&& stored, unsigned orientation);

} // namespace ovImages::detail
