#include <veldris/demo/MaterialScenes.h>

#include <algorithm>
#include <cmath>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Shapes.h>
#include <veldris/Session.h>
#include <veldris/demo/PaintedTexture.h>
#include <veldris/scene/BuiltInSky.h>
#include <veldris/scene/EnvironmentLight.h>

namespace veldris {

using namespace ovVeldris;
using ovGraphics::Mesh;
using ovGraphics::Texture;
using ovMaths::Vector;
using ovMemory::String;

namespace {

constexpr unsigned int SAMPLES = 4; // of a pixel
constexpr unsigned int SKY_WIDTH = 512;
const Vector LIGHT_DIRECTION = Vector(0.5f, -0.75f, 0.6f).getNormalizedVec3();
const Vector LIGHT_COLOR(2.4f, 2.0f, 1.5f);
const Vector WHITE(1.0f, 1.0f, 1.0f);

/// What the pictures share.
struct Stock {
    ovMemory::UniquePtr<EnvironmentLight> sky;
    ovMemory::UniquePtr<Mesh> sphere;
    ovMemory::UniquePtr<Mesh> ground;
};

CameraChoice orbit(float azimuth, float elevation) {
    CameraChoice choice;
    choice.azimuth = azimuth;
    choice.elevation = elevation;
    return choice;
}

/// What a base colour looks like as a dielectric, a metal or a mixture: a row of spheres of rising roughness
/// for each metalness. @param configure sets what the two workflows tell apart
void addGrid(DemoSet& set, const Stock& stock, const Vector& baseColor,
             const std::function<void(PbsMaterial&, float roughness)>& configure) {
    constexpr int COLUMNS = 7;
    constexpr int ROWS = 4;
    constexpr float SMOOTHEST = 0.045f;
    constexpr float DISTANCE = 2.2f;
    for (int row = 0; row < ROWS; ++row) {
        const float metalness = static_cast<float>(row) / (ROWS - 1);
        for (int column = 0; column < COLUMNS; ++column) {
            const float roughness =
                SMOOTHEST + (1.0f - SMOOTHEST) * static_cast<float>(column) / (COLUMNS - 1);
            const Vector place(DISTANCE * static_cast<float>(column), DISTANCE * static_cast<float>(row),
                               0.0f);
            set.addSphere(*stock.sphere, place, 1.0f, [&](PbsMaterial& material) {
                material.setAlbedoColor(baseColor * (1.0f - metalness));
                material.setSpecularColor(WHITE * (0.04f * (1.0f - metalness)) + baseColor * metalness);
                material.setMetalness(1.0f); // the reflectance holds it already
                configure(material, roughness);
            });
        }
    }
}

void buildMetalness(DemoSet& set, const Stock& stock, CameraChoice& camera) {
    addGrid(set, stock, {1.0f, 0.71f, 0.29f},
            [](PbsMaterial& material, float roughness) { material.setRoughnessGlossiness(roughness); });
    camera = orbit(0.0f, 5.0f);
}

void buildGlossiness(DemoSet& set, const Stock& stock, CameraChoice& camera) {
    addGrid(set, stock, {0.35f, 0.55f, 0.95f}, [](PbsMaterial& material, float roughness) {
        material.setPbsModel(PBS_MODEL::SPECULAR_GLOSSINESS);
        material.setRoughnessGlossiness(1.0f - roughness);
    });
    camera = orbit(0.0f, 5.0f);
}

/// Bricks: height 0 in the joints, 1 on the bricks.
float brickHeight(float u, float v) {
    constexpr float ROWS = 8.0f;
    constexpr float COLUMNS = 4.0f;
    constexpr float JOINT = 0.06f;
    const float row = std::floor(v * ROWS);
    const float x = u * COLUMNS + (static_cast<int>(row) % 2 == 0 ? 0.0f : 0.5f);
    const float inX = x - std::floor(x);
    const float inY = v * ROWS - row;
    const float edge = std::min({inX * ROWS / COLUMNS, (1.0f - inX) * ROWS / COLUMNS, inY, 1.0f - inY});
    return std::clamp((edge - JOINT) / JOINT, 0.0f, 1.0f);
}

Vector brickColor(float u, float v) {
    const float tone = 0.5f + 0.5f * std::sin(37.0f * std::floor(u * 4.0f) + 91.0f * std::floor(v * 8.0f));
    const Vector brick(0.62f + 0.12f * tone, 0.36f + 0.06f * tone, 0.28f + 0.04f * tone, 1.0f);
    const Vector joint(0.68f, 0.66f, 0.62f, 1.0f);
    const float height = brickHeight(u, v);
    return joint * (1.0f - height) + brick * height;
}

Vector brickNormal(float u, float v) {
    constexpr float STEP = 1.0f / 512.0f;
    constexpr float DEPTH = 0.012f; // of the joints, sides of the texture
    const float slopeX = DEPTH * (brickHeight(u + STEP, v) - brickHeight(u - STEP, v)) / (2.0f * STEP);
    const float slopeY = DEPTH * (brickHeight(u, v - STEP) - brickHeight(u, v + STEP)) / (2.0f * STEP);
    const Vector normal = Vector(-slopeX, -slopeY, 1.0f).getNormalizedVec3();
    return {0.5f + 0.5f * normal.x, 0.5f + 0.5f * normal.y, 0.5f + 0.5f * normal.z, 1.0f};
}

void buildGround(DemoSet& set, const Stock& stock, CameraChoice& camera) {
    constexpr unsigned int SIDE = 512;
    Texture* color = set.keep(paintTexture(set.getGraphics(), SIDE, true, brickColor));
    Texture* normals = set.keep(paintTexture(set.getGraphics(), SIDE, false, brickNormal));
    set.addGround(*stock.ground, -1.0f, 14.0f, [&](PbsMaterial& material) {
        material.setAlbedoTexture(color, THREE_CHANNEL_PACK::RGB);
        material.setNormalMapTexture(normals, THREE_CHANNEL_PACK::RGB);
        material.setSpecularColor(WHITE * 0.04f);
        material.setMetalness(1.0f);
        material.setRoughnessGlossiness(0.75f);
    });
    const Vector colors[] = {{0.6f, 0.6f, 0.6f}, {0.5f, 0.05f, 0.04f}, {0.05f, 0.25f, 0.08f}};
    for (int i = 0; i < 3; ++i) {
        set.addSphere(*stock.sphere,
                      {2.6f * static_cast<float>(i - 1), 0.0f, 0.8f * static_cast<float>(i % 2)}, 1.0f,
                      [&](PbsMaterial& material) {
                          material.setAlbedoColor(colors[i]);
                          material.setSpecularColor(WHITE * 0.04f);
                          material.setMetalness(1.0f);
                          material.setRoughnessGlossiness(0.15f + 0.3f * static_cast<float>(i));
                      });
    }
    camera = orbit(20.0f, 28.0f);
}

/// One texture for four properties: metalness in R, roughness in G, occlusion in B, holes in A.
Vector packedProperties(float u, float v) {
    const float bands = std::fmod(v * 8.0f, 1.0f) < 0.5f ? 1.0f : 0.0f;
    const float ramp = 0.1f + 0.8f * std::abs(std::fmod(u * 4.0f, 2.0f) - 1.0f);
    const float shade = 0.35f + 0.65f * std::abs(std::sin(12.0f * v));
    const float x = std::fmod(u * 24.0f, 1.0f) - 0.5f;
    const float y = std::fmod(v * 12.0f, 1.0f) - 0.5f;
    return {bands, ramp, shade, x * x + y * y < 0.06f ? 0.0f : 1.0f};
}

void buildPacking(DemoSet& set, const Stock& stock, CameraChoice& camera) {
    constexpr unsigned int SIDE = 512;
    Texture* packed = set.keep(paintTexture(set.getGraphics(), SIDE, false, packedProperties));
    using Configure = void (*)(PbsMaterial&, Texture*);
    const Configure single[] = {[](PbsMaterial& material, Texture* texture) {
                                    material.setMetalnessTexture(texture, ONE_CHANNEL_PACK::R);
                                },
                                [](PbsMaterial& material, Texture* texture) {
                                    material.setRoughnessGlossinessTexture(texture, ONE_CHANNEL_PACK::G);
                                },
                                [](PbsMaterial& material, Texture* texture) {
                                    material.setOcclusionTexture(texture, ONE_CHANNEL_PACK::B);
                                },
                                [](PbsMaterial& material, Texture* texture) {
                                    material.setAlphaTexture(texture, ONE_CHANNEL_PACK::A);
                                    material.setAlphaCutoff(0.5f);
                                }};
    for (int i = 0; i < 5; ++i) {
        set.addSphere(*stock.sphere, {2.3f * static_cast<float>(i), 0.0f, 0.0f}, 1.0f,
                      [&](PbsMaterial& material) {
                          material.setAlbedoColor({0.35f, 0.33f, 0.30f});
                          material.setSpecularColor({0.95f, 0.80f, 0.55f});
                          material.setMetalness(0.2f);
                          material.setRoughnessGlossiness(0.25f);
                          for (int j = 0; j < 4; ++j) {
                              if (i == 4 || i == j)
                                  single[j](material, packed);
                          }
                      });
    }
    camera = orbit(0.0f, 12.0f);
}

struct SceneOfMaterials {
    ovMemory::StringView name;
    ovMemory::StringView caption;
    bool shadows;
    void (*build)(DemoSet& set, const Stock& stock, CameraChoice& camera);
};

constexpr SceneOfMaterials SCENES[] = {
    {"spheres-metalness",
     "metalness workflow: roughness grows to the right, metalness from 0 below to 1 above", false,
     buildMetalness},
    {"spheres-glossiness",
     "glossiness workflow: glossiness falls to the right, metalness from 0 below to 1 above", false,
     buildGlossiness},
    {"ground-shadow", "a textured and normal-mapped ground under a filtered shadow", true, buildGround},
    {"channel-packing",
     "one texture: metalness in red, roughness in green, occlusion in blue, holes in alpha, and all of them",
     false, buildPacking},
};

bool makeStock(Session& session, Stock& stock, String& error) {
    String warning;
    stock.sky = EnvironmentLight::create(session, drawSkyPanorama(SKY_WIDTH, -LIGHT_DIRECTION).view(),
                                         warning, error);
    stock.sphere = makeSphere(session.getGraphics());
    stock.ground = makePlane(session.getGraphics(), 6.0f);
    if (stock.sky && stock.sphere && stock.ground)
        return true;
    error += session.getLogger().take();
    return false;
}

bool drawScene(Session& session, const Stock& stock, const SceneOfMaterials& scene, SceneSettings settings,
               MaterialPicture& picture, String& error) {
    settings.shadows = scene.shadows;
    const auto target = ScenePicture::create(session, settings, error);
    if (!target || !target->setEnvironment(stock.sky.get())) {
        error += session.getLogger().take();
        return false;
    }
    DemoSet set(session, *target);
    CameraChoice camera;
    scene.build(set, stock, camera);
    return set.draw(camera, picture, error);
}

} // namespace

ovMemory::Buffer<ovMemory::StringView> materialPictureNames() {
    ovMemory::Buffer<ovMemory::StringView> names;
    for (const SceneOfMaterials& scene : SCENES)
        names.push_back(scene.name);
    return names;
}

bool drawMaterialPictures(Session& session, unsigned int width, unsigned int height,
                          ovMemory::StringView only, const TakePicture& take, String& error) {
    Stock stock;
    if (!makeStock(session, stock, error))
        return false;
    SceneSettings settings;
    settings.width = width;
    settings.height = height;
    settings.samples = SAMPLES;
    settings.lightDirection = LIGHT_DIRECTION;
    settings.lightColor = LIGHT_COLOR;
    for (const SceneOfMaterials& scene : SCENES) {
        if (!only.empty() && only != scene.name)
            continue;
        MaterialPicture picture{scene.name, scene.caption, nullptr};
        if (!drawScene(session, stock, scene, settings, picture, error) || !take(picture, error))
            return false;
    }
    return true;
}

} // namespace veldris
