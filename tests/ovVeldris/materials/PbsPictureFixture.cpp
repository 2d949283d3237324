#include <ovVeldris/materials/PbsPictureFixture.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/compositor/ScenePass.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>

using namespace ovVeldris;
using ovMaths::Matrix;
using ovMaths::Vector;

namespace {

constexpr std::array<std::array<double, 2>, 4> CORNERS = {{{0.0, 0.0}, {1.0, 0.0}, {0.0, 1.0}, {1.0, 1.0}}};

Vector toVector(const Vec3& v, float w = 0.0f) {
    return {float(v[0]), float(v[1]), float(v[2]), w};
}

/// A direction or, with w = 1, a position under a matrix.
Vec3 transform(const Matrix& matrix, const Vec3& v, double w) {
    Vec3 result{};
    for (std::size_t row = 0; row < 3; ++row)
        result[row] = double(matrix.m[row][0]) * v[0] + double(matrix.m[row][1]) * v[1] +
                      double(matrix.m[row][2]) * v[2] + double(matrix.m[row][3]) * w;
    return result;
}

Vec3 worldPosition(double a, double b) {
    return {2.0 * a - 1.0, 1.0 - 2.0 * b, 0.0};
}

/// Between the corners of the two triangles that the square is drawn as; they meet from bottom left to top
/// right.
Vec3 interpolate(const std::array<Vec3, 4>& corners, double a, double b) {
    if (a + b <= 1.0)
        return corners[0] + a * (corners[1] - corners[0]) + b * (corners[2] - corners[0]);
    return corners[3] + (1.0 - a) * (corners[2] - corners[3]) + (1.0 - b) * (corners[1] - corners[3]);
}

/// The direction of a place on a cube's face, s to the right and t down, -1 to 1 (Direct3D's layout).
Vec3 cubeDirection(unsigned int face, double s, double t) {
    const Vec3 directions[] = {{1.0, -t, -s}, {-1.0, -t, s}, {s, 1.0, t},
                               {s, -1.0, -t}, {s, -t, 1.0},  {-s, -t, -1.0}};
    return normalized(directions[face]);
}

/// The inverse: the place on a given face's plane.
std::array<double, 2> cubePlace(unsigned int face, const Vec3& d) {
    const double depth = std::abs(d[face / 2]);
    const std::array<double, 2> places[] = {{-d[2], -d[1]}, {d[2], -d[1]}, {d[0], d[2]},
                                            {d[0], -d[2]},  {d[0], -d[1]}, {-d[0], -d[1]}};
    return {places[face][0] / depth, places[face][1] / depth};
}

unsigned int cubeFace(const Vec3& d) {
    std::size_t axis = 0;
    for (std::size_t i = 1; i < 3; ++i)
        if (std::abs(d[i]) > std::abs(d[axis]))
            axis = i;
    return static_cast<unsigned int>(2 * axis + (d[axis] < 0.0 ? 1 : 0));
}

/// The direction of a place of a flat map, 0 to 1, by the map's exact shape.
Vec3 flatDirection(double u, double v) {
    const double longitude = (u - 0.5) * 2.0 * M_PI;
    const double latitude = (0.5 - v) * M_PI;
    return {std::cos(longitude) * std::cos(latitude), std::sin(latitude),
            std::sin(longitude) * std::cos(latitude)};
}

double selectChannel(const FloatPixel& texel, char channel) {
    return double(texel[ovMemory::StringView("rgba").find(channel)]);
}
Vec3 selectChannels(const FloatPixel& texel, ovMemory::StringView channels) {
    return {selectChannel(texel, channels[0]), selectChannel(texel, channels[1]),
            selectChannel(texel, channels[2])};
}

/// The value of a property: constant, texel or product.
template <typename Value, typename Select>
Value mixProperty(const SurfaceTexture& texture, const Value& constant, bool mix, unsigned int x,
                  unsigned int y, const Select& select) {
    if (!texture)
        return constant;
    const Value value = select(texture.picture.at(x, y), texture.channels);
    return mix ? value * constant : value;
}

Vec3 mixVector(const SurfaceTexture& texture, const Vec3& constant, bool mix, unsigned int x,
               unsigned int y) {
    return mixProperty(texture, constant, mix, x, y, selectChannels);
}
double mixNumber(const SurfaceTexture& texture, double constant, bool mix, unsigned int x, unsigned int y) {
    return mixProperty(texture, constant, mix, x, y,
                       [](const FloatPixel& texel, const ovMemory::String& channels) {
                           return selectChannel(texel, channels[0]);
                       });
}

// --- Geometry of the reference.

/// What the mesh has at a place, in world space.
struct PlacedFrame {
    Vec3 normal{}, tangent{}, binormal{};
};

std::array<Vec3, 4> turned(const Matrix& invTranspose, std::array<Vec3, 4> vectors) {
    for (Vec3& vector : vectors)
        vector = transform(invTranspose, vector, 0.0);
    return vectors;
}

PlacedFrame placeFrame(const PbsSurface& surface, bool reconstructBinormals, double a, double b) {
    const Matrix invTranspose = surface.world.getInverseMat4().getTranspose();
    std::array<Vec3, 4> binormals = surface.binormals;
    if (reconstructBinormals)
        for (std::size_t i = 0; i < 4; ++i)
            binormals[i] = normalized(cross(surface.normals[i], surface.tangents[i]));
    return {interpolate(turned(invTranspose, surface.normals), a, b),
            interpolate(turned(invTranspose, surface.tangents), a, b),
            interpolate(turned(invTranspose, binormals), a, b)};
}

Vec3 shadingNormal(const PbsSetup& setup, const PbsSurface& surface, unsigned int x, unsigned int y, double a,
                   double b) {
    const PlacedFrame frame = placeFrame(surface, setup.reconstructBinormals, a, b);
    if (!setup.normalMap)
        return normalized(frame.normal);
    const Vec3 stored = selectChannels(setup.normalMap.picture.at(x, y), setup.normalMap.channels);
    const Vec3 mapped = 2.0 * stored - Vec3{1.0, 1.0, 1.0};
    return normalized(mapped[0] * frame.tangent + mapped[1] * frame.binormal + mapped[2] * frame.normal);
}

// --- Shadows of the reference.

/// Share of the four texels around a place that are not nearer than a depth; beyond the map is lit.
double compareFiltered(const FloatPicture& depths, double u, double v, double depth) {
    const double x = u * depths.width - 0.5;
    const double y = v * depths.height - 0.5;
    const double x0 = std::floor(x);
    const double y0 = std::floor(y);
    const auto lit = [&](double column, double row) {
        if (column < 0.0 || row < 0.0 || column >= depths.width || row >= depths.height)
            return 1.0;
        return depth <= double(depths.at(unsigned(column), unsigned(row))[0]) ? 1.0 : 0.0;
    };
    const auto mixed = [](double from, double to, double s) { return from + s * (to - from); };
    return mixed(mixed(lit(x0, y0), lit(x0 + 1, y0), x - x0),
                 mixed(lit(x0, y0 + 1), lit(x0 + 1, y0 + 1), x - x0), y - y0);
}

double computeShadow(const ShadowSetup& setup, const Vec3& position) {
    const Vec3 forward = normalized(setup.direction);
    const Vec3 right = normalized(cross({0.0, 1.0, 0.0}, forward));
    const Vec3 up = cross(forward, right);
    const Vec3 seen = position - setup.position;
    const double u = 0.5 + dot(seen, right) / setup.extent;
    const double v = 0.5 - dot(seen, up) / setup.extent;
    double depth = (dot(seen, forward) - setup.nearPlane) / (setup.farPlane - setup.nearPlane);
    const auto outside = [](double value) { return value < 0.0 || value > 1.0; };
    if (outside(u) || outside(v) || outside(depth))
        return setup.parameters.debugOutOfBounds ? 0.0 : 1.0;
    depth -= setup.parameters.bias >= 0.0f ? double(setup.parameters.bias) : 0.0001;
    constexpr std::array TAPS = {1, 2, 3, 4}; // a side, by the kernel's number
    const int taps = TAPS[std::size_t(setup.parameters.pcfMethod)];
    double sum = 0.0;
    for (int j = 0; j < taps; ++j)
        for (int i = 0; i < taps; ++i)
            sum += compareFiltered(setup.depths, u + (i - 0.5 * (taps - 1)) / setup.depths.width,
                                   v + (j - 0.5 * (taps - 1)) / setup.depths.height, depth);
    return sum / (taps * taps);
}

// --- Maps of the reference.

/// The directions that the pixels of a block of two by two read, the block's top left pixel first.
using QuadDirections = std::array<Vec3, 4>;

/// The mip that a device chooses for a block of pixels: the binary logarithm of the step between neighbours
/// in texels of the largest mip.
double chooseMip(const SurroundingsMap& map, const QuadDirections& quad, const Vec3& own) {
    const auto place = [&](const Vec3& direction) {
        if (!map.cube) {
            const auto [u, v] = toFlatMap(direction);
            return Vec3{u * 2.0 * map.size, v * map.size, 0.0};
        }
        const auto [s, t] = cubePlace(cubeFace(own), direction);
        return Vec3{s * 0.5 * map.size, t * 0.5 * map.size, 0.0};
    };
    const Vec3 toTheRight = place(quad[1]) - place(quad[0]);
    const Vec3 down = place(quad[2]) - place(quad[0]);
    return 0.5 * std::log2(std::max(dot(toTheRight, toTheRight), dot(down, down)));
}

Vec3 readMap(const SurroundingsMap& map, const Vec3& direction, double mip) {
    const double clamped = std::clamp(mip, 0.0, map.mipCount - 1.0);
    return selectChannels(map.radiance(direction, clamped), map.channels);
}

PbsReferenceMap makeReferenceMap(const SurroundingsMap& map, bool prefiltered, const Vec3& factor) {
    PbsReferenceMap result;
    result.prefiltered = prefiltered;
    result.resolution = map.cube ? map.size : 0.5 * map.size;
    result.mipCount = map.mipCount;
    result.read = [&map, factor](const Vec3& direction, double level, int) {
        return factor * readMap(map, direction, map.mipCount > 1 ? level : 0.0);
    };
    return result;
}

PbsReferencePoint makePoint(const PbsSetup& setup, const PbsSurface& surface, const Vec3& eye, unsigned int x,
                            unsigned int y, unsigned int size) {
    const double a = (x + 0.5) / size;
    const double b = (y + 0.5) / size;
    const Vec3 position = worldPosition(a, b);
    PbsReferencePoint point;
    point.normal = shadingNormal(setup, surface, x, y, a, b);
    point.eyeDirection = eye - position;
    point.albedo = mixVector(setup.albedoTexture, setup.albedo, setup.mixAlbedo, x, y);
    point.specular = mixVector(setup.specularTexture, setup.specular, setup.mixSpecular, x, y);
    point.emissive = mixVector(setup.emissiveTexture, setup.emissive, setup.mixEmissive, x, y);
    point.metalness = mixNumber(setup.metalnessTexture, setup.metalness, setup.mixMetalness, x, y);
    point.roughnessGlossiness =
        mixNumber(setup.roughnessTexture, setup.roughnessGlossiness, setup.mixRoughness, x, y);
    point.occlusion = mixNumber(setup.occlusionTexture, 1.0, false, x, y);
    point.shadow = setup.shadow ? computeShadow(setup.shadow, position) : 1.0;
    return point;
}

/// The reads of a map whose mip depends on the neighbours: replaces the level by the device's choice plus it.
void addDeviceMip(PbsReferenceMap& reference, const SurroundingsMap& map, const Vec3& factor,
                  const std::array<PbsReferencePoint, 4>& quad, double roughness) {
    std::array<std::array<Vec3, 1024>, 4> samples;
    std::array<Vec3, 4> mirrored;
    for (std::size_t i = 0; i < 4; ++i) {
        const Vec3 v = normalized(quad[i].eyeDirection);
        if (!reference.prefiltered)
            samples[i] = listPbsSampleDirections(quad[i].normal, v, roughness);
        mirrored[i] = normalized(2.0 * dot(v, quad[i].normal) * quad[i].normal - v);
    }
    const bool prefiltered = reference.prefiltered;
    reference.read = [=, &map](const Vec3& direction, double bias, int sample) {
        const auto i = std::size_t(sample);
        const QuadDirections directions =
            prefiltered ? mirrored
                        : QuadDirections{samples[0][i], samples[1][i], samples[2][i], samples[3][i]};
        return factor * readMap(map, direction, chooseMip(map, directions, direction) + bias);
    };
}

} // namespace

