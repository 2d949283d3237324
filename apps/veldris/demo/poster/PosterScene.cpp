#include <veldris/demo/poster/PosterScene.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/scene/Mesh.h>
#include <veldris/Session.h>
#include <veldris/demo/Noise.h>
#include <veldris/demo/PaintedTexture.h>
#include <veldris/demo/SurfaceMesh.h>
#include <veldris/demo/Terrain.h>
#include <veldris/demo/poster/Meadow.h>
#include <veldris/demo/poster/StoneShape.h>
#include <veldris/sky/SkyEnvironment.h>

namespace veldris {

using ovMaths::Vector;
using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;
using ovVeldris::PbsMaterial;

namespace {

constexpr StringView NAME = "poster";
constexpr StringView CAPTION = "standing stones in the last light: shadows, ambient occlusion, aerial "
                               "perspective, tone mapping, FXAA and a "
                               "little grain";
constexpr StringView OCCLUSION =
    "ssao:reads=depth,sampling-radius=0.5,depth-bias=0.02,max-occlusion-distance=2";
constexpr StringView AIR = "atmosphere:sun=5,-107,sun-illuminance-factor=75,sun-angular-radius=0.3,mie-"
                           "scattering=10,10,10,mie-absorb=4.4,4.4,4.4,"
                           "mie-extinction=14.4,14.4,14.4";
constexpr StringView SHOWN_BY = "tone-mapping:operator=aces;fxaa:preset=39;film-grain:strength=0.025";

constexpr unsigned int SAMPLES = 4;
constexpr unsigned int STONE_KINDS = 3;
constexpr unsigned int GRASS_KINDS = 3;
constexpr float MEADOW_HALF = 34.0f;
constexpr float HILL_HALF = 900.0f;
constexpr float VALLEY_DEPTH = 420.0f; // metres from the stones down to the bottom of the valley
constexpr Vector MOUNTAINS_HALF(24000.0f, 4600.0f, 24000.0f);
const Vector EYE(2.0f, 2.1f, -24.0f);
const Vector TARGET(-0.5f, 2.9f, 0.0f);

using Meshes = Buffer<ovMemory::UniquePtr<ovGraphics::Mesh>>;

/// How fine shapes and textures are: as fine as a picture shows.
struct Detail {
    unsigned int textureSide;
    unsigned int landRows;
    unsigned int blades; ///< of a tuft of grass

