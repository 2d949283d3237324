#include <veldris/sky/SkyPicture.h>

#include "ovVeldris/effects/atmosphere/AtmosphereFixture.h"
#include "veldris/sky/SkyReference.h"

#include <cstring>
#include <ovGraphics/device/Device.h>
#include <veldris/SessionTesting.h>
#include <veldris/sky/AirSettings.h>

namespace {

using namespace veldris;
using ovMemory::String;
using skyReference::Three;

class SkyPictureTest : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        DrawingOptions options;
        options.language = GetParam();
        ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session, options));
    }

    void makeSky(const String& settings, float eyeHeight, const SkyPlace& sun) {
        ovMemory::Buffer<ovVeldris::SettingAssignment> air;
        String error;
        ASSERT_TRUE(planAir(settings, air, error)) << error;
        _sky = SkyPicture::create(_session, air, eyeHeight, error);
        ASSERT_TRUE(_sky && _sky->setSun(directionOf(sun), error)) << error;
    }

    FloatPicture draw(const SkyPlace& middle, unsigned int width, unsigned int height,
                      unsigned int samples = 1) {
        String error;
        const auto texture = _sky->drawView({.direction = directionOf(middle),
                                             .fieldOfView = 70.0f,
                                             .width = width,
                                             .height = height,
                                             .samples = samples},
                                            error);
        EXPECT_TRUE(texture) << error;
        return texture ? toFloats(*texture->convertToImage()) : FloatPicture();
    }

    static FloatPicture toFloats(const ovImages::Image& image) {
        FloatPicture picture(image.getWidth(), image.getHeight());
        std::memcpy(picture.pixels.data(), image.getBytes().data(), image.getBytes().size());
        return picture;
    }

    Session _session;
    ovMemory::UniquePtr<SkyPicture> _sky;
};

INSTANTIATE_TEST_SUITE_P(Languages, SkyPictureTest, testing::Values("glsl", "hlsl"),
                         [](const auto& test) { return String(test.param); });

// Half a percent: the tables are read with the few bits of a device's weights, and the ground's light is
// summed over 6144 directions.
TEST_P(SkyPictureTest, viewsAreTheSlowMarch) {
    struct Case {
        const char* settings;
        float eyeHeight;
        SkyPlace sun, middle;
    };
    const Case cases[] = {
        {"planet-albedo=0.3,0.2,0.4", 200.0f, {35.0, 20.0}, {10.0, 40.0}},
        {"mie-g=0.6,mie-scattering=9,8,7,sun-illuminance-factor=3", 3000.0f, {2.0, 250.0}, {0.0, 230.0}},
        {"sun-angular-radius=4,display-sun=true", 2.0f, {20.0, 90.0}, {25.0, 95.0}},
        {"display-sun=false", 20000.0f, {-3.0, 0.0}, {-10.0, 170.0}},
    };
    for (const Case& current : cases) {
        makeSky(String(skyReference::SMALL_TABLES) + "," + current.settings, current.eyeHeight, current.sun);
        const FloatPicture picture = draw(current.middle, 16, 12);
        auto info = infoOf(_sky->getAir());
        info.multiScatteringLutWidth = info.multiScatteringLutHeight = 16;
        info.displaySun = _sky->getAir().getDisplaySun();
        const skyReference::Sky reference(info, current.sun, current.eyeHeight);
        SCOPED_TRACE(current.settings);
        const unsigned int grounds = skyReference::expectSeen(reference, current.middle, 70.0, 16, 12,
                                                              [&](unsigned int x, unsigned int y) {
                                                                  const auto& pixel = picture.at(x, y);
                                                                  EXPECT_EQ(pixel[3], 1.0f);
                                                                  return Three{pixel[0], pixel[1], pixel[2]};
                                                              });
        EXPECT_GE(grounds, 16u) << "there is ground to be seen";
    }
}