FloatPicture PbsPictureFixture::paint(const std::function<FloatPixel(double a, double b)>& texel) {
    FloatPicture picture(SIZE, SIZE);
    for (unsigned int y = 0; y < SIZE; ++y)
        for (unsigned int x = 0; x < SIZE; ++x)
            picture.at(x, y) = texel((x + 0.5) / SIZE, (y + 0.5) / SIZE);
    return picture;
}

FloatPicture PbsPictureFixture::computePbs(const PbsSetup& setup, const PbsSurface& surface) {
    const Vec3 factor = setup.mixEnvironment ? setup.environmentColor : Vec3{1.0, 1.0, 1.0};
    PbsReferenceMap environment = makeReferenceMap(setup.environment, setup.prefiltered, factor);
    const PbsReferenceMap irradiance = makeReferenceMap(setup.irradiance, false, factor);
    PbsReferenceScene scene;
    scene.glossiness = setup.glossiness;
    scene.combine = setup.combine;
    scene.lightDirection = setup.lightDirection;
    scene.lightColor = setup.lightColor;
    scene.irradianceColor = setup.environmentColor;
    scene.environment = setup.environment ? &environment : nullptr;
    scene.irradiance = setup.irradiance ? &irradiance : nullptr;

    FloatPicture picture(SIZE, SIZE, UNDRAWN);
    for (unsigned int y = 0; y < SIZE; ++y)
        for (unsigned int x = 0; x < SIZE; ++x) {
            const double alpha = mixNumber(setup.alphaTexture, setup.alpha, setup.mixAlpha, x, y);
            if (alpha <= setup.alphaCutoff)
                continue;
            const PbsReferencePoint point = makePoint(setup, surface, EYE, x, y, SIZE);
            const bool exactLevel = setup.prefiltered && setup.environment.cube;
            if (setup.environment.mipCount > 1 && !exactLevel) {
                const unsigned int left = x & ~1u;
                const unsigned int top = y & ~1u;
                addDeviceMip(environment, setup.environment, factor,
                             {makePoint(setup, surface, EYE, left, top, SIZE),
                              makePoint(setup, surface, EYE, left + 1, top, SIZE),
                              makePoint(setup, surface, EYE, left, top + 1, SIZE),
                              makePoint(setup, surface, EYE, left + 1, top + 1, SIZE)},
                             point.roughnessGlossiness);
            }
            const Vec3 color = shadePbs(scene, point);
            picture.at(x, y) = {float(color[0]), float(color[1]), float(color[2]), float(alpha)};
        }
    return picture;
}

