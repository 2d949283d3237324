#include <ovVeldris/environment/light/EnvironmentIrradiance.h>

#include <ovCommon/ParallelFor.h>
#include <ovVeldris/environment/irradiance/detail/IrradianceDirections.h>

namespace ovVeldris {

namespace {

constexpr std::size_t COLORS = 3;
constexpr unsigned int CHANNELS = 4;

void addRow(const EnvironmentTexels& environment, unsigned int row, IrradianceCoefficients& sums) {
    for (unsigned int column = 0; column < environment.getWidth(); ++column) {
        const auto basis = irradianceBasisOf(environment.getDirection(column, row));
        const double solidAngle = environment.getSolidAngle(column, row);
        const float* light = environment.getLight(column, row);
        for (std::size_t color = 0; color < COLORS; ++color) {
            const double arriving = light[color] * solidAngle;
            for (std::size_t k = 0; k < basis.size(); ++k)
                sums.values[k][color] += arriving * basis[k];
        }
    }
}

} // namespace

IrradianceCoefficients projectEnvironment(const EnvironmentTexels& environment) {
    // A sum for each row, added up in order: the same bits on one core and on many.
    ovMemory::Buffer<IrradianceCoefficients> rows(environment.getHeight());
    ovCommon::parallelFor(rows.size(), [&](std::size_t row) {
        addRow(environment, static_cast<unsigned int>(row), rows[row]);
    });
    IrradianceCoefficients sums;
    for (const IrradianceCoefficients& row : rows) {
        for (std::size_t k = 0; k < sums.values.size(); ++k) {
            for (std::size_t color = 0; color < COLORS; ++color)
                sums.values[k][color] += row.values[k][color];
        }
    }
    return sums;
}

ovImages::Image drawIrradianceCube(const IrradianceCoefficients& coefficients, unsigned int side,
                                   const ovCommon::WorkProgress& progress) {
    ovImages::Image image(side, side * ENVIRONMENT_FACES, CHANNELS, ovImages::COMPONENT_TYPE::FLOAT,
                          ovImages::COLOR_ENCODING::LINEAR);
    if (image.isEmpty())
        return image;
    auto* const texels = reinterpret_cast<float*>(image.getBytes().data());
    ovCommon::parallelFor(std::size_t{side} * ENVIRONMENT_FACES, progress, [&](std::size_t row) {
        for (unsigned int column = 0; column < side; ++column) {
            const auto basis =
                irradianceBasisOf(directionOfCubeTexel(side, column, static_cast<unsigned int>(row)));
            float* const texel = texels + (row * side + column) * CHANNELS;
            for (std::size_t color = 0; color < COLORS; ++color) {
                double sum = 0.0;
                for (std::size_t k = 0; k < basis.size(); ++k)
                    sum += IRRADIANCE_BAND_FACTORS[k] * coefficients.values[k][color] * basis[k];
                texel[color] = static_cast<float>(sum);
            }
            texel[COLORS] = 1.0f;
        }
    });
    return image;
}

} // namespace ovVeldris
