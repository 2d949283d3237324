#include <ovVeldris/environment/light/detail/GgxLobe.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ovVeldris {

GgxLobe ggxLobeOf(double roughness) {
    const double alphaSquared = std::pow(roughness, 4.0);
    const double k = 0.5 * (1.0 - alphaSquared);
    GgxLobe lobe;
    lobe.steepness = k;
    lobe.flatness = 1.0 - k;
    // The integral of c / (1 - k - k c)^2 over c from 0 to 1; at its upper end the root is alpha^2. For small
    // k it is a difference of large numbers, and the start of its series is exact enough.
    constexpr double SMALL = 1e-4;
    const double closedForm =
        (lobe.flatness / alphaSquared - 1.0 + std::log(alphaSquared / lobe.flatness)) / (k * k);
    const double overCosines = k < SMALL ? 0.5 + 5.0 / 3.0 * k : closedForm;
    lobe.integral = 2.0 * std::numbers::pi * overCosines;
    // flatness - k c = k / 2 (chord^2 + 2 alpha^2 / k). Beyond the unit nothing gets any softer: the cosine
    // and the horizon remain.
    lobe.width = k < SMALL ? 1.0 : std::min(1.0, std::sqrt(2.0 * alphaSquared / k));
    return lobe;
}

} // namespace ovVeldris
