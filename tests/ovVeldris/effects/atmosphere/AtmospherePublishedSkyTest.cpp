// The drawn sky beside the world outside: a published model of clear skies, and a slow march of light that is
// scattered once. The tables of docs/sky.md are what the last test here writes into $OV_TEST_OUTPUT_DIR.
#include <cstdlib>
#include <fstream>
#include <ovVeldris/effects/atmosphere/AtmosphereFixture.h>

using namespace ovVeldris;
using namespace atmosphereReference;

namespace {

constexpr double PI = std::numbers::pi;
constexpr double TURBIDITY = 2.5;
constexpr double SUN_ELEVATIONS[] = {5.0, 15.0, 30.0, 45.0, 60.0};

double radians(double degrees) {
    return degrees * PI / 180.0;
}

/// A place in the sky, relative to the sun.
struct Place {
    const char* name;
    double elevation; // degrees
    double azimuth;   // from the sun's
};

Place zenith() {
    return {"zenith", 90.0, 0.0};
}

/// The places that the table compares. Thirty degrees from the sun means beside it, as high as it stands.
std::vector<Place> placesFor(double sunElevation) {
    const double height = std::sin(radians(sunElevation));
    const double beside = (std::cos(radians(30.0)) - height * height) / (1.0 - height * height);
    return {{"horizon", 3.0, 90.0},
            {"opposite", 30.0, 180.0},
            {"beside", sunElevation, std::acos(beside) * 180.0 / PI}};
}

Three directionTo(double elevation, double azimuth) {
    const double e = radians(elevation);
    const double a = radians(azimuth);
    return {std::cos(e) * std::sin(a), std::sin(e), std::cos(e) * std::cos(a)};
}

/// The analytic sky of Preetham, Shirley, Smits: "A Practical Analytic Model for Daylight", SIGGRAPH 1999,
/// appendix A.2.
class PreethamSky {
public:
    explicit PreethamSky(double sunElevation)
        : _sunZenith(PI / 2.0 - radians(sunElevation)) {}

    /// Luminance over that of the zenith.
    double relativeLuminance(const Place& place) const {
        const double zenithAngle = PI / 2.0 - radians(place.elevation);
        const double toSun = std::acos(dot(directionTo(place.elevation, place.azimuth),
                                           directionTo(90.0 - _sunZenith * 180.0 / PI, 0.0)));
        return _perez(zenithAngle, toSun) / _perez(0.0, _sunZenith);
    }

    /// CIE x and y of the zenith.
    std::array<double, 2> zenithChromaticity() const {
        constexpr double X[3][4] = {{0.00166, -0.00375, 0.00209, 0.0},
                                    {-0.02903, 0.06377, -0.03202, 0.00394},
                                    {0.11693, -0.21196, 0.06052, 0.25886}};
        constexpr double Y[3][4] = {{0.00275, -0.00610, 0.00317, 0.0},
                                    {-0.04214, 0.08970, -0.04153, 0.00516},
                                    {0.15346, -0.26756, 0.06670, 0.26688}};
        return {_zenithPolynomial(X), _zenithPolynomial(Y)};
    }

private:
    double _perez(double zenithAngle, double toSun) const {
        const double a = 0.1787 * TURBIDITY - 1.4630;
        const double b = -0.3554 * TURBIDITY + 0.4275;
        const double c = -0.0227 * TURBIDITY + 5.3251;
        const double d = 0.1206 * TURBIDITY - 2.5771;
        const double e = -0.0670 * TURBIDITY + 0.3703;
        const double cosine = std::cos(toSun);
        return (1.0 + a * std::exp(b / std::cos(zenithAngle))) *
               (1.0 + c * std::exp(d * toSun) + e * cosine * cosine);
    }

    double _zenithPolynomial(const double (&rows)[3][4]) const {
        double sum = 0.0;
        for (unsigned int row = 0; row < 3; ++row)
            for (unsigned int column = 0; column < 4; ++column)
                sum +=
                    std::pow(TURBIDITY, 2.0 - row) * rows[row][column] * std::pow(_sunZenith, 3.0 - column);
        return sum;
    }

    double _sunZenith;
};

/// Light that clear air scatters once, with the optical depth to the sun summed anew at every step.
class SlowSky {
public:
    explicit SlowSky(const AtmosphereEffectInfo& info)
        : _air{info} {}

