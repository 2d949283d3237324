#include <ovVeldris/environment/light/detail/LobeSum.h>

#include <cstring>

namespace ovVeldris {

namespace {

// Vectors of GCC and Clang, for any processor: without AVX two instructions of four floats each.
using Float8 = float __attribute__((vector_size(32)));

constexpr std::size_t VECTORS = LOBE_LANES * sizeof(float) / sizeof(Float8);

[[gnu::always_inline]] inline void loadLanes(const LobeLanes& lanes, Float8* vectors) {
    std::memcpy(vectors, lanes.data(), sizeof(lanes));
}

[[gnu::always_inline]] inline void storeLanes(const Float8* vectors, LobeLanes& lanes) {
    std::memcpy(lanes.data(), vectors, sizeof(lanes));
}

// One body for both sets of instructions, inlined into each: see the kernels of the irradiance transform.
[[gnu::always_inline]] inline void addLightsBody(ovMemory::BufferView<const PointLight> lights,
                                                 const LobeShape& shape, LobeSums& sums) {
    Float8 x[VECTORS];
    Float8 y[VECTORS];
    Float8 z[VECTORS];
    Float8 red[VECTORS];
    Float8 green[VECTORS];
    Float8 blue[VECTORS];
    loadLanes(sums.normals[0], x);
    loadLanes(sums.normals[1], y);
    loadLanes(sums.normals[2], z);
    loadLanes(sums.sums[0], red);
    loadLanes(sums.sums[1], green);
    loadLanes(sums.sums[2], blue);
    const Float8 zero = {};
    for (const PointLight& light : lights) {
        for (std::size_t i = 0; i < VECTORS; ++i) {
            Float8 cosine = x[i] * light.direction[0] + y[i] * light.direction[1] + z[i] * light.direction[2];
            cosine = cosine > zero ? cosine : zero;
            // weight = c q^2 with q = 1 / (flatness - steepness c), and weight'' = 2 k q^3 (2 + 3 k c q).
            // Across the mean, cosines vary by the sine of the angle.
            const Float8 q = 1.0f / (shape.flatness - shape.steepness * cosine);
            const Float8 steep = shape.steepness * q;
            const Float8 bend =
                light.variance * (1.0f - cosine * cosine) * steep * (2.0f + 3.0f * steep * cosine);
            const Float8 weight = q * q * (cosine + (cosine > zero ? bend : zero));
            red[i] += weight * light.power[0];
            green[i] += weight * light.power[1];
            blue[i] += weight * light.power[2];
        }
    }
    storeLanes(red, sums.sums[0]);
    storeLanes(green, sums.sums[1]);
    storeLanes(blue, sums.sums[2]);
}

void addLightsPlain(ovMemory::BufferView<const PointLight> lights, const LobeShape& shape, LobeSums& sums) {
    addLightsBody(lights, shape, sums);
}

#ifdef __x86_64__

[[gnu::target("avx2,fma")]] void addLightsAvx2(ovMemory::BufferView<const PointLight> lights,
                                               const LobeShape& shape, LobeSums& sums) {
    addLightsBody(lights, shape, sums);
}

#endif

} // namespace

bool canLobeSumUseAvx2() {
#ifdef __x86_64__
    static const bool CAN = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    return CAN;
#else
    return false;
#endif
}

AddLights lobeSumOf(bool useAvx2) {
#ifdef __x86_64__
    if (useAvx2)
        return addLightsAvx2;
#endif
    static_cast<void>(useAvx2);
    return addLightsPlain;
}

} // namespace ovVeldris
