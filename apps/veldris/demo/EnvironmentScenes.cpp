#include <veldris/demo/EnvironmentScenes.h>

#include <algorithm>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Shapes.h>
#include <ovVeldris/effects/ImageEnvironmentEffect.h>
#include <veldris/Session.h>
#include <veldris/demo/DemoSet.h>
#include <veldris/pictures/PictureTextures.h>
#include <veldris/scene/BuiltInSky.h>
#include <veldris/scene/EnvironmentLight.h>
#include <veldris/scene/Panoramas.h>

namespace veldris {

using namespace ovVeldris;
using ovGraphics::Texture;
using ovMaths::Vector;
using ovMemory::String;

namespace {

constexpr unsigned int PANORAMA_WIDTH = 512;
constexpr unsigned int SAMPLES = 4; // of a pixel
constexpr ovMemory::StringView STRIP_NAME = "prefiltered-mips";
const Vector TOWARDS_SUN = Vector(-0.5f, 0.35f, 0.6f).getNormalizedVec3();

/// An environment and what its picture is called.
struct Surroundings {
    ovMemory::StringView name;
    ovMemory::StringView caption;
    ovImages::Image (*draw)();
};

constexpr Surroundings SURROUNDINGS[] = {
    {"environment-sky", "mirror, brushed metal, plastic and rubber under the built-in sky",
     [] { return drawSkyPanorama(PANORAMA_WIDTH, TOWARDS_SUN); }},
    {"environment-studio", "the same objects in a studio",
     [] { return drawPanorama(PANORAMA_WIDTH, studioRadiance); }},
    {"environment-dusk", "the same objects at dusk",
     [] { return drawPanorama(PANORAMA_WIDTH, duskRadiance); }},
};

/// What objects are made of: diffuse colour, reflectance, roughness.
struct Surface {
    Vector albedo;
    Vector reflectance;
    float roughness;
};

constexpr Surface OBJECTS[] = {
    {{0.0f, 0.0f, 0.0f}, {0.95f, 0.95f, 0.95f}, 0.045f},
    {{0.0f, 0.0f, 0.0f}, {0.95f, 0.64f, 0.54f}, 0.35f},
    {{0.5f, 0.03f, 0.02f}, {0.04f, 0.04f, 0.04f}, 0.1f},
    {{0.08f, 0.08f, 0.09f}, {0.04f, 0.04f, 0.04f}, 0.8f},
};

bool drawObjects(Session& session, const EnvironmentLight& light, SceneSettings settings,
                 MaterialPicture& picture, String& error) {
    settings.lightBesideEnvironment = false;
    const auto scene = ScenePicture::create(session, settings, error);
    const auto sphere = makeSphere(session.getGraphics());
    if (!scene || !sphere || !scene->setEnvironment(&light))
        return false;
    DemoSet set(session, *scene);
    for (std::size_t i = 0; i < std::size(OBJECTS); ++i) {
        set.addSphere(*sphere, {2.3f * static_cast<float>(i), 0.0f, 0.0f}, 1.0f, [&](PbsMaterial& material) {
            material.setAlbedoColor(OBJECTS[i].albedo);
            material.setSpecularColor(OBJECTS[i].reflectance);
            material.setMetalness(1.0f);
            material.setRoughnessGlossiness(OBJECTS[i].roughness);
        });
    }
    CameraChoice camera;
    camera.azimuth = 15.0f;
    camera.elevation = 10.0f;
    return set.draw(camera, picture, error);
}

/// Copies a face of a mip of a cube into a picture, stretched to side x side pixels, texel by texel.
void copyFace(Texture& cube, unsigned int face, unsigned int mip, ovImages::Image& picture, unsigned int left,
              unsigned int top, unsigned int side) {
    const auto image = cube.convertToImage(face, mip);
    for (unsigned int y = 0; image && y < side; ++y) {
        for (unsigned int x = 0; x < side; ++x) {
            for (unsigned int channel = 0; channel < 4; ++channel) {
                const unsigned int fromX = x * image->getWidth() / side;
                const unsigned int fromY = y * image->getHeight() / side;
                picture.setComponent(left + x, top + y, channel, image->getComponent(fromX, fromY, channel));
            }
        }
    }
}

/// Rows of six faces: a row for each mip of the prefiltered cube, and one for irradiance.
ovImages::Image drawStrip(const EnvironmentLight& light) {
    constexpr unsigned int SIDE = 128; // pixels of a face
    const unsigned int mips = light.getPrefiltered()->getMipCount();
    ovImages::Image strip(6 * SIDE, (mips + 1) * SIDE, 4, ovImages::COMPONENT_TYPE::FLOAT,
                          ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int face = 0; face < 6; ++face) {
        for (unsigned int mip = 0; mip < mips; ++mip)
            copyFace(*light.getPrefiltered(), face, mip, strip, face * SIDE, mip * SIDE, SIDE);
        copyFace(*light.getIrradiance(), face, 0, strip, face * SIDE, mips * SIDE, SIDE);
    }
    return strip;
}

bool drawProjection(Session& session, Texture* source, IMAGE_ENVIRONMENT_PROJECTION projection,
                    unsigned int width, unsigned int height, MaterialPicture& picture, String& error) {
    ovGraphics::System& graphics = session.getGraphics();
    const auto camera = ovGraphics::Camera::create(&graphics);
    camera->lookAt({-0.5f, 0.1f, 1.0f}, {});
    camera->setPerspective(1.2f, static_cast<float>(width) / static_cast<float>(height), 0.1f, 10.0f);
    auto target = makeTarget(graphics, "projection", ovGraphics::FORMAT::R32G32B32A32_FLOAT, width, height);
    const auto effect = ImageEnvironmentEffect::create(&session.getSystem());
    effect->setSourceTexture(source);
    effect->setSourceCamera(camera.get());
    effect->setSourceProjection(projection);
    if (!target || !effect->load() || !drawPicture(graphics, *effect->getShader(), *target, picture.name)) {
        error = session.getLogger().take();
        return false;
    }
    picture.passes = graphics.getPassTimings();
    picture.texture = std::move(target);
    return true;
}

/// A picture of the image environment effect.
struct Projection {
    ovMemory::StringView name;
    ovMemory::StringView caption;
    IMAGE_ENVIRONMENT_PROJECTION projection;
    bool ofCube;
};

constexpr Projection PROJECTIONS[] = {
    {"projection-flat", "image environment, flat: the panorama stretched over the screen",
     IMAGE_ENVIRONMENT_PROJECTION::FLAT, false},
    {"projection-cube", "image environment, cube: a view into the cube", IMAGE_ENVIRONMENT_PROJECTION::CUBE,
     true},
    {"projection-equirectangular", "image environment, equirectangular: the same view into the panorama",
     IMAGE_ENVIRONMENT_PROJECTION::EQUIRECTANGULAR, false},
};

bool drawProjections(Session& session, const EnvironmentLight& light, unsigned int width, unsigned int height,
                     const TakePicture& take, String& error) {
    for (const Projection& current : PROJECTIONS) {
        MaterialPicture picture{current.name, current.caption, nullptr};
        Texture* source = current.ofCube ? light.getPrefiltered() : light.getPanorama();
        if (!drawProjection(session, source, current.projection, width, height, picture, error) ||
            !take(picture, error))
            return false;
    }
    return true;
}

} // namespace

ovMemory::Buffer<ovMemory::StringView> environmentPictureNames() {
    ovMemory::Buffer<ovMemory::StringView> names;
    for (const Surroundings& surroundings : SURROUNDINGS)
        names.push_back(surroundings.name);
    names.push_back(STRIP_NAME);
    for (const Projection& projection : PROJECTIONS)
        names.push_back(projection.name);
    return names;
}

bool drawEnvironmentPictures(Session& session, unsigned int width, unsigned int height,
                             ovMemory::StringView only, const TakePicture& takeWanted, String& error) {
    // What is not wanted is cheap to draw beside the filtering, which all share.
    const TakePicture take = [&](MaterialPicture& picture, String& reason) {
        return (!only.empty() && only != picture.name) || takeWanted(picture, reason);
    };
    SceneSettings settings;
    settings.width = width;
    settings.height = height;
    settings.samples = SAMPLES;
    ovMemory::UniquePtr<EnvironmentLight> light;
    for (const Surroundings& surroundings : SURROUNDINGS) {
        String warning;
        light = EnvironmentLight::create(session, surroundings.draw().view(), warning, error);
        MaterialPicture picture{surroundings.name, surroundings.caption, nullptr};
        if (!light || !drawObjects(session, *light, settings, picture, error) || !take(picture, error)) {
            error += session.getLogger().take();
            return false;
        }
    }
    MaterialPicture strip{STRIP_NAME,
                          "a prefiltered cube, its six faces from mip to mip, and below them irradiance",
                          uploadPicture(session.getGraphics(), drawStrip(*light).view())};
    return take(strip, error) && drawProjections(session, *light, width, height, take, error);
}

} // namespace veldris
