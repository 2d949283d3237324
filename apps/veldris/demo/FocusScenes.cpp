#include <veldris/demo/FocusScenes.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <ovGraphics/System.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Shapes.h>
#include <veldris/Session.h>
#include <veldris/demo/PaintedTexture.h>
#include <veldris/demo/PictureSheet.h>
#include <veldris/effects/EffectChain.h>
#include <veldris/pictures/PictureTextures.h>

namespace veldris {

using ovMaths::Vector;
using ovMemory::String;
using ovMemory::StringView;
using ovVeldris::PbsMaterial;

namespace {

constexpr StringView RACK_NAME = "focus-rack";
constexpr StringView RACK_CAPTION =
    "the focus moves along a row of spheres, from the nearest to the farthest";

constexpr unsigned int SPHERES_IN_ROW = 6; // and as many frames
constexpr unsigned int RACK_COLUMNS = 2;
constexpr unsigned int RACK_ROWS = 3;

// Metres. Where the row begins, a column of the picture is as wide as a sphere.
constexpr float NEAREST_SPHERE = 8.0f;
constexpr float SPACING = 3.5f;
constexpr float REACH = 2.0f * SPACING; // from the focus to where everything is fully blurred
constexpr float SHARP_ZONE = 2.2f;      // a sphere and a little more
constexpr float RACK_FOV = 0.6f;        // radians
const Vector RACK_EYE(0.0f, 3.2f, 0.0f);
const Vector RACK_VIEW = Vector(0.0f, -0.16f, 1.0f).getNormalizedVec3();

/// A row of spheres, sharp everywhere, and what depth of field reads beside it.
struct SharpRow {
    MaterialPicture picture{RACK_NAME, RACK_CAPTION, nullptr};
    ovMemory::UniquePtr<ovGraphics::Texture> depth;
    ovMemory::UniquePtr<ovGraphics::Camera> camera;
};

/// Each sphere in the middle of its column of the picture.
Vector placeOf(unsigned int sphere, float aspect) {
    const float distance = NEAREST_SPHERE + SPACING * static_cast<float>(sphere);
    const float across = (2.0f * static_cast<float>(sphere) + 1.0f) / SPHERES_IN_ROW - 1.0f;
    return {across * aspect * std::tan(0.5f * RACK_FOV) * distance, 1.0f, distance};
}

/// Along the view.
float distanceOf(unsigned int sphere, float aspect) {
    return (placeOf(sphere, aspect) - RACK_EYE).dotProductVec3(RACK_VIEW);
}

/// A surface of light and dark tiles, whose edges show what is sharp.
void addTiles(DemoSet& set, const Vector& color, int across, int down, PbsMaterial& material) {
    constexpr unsigned int SIDE = 256;
    const auto tileColor = [=](float u, float v) {
        const int column = static_cast<int>(u * static_cast<float>(across));
        const int row = static_cast<int>(v * static_cast<float>(down));
        Vector tile = color * ((column + row) % 2 == 0 ? 1.0f : 0.4f);
        tile.w = 1.0f;
        return tile;
    };
    material.setAlbedoTexture(set.keep(paintTexture(set.getGraphics(), SIDE, true, tileColor)),
                              ovVeldris::THREE_CHANNEL_PACK::RGB);
    material.setSpecularColor({0.04f, 0.04f, 0.04f});
    material.setMetalness(1.0f); // the reflectance holds it already
    material.setRoughnessGlossiness(0.4f);
    material.setEnvironmentColor({0.35f, 0.38f, 0.45f});
}

bool drawSharpRow(Session& session, unsigned int width, unsigned int height, SharpRow& row, String& error) {
    constexpr float GROUND = 60.0f; // metres to each side
    // As displays have them.
    constexpr Vector COLORS[SPHERES_IN_ROW] = {{0.95f, 0.35f, 0.3f}, {0.95f, 0.65f, 0.3f},
                                               {0.95f, 0.9f, 0.4f},  {0.45f, 0.85f, 0.5f},
                                               {0.4f, 0.7f, 0.95f},  {0.75f, 0.5f, 0.9f}};
    SceneSettings settings;
    settings.width = width;
    settings.height = height;
    settings.samples = 4;
    settings.background = {0.25f, 0.32f, 0.42f};
    settings.lightDirection = Vector(0.5f, -0.75f, 0.6f);
    settings.lightColor = Vector(2.0f, 1.9f, 1.7f);
    settings.shadows = true;
    settings.keepsDepth = true;
    const auto scene = ScenePicture::create(session, settings, error);
    const auto sphere = ovGraphics::makeSphere(session.getGraphics());
    const auto ground = ovGraphics::makePlane(session.getGraphics());
    if (!scene || !sphere || !ground)
        return false;
    const float aspect = scene->getAspect();
    DemoSet set(session, *scene);
    set.addGround(*ground, 0.0f, GROUND, [&](PbsMaterial& material) {
        addTiles(set, {0.75f, 0.73f, 0.7f}, 64, 64, material);
    });
    ovGraphics::BoundingBox box;
    for (unsigned int i = 0; i < SPHERES_IN_ROW; ++i) {
        set.addSphere(*sphere, placeOf(i, aspect), 1.0f,
                      [&](PbsMaterial& material) { addTiles(set, COLORS[i], 12, 6, material); });
        box.add(ovGraphics::BoundingBox::newBox(placeOf(i, aspect), {2.0f, 2.0f, 2.0f}));
    }
    scene->fitShadow(box);
    ovGraphics::Camera& camera = scene->getCamera();
    camera.setPosition(RACK_EYE);
    camera.lookAt(RACK_VIEW, {0.0f, 1.0f, 0.0f});
    // The near plane is close, so that distances of the effect are distances along the view.
    camera.setPerspective(RACK_FOV, aspect, 0.1f, GROUND);
    if (!set.drawAsPlaced(row.picture, error))
        return false;
    row.depth = scene->takeDepth();
    row.camera = scene->takeCamera();
    return true;
}

/// One frame, with the focus on a distance along the view.
ChainResult drawFocused(Session& session, const ovImages::Image& sharp, const SharpRow& row, float distance) {
    ovMemory::Buffer<PlannedEffect> effects;
    ChainOptions options;
    options.hasDepth = true;
    ChainPlan plan;
    ChainResult result;
    const String list = fmt::format("dof:near={},focus=auto,thickness={},far={}",
                                    std::max(distance - REACH, 0.0f), SHARP_ZONE, distance + REACH);
    if (!planEffects(list, effects, result.error) ||
        !planChain(std::move(effects), options, plan, result.error))
        return result;
    auto picture = uploadPicture(session.getGraphics(), sharp.view());
    return runChain(session, std::move(picture), plan, {row.depth.get(), row.camera.get(), distance});
}

bool drawRack(Session& session, unsigned int width, unsigned int height, MaterialPicture& picture,
              String& error) {
    PictureSheet sheet(width, height, RACK_COLUMNS, RACK_ROWS, ovImages::COLOR_ENCODING::LINEAR);
    const float aspect = static_cast<float>(sheet.getCellWidth()) / static_cast<float>(sheet.getCellHeight());
    SharpRow row;
    if (!drawSharpRow(session, sheet.getCellWidth(), sheet.getCellHeight(), row, error))
        return false;
    const auto sharp = downloadPicture(std::move(row.picture.texture));
    picture.passes = std::move(row.picture.passes);
    for (unsigned int frame = 0; sharp && frame < SPHERES_IN_ROW; ++frame) {
        const ChainResult focused = drawFocused(session, *sharp, row, distanceOf(frame, aspect));
        if (!focused) {
            error = focused.error;
            return false;
        }
        for (const EffectTiming& timing : focused.timings)
            picture.passes.push_back({timing.effect, timing.milliseconds});
        sheet.draw(*focused.image, frame);
    }
    if (sharp)
        picture.texture = uploadPicture(session.getGraphics(), sheet.take());
    return picture.texture != nullptr;
}

} // namespace

ovMemory::Buffer<StringView> focusPictureNames() {
    return {RACK_NAME};
}

bool drawFocusPictures(Session& session, unsigned int width, unsigned int height, StringView only,
                       const TakePicture& take, String& error) {
    if (!only.empty() && only != RACK_NAME)
        return true;
    MaterialPicture picture{RACK_NAME, RACK_CAPTION, nullptr};
    if (drawRack(session, width, height, picture, error) && take(picture, error))
        return true;
    error += session.getLogger().take();
    return false;
}

} // namespace veldris
