#include <veldris/bake/EnvironmentInput.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <ovImages/CompositeEncoder.h>
#include <ovImages/Conversion.h>
#include <ovImages/cubes/CubeFile.h>
#include <ovImages/cubes/CubeLayout.h>
#include <veldris/scene/EnvironmentLight.h>

namespace veldris {

using ovImages::CUBE_LAYOUT;
using ovImages::Image;
using ovImages::ImageView;
using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr StringView NO_MEMORY = "it needs more memory than there is, or than a picture may take.";

constexpr unsigned int RGB_CHANNELS = 3;
constexpr StringView PANORAMA = "panorama";
constexpr StringView CROSS = "cross";
constexpr StringView STRIP = "strip";
constexpr StringView FACES = "faces";

// An alpha channel is not looked at.
Image asFloats(const ImageView& image) {
    return ovImages::convertImage(image, ovImages::COMPONENT_TYPE::FLOAT, RGB_CHANNELS,
                                  ovImages::COLOR_ENCODING::LINEAR);
}

bool isFloats(const Image& image) {
    return image.getComponentType() == ovImages::COMPONENT_TYPE::FLOAT &&
           image.getChannels() >= RGB_CHANNELS && image.getEncoding() == ovImages::COLOR_ENCODING::LINEAR;
}

bool decode(const String& path, const EnvironmentReading& reading, EnvironmentInput& input, Image& image,
            ovImages::PICTURE_VIEW& view, String& error) {
    ovImages::DecodeResult result = ovImages::CompositeEncoder().decodeFile(path, reading.decoding);
    if (!result) {
        error = result.error;
        return false;
    }
    if (!result.warning.empty())
        input.warnings.push_back(result.warning);
    image = std::move(*result.image);
    view = result.view;
    return true;
}

// Told with the name of the file: of six pictures the user must know which one to mend.
bool checkFace(const Image& face, const String& path, unsigned int side, String& error) {
    if (face.getWidth() != face.getHeight())
        error = fmt::format("the face '{}' has {} x {} pixels; faces of a cube are square.", path,
                            face.getWidth(), face.getHeight());
    else if (side != 0 && face.getWidth() != side)
        error =
            fmt::format("the face '{}' has {} pixels a side where the first has {}; all six must be equal.",
                        path, face.getWidth(), side);
    return error.empty();
}

/// How a face is read: its share is a sixth of the whole.
EnvironmentReading readingOfFace(const EnvironmentReading& reading, unsigned int face) {
    EnvironmentReading own = reading;
    if (reading.decoding.progress)
        own.decoding.progress = [&reading, face](double share) {
            reading.decoding.progress((face + share) / FACE_COUNT);
        };
    return own;
}

bool readFaces(const String& pattern, const EnvironmentReading& reading, EnvironmentInput& input,
               String& error) {
    ovImages::PICTURE_VIEW unused = ovImages::PICTURE_VIEW::UNTOLD;
    for (unsigned int face = 0; face < FACE_COUNT; ++face) {
        const String path = fillField(pattern, FACE_FIELD, FACE_NAMES[face]);
        Image image;
        if (!decode(path, readingOfFace(reading, face), input, image, unused, error) ||
            !checkFace(image, path, input.image.getWidth(), error))
            return false;
        // The first face sets the size that the others must have.
        if (face == 0)
            input.image = Image(image.getWidth(), image.getWidth() * FACE_COUNT, RGB_CHANNELS,
                                ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
        const Image floats = asFloats(image.view());
        if (input.image.isEmpty() || floats.isEmpty()) {
            error = fmt::format("the face '{}' cannot be read: {}", path, NO_MEMORY);
            return false;
        }
        std::ranges::copy(floats.getBytes(), faceBytesOf(input.image, face).begin());
    }
    return true;
}

/// The format of a file of a cube, "" for pictures. What has no name that tells, as standard input, is known
/// by how it begins.
StringView cubeFormatOfFile(const String& path) {
    std::array<unsigned char, ovImages::CUBE_SIGNATURE_BYTES> begin = {};
    std::error_code ignored;
    // Looking into a pipe would wait for somebody who writes.
    if (std::filesystem::is_regular_file(path, ignored))
        std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(begin.data()), begin.size());
    const StringView format = ovImages::cubeFormatOfBytes(begin);
    return format.empty() ? ovImages::cubeFormatOf(path) : format;
}

bool readCubeInput(const String& path, const EnvironmentReading&, EnvironmentInput& input, String& error) {
    ovImages::CubeReadResult read = ovImages::readCubeFile(path);
    error = read.error;
    if (read)
        input.image = std::move(read.cube.mips.front());
    return bool(read);
}

/// The layout of a picture: as it was asked for, as its file says, or as its shape is guessed to mean.
StringView chooseLayout(const String& path, const Image& image, const String& wanted,
                        ovImages::PICTURE_VIEW view, Buffer<String>& warnings) {
    if (!wanted.empty())
        return wanted;
    if (view != ovImages::PICTURE_VIEW::UNTOLD)
        return view == ovImages::PICTURE_VIEW::CUBE ? STRIP : PANORAMA;
    const CUBE_LAYOUT guessed = ovImages::cubeLayoutOf(image.getWidth(), image.getHeight());
    if (guessed == CUBE_LAYOUT::NONE)
        return PANORAMA;
    const StringView layout = guessed == CUBE_LAYOUT::CROSS ? CROSS : STRIP;
    warnings.push_back(fmt::format("'{}' has {} x {} pixels and is taken for a {} of six faces; "
                                   "--input-layout panorama reads it as a panorama.",
                                   path, image.getWidth(), image.getHeight(), layout));
    return layout;
}

bool unfold(const String& path, ovImages::PICTURE_VIEW view, EnvironmentInput& input, String& error) {
    const unsigned int width = input.image.getWidth();
    const unsigned int height = input.image.getHeight();
    const bool isExr = input.kind == STRIP && view == ovImages::PICTURE_VIEW::CUBE;
    const CUBE_LAYOUT layout = isExr                 ? CUBE_LAYOUT::EXR_STRIP
                               : input.kind == CROSS ? CUBE_LAYOUT::CROSS
                                                     : CUBE_LAYOUT::STRIP;
    Image faces = ovImages::facesOfPicture(input.image.view(), layout);
    if (faces.isEmpty())
        error = fmt::format("'{}' has {} x {} pixels, which is no {} of six square faces: {}.", path, width,
                            height, input.kind,
                            input.kind == CROSS ? "that is 4:3 or 3:4" : "that is 1:6 or 6:1");
    input.image = std::move(faces);
    return error.empty();
}

bool readPicture(const String& path, const EnvironmentReading& reading, EnvironmentInput& input,
                 String& error) {
    Image& image = input.image;
    ovImages::PICTURE_VIEW view = ovImages::PICTURE_VIEW::UNTOLD;
    if (!decode(path, reading, input, image, view, error))
        return false;
    const unsigned int width = image.getWidth();
    const unsigned int height = image.getHeight();
    input.kind = chooseLayout(path, image, reading.layout, view, input.warnings);
    if (input.kind != PANORAMA)
        return unfold(path, view, input, error);
    if (width == 1 && height == 1)
        error = fmt::format("'{}' has one pixel; a panorama needs more, to show something in each direction.",
                            path);
    else if (width != 2 * height)
        input.warnings.push_back(fmt::format(
            "'{}' has {} x {} pixels and is taken for a panorama by longitude and latitude, which "
            "should be twice as wide as high; it is stretched.",
            path, width, height));
    return error.empty();
}

/// Whether a path can be read as it is asked for. @return false with one line in error
bool checkLayout(const String& path, const String& layout, bool isCube, String& error) {
    const bool hasFaces = path.find(FACE_FIELD) != String::npos;
    if (layout == FACES && !hasFaces)
        error = fmt::format(
            "'{}' names one file; faces are six, with {{face}} for px, nx, py, ny, pz and nz.", path);
    else if (!layout.empty() && layout != FACES && hasFaces)
        error = fmt::format("'{}' names six files, which are no {}; leave --input-layout out.", path, layout);
    else if (!layout.empty() && isCube)
        error = fmt::format("'{}' is a cube already; leave --input-layout out.", path);
    return error.empty();
}

} // namespace