    Three radiance(const Three& direction, const Three& toSun) const {
        constexpr int STEPS = 600;
        const Three eye = {0.0, GROUND + 1e-3, 0.0};
        const double step = hitSphere(eye, direction, TOP) / STEPS;
        const double cosine = dot(direction, toSun);
        Three depth = {};
        Three light = {};
        for (int i = 0; i < STEPS; ++i) {
            const Three place = eye + direction * ((i + 0.5) * step);
            const double h = length(place) - GROUND;
            const Air::Densities d = _air.densitiesAt(h);
            const Three extinction = _extinction(h);
            const Three scattered =
                Air::perKm(_air.info.rayleigh.scattering) * (d.rayleigh * Air::rayleighPhase(cosine)) +
                Air::perKm(_air.info.mie.scattering) * (d.mie * _air.miePhase(cosine));
            const Three way = depth + extinction * (0.5 * step) + _depthToSun(place, toSun);
            light = light + scattered * each(way, [](double t) { return std::exp(-t); }) * step;
            depth = depth + extinction * step;
        }
        return light * double(_air.info.sunIlluminanceFactor);
    }

private:
    Three _extinction(double h) const {
        const Air::Densities d = _air.densitiesAt(h);
        return Air::perKm(_air.info.rayleigh.extinction) * d.rayleigh +
               Air::perKm(_air.info.mie.extinction) * d.mie +
               Air::perKm(_air.info.ozone.extinction) * d.ozone;
    }

    Three _depthToSun(const Three& place, const Three& toSun) const {
        constexpr int STEPS = 60;
        if (hitSphere(place, toSun, GROUND) > 0.0)
            return {1e3, 1e3, 1e3};
        const double end = hitSphere(place, toSun, TOP);
        Three depth = {};
        for (int i = 0; i < STEPS; ++i) {
            // Quadratic steps: the air near the place counts most.
            const double from = end * i * i / (double(STEPS) * STEPS);
            const double to = end * (i + 1) * (i + 1) / (double(STEPS) * STEPS);
            depth = depth + _extinction(length(place + toSun * (0.5 * (from + to))) - GROUND) * (to - from);
        }
        return depth;
    }

    Air _air;
};

double luminanceOf(const Three& rgb) {
    return dot(rgb, {0.2126, 0.7152, 0.0722});
}

/// CIE x and y of linear Rec. 709 colours.
std::array<double, 2> chromaticityOf(const Three& rgb) {
    const double x = dot(rgb, {0.4124564, 0.3575761, 0.1804375});
    const double y = dot(rgb, {0.2126729, 0.7151522, 0.0721750});
    const double z = dot(rgb, {0.0193339, 0.1191920, 0.9503041});
    return {x / (x + y + z), y / (x + y + z)};
}

std::string fixed(double number, int decimals) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.*f", decimals, number);
    return text;
}

class AtmospherePublishedSkyTest : public AtmosphereFixture {
protected:
    /// What the effect draws in one direction, from the ground.
    Three drawnAt(const AtmosphereEffect& effect, const Three& direction) {
        getCamera().setPosition({});
        getCamera().lookAt({float(direction[0]), float(direction[1]), float(direction[2])}, {});
        getCamera().setPerspective(0.002f, 1.0f, 1.0f, 1000.0f);
        const FloatPicture drawn = drawEffect(effect, 1, 1);
        const FloatPixel& pixel = drawn.at(0, 0);
        return {pixel[0], pixel[1], pixel[2]};
    }

    /// As much haze as a turbidity says: its vertical optical depth is that of the air times the turbidity
    /// less 1.
    static void setHaze(AtmosphereEffect& effect, double turbidity) {
        const AtmosphereEffectInfo clear;
        const double air = clear.rayleigh.extinction.y * 8.0;
        const double haze = clear.mie.extinction.y * 1.2;
        const auto times = float(air * (turbidity - 1.0) / haze);
        const auto scaled = [&](const ovMaths::Vector& v) {
            return ovMaths::Vector{v.x * times, v.y * times, v.z * times};
        };
        effect.setMieScattering(scaled(clear.mie.scattering));
        effect.setMieExtinction(scaled(clear.mie.extinction));
        effect.setMieAbsorb(scaled(clear.mie.absorb));
    }
};

/// Directions in which light that is scattered once is compared.
std::vector<Place> placesWithZenith(double sunElevation) {
    auto places = placesFor(sunElevation);
    places.push_back(zenith());
    return places;
}

// With fine steps and a fine table the formulas of the effect are the slow sum: what is left below comes from
// steps.
TEST_P(AtmospherePublishedSkyTest, marchesWithFineStepsToTheSlowSum) {
    auto effect = makeEffect();
    effect->setRaymarchSampleCount(400); // of the table of the sun
    effect->setSunTransmittanceLutWidth(512);
    effect->setSunTransmittanceLutHeight(256);
    ASSERT_TRUE(effect->load());
    const FloatPicture sunTable = readFloats(*effect->getSunTransmittanceLut());
    const FloatPicture noMultiScattering(1, 1);
    Air air = {infoOf(*effect)};
    air.info.raymarchSampleCount = 2000;
    const double illuminance = effect->getSunIlluminanceFactor();
    for (const double elevation : SUN_ELEVATIONS)
        for (const Place& place : placesWithZenith(elevation)) {
            const Three toSun = directionTo(elevation, 0.0);
            const Three direction = directionTo(place.elevation, place.azimuth);
            const Ray ray = startRay(air, 0.0, direction, {});
            const Three marched = march(air, ray, toSun, sunTable, noMultiScattering).scattered * illuminance;
            const Three expected = SlowSky(air.info).radiance(direction, toSun);
            for (unsigned int channel = 0; channel < 3; ++channel)
                EXPECT_NEAR(marched[channel] / expected[channel], 1.0, 0.03)
                    << place.name << ", sun at " << elevation << ", channel " << channel;
        }
}

