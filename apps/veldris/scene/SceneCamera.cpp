#include <veldris/scene/SceneCamera.h>

#include <charconv>
#include <cmath>
#include <numbers>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/scene/CameraFraming.h>
#include <ovGraphics/scene/Node.h>
#include <ovVeldris/content/Model.h>

namespace veldris {

using ovGraphics::BoundingBox;
using ovGraphics::Camera;
using ovMaths::Vector;
using ovMemory::String;
using ovMemory::StringView;

namespace {

float radians(float degrees) {
    return degrees * std::numbers::pi_v<float> / 180.0f;
}

/// From the model to the eye.
Vector orbitDirection(const CameraChoice& choice) {
    const float azimuth = radians(choice.azimuth);
    const float elevation = radians(choice.elevation);
    return {std::sin(azimuth) * std::cos(elevation), std::sin(elevation),
            -std::cos(azimuth) * std::cos(elevation)};
}

bool placeOrbit(const CameraChoice& choice, const BoundingBox& box, float aspect, Camera& camera,
                String& error) {
    ovGraphics::BoxFraming framing;
    framing.aspect = aspect;
    framing.zoom = choice.zoom;
    error = ovGraphics::frameBox(camera, box, -orbitDirection(choice), framing).error;
    return error.empty();
}

bool placeFromFile(const ovVeldris::Model* model, float aspect, Camera& camera, String& error) {
    for (unsigned int i = 0; model && i < model->getCameras().size(); ++i) {
        const ovGraphics::Node* node = model->getCameraNode(i);
        if (!node)
            continue;
        const ovGraphics::GltfCamera& source = model->getCameras()[i];
        const ovMaths::Matrix& world = node->getWorldMatrix();
        camera.setPosition(world.getPositionComponent());
        camera.lookAt(world * Vector(0.0f, 0.0f, 1.0f), world * Vector(0.0f, 1.0f, 0.0f));
        return source.orthographic
                   ? camera.setOrthographic(source.height * aspect, source.height, source.nearPlane,
                                            source.farPlane)
                   : camera.setPerspective(source.verticalFov, aspect, source.nearPlane, source.farPlane);
    }
    error = "the model has no camera; give --camera AZIMUTH,ELEVATION or leave the option out.";
    return false;
}

} // namespace

std::optional<ovMemory::Buffer<float>> parseNumbers(StringView text) {
    ovMemory::Buffer<float> numbers;
    const char* at = text.data();
    const char* end = at + text.size();
    while (at != end) {
        float number = 0.0f;
        const auto [next, status] = std::from_chars(at, end, number);
        if (status != std::errc() || !std::isfinite(number) ||
            (next != end && (*next != ',' || next + 1 == end)))
            return std::nullopt;
        numbers.push_back(number);
        at = next == end ? end : next + 1;
    }
    return numbers;
}

Vector fromFileSpace(const Vector& vector) {
    return {vector.x, vector.y, -vector.z};
}

std::optional<CameraChoice> parseCamera(StringView text, String& error) {
    CameraChoice choice;
    if (text == "file") {
        choice.kind = CameraChoice::KIND::FILE;
        return choice;
    }
    const auto numbers = parseNumbers(text);
    const std::size_t count = numbers ? numbers->size() : 0;
    if (count == 2 || count == 3) {
        choice.azimuth = (*numbers)[0];
        choice.elevation = (*numbers)[1];
        choice.zoom = count == 3 ? (*numbers)[2] : 1.0f;
    } else if (count == 6) {
        choice.kind = CameraChoice::KIND::PLACE;
        choice.position = fromFileSpace({(*numbers)[0], (*numbers)[1], (*numbers)[2]});
        choice.target = fromFileSpace({(*numbers)[3], (*numbers)[4], (*numbers)[5]});
    }
    const bool looksSomewhere = count != 6 || choice.position != choice.target;
    if ((count == 2 || count == 3 || count == 6) && choice.zoom > 0.0f && looksSomewhere)
        return choice;
    error = "the camera '" + String(text) +
            "' is not AZIMUTH,ELEVATION in degrees, the same with ,ZOOM above 0, "
            "X,Y,Z,TARGET-X,TARGET-Y,TARGET-Z "
            "with two different points in metres, or file.";
    return std::nullopt;
}

bool placeCamera(const CameraChoice& choice, const BoundingBox& box, const ovVeldris::Model* model,
                 float aspect, Camera& camera, String& error) {
    switch (choice.kind) {
    case CameraChoice::KIND::FILE:
        return placeFromFile(model, aspect, camera, error);
    case CameraChoice::KIND::PLACE:
        camera.setPosition(choice.position);
        camera.lookAt(choice.target - choice.position, Vector());
        fitPlanes(camera, box, {.aspect = aspect});
        return true;
    default:
        return placeOrbit(choice, box, aspect, camera, error);
    }
}

} // namespace veldris