/// A panorama of the library read between its texels, in double precision.
Three lookUp(const ovImages::Image& panorama, const Three& direction) {
    const double width = panorama.getWidth();
    const double height = panorama.getHeight();
    const double u = 0.5 + std::atan2(direction[2], direction[0]) / (2.0 * std::numbers::pi);
    const double v = 0.5 - std::asin(direction[1]) / std::numbers::pi;
    const double column = u * width - 0.5 + width;
    const double row = std::clamp(v * height - 0.5, 0.0, height - 1.0);
    Three result = {};
    for (unsigned int corner = 0; corner < 4; ++corner) {
        const double x = std::floor(column) + corner % 2;
        const double y = std::floor(row) + corner / 2;
        const double weight = (1.0 - std::abs(column - x)) * (1.0 - std::abs(row - y));
        if (weight <= 0.0)
            continue;
        for (unsigned int i = 0; i < 3; ++i)
            result[i] += weight * panorama.getComponent(unsigned(x) % panorama.getWidth(), unsigned(y), i);
    }
    return result;
}

// A percent: texels of 1.4 degrees are means, and the sky between them is taken to be straight. Near the
// horizon and the sun it is not.
TEST_P(SkyPictureTest, panoramasShowWhatViewsShow) {
    makeSky(String(skyReference::SMALL_TABLES) + ",display-sun=false", 200.0f, {25.0, 70.0});
    String error;
    const ovImages::Image panorama = _sky->drawPanorama(128, 4, SkyPicture::SUN::AS_SET, error);
    ASSERT_EQ(panorama.getWidth(), 256u) << error;
    ASSERT_EQ(panorama.getHeight(), 128u);
    const Three toSun = skyReference::Sky::directionTo({25.0, 70.0});
    // Over the seam at -x, both poles, and all around.
    for (const SkyPlace& middle : {SkyPlace{30.0, 180.0}, SkyPlace{85.0, 10.0}, SkyPlace{-85.0, 300.0},
                                   SkyPlace{20.0, 0.0}, SkyPlace{30.0, 90.0}, SkyPlace{-20.0, 270.0}}) {
        const FloatPicture view = draw(middle, 12, 9);
        unsigned int compared = 0;
        for (unsigned int y = 0; y < 9; ++y)
            for (unsigned int x = 0; x < 12; ++x) {
                const Three direction = skyReference::directionOfPixel(middle, 70.0, x, y, 12, 9);
                if (std::abs(direction[1]) < 0.12 || skyReference::dot(direction, toSun) > 0.9)
                    continue;
                ++compared;
                const Three seen = lookUp(panorama, direction);
                for (unsigned int i = 0; i < 3; ++i)
                    EXPECT_NEAR(view.at(x, y)[i], seen[i], 1e-2 * seen[i])
                        << middle.elevation << " " << middle.azimuth << " " << x << " " << y << " " << i;
            }
        EXPECT_GT(compared, 50u);
    }
}

TEST_P(SkyPictureTest, thePanoramaOfLightHasNoDisc) {
    makeSky(String(skyReference::SMALL_TABLES) + ",sun-angular-radius=5", 200.0f, {25.0, 70.0});
    String error;
    const ovImages::Image light = _sky->drawPanorama(32, 4, SkyPicture::SUN::WITHOUT_DISC, error);
    const ovImages::Image seen = _sky->drawPanorama(32, 4, SkyPicture::SUN::AS_SET, error);
    unsigned int differing = 0;
    for (unsigned int y = 0; y < 32; ++y)
        for (unsigned int x = 0; x < 64; ++x) {
            EXPECT_LT(light.getComponent(x, y, 1), 3.0f);
            differing += seen.getComponent(x, y, 1) > light.getComponent(x, y, 1) + 5.0f ? 1 : 0;
        }
    // The disc's 0.0239 steradians, of texels that are 0.00964 cos(latitude) large.
    EXPECT_NEAR(differing, 0.0239 / (0.00964 * 0.906), 2.0);
}

TEST_P(SkyPictureTest, samplesAreAveraged) {
    makeSky("display-sun=false", 2.0f, {40.0, 0.0});
    const FloatPicture fine = draw({0.0, 100.0}, 18, 12);
    const FloatPicture averaged = draw({0.0, 100.0}, 6, 4, 9);
    // The ground is read between its pixels, which matters where it ends.
    for (const unsigned int y : {0u, 3u})
        for (unsigned int x = 0; x < 6; ++x)
            for (unsigned int i = 0; i < 3; ++i) {
                double mean = 0.0;
                for (unsigned int sample = 0; sample < 9; ++sample)
                    mean += fine.at(3 * x + sample % 3, 3 * y + sample / 3)[i] / 9.0;
                EXPECT_NEAR(averaged.at(x, y)[i], mean, 1e-4 * mean) << x << " " << y;
            }
}

