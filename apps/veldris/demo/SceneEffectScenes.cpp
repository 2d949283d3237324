#include <veldris/demo/SceneEffectScenes.h>

#include <algorithm>
#include <ovGraphics/System.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Shapes.h>
#include <veldris/Session.h>
#include <veldris/demo/PaintedTexture.h>
#include <veldris/demo/Terrain.h>
#include <veldris/pictures/PictureTextures.h>

namespace veldris {

using ovMaths::Vector;
using ovMemory::String;
using ovMemory::StringView;
using ovVeldris::PbsMaterial;

namespace {

constexpr unsigned int SAMPLES_OF_PIXEL = 4;

struct Shapes {
    ovMemory::UniquePtr<ovGraphics::Mesh> box;
    ovMemory::UniquePtr<ovGraphics::Mesh> sphere;
    ovMemory::UniquePtr<ovGraphics::Mesh> torus;
    ovMemory::UniquePtr<ovGraphics::Mesh> ground;
    ovMemory::UniquePtr<ovGraphics::Mesh> terrain;
};

CameraChoice placeAt(const Vector& position, const Vector& target) {
    CameraChoice choice;
    choice.kind = CameraChoice::KIND::PLACE;
    choice.position = position;
    choice.target = target;
    return choice;
}

/// A dull surface, lit from all around as well.
DemoSet::Configure matt(const Vector& color, float ambient) {
    return [=](PbsMaterial& material) {
        material.setAlbedoColor(color);
        material.setSpecularColor({0.02f, 0.02f, 0.02f});
        material.setMetalness(1.0f);
        material.setRoughnessGlossiness(0.9f);
        material.setEnvironmentColor(Vector(0.85f, 0.95f, 1.1f) * ambient);
    };
}

void buildCorner(DemoSet& set, const Shapes& shapes, CameraChoice& camera) {
    const auto wall = matt({0.75f, 0.72f, 0.66f}, 0.9f);
    set.addShape(*shapes.box, {0.0f, -0.1f, 0.0f}, {3.0f, 0.1f, 3.0f}, wall);
    set.addShape(*shapes.box, {0.0f, 1.0f, 2.9f}, {3.0f, 1.2f, 0.1f}, wall);
    set.addShape(*shapes.box, {-2.9f, 1.0f, 0.0f}, {0.1f, 1.2f, 3.0f}, wall);
    for (int step = 0; step < 4; ++step) {
        const float height = 0.12f * static_cast<float>(4 - step);
        set.addShape(*shapes.box, {-2.3f + 0.45f * static_cast<float>(step), height, 2.0f},
                     {0.225f, height, 0.8f}, matt({0.7f, 0.5f, 0.35f}, 0.9f));
    }
    set.addShape(*shapes.torus, {0.2f, 0.24f, 0.2f}, {0.6f, 0.6f, 0.6f}, matt({0.3f, 0.5f, 0.7f}, 0.9f));
    set.addSphere(*shapes.sphere, {0.2f, 0.45f, 0.2f}, 0.45f, matt({0.8f, 0.75f, 0.3f}, 0.9f));
    set.addSphere(*shapes.sphere, {1.7f, 0.6f, 1.9f}, 0.6f, matt({0.7f, 0.3f, 0.25f}, 0.9f));
    set.addShape(*shapes.box, {-1.7f, 0.4f, -0.7f}, {0.4f, 0.4f, 0.4f}, matt({0.45f, 0.6f, 0.4f}, 0.9f));
    for (int i = 0; i < 5; ++i)
        set.addShape(*shapes.box, {1.4f + 0.3f * static_cast<float>(i), 0.35f, -0.6f}, {0.06f, 0.35f, 0.4f},
                     matt({0.7f, 0.7f, 0.7f}, 0.9f));
    camera = placeAt({4.2f, 3.4f, -5.6f}, {-0.3f, 0.5f, 0.5f});
}

constexpr Vector TERRAIN_HALF(9000.0f, 2200.0f, 18000.0f); // metres

void buildValley(DemoSet& set, const Shapes& shapes, CameraChoice& camera) {
    constexpr unsigned int SIDE = 512;
    ovGraphics::Texture* color = set.keep(paintTexture(set.getGraphics(), SIDE, true, [](float u, float v) {
        return terrainColor(u, v, TERRAIN_HALF.y / TERRAIN_HALF.x);
    }));
    set.addShape(*shapes.terrain, {0.0f, 0.0f, 0.0f}, TERRAIN_HALF, [&](PbsMaterial& material) {
        matt({1.0f, 1.0f, 1.0f}, 0.3f)(material);
        material.setAlbedoTexture(color, ovVeldris::THREE_CHANNEL_PACK::RGB);
    });
    camera = placeAt({-900.0f, 1500.0f, -17000.0f}, {1200.0f, 700.0f, 0.0f});
}

void buildColonnade(DemoSet& set, const Shapes& shapes, CameraChoice& camera) {
    const auto stone = matt({0.5f, 0.46f, 0.4f}, 0.15f);
    set.addGround(*shapes.ground, 0.0f, 2000.0f, stone);
    for (int i = -6; i <= 6; ++i)
        set.addShape(*shapes.box, {14.0f * static_cast<float>(i), 20.0f, 40.0f}, {3.5f, 20.0f, 3.5f}, stone);
    set.addShape(*shapes.box, {0.0f, 43.0f, 40.0f}, {90.0f, 3.0f, 5.0f}, stone);
    set.addShape(*shapes.box, {0.0f, 0.2f, -20.0f}, {90.0f, 0.2f, 90.0f}, stone);
    camera = placeAt({-46.0f, 30.0f, -78.0f}, {0.0f, 8.0f, 20.0f});
}

struct SceneOfEffects {
    StringView name;
    StringView caption;
    StringView effects;
    StringView beside; ///< effects of the left half of the picture; empty: the picture is one
    Vector toLight;
    Vector lightColor;
    bool shadows;
    void (*build)(DemoSet& set, const Shapes& shapes, CameraChoice& camera);
};

constexpr Vector LAMP(-0.35f, 0.8f, -0.6f);
constexpr Vector LAMP_COLOR(0.9f, 0.85f, 0.75f);

const SceneOfEffects SCENES[] = {
    {"occlusion-depth", "ambient occlusion from the depth buffer: the open fraction, and the picture with it",
     "ssao:reads=depth,sampling-radius=0.2,max-occlusion-distance=0.4,depth-bias=0.005",
     "ssao:reads=depth,sampling-radius=0.2,max-occlusion-distance=0.4,depth-bias=0.005,occlusion-drives-"
     "alpha=false",
     LAMP, LAMP_COLOR, true, buildCorner},
    {"occlusion-positions", "the same from a G-buffer of positions, without normals",
     "ssao:reads=positions,sampling-radius=0.2,max-occlusion-distance=0.4,depth-bias=0.005",
     "ssao:reads=positions,sampling-radius=0.2,max-occlusion-distance=0.4,depth-bias=0.005,occlusion-drives-"
     "alpha=false",
     LAMP, LAMP_COLOR, true, buildCorner},
    {"occlusion-normals", "the same from a G-buffer of positions and normals",
     "ssao:reads=positions-and-normals,sampling-radius=0.2,max-occlusion-distance=0.4,depth-bias=0.005",
     "ssao:reads=positions-and-normals,sampling-radius=0.2,max-occlusion-distance=0.4,depth-bias=0.005,"
     "occlusion-drives-alpha=false",
     LAMP, LAMP_COLOR, true, buildCorner},
    {"aerial-perspective", "a valley of 36 km: distant mountains drown in the air",
     "atmosphere:only-scatter-on-objects=false", "", Vector(-0.75f, 0.32f, 0.45f), Vector(1.5f, 1.3f, 1.0f),
     true, buildValley},
    {"shadowed-air", "the low sun behind a colonnade in thick haze: its light and shadows stand in the air",
     "atmosphere:reads=depth-and-shadows,shadow-sampling-method=pcf-4-tap,distance-factor=60,"
     "only-scatter-on-objects=false,display-sun=false,mie-scattering=30,30,30,mie-extinction=35,35,35",
     "", Vector(0.2f, 0.3f, 0.9f), Vector(1.3f, 1.0f, 0.7f), true, buildColonnade},
};

bool drawOne(Session& session, const Shapes& shapes, const SceneOfEffects& scene, StringView effects,
             SceneSettings settings, MaterialPicture& picture, String& error) {
    settings.background = {0.0f, 0.0f, 0.0f};
    settings.lightDirection = -scene.toLight;
    settings.lightColor = scene.lightColor;
    settings.shadows = scene.shadows;
    if (!planEffects(effects, settings.effects, error))
        return false;
    const auto target = ScenePicture::create(session, settings, error);
    if (!target)
        return false;
    DemoSet set(session, *target);
    CameraChoice camera;
    scene.build(set, shapes, camera);
    return set.draw(camera, picture, error);
}

/// The left half of one picture and the right half of another.
ovMemory::UniquePtr<ovGraphics::Texture> joinHalves(Session& session, ovGraphics::Texture& left,
                                                    ovGraphics::Texture& right) {
    const auto beside = left.convertToImage();
    const auto image = right.convertToImage();
    for (unsigned int y = 0; y < image->getHeight(); ++y)
        for (unsigned int x = 0; x < image->getWidth() / 2; ++x)
            for (unsigned int channel = 0; channel < 4; ++channel)
                image->setComponent(x, y, channel, beside->getComponent(x, y, channel));
    return uploadPicture(session.getGraphics(), image->view());
}

bool drawWhole(Session& session, const Shapes& shapes, const SceneOfEffects& scene,
               const SceneSettings& settings, MaterialPicture& picture, String& error) {
    if (!drawOne(session, shapes, scene, scene.effects, settings, picture, error))
        return false;
    if (scene.beside.empty())
        return true;
    MaterialPicture beside{scene.name, scene.caption, nullptr};
    if (!drawOne(session, shapes, scene, scene.beside, settings, beside, error))
        return false;
    picture.texture = joinHalves(session, *beside.texture, *picture.texture);
    return picture.texture != nullptr;
}

bool makeShapes(Session& session, Shapes& shapes, String& error) {
    constexpr unsigned int TERRAIN_COLUMNS = 240;
    constexpr unsigned int TERRAIN_ROWS = 480;
    ovGraphics::System& graphics = session.getGraphics();
    shapes.box = ovGraphics::makeBox(graphics);
    shapes.sphere = ovGraphics::makeSphere(graphics);
    shapes.torus = ovGraphics::makeTorus(graphics);
    shapes.ground = ovGraphics::makePlane(graphics);
    shapes.terrain = makeTerrain(graphics, TERRAIN_COLUMNS, TERRAIN_ROWS);
    if (shapes.box && shapes.sphere && shapes.torus && shapes.ground && shapes.terrain)
        return true;
    error += session.getLogger().take();
    return false;
}

} // namespace

ovMemory::Buffer<StringView> sceneEffectPictureNames() {
    ovMemory::Buffer<StringView> names;
    for (const SceneOfEffects& scene : SCENES)
        names.push_back(scene.name);
    return names;
}

bool drawSceneEffectPictures(Session& session, unsigned int width, unsigned int height, StringView only,
                             const TakePicture& take, String& error) {
    Shapes shapes;
    if (!makeShapes(session, shapes, error))
        return false;
    SceneSettings settings;
    settings.width = width;
    settings.height = height;
    settings.samples = SAMPLES_OF_PIXEL;
    for (const SceneOfEffects& scene : SCENES) {
        if (!only.empty() && only != scene.name)
            continue;
        MaterialPicture picture{scene.name, scene.caption, nullptr};
        if (!drawWhole(session, shapes, scene, settings, picture, error) || !take(picture, error)) {
            error += session.getLogger().take();
            return false;
        }
    }
    return true;
}

} // namespace veldris
