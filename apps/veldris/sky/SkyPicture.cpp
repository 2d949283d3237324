#include <veldris/sky/SkyPicture.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <iterator>
#include <numbers>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Viewport.h>
#include <ovVeldris/effects/atmosphere/SunLight.h>
#include <ovVeldris/environment/light/EnvironmentDrawing.h>
#include <veldris/Session.h>
#include <veldris/pictures/PictureShader.h>
#include <veldris/pictures/PictureTextures.h>
#include <veldris/sky/AirSettings.h>
#include <veldris/sky/SkyGround.h>

namespace veldris {

using ovGraphics::Texture;
using ovMaths::Vector;
using ovMemory::String;
using ovMemory::UniquePtr;

namespace {

constexpr auto PICTURE_FORMAT = ovGraphics::FORMAT::R32G32B32A32_FLOAT;
constexpr unsigned int MAX_FACE_SIDE = 4096; // pictures have 2 GiB at most, and so have six faces
constexpr float RIGHT_ANGLE = 90.0f;         // degrees

/// What a face of a cube sees, in Direct3D's order and layout.
struct Face {
    Vector direction;
    Vector up;
};
constexpr Face FACES[ovVeldris::ENVIRONMENT_FACES] = {
    {{1.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f}},  {{-1.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f}},
    {{0.0f, 1.0f, 0.0f}, {0.0f, 0.0f, -1.0f}}, {{0.0f, -1.0f, 0.0f}, {0.0f, 0.0f, 1.0f}},
    {{0.0f, 0.0f, 1.0f}, {0.0f, 1.0f, 0.0f}},  {{0.0f, 0.0f, -1.0f}, {0.0f, 1.0f, 0.0f}},
};

unsigned int scaleOf(unsigned int samples) {
    return static_cast<unsigned int>(std::lround(std::sqrt(samples)));
}

/// A height that is not the very top of the air: from there floats cannot tell whether a ray enters it.
float besideTop(float height) {
    constexpr float TOP = 100e3f; // metres
    return std::abs(height - TOP) < 1.0f ? TOP + 1.0f : height;
}

void aim(ovGraphics::Camera& camera, const Vector& direction, const Vector& up, float fieldOfView,
         float aspect) {
    camera.lookAt(direction, up);
    camera.setPerspective(fieldOfView * std::numbers::pi_v<float> / 180.0f, aspect, camera.getNear(),
                          camera.getFar());
}

} // namespace

UniquePtr<SkyPicture> SkyPicture::create(Session& session,
                                         ovMemory::BufferView<const ovVeldris::SettingAssignment> air,
                                         float eyeHeight, String& error) {
    UniquePtr<SkyPicture> picture(new SkyPicture(session, eyeHeight));
    if (!picture->_load(air)) {
        error = session.getLogger().take();
        return nullptr;
    }
    return picture->setSun(picture->_air->getSunPosition(), error) ? std::move(picture) : nullptr;
}

SkyPicture::SkyPicture(Session& session, float eyeHeight)
    : _session(session)
    , _eyeHeight(besideTop(eyeHeight))
    , _air(ovVeldris::AtmosphereEffect::create(&session.getSystem()))
    , _skylight(ovVeldris::AtmosphereEffect::create(&session.getSystem()))
    , _groundEffect(ovVeldris::ImageEnvironmentEffect::create(&session.getSystem()))
    , _camera(ovGraphics::Camera::create(&session.getGraphics())) {}

SkyPicture::~SkyPicture() = default;

bool SkyPicture::_load(ovMemory::BufferView<const ovVeldris::SettingAssignment> air) {
    const TimedPart part(_session.getProgress(), "programs");
    for (ovVeldris::AtmosphereEffect* effect : {_air.get(), _skylight.get()}) {
        effect->setName("sky");
        effect->setSunIlluminanceFactor(SKY_ILLUMINANCE);
        for (const ovVeldris::SettingAssignment& assignment : air)
            effect->getSettings().find(assignment.name)->set(*effect, assignment.value);
    }
    _skylight->setDisplaySun(false);
    _groundEffect->setName("ground");
    _groundEffect->setSourceProjection(ovVeldris::IMAGE_ENVIRONMENT_PROJECTION::EQUIRECTANGULAR);
    constexpr bool WITH_ALPHA = true;
    _average = PictureShader::averageSamples(_session.getGraphics(), !WITH_ALPHA);
    return _average && _setGround({}, _eyeHeight) && _groundEffect->load() && _loadAir(*_air) &&
           _loadAir(*_skylight);
}

bool SkyPicture::_loadAir(ovVeldris::AtmosphereEffect& effect) {
    // The ground is what the air dims; an effect that is loaded with a source keeps the place for it.
    effect.setSourceColorTexture(_ground.get());
    return effect.load();
}

bool SkyPicture::_setGround(const Vector& radiance, float eyeHeight) {
    _ground = uploadPicture(_session.getGraphics(), drawGroundPanorama(radiance, eyeHeight));
    _groundEffect->setSourceTexture(_ground.get());
    return _ground != nullptr;
}

bool SkyPicture::setSun(const Vector& towardsSun, String& error) {
    constexpr unsigned int SIDE = 32; // texels; a sky varies slowly
    constexpr unsigned int SAMPLES = 4;
    constexpr float AT_GROUND = 0.0f;
    _air->setSunPosition(towardsSun);
    _skylight->setSunPosition(towardsSun);
    const float sine = towardsSun.getNormalizedVec3().y;
    _camera->setPosition({0.0f, AT_GROUND, 0.0f});
    // Black: beside the horizon the ground's light of before would count as the sky's.
    _groundEffect->setSourceTexture(nullptr);
    // The disc's own light is that of the sun, which counts below.
    const ovImages::Image faces = _drawFaces(*_skylight, SIDE, SAMPLES);
    if (faces.isEmpty()) {
        error = _session.getLogger().take();
        return false;
    }
    const double elevation =
        std::asin(std::clamp(static_cast<double>(sine), -1.0, 1.0)) * 180.0 / std::numbers::pi;
    const Vector light =
        levelIrradiance(faces.view()) + sunIrradiance(*_air, AT_GROUND, elevation) * std::max(sine, 0.0f);
    // Lambert: a dull surface gives back its albedo over pi in each direction.
    if (_setGround(light * _air->getPlanetAlbedo() / std::numbers::pi_v<float>, _eyeHeight))
        return true;
    error = _session.getLogger().take();
    return false;
}

UniquePtr<Texture> SkyPicture::drawView(const SkyView& view, String& error) {
    const unsigned int limit = _session.getGraphics().getDeviceInfo()->maxTextureSize;
    const unsigned int scale = scaleOf(view.samples);
    if (std::max(view.width, view.height) > limit / scale) {
        error = fmt::format(
            "the picture of {} x {} pixels with {} samples takes {} x {}, and the device draws {} "
            "at most; ask for a smaller size or fewer samples.",
            view.width, view.height, view.samples, std::uint64_t{view.width} * scale,
            std::uint64_t{view.height} * scale, limit);
        return nullptr;
    }
    _camera->setPosition({0.0f, _eyeHeight, 0.0f});
    aim(*_camera, view.direction, {}, view.fieldOfView,
        static_cast<float>(view.width) / static_cast<float>(view.height));
    auto picture = _draw(*_air, view);
    if (!picture)
        error = _session.getLogger().take();
    return picture;
}

ovImages::Image SkyPicture::drawPanorama(unsigned int height, unsigned int samples, SUN sun, String& error) {
    const unsigned int limit =
        std::min(_session.getGraphics().getDeviceInfo()->maxTextureSize, MAX_FACE_SIDE);
    // Half the height a side has texels as large as the panorama's.
    const std::uint64_t side = std::max<std::uint64_t>(std::uint64_t{height} * scaleOf(samples) / 2, 1);
    if (side > limit) {
        error = fmt::format(
            "the panorama of {} x {} pixels with {} samples is drawn from faces of {} x {}, and {} "
            "is the most; ask for a smaller size or fewer samples.",
            2 * std::uint64_t{height}, height, samples, side, side, limit);
        return {};
    }
    _camera->setPosition({0.0f, _eyeHeight, 0.0f});
    const ovImages::Image faces =
        _drawFaces(sun == SUN::AS_SET ? *_air : *_skylight, static_cast<unsigned int>(side), 1);
    if (faces.isEmpty()) {
        error = _session.getLogger().take();
        return {};
    }
    const TimedPart part(_session.getProgress(), "conversion");
    constexpr bool IS_CUBE = true;
    ovImages::Image panorama =
        ovVeldris::drawEnvironmentPanorama(ovVeldris::EnvironmentTexels(faces.view(), IS_CUBE), height);
    if (panorama.isEmpty())
        error = "the panorama needs more memory than there is; choose a smaller size.";
    return panorama;
}

/// Six faces below each other, as EnvironmentTexels has them; empty after one log line.
ovImages::Image SkyPicture::_drawFaces(ovVeldris::AtmosphereEffect& air, unsigned int side,
                                       unsigned int samples) {
    ovMemory::Buffer<unsigned char> bytes;
    for (const Face& face : FACES) {
        aim(*_camera, face.direction, face.up, RIGHT_ANGLE, 1.0f);
        const SkyView view{.direction = face.direction,
                           .fieldOfView = RIGHT_ANGLE,
                           .width = side,
                           .height = side,
                           .samples = samples};
        auto picture = _draw(air, view);
        const auto texels = picture ? picture->readBack() : std::nullopt;
        if (!texels)
            return {};
        bytes.insert(bytes.end(), texels->begin(), texels->end());
    }
    return {side,
            6 * side,
            4,
            ovImages::COMPONENT_TYPE::FLOAT,
            ovImages::COLOR_ENCODING::LINEAR,
            std::move(bytes)};
}

/// Draws what the camera sees; null after one log line.
UniquePtr<Texture> SkyPicture::_draw(ovVeldris::AtmosphereEffect& air, const SkyView& view) {
    ovGraphics::System& graphics = _session.getGraphics();
    const auto ground = makeTarget(graphics, "ground", PICTURE_FORMAT, view.width, view.height);
    auto picture = makeTarget(graphics, "picture", PICTURE_FORMAT, view.width, view.height);
    if (!ground || !picture)
        return nullptr;
    const PicturePass pass = {*_groundEffect->getShader(), "ground", {}, _camera.get()};
    if (!drawPasses(graphics, {&pass, 1}, *ground))
        return nullptr;
    _addTimings();
    air.setSourceColorTexture(ground.get());
    const bool drawn = _drawSamples(air, view, *picture);
    air.setSourceColorTexture(nullptr); // it goes now
    return drawn ? std::move(picture) : nullptr;
}

bool SkyPicture::_drawSamples(const ovVeldris::AtmosphereEffect& air, const SkyView& view, Texture& picture) {
    ovGraphics::System& graphics = _session.getGraphics();
    const unsigned int scale = scaleOf(view.samples);
    const unsigned int rows =
        std::clamp(view.stripSamples / (view.width * view.samples), 1u, view.height); // pixels
    const auto samples = makeTarget(graphics, "samples", PICTURE_FORMAT, view.width * scale, rows * scale);
    if (!samples)
        return false;
    const auto sampleViewport = ovGraphics::Viewport::create(&graphics);
    const auto viewport = ovGraphics::Viewport::create(&graphics);
    sampleViewport->setSize(view.width * scale, view.height * scale);
    _average->setSource(*samples);
    const PicturePass sky = {*air.getShader(), "sky", {}, _camera.get()};
    const PicturePass average = {*_average->getShader(), "average of samples"};
    for (unsigned int top = 0; top < view.height; top += rows) {
        const unsigned int count = std::min(rows, view.height - top);
        sampleViewport->setOrigin(0, -static_cast<int>(top * scale));
        viewport->setOrigin(0, static_cast<int>(top));
        viewport->setSize(view.width, count);
        _average->setConstants({static_cast<float>(scale), static_cast<float>(top),
                                static_cast<float>(view.width * scale), static_cast<float>(count * scale)});
        if (!drawPasses(graphics, {&sky, 1}, *samples, sampleViewport.get()))
            return false;
        _addTimings();
        if (!drawPasses(graphics, {&average, 1}, picture, viewport.get()))
            return false;
        _addTimings();
    }
    return true;
}

void SkyPicture::_addTimings() {
    for (const ovGraphics::PassTiming& timing : _session.getGraphics().getPassTimings()) {
        const auto known = std::ranges::find(_timings, timing.name, &ovGraphics::PassTiming::name);
        if (known == _timings.end())
            _timings.push_back(timing);
        else
            known->milliseconds += timing.milliseconds;
    }
}

ovMemory::Buffer<ovGraphics::PassTiming> SkyPicture::takeTimings() {
    return std::exchange(_timings, {});
}

} // namespace veldris
