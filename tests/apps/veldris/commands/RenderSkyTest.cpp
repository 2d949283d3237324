// veldris render under the atmosphere.
#include "veldris/commands/CommandTesting.h"
#include "veldris/commands/ModelFile.h"
#include "veldris/sky/SkyReference.h"

#include <array>
#include <ovImages/CompositeEncoder.h>

namespace {

using ovImages::Image;
using ovMemory::Buffer;
using ovMemory::String;
using skyReference::Three;
using veldris::SkyPlace;

class RenderSkyTest : public testing::Test {
protected:
    /// Draws a square whose front looks along +z of its file, and whose lower right is white.
    Image render(const String& environment, const Buffer<String>& more = {}) {
        const String output = _folder.getPath("o.exr");
        Buffer<String> arguments = {
            "render",        writeQuad(_folder), "-o",        output,    "--size",
            "24x16",         "--device",         "software",  "--cache", _folder.getPath("cache"),
            "--environment", environment,        "--samples", "1",       "--no-ground"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Outcome outcome = runVeldris(arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        ovImages::DecodeResult decoded = ovImages::CompositeEncoder().decodeFile(output);
        EXPECT_TRUE(decoded) << decoded.error;
        return decoded ? std::move(*decoded.image) : Image();
    }
    /// The white quarter of the square.
    static std::array<float, 3> whiteOf(const Image& image) {
        return {image.getComponent(15, 11, 0), image.getComponent(15, 11, 1), image.getComponent(15, 11, 2)};
    }

    TemporaryFolder _folder;
};

ovVeldris::AtmosphereEffectInfo smallInfo() {
    ovVeldris::AtmosphereEffectInfo info;
    info.sunIlluminanceFactor = 10.0f;
    info.multiScatteringLutWidth = info.multiScatteringLutHeight = 16;
    return info;
}

/// With tables that are drawn fast. @param sun elevation and azimuth in degrees
String skyWithSunAt(const String& sun) {
    return "atmosphere:sun=" + sun + "," + skyReference::SMALL_TABLES;
}

TEST_F(RenderSkyTest, behindTheModelStandsTheSkyOfTheSlowMarch) {
    // From 500 m above the origin, towards -z of the file, which is +z of the library; the square is not in
    // view.
    const Image picture = render(skyWithSunAt("9,265"), {"--camera", "0,500,0,0,500,-100"});
    const skyReference::Sky reference(smallInfo(), {9.0, 265.0}, 500.0);
    ASSERT_EQ(picture.getWidth(), 24u);
    skyReference::expectSeen(reference, {0.0, 270.0}, 0.6 * 180.0 / std::numbers::pi, picture);
}

TEST_F(RenderSkyTest, theSunLightsUnlessTheUserSaysOtherwise) {
    const Buffer<String> front = {"--camera", "0,0"};
    const String sky = skyWithSunAt("20,90");
    const auto with = [&](const Buffer<String>& more) {
        Buffer<String> options = front;
        options.insert(options.end(), more.begin(), more.end());
        return options;
    };
    const Image seen = render(sky, front);
    const auto lit = whiteOf(seen);
    // Matte white that faces the sun at 20 degrees: its light over pi and the sky's.
    EXPECT_GT(lit[0], 1.3f);
    EXPECT_LT(lit[0], 3.2f);
    EXPECT_GT(lit[0], 1.1f * lit[2]) << "red is left of the sun";
    const auto dark = whiteOf(render(sky, with({"--light-color", "0,0,0"})));
    EXPECT_LT(dark[0], 0.5f * lit[0]);
    const auto fromBehind = whiteOf(render(sky, with({"--light", "0,0,1"})));
    EXPECT_EQ(fromBehind, dark) << "the sky's light alone";
    const auto given = whiteOf(render(sky, with({"--light-color", "0,4,0"})));
    EXPECT_EQ(given[0], dark[0]);
    EXPECT_GT(given[1], dark[1] + 2.0f);
    // The picture turns to the right with its sun.
    const Image turned = render(skyWithSunAt("20,50"), with({"--environment-rotation", "40"}));
    EXPECT_TRUE(std::ranges::equal(turned.getBytes(), seen.getBytes()));
    // The square covers the middle; beside it nothing does.
    const Image cut = render(sky, with({"--background", "transparent"}));
    EXPECT_EQ(cut.getComponent(0, 0, 3), 0.0f);
    EXPECT_EQ(cut.getComponent(15, 11, 3), 1.0f);
    EXPECT_NEAR(whiteOf(cut)[0], lit[0], 1e-3f * lit[0]);
}

TEST_F(RenderSkyTest, belowTheHorizonThereIsNoSun) {
    const String sky = skyWithSunAt("-1.5,90");
    const auto evening = whiteOf(render(sky, {"--camera", "0,0"}));
    const auto black = whiteOf(render(sky, {"--camera", "0,0", "--light-color", "0,0,0"}));
    EXPECT_EQ(evening, black);
    EXPECT_GT(evening[2], 0.0f);
}

TEST_F(RenderSkyTest, airLiesBeforeTheModel) {
    // A light that drowns the sky's, which the factor of distances changes a little through the ground.
    const Buffer<String> options = {"--camera", "0,0,5,0,0,0",   "--light",
                                    "0,0,-1",   "--light-color", "30,30,30"};
    const String sky = skyWithSunAt("40,180");
    const auto near = whiteOf(render(sky + ",distance-factor=0.001", options));
    const auto far = whiteOf(render(sky + ",distance-factor=8000", options));
    skyReference::Sky reference(smallInfo(), {40.0, 180.0}, 0.0);
    reference.air.info.distanceFactor = 8000.0f;
    // From +z of the file, which is azimuth 90, the eye looks along 270. The view depth stands for the
    // distance.
    const Three direction =
        skyReference::directionOfPixel({0.0, 270.0}, 0.6 * 180.0 / std::numbers::pi, 15, 11, 24, 16);
    const auto ray = skyReference::startRay(reference.air, 0.0, direction, 5.0 + 5.0 - std::sqrt(2.0));
    const auto air =
        skyReference::march(reference.air, ray, reference.toSun, reference.sunTable, reference.multiTable);
    for (unsigned int i = 0; i < 3; ++i) {
        const double expected = near[i] * air.left[i] + air.scattered[i] * 10.0;
        EXPECT_NEAR(far[i], expected, 0.03 * expected)
            << i; // of 40 km, which begin at the near plane once more
        EXPECT_LT(far[i], 0.8f * near[i]);
    }
}

TEST_F(RenderSkyTest, wrongSkiesAreToldBeforeAnythingIsRead) {
    struct Case {
        Buffer<String> options;
        const char* message;
    };
    const Case cases[] = {
        {{"--environment", "atmosphere"},
         "the environment 'atmosphere' is not atmosphere:sun=ELEVATION,AZIMUTH"},
        {{"--environment", "atmosphere:sun=5"}, "the sun '5' is not ELEVATION,AZIMUTH in degrees"},
        {{"--environment", "atmosphere:sun=5,0,fog=1"},
         "the environment atmosphere: there is no setting 'fog'"},
        {{"--environment", "atmosphere:sun=5,0", "--effects", "atmosphere;tone-mapping"},
         "the environment atmosphere lays its own air over the scene; take the effect 'atmosphere' away."},
    };
    for (const Case& current : cases) {
        Buffer<String> arguments = {"render", "nowhere.glb", "-o", _folder.getPath("o.png")};
        arguments.insert(arguments.end(), current.options.begin(), current.options.end());
        const Outcome outcome = runVeldris(arguments);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.error.find(current.message), String::npos) << outcome.error;
    }
}

} // namespace
