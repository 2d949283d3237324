// Runs of components between their stored form and floats. Internal to the library.
#pragma once

#include <ovImages/Conversion.h>

namespace ovImages::detail {

using StoreLosses = ConversionLosses;

/// Reads values.size() components of the type at source, which needs no alignment.
void loadComponents(const unsigned char* source, COMPONENT_TYPE type, ovMemory::BufferView<float> values);

/// Writes all values as the type at target, which needs no alignment. Integer types clamp to 0..1, round to
/// nearest and store NaN as 0; half clamps to +-65504 and keeps NaN.
StoreLosses storeComponents(ovMemory::BufferView<const float> values, COMPONENT_TYPE type,
                            unsigned char* target);

} // namespace ovImages::detail
