#include <ovVeldris/complexEffects/BlurKernel.h>

#include <cmath>
#include <ovVeldris/shaders/ShaderText.h>

namespace ovVeldris {

namespace {

ovMemory::String joinNumbers(const ovMemory::Buffer<double>& numbers) {
    ovMemory::String text;
    for (const double number : numbers)
        text.append(text.empty() ? "" : ",").append(toSixDecimals(number));
    return text;
}

void addTap(BlurTaps& taps, double near, double far) {
    taps.weights.push_back(near + far);
    taps.offsets.push_back(far / (near + far));
}

} // namespace

ovMemory::Buffer<double> computeBlurWeights(unsigned int radius) {
    const unsigned int row = 2 * radius + 2;
    const double sum = std::ldexp(1.0, static_cast<int>(row)) - 2.0;
    ovMemory::Buffer<double> weights(radius + 1);
    double coefficient = 1.0;
    for (unsigned int k = 0; k <= radius; ++k) {
        // The quotient first: the product alone overflows at the largest radius.
        coefficient *= static_cast<double>(row - k) / (k + 1.0);
        weights[radius - k] = coefficient / sum;
    }
    return weights;
}

BlurTaps mergeBlurTaps(const ovMemory::Buffer<double>& weights) {
    BlurTaps taps;
    const bool isEvenRadius = weights.size() % 2 == 1;
    if (isEvenRadius)
        addTap(taps, weights[0], 0.0);
    else
        addTap(taps, weights[0] / 2.0, weights[1]);
    for (std::size_t i = isEvenRadius ? 1 : 2; i + 1 < weights.size(); i += 2)
        addTap(taps, weights[i], weights[i + 1]);
    return taps;
}

ovMemory::String describeBlurTaps(const BlurTaps& taps) {
    ovMemory::String text;
    const auto define = [&text](ovMemory::StringView name, const ovMemory::String& value) {
        text.append("#define ").append(name).append(" ").append(value).append("\n");
    };
    define("OFFSET_COUNT", std::to_string(taps.offsets.size()));
    define("OFFSET_FACTORS", joinNumbers(taps.offsets));
    define("WEIGHT_COUNT", std::to_string(taps.weights.size()));
    define("WEIGHT_FACTORS", joinNumbers(taps.weights));
    return text;
}

} // namespace ovVeldris
