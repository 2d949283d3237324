#include <veldris/bake/EnvironmentInput.h>

#include <algorithm>
#include <fmt/format.h>
#include <ovImages/CompositeEncoder.h>
#include <ovImages/Conversion.h>
#include <veldris/bake/CrossLayout.h>
#include <veldris/bake/CubeFile.h>
#include <veldris/scene/EnvironmentLight.h>

namespace veldris {

using ovImages::Image;
using ovImages::ImageView;
using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr StringView NO_MEMORY = "it needs more memory than there is, or than a picture may take.";

constexpr unsigned int RGB_CHANNELS = 3;

// An alpha channel is not looked at.
Image asFloats(const ImageView& image) {
    return ovImages::convertImage(image, ovImages::COMPONENT_TYPE::FLOAT, RGB_CHANNELS,
                                  ovImages::COLOR_ENCODING::LINEAR);
}

bool isFloats(const Image& image) {
    return image.getComponentType() == ovImages::COMPONENT_TYPE::FLOAT &&
           image.getChannels() >= RGB_CHANNELS && image.getEncoding() == ovImages::COLOR_ENCODING::LINEAR;
}

bool decode(const String& path, EnvironmentInput& input, Image& image, String& error) {
    ovImages::DecodeResult result = ovImages::CompositeEncoder().decodeFile(path);
    if (!result) {
        error = result.error;
        return false;
    }
    if (!result.warning.empty())
        input.warnings.push_back(result.warning);
    image = std::move(*result.image);
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

bool readFaces(const String& pattern, EnvironmentInput& input, String& error) {
    input.kind = "faces";
    for (unsigned int face = 0; face < FACE_COUNT; ++face) {
        const String path = fillField(pattern, FACE_FIELD, FACE_NAMES[face]);
        Image image;
        if (!decode(path, input, image, error) || !checkFace(image, path, input.image.getWidth(), error))
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

bool readCubeInput(const String& path, EnvironmentInput& input, String& error) {
    input.kind = findCubeFormat(path)->name;
    CubeMap cube;
    if (!readCubeFile(path, cube, error))
        return false;
    input.image = std::move(cube.mips.front());
    return true;
}

bool readPicture(const String& path, EnvironmentInput& input, String& error) {
    Image& image = input.image;
    if (!decode(path, input, image, error))
        return false;
    const unsigned int width = image.getWidth();
    const unsigned int height = image.getHeight();
    if (isCross(width, height)) {
        input.kind = "cross";
        image = facesOfCross(image.view());
        return true;
    }
    input.kind = "panorama";
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

} // namespace

String fillField(StringView path, StringView field, StringView value) {
    String filled(path);
    for (std::size_t at = filled.find(field); at != String::npos; at = filled.find(field, at + value.size()))
        filled.replace(at, field.size(), value);
    return filled;
}

bool readEnvironment(const String& path, EnvironmentInput& input, String& error) {
    input = {};
    error.clear();
    const bool hasFaces = path.find(FACE_FIELD) != String::npos;
    const auto read = hasFaces ? readFaces : findCubeFormat(path) ? readCubeInput : readPicture;
    if (!read(path, input, error))
        return false;
    input.isCube = input.kind != StringView("panorama");
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
