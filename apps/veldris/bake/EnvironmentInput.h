// What environments are baked from.
#pragma once

#include <veldris/bake/CubeMap.h>

namespace veldris {

/// The place of a face's name in the names of files.
inline constexpr ovMemory::StringView FACE_FIELD = "{face}";

/// The path with every {face}, or another field, replaced.
ovMemory::String fillField(ovMemory::StringView path, ovMemory::StringView field, ovMemory::StringView value);

/// An environment that was read: linear floats of three or four channels, without texels that spoil
/// filtering.
struct EnvironmentInput {
    ovImages::Image image; ///< a panorama by longitude and latitude, or one mip of a cube as CubeMap has it
    bool isCube = false;
    ovMemory::StringView kind; ///< "panorama", "cross", "faces", "dds" or "ktx2"
    ovMemory::Buffer<ovMemory::String> warnings;
};

/// Reads an environment: a DDS or KTX2 file of a cube, six files when the path has {face} in it, or a
/// picture, which is a cross if it has the shape of one, and a panorama otherwise. Numbers are
/// cleaned as cleanEnvironment() tells.
/// @return false with one line in error
bool readEnvironment(const ovMemory::String& path, EnvironmentInput& input, ovMemory::String& error);

} // namespace veldris
