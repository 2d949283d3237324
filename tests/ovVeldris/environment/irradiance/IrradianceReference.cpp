#include <cmath>
#include <ovVeldris/environment/irradiance/IrradianceReference.h>

namespace irradianceReference {

namespace {

Direction cubeDirection(unsigned int face, double u, double v) {
    const double a = 2.0 * u - 1.0;
    const double b = 2.0 * v - 1.0;
    const double k = 1.0 / std::sqrt(a * a + b * b + 1.0);
    switch (face) {
    case 0:
        return {k, -b * k, -a * k};
    case 1:
        return {-k, -b * k, a * k};
    case 2:
        return {a * k, k, b * k};
    case 3:
        return {a * k, -k, -b * k};
    case 4:
        return {a * k, -b * k, k};
    default:
        return {-a * k, -b * k, -k};
    }
}

Direction mapDirection(double u, double v) {
    const double theta = v * 3.1415927410125732;
    const double phi = u * 6.2831854820251465;
    return {std::sin(theta) * std::sin(phi), std::cos(theta), std::sin(theta) * std::cos(phi)};
}

} // namespace

Direction direction(bool isCube, unsigned int face, unsigned int i, unsigned int j, unsigned int width,
                    unsigned int height) {
    const double u = double(i) / width;
    const double v = double(j) / height;
    return isCube ? cubeDirection(face, u, v) : mapDirection(u, v);
}

Basis basis(const Direction& d) {
    const auto [x, y, z] = d;
    const double linear = std::sqrt(0.23873240799450854);
    const double product = std::sqrt(4.77464815989017) * 0.5;
    return {0.28209478329945054,
            linear * x,
            linear * y,
            linear * z,
            product * z * x,
            product * x * y,
            std::sqrt(1.591549386630057) * 0.25 * (2.0 * y * y - x * x - z * z),
            product * y * z,
            std::sqrt(4.77464815989017) * 0.25 * (z * z - x * x)};
}

std::array<double, 3> evaluate(const ovVeldris::IrradianceCoefficients& coefficients,
                               const ovVeldris::IrradianceMapLayout& layout, unsigned int slice,
                               unsigned int i, unsigned int j) {
    const Basis y = basis(direction(layout.isCube, slice, i, j, layout.width, layout.height));
    std::array<double, 3> sum = {};
    for (std::size_t k = 0; k < y.size(); ++k) {
        const double weakened = k == 0 ? 1.0 : k < 4 ? 2.0 / 3.0 : 0.25;
        for (std::size_t channel = 0; channel < 3; ++channel)
            sum[channel] += weakened * coefficients.values[k][channel] * y[k];
    }
    return sum;
}

ovMemory::Buffer<unsigned char> noise(std::size_t size, bool floats, unsigned int seed) {
    ovMemory::Buffer<unsigned char> bytes(size);
    std::mt19937 numbers(seed);
    if (!floats) {
        for (unsigned char& byte : bytes)
            byte = static_cast<unsigned char>(numbers());
        return bytes;
    }
    for (std::size_t i = 0; i + sizeof(float) <= size; i += sizeof(float)) {
        const float value = float(numbers() % 65536) / 8192.0f;
        std::memcpy(&bytes[i], &value, sizeof(value));
    }
    return bytes;
}

} // namespace irradianceReference