FloatPicture PbsPictureFixture::drawPbs(const PbsSetup& setup, const PbsSurface& surface) {
    PbsMaterial material(getSystem());
    _apply(setup, material);
    EXPECT_TRUE(material.load()) << getLog().getText() << getGraphicsLogger().getText();
    return _drawMesh(*material.getShader(), surface);
}

void PbsPictureFixture::TearDown() {
    _textures.clear();
    _lightCamera.reset();
    EffectFixture::TearDown();
}

void PbsPictureFixture::_apply(const PbsSetup& setup, PbsMaterial& material) {
    material.setAlbedoColor(toVector(setup.albedo));
    material.setSpecularColor(toVector(setup.specular));
    material.setEmissiveColor(toVector(setup.emissive));
    material.setEnvironmentColor(toVector(setup.environmentColor));
    material.setMetalness(float(setup.metalness));
    material.setRoughnessGlossiness(float(setup.roughnessGlossiness));
    material.setAlpha(float(setup.alpha));
    material.setAlphaCutoff(float(setup.alphaCutoff));
    const auto three = ThreeChannelPackUtils::stringLowerToEnum;
    const auto one = OneChannelPackUtils::stringLowerToEnum;
    material.setAlbedoTexture(_makeTexture(setup.albedoTexture), three(setup.albedoTexture.channels));
    material.setSpecularTexture(_makeTexture(setup.specularTexture), three(setup.specularTexture.channels));
    material.setEmissiveTexture(_makeTexture(setup.emissiveTexture), three(setup.emissiveTexture.channels));
    material.setMetalnessTexture(_makeTexture(setup.metalnessTexture), one(setup.metalnessTexture.channels));
    material.setRoughnessGlossinessTexture(_makeTexture(setup.roughnessTexture),
                                           one(setup.roughnessTexture.channels));
    material.setAlphaTexture(_makeTexture(setup.alphaTexture), one(setup.alphaTexture.channels));
    material.setOcclusionTexture(_makeTexture(setup.occlusionTexture), one(setup.occlusionTexture.channels));
    material.setNormalMapTexture(_makeTexture(setup.normalMap), three(setup.normalMap.channels));
    material.setMixAlbedoColorAndTexture(setup.mixAlbedo);
    material.setMixSpecularColorAndTexture(setup.mixSpecular);
    material.setMixEmissiveColorAndTexture(setup.mixEmissive);
    material.setMixMetalnessFactorAndTexture(setup.mixMetalness);
    material.setMixRoughnessGlossinessFactorAndTexture(setup.mixRoughness);
    material.setMixAlphaFactorAndTexture(setup.mixAlpha);
    material.setMixEnvironmentColorAndTexture(setup.mixEnvironment);
    material.setReconstructBinormals(setup.reconstructBinormals);
    material.setEnvironmentTexture(_makeMap(setup.environment), three(setup.environment.channels),
                                   setup.prefiltered);
    material.setIrradianceTexture(_makeMap(setup.irradiance), three(setup.irradiance.channels));
    if (setup.shadow) {
        _lightCamera = ovGraphics::Camera::create(&getGraphics());
        _lightCamera->setPosition(toVector(setup.shadow.position));
        _lightCamera->lookAt(toVector(setup.shadow.direction), {});
        const auto extent = float(setup.shadow.extent);
        _lightCamera->setOrthographic(extent, extent, float(setup.shadow.nearPlane),
                                      float(setup.shadow.farPlane));
        material.setShadowMapTexture(_makeDepths(setup.shadow.depths), _lightCamera.get(),
                                     setup.shadow.parameters);
    }
    material.setPbsModel(setup.glossiness ? PBS_MODEL::SPECULAR_GLOSSINESS
                                          : PBS_MODEL::SPECULAR_METALNESS_ROUGHNESS);
    material.setCombineLightAndEnvironment(setup.combine);
    material.setLightDirection(toVector(setup.lightDirection));
    material.setLightColor(toVector(setup.lightColor));
}