TEST_P(SkyPictureTest, stripsMakeTheSamePictureAsAWholeDoes) {
    makeSky(skyReference::SMALL_TABLES, 500.0f, {20.0, 0.0});
    SkyView view = {.direction = directionOf({5.0, 20.0}), .width = 13, .height = 11, .samples = 4};
    String error;
    const auto whole = _sky->drawView(view, error);
    view.stripSamples = 13 * 4 * 3 + 5; // three rows, and two at the end
    const auto inStrips = _sky->drawView(view, error);
    ASSERT_TRUE(whole && inStrips) << error;
    const FloatPicture expected = toFloats(*whole->convertToImage());
    const FloatPicture drawn = toFloats(*inStrips->convertToImage());
    for (std::size_t i = 0; i < drawn.pixels.size(); ++i)
        for (unsigned int channel = 0; channel < 3;
             ++channel) // the last bits of a place hang on its viewport
            EXPECT_NEAR(drawn.pixels[i][channel], expected.pixels[i][channel],
                        1e-4 * expected.pixels[i][channel])
                << i;
}

TEST_P(SkyPictureTest, aSecondSunIsAsDrawnAlone) {
    makeSky(skyReference::SMALL_TABLES, 200.0f, {60.0, 0.0});
    String error;
    ASSERT_TRUE(_sky->setSun(directionOf({5.0, 90.0}), error)) << error;
    const FloatPicture moved = draw({0.0, 80.0}, 12, 9);
    makeSky(skyReference::SMALL_TABLES, 200.0f, {5.0, 90.0});
    EXPECT_EQ(moved.pixels, draw({0.0, 80.0}, 12, 9).pixels);
}

TEST_P(SkyPictureTest, everythingIsANumberAtTheEnds) {
    String error;
    for (const float height : {-1e9f, 0.0f, 99998.0f, 99999.9f, 100000.0f, 100000.1f, 1e9f}) {
        makeSky(skyReference::SMALL_TABLES, height, {90.0, 0.0});
        for (const double elevation : {90.0, 0.0, -90.0}) {
            ASSERT_TRUE(_sky->setSun(directionOf({elevation, 0.0}), error)) << error;
            for (const SkyPlace& middle : {SkyPlace{90.0, 0.0}, SkyPlace{-90.0, 0.0}, SkyPlace{0.0, 0.0}})
                for (const FloatPixel& pixel : draw(middle, 5, 4).pixels)
                    for (const float value : pixel)
                        EXPECT_TRUE(std::isfinite(value) && value >= 0.0f)
                            << height << " " << elevation << " " << value;
        }
    }
}

TEST_P(SkyPictureTest, whatIsTooLargeIsTold) {
    makeSky(skyReference::SMALL_TABLES, 200.0f, {60.0, 0.0});
    const unsigned int limit = _session.getGraphics().getDeviceInfo()->maxTextureSize;
    const String most = std::to_string(limit);
    String error;
    EXPECT_FALSE(_sky->drawView({.width = 100, .height = limit / 2 + 1, .samples = 4}, error));
    EXPECT_EQ(error, "the picture of 100 x " + std::to_string(limit / 2 + 1) +
                         " pixels with 4 samples takes 200 x " + std::to_string(limit + 2) +
                         ", and the device draws " + most +
                         " at most; ask for a smaller size or fewer samples.");
    EXPECT_FALSE(_sky->drawView({.width = 4000000000u, .height = 4, .samples = 4}, error));
    EXPECT_TRUE(_sky->drawPanorama(5000, 4, SkyPicture::SUN::AS_SET, error).isEmpty());
    EXPECT_EQ(
        error,
        "the panorama of 10000 x 5000 pixels with 4 samples is drawn from faces of 5000 x 5000, and 4096 "
        "is the most; ask for a smaller size or fewer samples.");
    EXPECT_TRUE(_sky->drawPanorama(4000000000u, 16, SkyPicture::SUN::AS_SET, error).isEmpty());
}

} // namespace
