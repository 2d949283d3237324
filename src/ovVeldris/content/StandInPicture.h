// What is drawn in place of a picture that is missing.
#pragma once

#include <ovImages/Image.h>

namespace ovVeldris {

/// A chequerboard of magenta and black that nobody takes for the real thing: 8 x 8 pixels of RGBA, 8 bits a
/// component, opaque. @param encoding what its numbers are declared to mean
OV_API ovImages::Image makeStandInPicture(ovImages::COLOR_ENCODING encoding);

} // namespace ovVeldris
