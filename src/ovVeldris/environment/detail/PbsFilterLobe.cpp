#include <ovVeldris/environment/detail/PbsFilterLobe.h>

#include <cmath>
#include <cstdint>

namespace ovVeldris {

namespace {

constexpr double PI = 3.14159; // the five digits are part of the formula

/// The bits of i mirrored at the binary point: 1, 2, 3, ... become 1/2, 1/4, 3/4, ...
double radicalInverse(uint32_t i) {
    double inverse = 0.0;
    for (double digit = 0.5; i != 0; i >>= 1, digit *= 0.5)
        inverse += (i & 1u) * digit;
    return inverse;
}

/// The mip whose texels are as large as the share of the sphere that one sample stands for: half the binary
/// logarithm of the ratio of their solid angles.
double sampleMip(double dotNH, double roughness, double resolution) {
    constexpr double NEVER_ZERO = 0.0001;
    const double alphaSquared = roughness * roughness * roughness * roughness;
    const double root = dotNH * dotNH * (alphaSquared - 1.0) + 1.0;
    const double density = alphaSquared / (PI * root * root) / 4.0 + NEVER_ZERO;
    const double saTexel = 4.0 * PI / (6.0 * resolution * resolution);
    const double saSample = 1.0 / (PBS_FILTER_SAMPLE_COUNT * density + NEVER_ZERO);
    return 0.5 * std::log2(saSample / saTexel);
}

} // namespace

PbsFilterLobe computePbsFilterLobe(double roughness, double resolution) {
    PbsFilterLobe lobe;
    if (roughness == 0.0) { // a mirror: every sample is the normal
        lobe.samples.emplace_back(0.0f, 0.0f, 1.0f, 0.0f);
        lobe.weightSum = 1.0f;
        return lobe;
    }
    const double alpha = roughness * roughness;
    double weightSum = 0.0;
    for (uint32_t i = 0; i < PBS_FILTER_SAMPLE_COUNT; ++i) {
        const double u = static_cast<double>(i) / PBS_FILTER_SAMPLE_COUNT;
        const double phi = 2.0 * PI * radicalInverse(i);
        const double cosTheta = std::sqrt((1.0 - u) / (1.0 + (alpha * alpha - 1.0) * u));
        const double sinTheta = std::sqrt(1.0 - cosTheta * cosTheta);
        // v = n mirrored at the half vector h = (sinTheta cos phi, sinTheta sin phi, cosTheta): 2 (v.h) h -
        // v.
        const double dotNL = 2.0 * cosTheta * cosTheta - 1.0;
        // Below the horizon nothing arrives. Such samples are dropped and not clamped, so that they cost the
        // device nothing.
        if (dotNL <= 0.0)
            continue;
        const double across = 2.0 * cosTheta * sinTheta;
        lobe.samples.emplace_back(static_cast<float>(across * std::cos(phi)),
                                  static_cast<float>(across * std::sin(phi)), static_cast<float>(dotNL),
                                  static_cast<float>(sampleMip(cosTheta, roughness, resolution)));
        // Weighted by n.l, which Karis 2013 found better than equal weights.
        weightSum += dotNL;
    }
    lobe.weightSum = static_cast<float>(weightSum);
    return lobe;
}

} // namespace ovVeldris