ovGraphics::Texture* PbsPictureFixture::_keep(ovMemory::UniquePtr<ovGraphics::Texture> texture) {
    EXPECT_TRUE(texture->load()) << getGraphicsLogger().getText();
    return _textures.emplace_back(std::move(texture)).get();
}

ovGraphics::Texture* PbsPictureFixture::_makeTexture(const SurfaceTexture& texture) {
    return texture ? _keep(makeTexture(texture.picture)) : nullptr;
}

ovGraphics::Texture* PbsPictureFixture::_makeMap(const SurroundingsMap& map) {
    if (!map)
        return nullptr;
    auto texture = ovGraphics::Texture::create(&getGraphics());
    texture->setFormat(ovGraphics::FORMAT::R32G32B32A32_FLOAT);
    texture->setTexType(map.cube ? ovGraphics::TEXTURE_TYPE::CUBE : ovGraphics::TEXTURE_TYPE::TEXTURE_2D);
    texture->setWidth(map.cube ? map.size : 2 * map.size);
    texture->setHeight(map.size);
    texture->setMipCount(map.mipCount);
    for (unsigned int face = 0; face < (map.cube ? 6u : 1u); ++face)
        for (unsigned int mip = 0; mip < map.mipCount; ++mip) {
            FloatPicture texels(texture->getWidth() >> mip, texture->getHeight() >> mip);
            for (unsigned int y = 0; y < texels.height; ++y)
                for (unsigned int x = 0; x < texels.width; ++x) {
                    const double u = (x + 0.5) / texels.width;
                    const double v = (y + 0.5) / texels.height;
                    texels.at(x, y) = map.radiance(
                        map.cube ? cubeDirection(face, 2.0 * u - 1.0, 2.0 * v - 1.0) : flatDirection(u, v),
                        mip);
                }
            texture->setCpuData(face, mip,
                                {reinterpret_cast<const unsigned char*>(texels.pixels.data()),
                                 texels.pixels.size() * sizeof(FloatPixel)});
        }
    return _keep(std::move(texture));
}

