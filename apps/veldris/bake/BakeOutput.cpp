#include <veldris/bake/BakeOutput.h>

#include <fmt/format.h>
#include <ovImages/CompositeEncoder.h>
#include <ovImages/Conversion.h>
#include <ovImages/cubes/CubeFile.h>
#include <ovImages/cubes/CubeLayout.h>
#include <veldris/ImageFiles.h>
#include <veldris/console/OutputFile.h>

namespace veldris {

using ovImages::COLOR_ENCODING;
using ovImages::COMPONENT_TYPE;
using ovImages::Image;
using ovImages::ImageView;
using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr unsigned int RGB = 3; // alpha is 1 everywhere

bool hasField(StringView path, StringView field) {
    return path.find(field) != StringView::npos;
}

bool checkPictureFormat(const String& path, String& error) {
    std::optional<PICTURE_CONTENT> ignored;
    return contentOfFormat(path, ignored, error);
}

/// Light above 1 is cut off in display pictures, which is a picture of the result rather than the result.
bool writeImage(const BakeOutput& output, const String& path, const ImageView& picture, BakeFiles& files,
                String& error) {
    const ovImages::CompositeEncoder encoders;
    const ovImages::Encoder* format = encoders.findByExtension(nameWithFormat(path));
    const bool isExr = format && format->getName() == "EXR";
    const bool isLinear = isExr || (format && format->getName() == "HDR");
    // HDR files have one form only, which their encoder makes of floats.
    const COMPONENT_TYPE floats = isExr ? output.components : COMPONENT_TYPE::FLOAT;
    String warning;
    const Image converted =
        ovImages::convertImage(picture, isLinear ? floats : COMPONENT_TYPE::UINT8, RGB,
                               isLinear ? COLOR_ENCODING::LINEAR : COLOR_ENCODING::SRGB, &warning);
    const ovMemory::Result written = encodePicture(*format, path, converted.view());
    error = written.error;
    if (!written)
        return false;
    // The last one stands for all: six faces with the same complaint are one line to the user.
    for (const String& line : {warning, written.warning}) {
        if (!line.empty())
            files.warning = line;
    }
    files.paths.push_back(path);
    return true;
}

bool writeMip(const BakeOutput& output, const String& path, const Image& mip, BakeFiles& files,
              String& error) {
    if (output.form == BAKE_FORM::CROSS) {
        const Image cross = ovImages::crossOfFaces(mip);
        if (cross.isEmpty()) {
            error =
                fmt::format("a cross of faces with {} texels a side is too large for a picture; write a .dds "
                            "file.",
                            mip.getWidth());
            return false;
        }
        return writeImage(output, path, cross.view(), files, error);
    }
    for (unsigned int face = 0; face < FACE_COUNT; ++face) {
        if (!writeImage(output, fillField(path, FACE_FIELD, FACE_NAMES[face]), faceOf(mip, face), files,
                        error))
            return false;
    }
    return true;
}

bool writeOneFile(const BakeOutput& output, const CubeMap& cube, BakeFiles& files, String& error) {
    CubeMap converted;
    for (const Image& mip : cube.mips) {
        String warning;
        converted.mips.push_back(ovImages::convertImage(mip.view(), output.components, mip.getChannels(),
                                                        COLOR_ENCODING::LINEAR, &warning));
        if (!warning.empty())
            files.warning = warning;
    }
    if (isStandardOutput(output.path)) {
        const auto bytes =
            ovImages::encodeCube(ovImages::cubeFormatOf(nameWithFormat(output.path)), converted);
        error = writeOutput(output.path, ovMemory::BufferView<const unsigned char>(bytes)).error;
    } else {
        error = ovImages::writeCubeFile(output.path, converted).error;
    }
    if (!error.empty())
        return false;
    files.paths.push_back(output.path);
    return true;
}

} // namespace

// All that can be wrong with the names is told before the baking, which may take minutes.
bool planCube(StringView layout, bool needsMips, BakeOutput& output, String& error) {
    const bool hasFaces = hasField(output.path, FACE_FIELD);
    output.form = !ovImages::cubeFormatOf(nameWithFormat(output.path)).empty() ? BAKE_FORM::CUBE_FILE
                  : layout == "cross"                                          ? BAKE_FORM::CROSS
                                                                               : BAKE_FORM::FACES;
    if (output.form == BAKE_FORM::CUBE_FILE &&
        (hasFaces || hasField(output.path, MIP_FIELD) || !layout.empty()))
        error = fmt::format(
            "'{}' holds all faces and mips in one file; leave {{face}}, {{mip}} and --layout out.",
            output.path);
    else if (output.form == BAKE_FORM::CUBE_FILE)
        return true;
    else if (output.form == BAKE_FORM::CROSS && hasFaces)
        error =
            fmt::format("'{}' names a file for each face, and --layout cross makes one picture of all; leave "
                        "one out.",
                        output.path);
    else if (output.form == BAKE_FORM::FACES && !hasFaces)
        error = fmt::format("'{}' is one picture, and a cube has six: put {{face}} into its name, or give "
                            "--layout cross, or write a .dds or .ktx2 file.",
                            output.path);
    else if (needsMips && !hasField(output.path, MIP_FIELD))
        error =
            fmt::format("'{}' has room for one mip, and roughness needs all: put {{mip}} into its name, or "
                        "write a .dds or .ktx2 file.",
                        output.path);
    else
        return checkPictureFormat(output.path, error);
    return false;
}

bool planPanorama(BakeOutput& output, String& error) {
    output.form = BAKE_FORM::PANORAMA;
    if (!ovImages::cubeFormatOf(nameWithFormat(output.path)).empty())
        error = fmt::format("'{}' is for cubes; write a panorama as EXR, HDR or PNG.", output.path);
    else if (hasField(output.path, FACE_FIELD) || hasField(output.path, MIP_FIELD))
        error = fmt::format(
            "'{}' names several files, and a panorama is one; leave {{face}} and {{mip}} out.", output.path);
    else
        return checkPictureFormat(output.path, error);
    return false;
}

bool writeCube(const BakeOutput& output, const CubeMap& cube, BakeFiles& files, String& error) {
    if (output.form == BAKE_FORM::CUBE_FILE)
        return writeOneFile(output, cube, files, error);
    const std::size_t count = hasField(output.path, MIP_FIELD) ? cube.mips.size() : 1;
    for (std::size_t mip = 0; mip < count; ++mip) {
        if (!writeMip(output, fillField(output.path, MIP_FIELD, std::to_string(mip)), cube.mips[mip], files,
                      error))
            return false;
    }
    return true;
}

bool writePanorama(const BakeOutput& output, const ImageView& panorama, BakeFiles& files, String& error) {
    return writeImage(output, output.path, panorama, files, error);
}

} // namespace veldris
