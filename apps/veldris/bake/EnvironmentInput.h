// What environments are baked from.
#pragma once

#include <array>
#include <ovImages/Encoder.h>
#include <ovImages/cubes/CubeMap.h>

namespace veldris {

using ovImages::CubeMap;
using ovImages::FACE_COUNT;
using ovImages::faceBytesOf;
using ovImages::faceOf;

/// Red, green, blue and alpha.
constexpr unsigned int CUBE_CHANNELS = 4;

/// What {face} in the name of a file stands for, in the order of the faces: +X, -X, +Y, -Y, +Z, -Z.
inline constexpr std::array<ovMemory::StringView, FACE_COUNT> FACE_NAMES = {"px", "nx", "py",
                                                                            "ny", "pz", "nz"};

/// The place of a face's name in the names of files.
inline constexpr ovMemory::StringView FACE_FIELD = "{face}";

/// The path with every {face}, or another field, replaced.
ovMemory::String fillField(ovMemory::StringView path, ovMemory::StringView field, ovMemory::StringView value);

/// An environment that was read: linear floats of three or four channels, without texels that spoil
/// filtering.
struct EnvironmentInput {
    ovImages::Image image; ///< a panorama by longitude and latitude, or one mip of a cube as CubeMap has it
    bool isCube = false;
    ovMemory::String kind; ///< "panorama", "cross", "strip", "faces", "dds" or "ktx2"
    ovMemory::Buffer<ovMemory::String> warnings;
};

/// How an environment is read.
struct EnvironmentReading {
    /// "panorama", "cross", "strip" (1:6 or 6:1) or "faces" ({face} in the path); empty: what the file says
    /// of itself, or else what its shape is guessed to mean.
    ovMemory::String layout;
    ovImages::DecodeOptions decoding;
};

/// Reads an environment: a DDS or KTX2 file of a cube, by its content or else its name, six files when the
/// path has {face} in it, or a picture. Numbers are cleaned as cleanEnvironment() tells. A layout that was
/// guessed is told by a warning.
/// @return false with one line in error
bool readEnvironment(const ovMemory::String& path, const EnvironmentReading& reading, EnvironmentInput& input,
                     ovMemory::String& error);

} // namespace veldris