ovGraphics::Texture* PbsPictureFixture::_makeDepths(const FloatPicture& depths) {
    auto texture = ovGraphics::Texture::create(&getGraphics());
    texture->setFormat(ovGraphics::FORMAT::D32_FLOAT);
    texture->setWidth(depths.width);
    texture->setHeight(depths.height);
    ovMemory::Buffer<float> texels;
    for (const FloatPixel& pixel : depths.pixels)
        texels.push_back(pixel[0]);
    texture->setCpuData(
        0, 0, {reinterpret_cast<const unsigned char*>(texels.data()), texels.size() * sizeof(float)});
    return _keep(std::move(texture));
}

FloatPicture PbsPictureFixture::_drawMesh(ovGraphics::Shader& shader, const PbsSurface& surface) {
    using namespace ovGraphics;
    VertexComposition composition;
    composition.addAttribute("POSITION", FORMAT::R32G32B32_FLOAT);
    composition.addAttribute("NORMAL", FORMAT::R32G32B32_FLOAT);
    composition.addAttribute("TEXCOORD", FORMAT::R32G32_FLOAT);
    composition.addAttribute("TANGENT", FORMAT::R32G32B32A32_FLOAT);
    composition.addAttribute("BINORMAL", FORMAT::R32G32B32_FLOAT);
    const auto mesh = Mesh::create(&getGraphics());
    mesh->setVertexComposition(composition);
    ovMemory::Buffer<Vector> values;
    const Matrix toMesh = surface.world.getInverseMat4();
    for (std::size_t i = 0; i < 4; ++i) {
        const auto [a, b] = CORNERS[i];
        values.push_back(toVector(transform(toMesh, worldPosition(a, b), 1.0), 1.0f));
        values.push_back(toVector(surface.normals[i]));
        values.push_back(toVector({a, b, 0.0}));
        values.push_back(toVector(surface.tangents[i], 7.0f)); // handedness takes no part
        values.push_back(toVector(surface.binormals[i]));
    }
    EXPECT_TRUE(mesh->fillPackedFromUnpacked(values));
    mesh->setNewIndexArray({0, 1, 2, 3, 2, 1});
    EXPECT_TRUE(mesh->load()) << getGraphicsLogger().getText();

    const auto camera = Camera::create(&getGraphics());
    camera->setPosition(toVector(transform(surface.stage, EYE, 1.0)));
    camera->lookAt(toVector(transform(surface.stage, {0.0, 0.0, 1.0}, 0.0)),
                   toVector(transform(surface.stage, {0.0, 1.0, 0.0}, 0.0)));
    camera->setOrthographic(2.0f, 2.0f, 0.1f, 10.0f);
    const auto node = Node::create(&getGraphics());
    node->setLocalMatrix(surface.stage * surface.world);
    const auto queue = RenderQueue::create(&getGraphics());
    queue->addEntity(mesh.get(), &shader, node.get());

    const auto target = makeTarget(SIZE, SIZE);
    const auto compositor = Compositor::create(&getGraphics());
    CompositorOperationsBlock* block = compositor->appendNode()->appendOperationsBlock();
    block->appendClearPass()->setColor(0, UNDRAWN[0], UNDRAWN[1], UNDRAWN[2], UNDRAWN[3]);
    ScenePass* pass = block->appendScenePass();
    pass->setRenderQueue(queue.get());
    pass->setCamera(camera.get());
    pass->getRasterState().setCullMode(CULL_MODE::NONE);
    const auto context = RenderContext::create(&getGraphics());
    context->setDescriptor({.texture = target.get()});
    context->setCompositor(compositor.get());
    EXPECT_TRUE(getGraphics().frame(context.get())) << getGraphicsLogger().getText();
    return readFloats(*target);
}
