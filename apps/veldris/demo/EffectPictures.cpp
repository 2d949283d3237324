#include <veldris/demo/EffectPictures.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <iterator>
#include <ovGraphics/System.h>
#include <ovImages/Conversion.h>
#include <ovVeldris/effects/FxaaEffect.h>
#include <veldris/Session.h>
#include <veldris/demo/PictureSheet.h>

namespace veldris {

using ovImages::Image;
using ovImages::ImageView;
using ovMemory::String;

namespace {

constexpr auto DISPLAY = ovImages::COLOR_ENCODING::SRGB;

Image makePicture(unsigned int width, unsigned int height) {
    Image picture(width, height, 4, ovImages::COMPONENT_TYPE::FLOAT, DISPLAY);
    std::ranges::fill(std::span(reinterpret_cast<float*>(picture.getBytes().data()), 4ul * width * height),
                      1.0f);
    return picture;
}

/// Hard edges as a scene has them: a wheel of thin spokes above, and stripes below whose steps are long.
Image drawEdgeChart(unsigned int width, unsigned int height) {
    Image chart = makePicture(width, height);
    for (unsigned int y = 0; y < height; ++y) {
        for (unsigned int x = 0; x < width; ++x) {
            const double right = x + 0.5 - 0.5 * width;
            const double down = y + 0.5 - 0.32 * height;
            const double radius = std::hypot(right, down) / height;
            const double turn = std::atan2(down, right) / 0.3491; // spokes every 20 degrees
            const bool isSpoke = radius < 0.25 && std::abs(turn - std::round(turn)) * radius * height < 2.0;
            const bool isRim = std::abs(radius - 0.28) < 0.025;
            const bool isStripe =
                down > 0.32 * height && std::fmod(0.05 * x + y, 7.0) < 3.0; // steps of twenty
            const float shade = isSpoke || isRim || isStripe ? 0.08f : 0.92f;
            for (unsigned int channel = 0; channel < 3; ++channel)
                chart.setComponent(x, y, channel, isStripe && channel == 0 ? 0.75f : shade);
        }
    }
    return chart;
}

bool runEffects(Session& session, const ImageView& picture, const String& list, PICTURE_CONTENT content,
                ChainResult& result, String& error) {
    ovMemory::Buffer<PlannedEffect> effects;
    ChainPlan plan;
    ChainOptions options;
    options.input = content;
    options.output = PICTURE_CONTENT::SRGB_ENCODED;
    if (!planEffects(list, effects, error) || !planChain(std::move(effects), options, plan, error))
        return false;
    result = runChain(session, picture, plan);
    error = result.error;
    return !!result;
}

/// Three rows of six: a chart without FXAA, and with each of the presets.
bool drawFxaaPresets(Session& session, const ImageView& scene, EffectPicture& picture, String& error) {
    constexpr unsigned int SCALE = 3;
    PictureSheet sheet(scene.width, scene.height, 6, 3, DISPLAY);
    const Image chart = drawEdgeChart(std::max(sheet.getCellWidth() / SCALE, 1u),
                                      std::max(sheet.getCellHeight() / SCALE, 1u));
    sheet.draw(chart, 0, SCALE);
    unsigned int cell = 1;
    for (const auto& preset : ovVeldris::FXAA_PRESET_ENTRIES) {
        ChainResult smoothed;
        if (!runEffects(session, chart.view(), fmt::format("fxaa:preset={}", preset.text),
                        PICTURE_CONTENT::SRGB_ENCODED, smoothed, error))
            return false;
        std::ranges::move(smoothed.timings, std::back_inserter(picture.timings));
        sheet.draw(*smoothed.image, cell++, SCALE);
    }
    picture.image = sheet.take();
    return true;
}

/// A chart with each of several lists of effects, in the cells of a sheet.
bool drawEach(Session& session, const Image& chart, ovMemory::BufferView<const String> lists,
              PictureSheet& sheet, EffectPicture& picture, String& error) {
    for (unsigned int cell = 0; cell < lists.size(); ++cell) {
        ChainResult drawn;
        if (!runEffects(session, chart.view(), lists[cell], PICTURE_CONTENT::SRGB_ENCODED, drawn, error))
            return false;
        std::ranges::move(drawn.timings, std::back_inserter(picture.timings));
        sheet.draw(*drawn.image, cell);
    }
    picture.image = sheet.take();
    return true;
}

/// Two rows of three: a chart with a blur of each radius.
bool drawBlurRadii(Session& session, const ImageView& scene, EffectPicture& picture, String& error) {
    const String blurs[] = {"blur:radius=0", "blur:radius=2",  "blur:radius=4",
                            "blur:radius=8", "blur:radius=16", "blur:radius=32"};
    PictureSheet sheet(scene.width, scene.height, 3, 2, DISPLAY);
    const Image chart = drawEdgeChart(sheet.getCellWidth(), sheet.getCellHeight());
    return drawEach(session, chart, blurs, sheet, picture, error);
}

/// Three planes, each of one alpha and one primary colour in light and dark tiles: a blue ground, a green
/// ring on it, and red bars in the ring.
Image drawPlanesChart(unsigned int width, unsigned int height) {
    constexpr float ALPHAS[] = {0.2f, 0.5f, 1.0f}; // red, green, blue
    Image chart = makePicture(width, height);
    for (unsigned int y = 0; y < height; ++y) {
        for (unsigned int x = 0; x < width; ++x) {
            const double right = (x + 0.5 - 0.5 * width) / width;
            const double down = (y + 0.5 - 0.5 * height) / width;
            const double radius = std::hypot(right, down);
            const bool isBar = radius < 0.22 && std::fmod(right + down + 1.0, 0.11) < 0.055;
            const bool isRing = radius > 0.26 && radius < 0.38;
            const unsigned int plane = isBar ? 0 : isRing ? 1 : 2;
            const bool isLight = (x / 6 + y / 6) % 2 == 0;
            for (unsigned int channel = 0; channel < 3; ++channel)
                chart.setComponent(x, y, channel, channel != plane ? 0.0f : isLight ? 1.0f : 0.4f);
            chart.setComponent(x, y, 3, ALPHAS[plane]);
        }
    }
    return chart;
}

/// A chart as it is, blurred as a whole, and blurred plane by plane.
bool drawBlurPlanes(Session& session, const ImageView& scene, EffectPicture& picture, String& error) {
    const String blurs[] = {"blur:radius=0", "blur:radius=12", "blur:radius=12,alpha-planes=true"};
    PictureSheet sheet(scene.width, scene.height, 3, 1, DISPLAY);
    const Image chart = drawPlanesChart(sheet.getCellWidth(), sheet.getCellHeight());
    return drawEach(session, chart, blurs, sheet, picture, error);
}

/// The middle of a picture.
Image cropMiddle(const Image& picture, unsigned int width, unsigned int height) {
    Image crop = makePicture(width, height);
    const unsigned int left = (picture.getWidth() - width) / 2;
    const unsigned int top = (picture.getHeight() - height) / 2;
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < width; ++x)
            for (unsigned int channel = 0; channel < 4; ++channel)
                crop.setComponent(x, y, channel, picture.getComponent(left + x, top + y, channel));
    return crop;
}

/// A strip of six frames of a film for each mode of the grain, below each other.
bool drawGrainModes(Session& session, const ImageView& scene, EffectPicture& picture, String& error) {
    constexpr unsigned int FRAMES = 6;
    constexpr double FRAME_SECONDS = 1.0 / 24.0;
    constexpr const char* MODES[] = {
        "film-grain:strength=0.35",
        "film-grain:strength=0.35,rgb-noise=true",
        "film-grain:strength=0.35,blend-grain-in-target=true",
        "film-grain:strength=0.35,rgb-noise=true,blend-grain-in-target=true",
    };
    ChainResult shown;
    if (!runEffects(session, scene, String(DEFAULT_TONE_MAPPING), PICTURE_CONTENT::SCENE_LINEAR, shown,
                    error))
        return false;
    PictureSheet sheet(scene.width, scene.height, FRAMES, std::size(MODES), DISPLAY);
    const Image still =
        cropMiddle(ovImages::convertImage(shown.image->view(), shown.image->getComponentType(), 4, DISPLAY),
                   sheet.getCellWidth(), sheet.getCellHeight());
    for (unsigned int frame = 0; frame < FRAMES; ++frame) {
        session.getGraphics().setFixedTime(frame * FRAME_SECONDS, FRAME_SECONDS);
        for (unsigned int mode = 0; mode < std::size(MODES); ++mode) {
            ChainResult grainy;
            if (!runEffects(session, still.view(), MODES[mode], PICTURE_CONTENT::SRGB_ENCODED, grainy, error))
                return false;
            std::ranges::move(grainy.timings, std::back_inserter(picture.timings));
            sheet.draw(*grainy.image, mode * FRAMES + frame);
        }
    }
    session.getGraphics().setFixedTime(0.0, 0.0);
    picture.image = sheet.take();
    return true;
}

/// How a picture is drawn, and what it is called.
struct Comparison {
    ovMemory::StringView name;
    ovMemory::StringView caption;
    bool (*draw)(Session& session, const ImageView& scene, EffectPicture& picture, String& error);
};

constexpr Comparison COMPARISONS[] = {
    {"fxaa-presets",
     "edges three times enlarged: as they are, then row by row FXAA with the presets 10 to 15, 20 to 29 and "
     "39",
     drawFxaaPresets},
    {"blur-radii", "a chart blurred with the radii 0, 2, 4, 8, 16 and 32", drawBlurRadii},
    {"blur-alpha-planes",
     "planes of one colour and one alpha each: as they are, blurred as a whole, and blurred with alpha "
     "planes, "
     "where no colour bleeds into another's plane",
     drawBlurPlanes},
    {"film-grain-modes",
     "six frames of a film, row by row: grey grain, grain of each colour, and both blended with the target",
     drawGrainModes},
};

} // namespace

ovMemory::Buffer<ovMemory::StringView> effectPictureNames() {
    ovMemory::Buffer<ovMemory::StringView> names;
    for (const Comparison& comparison : COMPARISONS)
        names.push_back(comparison.name);
    return names;
}

bool drawEffectPictures(Session& session, const ImageView& scene, ovMemory::StringView only,
                        const TakeEffectPicture& take, String& error) {
    for (const Comparison& comparison : COMPARISONS) {
        if (!only.empty() && only != comparison.name)
            continue;
        EffectPicture picture{comparison.name, comparison.caption, {}};
        if (!comparison.draw(session, scene, picture, error) || !take(picture, error))
            return false;
    }
    return true;
}

} // namespace veldris
