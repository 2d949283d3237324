#include <ovVeldris/environment/light/EnvironmentDrawing.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <ovCommon/ParallelFor.h>
#include <ovVeldris/environment/light/detail/EnvironmentSampler.h>

namespace ovVeldris {

namespace {

constexpr unsigned int DRAWN_CHANNELS = 4;

ovImages::Image makePicture(unsigned int width, unsigned int height, unsigned int channels) {
    return {width, height, channels, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR};
}

float* floatsOf(ovImages::Image& image) {
    return reinterpret_cast<float*>(image.getBytes().data());
}

/// Texels a side of a cube whose texels are as small as the environment's, in the middle of a face where a
/// texel of N a side covers 2 / N radians.
double sideOf(const EnvironmentTexels& environment) {
    return environment.isCube() ? environment.getWidth() : environment.getWidth() / std::numbers::pi;
}

/// Fills every texel with the mean of places a side, in each of which lightAt(column, row) is the light of a
/// place of the picture, in texels.
template <typename LightAt>
void drawMeans(ovImages::Image& picture, unsigned int places, const ovCommon::WorkProgress& progress,
               const LightAt& lightAt) {
    float* const texels = floatsOf(picture);
    const unsigned int width = picture.getWidth();
    ovCommon::parallelFor(picture.getHeight(), progress, [&](std::size_t row) {
        float* texel = texels + row * width * DRAWN_CHANNELS;
        for (unsigned int column = 0; column < width; ++column, texel += DRAWN_CHANNELS) {
            std::array<double, 3> sum = {};
            for (unsigned int y = 0; y < places; ++y) {
                for (unsigned int x = 0; x < places; ++x) {
                    const auto light = lightAt(column + (x + 0.5) / places, row + (y + 0.5) / places);
                    for (std::size_t color = 0; color < sum.size(); ++color)
                        sum[color] += light[color];
                }
            }
            for (std::size_t color = 0; color < sum.size(); ++color)
                texel[color] = static_cast<float>(sum[color] / (places * places));
            texel[3] = 1.0f;
        }
    });
}

/// Places a side of a texel, one or more. One and a half for each texel that is wanted: of fewer, a small
/// light would be hit once here and twice there.
unsigned int placesFor(double wanted, unsigned int side) {
    return wanted <= side ? 1 : static_cast<unsigned int>(std::ceil(1.5 * wanted / side));
}

} // namespace

ovImages::Image drawEnvironmentCube(const EnvironmentTexels& environment, unsigned int side,
                                    const ovCommon::WorkProgress& progress) {
    ovImages::Image cube = makePicture(side, side * ENVIRONMENT_FACES, DRAWN_CHANNELS);
    if (cube.isEmpty())
        return cube;
    const EnvironmentSampler sampler(environment);
    drawMeans(cube, placesFor(sideOf(environment), side), progress, [&](double column, double row) {
        const auto face = static_cast<unsigned int>(row / side);
        return sampler.sample(
            directionOfFace(face, 2.0 * column / side - 1.0, 2.0 * (row - face * side) / side - 1.0));
    });
    return cube;
}

ovImages::Image drawEnvironmentPanorama(const EnvironmentTexels& environment, unsigned int height,
                                        const ovCommon::WorkProgress& progress) {
    constexpr double PI = std::numbers::pi;
    ovImages::Image panorama = makePicture(2 * height, height, DRAWN_CHANNELS);
    if (panorama.isEmpty())
        return panorama;
    const EnvironmentSampler sampler(environment);
    const double wanted = 0.5 * PI * sideOf(environment);
    drawMeans(panorama, placesFor(wanted, height), progress, [&](double column, double row) {
        const double longitude = PI * (column / height - 1.0);
        const double latitude = PI * (0.5 - row / height);
        return sampler.sample({std::cos(latitude) * std::cos(longitude), std::sin(latitude),
                               std::cos(latitude) * std::sin(longitude)});
    });
    return panorama;
}

ovImages::Image halveCube(const ovImages::Image& faces) {
    const unsigned int side = faces.getWidth();
    const unsigned int half = std::max(side / 2, 1u);
    const unsigned int channels = faces.getChannels();
    ovImages::Image halved = makePicture(half, half * ENVIRONMENT_FACES, channels);
    if (halved.isEmpty())
        return halved;
    const auto* const from = reinterpret_cast<const float*>(faces.getBytes().data());
    float* const to = floatsOf(halved);
    // Of an odd number of texels, two and a part of their neighbours make one.
    const double step = static_cast<double>(side) / half;
    const auto overlap = [step](unsigned int texel, unsigned int i) {
        return std::max(0.0, std::min(step * (i + 1.0), texel + 1.0) - std::max(step * i, 0.0 + texel));
    };
    ovCommon::parallelFor(halved.getHeight(), [&](std::size_t row) {
        const auto inFace = static_cast<unsigned int>(row % half);
        const std::size_t faceStart = row / half * side;
        for (unsigned int column = 0; column < half; ++column) {
            for (unsigned int channel = 0; channel < channels; ++channel) {
                double sum = 0.0;
                for (auto y = static_cast<unsigned int>(step * inFace); y < side && y < step * (inFace + 1.0);
                     ++y)
                    for (auto x = static_cast<unsigned int>(step * column);
                         x < side && x < step * (column + 1.0); ++x)
                        sum += overlap(x, column) * overlap(y, inFace) *
                               from[((faceStart + y) * side + x) * channels + channel];
                to[(row * half + column) * channels + channel] = static_cast<float>(sum / (step * step));
            }
        }
    });
    return halved;
}

} // namespace ovVeldris