String fillField(StringView path, StringView field, StringView value) {
    String filled(path);
    for (std::size_t at = filled.find(field); at != String::npos; at = filled.find(field, at + value.size()))
        filled.replace(at, field.size(), value);
    return filled;
}

bool readEnvironment(const String& path, const EnvironmentReading& reading, EnvironmentInput& input,
                     String& error) {
    input = {};
    error.clear();
    const bool hasFaces = path.find(FACE_FIELD) != String::npos;
    input.kind = hasFaces ? FACES : cubeFormatOfFile(path);
    const bool isCubeFile = !hasFaces && !input.kind.empty();
    if (!checkLayout(path, reading.layout, isCubeFile, error))
        return false;
    const auto read = hasFaces ? readFaces : isCubeFile ? readCubeInput : readPicture;
    if (!read(path, reading, input, error))
        return false;
    input.isCube = input.kind != PANORAMA;
    // Floats stay where they are: skies take hundreds of megabytes.
    if (!isFloats(input.image))
        input.image = asFloats(input.image.view());
    String warning;
    cleanEnvironment(input.image, warning);
    if (!warning.empty())
        input.warnings.push_back(warning);
    if (input.image.isEmpty())
        error = fmt::format("'{}' cannot be read: {}", path, NO_MEMORY);
    return error.empty();
}

} // namespace veldris
