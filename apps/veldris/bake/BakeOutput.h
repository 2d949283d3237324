// Files that baked environments are written to.
#pragma once

#include <veldris/bake/EnvironmentInput.h>

namespace veldris {

/// The place of a mip's number in the names of files.
inline constexpr ovMemory::StringView MIP_FIELD = "{mip}";

/// How a result is laid out in files.
enum class BAKE_FORM : unsigned int {
    FACES = 0,     ///< one file a face: {face} in the path
    CROSS = 1,     ///< one picture of four by three faces, as CrossLayout tells
    CUBE_FILE = 2, ///< one DDS or KTX2 file with all mips
    PANORAMA = 3   ///< one picture by longitude and latitude
};

/// Where and how a result is written.
struct BakeOutput {
    ovMemory::String path;
    BAKE_FORM form = BAKE_FORM::CUBE_FILE;
    ovImages::COMPONENT_TYPE components = ovImages::COMPONENT_TYPE::HALF; ///< of DDS, KTX2 and EXR files
};

/// What was written.
struct BakeFiles {
    ovMemory::Buffer<ovMemory::String> paths;
    ovMemory::String warning; ///< of the last file that had one
};

/// Chooses the form of a cube from its path and --layout ("", "faces" or "cross"), and checks that the path's
/// extension can be written.
/// @param needsMips whether each mip is worth a file: then pictures need {mip} in their path
/// @return false with one line in error
bool planCube(ovMemory::StringView layout, bool needsMips, BakeOutput& output, ovMemory::String& error);

/// The same of a panorama, one picture.
bool planPanorama(BakeOutput& output, ovMemory::String& error);

/// Writes a cube of linear floats: all mips to a DDS or KTX2 file or where the path has {mip}, otherwise the
/// first. Each file appears whole or not at all. @return false with one line in error; files before that one
/// were written
bool writeCube(const BakeOutput& output, const CubeMap& cube, BakeFiles& files, ovMemory::String& error);

/// Writes a panorama of linear floats.
bool writePanorama(const BakeOutput& output, const ovImages::ImageView& panorama, BakeFiles& files,
                   ovMemory::String& error);

} // namespace veldris
