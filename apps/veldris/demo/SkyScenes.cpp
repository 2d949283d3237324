#include <veldris/demo/SkyScenes.h>

#include <algorithm>
#include <iterator>
#include <ovGraphics/System.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Shapes.h>
#include <veldris/Session.h>
#include <veldris/pictures/PictureTextures.h>
#include <veldris/sky/ContactSheet.h>
#include <veldris/sky/SkyEnvironment.h>

namespace veldris {

using ovGraphics::Texture;
using ovMaths::Vector;
using ovMemory::String;
using ovVeldris::PbsMaterial;

namespace {

constexpr float HILL = 200.0f; // metres

/// Six suns from night to noon, each towards the sun, in one exposure.
bool drawSunHeights(Session& session, unsigned int width, unsigned int height, MaterialPicture& picture,
                    String& error) {
    constexpr double ELEVATIONS[] = {-3.0, 0.0, 3.0, 10.0, 25.0, 45.0};
    constexpr unsigned int COLUMNS = 3;
    constexpr unsigned int ROWS = 2;
    const auto sky = SkyPicture::create(session, {}, HILL, error);
    if (!sky)
        return false;
    const SkyView view{.direction = directionOf({20.0, 0.0}),
                       .fieldOfView = 75.0f,
                       .width = std::max(width / COLUMNS, 1u),
                       .height = std::max(height / ROWS, 1u),
                       .samples = 4};
    ContactSheet sheet(std::size(ELEVATIONS), view.width, view.height);
    for (const double elevation : ELEVATIONS) {
        auto drawn = sky->setSun(directionOf({elevation, 0.0}), error) ? sky->drawView(view, error) : nullptr;
        const auto image = drawn ? downloadPicture(std::move(drawn)) : nullptr;
        if (!image)
            return false;
        sheet.add(image->view());
    }
    picture.passes = sky->takeTimings();
    picture.texture = uploadPicture(session.getGraphics(), sheet.getImage().view());
    return picture.texture != nullptr;
}

/// Copies a table into a picture, stretched to a rectangle, texel by texel.
void copyTable(Texture& table, float factor, ovImages::Image& picture, unsigned int top,
               unsigned int height) {
    const auto image = table.convertToImage();
    const unsigned int width = picture.getWidth();
    for (unsigned int y = 0; image && y < height; ++y)
        for (unsigned int x = 0; x < width; ++x)
            for (unsigned int channel = 0; channel < 4; ++channel)
                picture.setComponent(
                    x, top + y, channel,
                    channel == 3 ? 1.0f
                                 : factor * image->getComponent(x * image->getWidth() / width,
                                                                y * image->getHeight() / height, channel));
}

bool drawTables(Session& session, unsigned int, unsigned int, MaterialPicture& picture, String& error) {
    constexpr unsigned int WIDTH = 768;  // pixels
    constexpr unsigned int HEIGHT = 192; // of each
    constexpr unsigned int GAP = 4;
    constexpr float BRIGHTER =
        20.0f; // of the light that is scattered more than once, a hundredth of the sun's
    const auto sky = SkyPicture::create(session, {}, HILL, error);
    if (!sky)
        return false;
    ovImages::Image tables(WIDTH, 2 * HEIGHT + GAP, 4, ovImages::COMPONENT_TYPE::FLOAT,
                           ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < GAP; ++y)
        for (unsigned int x = 0; x < WIDTH; ++x)
            tables.setComponent(x, HEIGHT + y, 3, 1.0f);
    copyTable(*sky->getAir().getSunTransmittanceLut(), 1.0f, tables, 0, HEIGHT);
    copyTable(*sky->getAir().getMultiScatteringLut(), BRIGHTER, tables, HEIGHT + GAP, HEIGHT);
    picture.texture = uploadPicture(session.getGraphics(), tables.view());
    return picture.texture != nullptr;
}

/// What objects are made of: diffuse colour, reflectance, roughness.
struct Paint {
    Vector albedo;
    Vector reflectance;
    float roughness;
};
constexpr Paint PAINTS[] = {
    {{0.72f, 0.70f, 0.66f}, {0.04f, 0.04f, 0.04f}, 0.7f},
    {{0.55f, 0.05f, 0.03f}, {0.04f, 0.04f, 0.04f}, 0.2f},
    {{0.75f, 0.55f, 0.08f}, {0.04f, 0.04f, 0.04f}, 0.3f},
    {{0.06f, 0.18f, 0.32f}, {0.04f, 0.04f, 0.04f}, 0.4f},
};

/// Spheres that the low sun lights from the side.
bool drawLowSun(Session& session, unsigned int width, unsigned int height, MaterialPicture& picture,
                String& error) {
    const SkyChoice choice = {{7.0, 45.0}, {}};
    constexpr float EYE_LEVEL = 1.5f; // metres
    String warning;
    const auto sky = SkyEnvironment::create(session, choice, EYE_LEVEL, warning, error);
    if (!sky)
        return false;
    SceneSettings settings;
    settings.width = width;
    settings.height = height;
    settings.samples = 4;
    settings.shadows = true;
    settings.ground = true;
    settings.lightDirection = sky->getSunDirection();
    settings.lightColor = sky->getSunColor();
    settings.effects = {planAirOverScene(choice)};
    const auto scene = ScenePicture::create(session, settings, error);
    const auto sphere = ovGraphics::makeSphere(session.getGraphics());
    if (!scene || !sphere || !scene->setEnvironment(&sky->getLight(), sky->getBehind()))
        return false;
    DemoSet set(session, *scene);
    for (std::size_t i = 0; i < std::size(PAINTS); ++i) {
        const auto place = static_cast<float>(i);
        set.addSphere(*sphere, {2.6f * place, 1.0f, i % 2 == 0 ? 0.0f : 1.2f}, 1.0f,
                      [&](PbsMaterial& material) {
                          material.setAlbedoColor(PAINTS[i].albedo);
                          material.setSpecularColor(PAINTS[i].reflectance);
                          material.setMetalness(1.0f); // the reflectance holds it already
                          material.setRoughnessGlossiness(PAINTS[i].roughness);
                      });
    }
    CameraChoice camera;
    camera.azimuth = -15.0f;
    camera.elevation = 3.0f;
    camera.zoom = 0.8f;
    return set.draw(camera, picture, error);
}

/// How a picture is drawn, and what it is called.
struct SkyScene {
    ovMemory::StringView name;
    ovMemory::StringView caption;
    bool (*draw)(Session& session, unsigned int width, unsigned int height, MaterialPicture& picture,
                 String& error);
};

constexpr SkyScene SKY_SCENES[] = {
    {"sky-sun-heights",
     "the sky from a hill with the sun at -3, 0, 3, 10, 25 and 45 degrees, in one exposure", drawSunHeights},
    {"sky-tables",
     "the tables of the air by the sun's angle, from below to overhead, and by height, from the ground at "
     "the top to "
     "100 km: the light of the sun that arrives, and twenty times the light that is scattered more than once",
     drawTables},
    {"sky-low-sun",
     "spheres under the atmosphere, the sun 7 degrees up: light and colour of sun and sky, shadows",
     drawLowSun},
};

} // namespace

ovMemory::Buffer<ovMemory::StringView> skyPictureNames() {
    ovMemory::Buffer<ovMemory::StringView> names;
    for (const SkyScene& scene : SKY_SCENES)
        names.push_back(scene.name);
    return names;
}

bool drawSkyPictures(Session& session, unsigned int width, unsigned int height, ovMemory::StringView only,
                     const TakePicture& take, String& error) {
    for (const SkyScene& scene : SKY_SCENES) {
        if (!only.empty() && only != scene.name)
            continue;
        MaterialPicture picture{scene.name, scene.caption, nullptr};
        if (!scene.draw(session, width, height, picture, error) || !take(picture, error)) {
            error += session.getLogger().take();
            return false;
        }
    }
    return true;
}

} // namespace veldris