    static Detail forWidth(unsigned int pixels) {
        return {std::clamp(std::bit_ceil(pixels), 64u, 1024u), std::clamp(pixels / 2, 48u, 480u),
                std::clamp(pixels * 2 / 3, 40u, 650u)};
    }
};

/// A dull surface with colours of a texture.
DemoSet::Configure rough(ovGraphics::Texture* colors) {
    return [=](PbsMaterial& material) {
        material.setAlbedoTexture(colors, ovVeldris::THREE_CHANNEL_PACK::RGB);
        material.setSpecularColor({0.03f, 0.03f, 0.03f});
        material.setMetalness(1.0f);
        material.setRoughnessGlossiness(0.85f);
    };
}

/// On the meadow, sunk a little.
Placement onMeadow(float x, float z, const Vector& half, float turn, float lean) {
    return {{x, meadowHeight(x, z) + 0.86f * half.y, z}, half, turn, lean};
}

/// Two rings of stones, some fallen, and lintels on three pairs of the inner one.
void addStones(DemoSet& set, Meshes& meshes, const Detail& detail) {
    constexpr unsigned int OUTER = 17;
    Buffer<Placement> placements[STONE_KINDS];
    const auto random = [](unsigned int i, float salt) {
        return smoothNoise({static_cast<float>(i) * 3.7f, salt, 0.5f});
    };
    for (unsigned int i = 0; i < OUTER; ++i) {
        const float angle =
            2.0f * std::numbers::pi_v<float> * (static_cast<float>(i) + 0.3f * random(i, 1.5f)) / OUTER;
        const float radius = 11.5f + 1.2f * random(i, 7.5f);
        const bool isFallen = i % 6 == 2;
        const Vector half(0.75f + 0.5f * random(i, 2.5f), 1.5f + 1.1f * random(i, 3.5f),
                          0.45f + 0.25f * random(i, 4.5f));
        const float lean = isFallen ? 1.45f : 0.24f * (random(i, 5.5f) - 0.5f);
        Placement placement = onMeadow(radius * std::sin(angle), radius * std::cos(angle), half,
                                       angle + 0.5f * (random(i, 6.5f) - 0.5f), lean);
        if (isFallen)
            placement.position.y = meadowHeight(placement.position.x, placement.position.z) + 0.6f * half.z;
        placements[i % STONE_KINDS].push_back(placement);
    }
    constexpr float GATES[] = {-0.75f, 0.35f, 1.5f}; // radians from +z
    for (const float gate : GATES) {
        const Vector middle(6.2f * std::sin(gate), 0.0f, 6.2f * std::cos(gate));
        const Vector beside(std::cos(gate), 0.0f, -std::sin(gate));
        constexpr Vector PILLAR(0.7f, 2.5f, 0.5f);
        float top = 0.0f;
        for (const float side : {-1.35f, 1.35f}) {
            const Vector place = middle + beside * side;
            placements[1].push_back(onMeadow(place.x, place.z, PILLAR, gate, 0.0f));
            top = std::max(top, placements[1].back().position.y + 0.8f * PILLAR.y);
        }
        placements[2].push_back({{middle.x, top + 0.25f, middle.z}, {2.35f, 0.45f, 0.62f}, gate, 0.0f});
    }
    for (unsigned int kind = 0; kind < STONE_KINDS; ++kind) {
        meshes.push_back(makeStone(set.getGraphics(), kind));
        if (meshes.back())
            set.addCopies(*meshes.back(), placements[kind],
                          rough(set.keep(paintStone(set.getGraphics(), kind, detail.textureSide / 2))));
    }
}

/// Grass around the eye and among the stones, denser where it is near.
void addGrass(DemoSet& set, Meshes& meshes, const Detail& detail) {
    constexpr float STEP = 1.25f; // metres between tufts
    Buffer<Placement> placements[GRASS_KINDS];
    unsigned int number = 0;
    for (float z = EYE.z + 1.5f; z < 26.0f; z += STEP) {
        const float halfWidth = 4.0f + 0.66f * (z - EYE.z);
        for (float x = EYE.x - halfWidth; x < EYE.x + halfWidth; x += STEP) {
            const Vector place(x + 0.9f * smoothNoise({3.1f * x, 1.0f, 2.3f * z}), 0.0f,
                               z + 0.9f * smoothNoise({2.7f * z, 5.0f, 3.3f * x}));
            const float height = 0.55f + 0.9f * fractalNoise({0.35f * place.x, 9.0f, 0.35f * place.z}, 3);
            placements[number++ % GRASS_KINDS].push_back(
                {{place.x, meadowHeight(place.x, place.z) - 0.02f, place.z},
                 {0.95f, height, 0.95f},
                 static_cast<float>(number),
                 0.0f});
        }
    }
    ovGraphics::Texture* colors = set.keep(paintGrass(set.getGraphics()));
    for (unsigned int kind = 0; kind < GRASS_KINDS; ++kind) {
        meshes.push_back(makeGrass(set.getGraphics(), kind, detail.blades));
        if (meshes.back())
            set.addCopies(*meshes.back(), placements[kind], rough(colors));
    }
}

/// Mountains that rise from the plain: the near edge of their square would be a cliff.
Vector mountainAt(float u, float v) {
    constexpr float RISE = 3.0f; // from 0 to 1 over a third of the half side
    const float x = 2.0f * u - 1.0f;
    const float z = 1.0f - 2.0f * v;
    const float rise = std::clamp(RISE * (z + 1.0f), 0.0f, 1.0f);
    return {x, terrainHeight(x, z) * rise * rise * (3.0f - 2.0f * rise), z};
}

/// The hill under the meadow, and mountains beyond the valley.
void addLand(DemoSet& set, Meshes& meshes, const Detail& detail) {
    ovGraphics::System& graphics = set.getGraphics();
    const auto add = [&](ovMemory::UniquePtr<ovGraphics::Mesh> mesh, const Placement& placement,
                         ovMemory::UniquePtr<ovGraphics::Texture> colors) {
        meshes.push_back(std::move(mesh));
        if (meshes.back())
            set.addCopies(*meshes.back(), {&placement, 1}, rough(set.keep(std::move(colors))));
    };
    constexpr Vector A_LITTLE_LOWER(0.0f, -0.25f, 0.0f);
    add(makeMeadow(graphics, MEADOW_HALF, detail.landRows / 3), {},
        paintMeadow(graphics, MEADOW_HALF, detail.textureSide));
    add(makeMeadow(graphics, HILL_HALF, detail.landRows / 3), {A_LITTLE_LOWER},
        paintMeadow(graphics, HILL_HALF, detail.textureSide / 2));
    SurfaceMesh mountains;
    mountains.addGrid(detail.landRows, detail.landRows, mountainAt);
    add(mountains.make(graphics, "mountains"),
        {{2500.0f, -VALLEY_DEPTH, MOUNTAINS_HALF.z + 1500.0f}, MOUNTAINS_HALF},
        paintTexture(graphics, detail.textureSide / 2, true, [](float u, float v) {
            return terrainColor(u, v, MOUNTAINS_HALF.y / MOUNTAINS_HALF.x);
        }));
}

/// Eye and light: shadows as far as the stones throw them.
void place(ScenePicture& scene) {
    constexpr float FIELD_OF_VIEW = 0.62f; // radians, from the bottom to the top
    constexpr float NEAR_PLANE = 0.5f;
    constexpr float FAR_PLANE = 60000.0f;
    scene.getCamera().setPosition(EYE);
    scene.getCamera().lookAt(TARGET - EYE, Vector());
    scene.getCamera().setPerspective(FIELD_OF_VIEW, scene.getAspect(), NEAR_PLANE, FAR_PLANE);
    scene.fitShadow(ovGraphics::BoundingBox::newBox({0.0f, 2.0f, -5.0f}, {40.0f, 6.0f, 46.0f}));
}

bool planEffectsOfScene(const SkyChoice& sky, Buffer<PlannedEffect>& effects, String& error) {
    if (!planEffects(OCCLUSION, effects, error))
        return false;
    effects.push_back(planAirOverScene(sky));
    return true;
}

} // namespace

Buffer<StringView> posterNames() {
    return {NAME};
}

bool drawPoster(Session& session, unsigned int width, unsigned int height, StringView only,
                const TakePicture& take, String& error) {
    if (!only.empty() && only != NAME)
        return true;
    SceneSettings settings;
    settings.width = width;
    settings.height = height;
    settings.samples = SAMPLES;
    settings.shadows = true;
    SkyChoice choice;
    if (!readSkyChoice(AIR, choice, error) || !planEffectsOfScene(choice, settings.effects, error))
        return false;
    String warning;
    const auto sky = SkyEnvironment::create(session, choice, EYE.y, warning, error);
    if (!sky)
        return false;
    settings.lightDirection = sky->getSunDirection();
    settings.lightColor = sky->getSunColor();
    const auto scene = ScenePicture::create(session, settings, error);
    if (!scene || !scene->setEnvironment(&sky->getLight(), sky->getBehind()))
        return false;
    Meshes meshes;
    const Detail detail = Detail::forWidth(width);
    DemoSet set(session, *scene);
    addLand(set, meshes, detail);
    addStones(set, meshes, detail);
    addGrass(set, meshes, detail);
    place(*scene);
    MaterialPicture picture{NAME, CAPTION, nullptr};
    picture.effects = SHOWN_BY;
    if (set.drawAsPlaced(picture, error) && take(picture, error))
        return true;
    error += session.getLogger().take();
    return false;
}

} // namespace veldris