// Steps of three kilometres, each sampled at its thinner end, see less of the air overhead; forty steps to
// the sun let too much blue through when it stands low.
TEST_P(AtmospherePublishedSkyTest, isNearTheSlowSumOfLightThatIsScatteredOnce) {
    auto effect = makeEffect();
    effect->setMultiScatteringLutSphereSampleCount(0);
    effect->setDisplaySun(false);
    ASSERT_TRUE(effect->load());
    for (const double elevation : SUN_ELEVATIONS) {
        effect->setSunPosition(sunAt(elevation));
        for (const Place& place : placesWithZenith(elevation)) {
            const Three direction = directionTo(place.elevation, place.azimuth);
            const Three drawn = drawnAt(*effect, direction);
            const Three expected = SlowSky(infoOf(*effect)).radiance(direction, directionTo(elevation, 0.0));
            const double most = elevation < 10.0 ? 1.6 : 1.25;
            for (unsigned int channel = 0; channel < 3; ++channel) {
                EXPECT_GT(drawn[channel] / expected[channel], 0.75) << place.name << ", sun at " << elevation;
                EXPECT_LT(drawn[channel] / expected[channel], most) << place.name << ", sun at " << elevation;
            }
        }
    }
}

TEST_P(AtmospherePublishedSkyTest, isNearThePublishedModel) {
    auto clear = makeEffect();
    auto hazy = makeEffect();
    clear->setDisplaySun(false);
    hazy->setDisplaySun(false);
    setHaze(*hazy, TURBIDITY);
    ASSERT_TRUE(clear->load() && hazy->load());
    std::string table = "| Sun | Where | As published | Ours | One scattering | Ours, without haze |\n"
                        "|---|---|---|---|---|---|\n";
    std::string colors = "| Sun | As published | Ours | Ours, without haze |\n|---|---|---|---|\n";
    for (const double elevation : SUN_ELEVATIONS) {
        clear->setSunPosition(sunAt(elevation));
        hazy->setSunPosition(sunAt(elevation));
        const PreethamSky published(elevation);
        const SlowSky slow(infoOf(*hazy));
        const Three up = directionTo(90.0, 0.0);
        const Three toSun = directionTo(elevation, 0.0);
        const Three zeniths[] = {drawnAt(*hazy, up), slow.radiance(up, toSun), drawnAt(*clear, up)};
        for (const Place& place : placesFor(elevation)) {
            const Three direction = directionTo(place.elevation, place.azimuth);
            const double expected = published.relativeLuminance(place);
            const double ours = luminanceOf(drawnAt(*hazy, direction)) / luminanceOf(zeniths[0]);
            table += "| " + fixed(elevation, 0) + "° | " + place.name;
            for (const double ratio :
                 {expected, ours, luminanceOf(slow.radiance(direction, toSun)) / luminanceOf(zeniths[1]),
                  luminanceOf(drawnAt(*clear, direction)) / luminanceOf(zeniths[2])})
                table += " | " + fixed(ratio, 2);
            table += " |\n";
            EXPECT_GT(ours / expected, 0.95) << place.name << ", sun at " << elevation;
            EXPECT_LT(ours / expected, 1.9) << place.name << ", sun at " << elevation;
        }
        const auto expected = published.zenithChromaticity();
        const auto ours = chromaticityOf(zeniths[0]);
        const auto thin = chromaticityOf(zeniths[2]);
        colors += "| " + fixed(elevation, 0) + "°";
        for (const auto& color : {expected, ours, thin})
            colors += " | " + fixed(color[0], 3) + ", " + fixed(color[1], 3);
        colors += " |\n";
        EXPECT_NEAR(ours[0], expected[0], 0.015) << "sun at " << elevation;
        EXPECT_NEAR(ours[1], expected[1], 0.03) << "sun at " << elevation;
    }
    if (const char* folder = std::getenv("OV_TEST_OUTPUT_DIR"))
        std::ofstream(std::string(folder) + "/published-sky.md") << table << '\n' << colors;
}

INSTANTIATE_TEST_SUITE_P(, AtmospherePublishedSkyTest, testing::Values(ovGraphics::SHADER_LANGUAGE::GLSL),
                         languageName);

} // namespace
