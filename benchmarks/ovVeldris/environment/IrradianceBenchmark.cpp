#include "ovVeldris/environment/IrradianceBenchmark.h"

#include "support/Aims.h"
#include "support/Pairs.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <ovVeldris/environment/irradiance/IrradianceTransform.h>
#include <string>
#include <vector>

namespace ovBenchmarks {

namespace {

using ovGraphics::FORMAT;
using ovVeldris::IRRADIANCE_INSTRUCTIONS;
using ovVeldris::IrradianceCoefficients;
using ovVeldris::IrradianceMapLayout;
using ovVeldris::IrradianceTransform;
using enum ovVeldris::IRRADIANCE_INSTRUCTIONS;

constexpr int ROUNDS = 41;

// Both sides are one thread, from memory to memory. The pure read sums every byte of the map as 64-bit
// integers in four chains, which keeps the load units waiting for memory; the pure write fills it with one
// texel. Ours includes its tables of directions, made anew each time.
struct Case {
    const char* name;
    IrradianceMapLayout layout;
    IRRADIANCE_INSTRUCTIONS instructions;
    double projectionAim = 0.0; ///< the largest ratio of the projection; 0: none
    double evaluationAim = 0.0; ///< the same of the evaluation
};

/// For what the last cache of a processor holds, 32 MB on servers of today: a plain read is then several
/// times as fast as memory, and the projection's arithmetic shows beside it.
constexpr double IN_CACHE = 2.5;

constexpr Case CASES[] = {
    {"map_4096x2048", {false, FORMAT::R32G32B32A32_FLOAT, 4096, 2048, 1}, BEST, 1.5, 3.0},
    {"map_2048x1024", {false, FORMAT::R32G32B32A32_FLOAT, 2048, 1024, 1}, BEST, 1.5, 3.0},
    {"map_1024x512", {false, FORMAT::R32G32B32A32_FLOAT, 1024, 512, 1}, BEST, IN_CACHE, 3.0},
    {"cube_1024", {true, FORMAT::R32G32B32A32_FLOAT, 1024, 1024, 6}, BEST, 1.5, 3.0},
    {"cube_256", {true, FORMAT::R32G32B32A32_FLOAT, 256, 256, 6}, BEST, IN_CACHE, 3.0},
    {"map_2048x1024_three_floats", {false, FORMAT::R32G32B32_FLOAT, 2048, 1024, 1}, BEST},
    {"map_2048x1024_bytes", {false, FORMAT::R8G8B8A8_UNORM, 2048, 1024, 1}, BEST},
    {"map_2048x1024_plain", {false, FORMAT::R32G32B32A32_FLOAT, 2048, 1024, 1}, PLAIN},
};

/// One buffer a slice. The values repeat every seven texels; the loops do not depend on them.
std::vector<std::vector<unsigned char>> makeSlices(const IrradianceMapLayout& layout) {
    const std::size_t size = IrradianceTransform(layout).getTightPitch() * layout.height;
    std::vector<std::vector<unsigned char>> slices(layout.slices, std::vector<unsigned char>(size));
    constexpr std::array<float, 7> VALUES = {0.5f, 1.0f, 0.25f, 3.0f, 0.0f, 0.125f, 12.0f};
    for (std::vector<unsigned char>& slice : slices)
        for (std::size_t i = 0; i + sizeof(float) <= size; i += sizeof(float))
            std::memcpy(&slice[i], &VALUES[i / sizeof(float) % VALUES.size()], sizeof(float));
    return slices;
}

void readAll(const std::vector<std::vector<unsigned char>>& slices) {
    std::array<uint64_t, 4> sums = {};
    for (const std::vector<unsigned char>& slice : slices)
        for (std::size_t i = 0; i + sizeof(sums) <= slice.size(); i += sizeof(sums)) {
            std::array<uint64_t, 4> words;
            std::memcpy(&words, &slice[i], sizeof(words));
            for (std::size_t k = 0; k < sums.size(); ++k)
                sums[k] += words[k];
        }
    benchmark::DoNotOptimize(sums);
}

void writeAll(std::vector<std::vector<unsigned char>>& slices) {
    constexpr std::array<float, 4> TEXEL = {0.5f, 1.0f, 0.25f, 1.0f};
    for (std::vector<unsigned char>& slice : slices) {
        for (std::size_t i = 0; i + sizeof(TEXEL) <= slice.size(); i += sizeof(TEXEL))
            std::memcpy(&slice[i], &TEXEL, sizeof(TEXEL));
        benchmark::DoNotOptimize(slice.data());
        benchmark::ClobberMemory();
    }
}

IrradianceCoefficients project(const Case& row, const std::vector<std::vector<unsigned char>>& slices) {
    IrradianceTransform transform(row.layout, row.instructions);
    IrradianceCoefficients coefficients;
    for (unsigned int slice = 0; slice < slices.size(); ++slice)
        transform.project(slice, slices[slice], 0, coefficients);
    return coefficients;
}

void projectOverRead(benchmark::State& state, const Case& row) {
    const std::vector<std::vector<unsigned char>> slices = makeSlices(row.layout);
    runPair(state, {{}, [&] { readAll(slices); }},
            {{}, [&] { benchmark::DoNotOptimize(project(row, slices)); }}, ROUNDS);
    if (row.projectionAim > 0.0)
        aimAtRatio(state, row.projectionAim);
}

void evaluateOverWrite(benchmark::State& state, const Case& row) {
    std::vector<std::vector<unsigned char>> slices = makeSlices(row.layout);
    const IrradianceCoefficients coefficients = project(row, slices);
    const auto evaluate = [&] {
        IrradianceTransform transform(row.layout, row.instructions);
        for (unsigned int slice = 0; slice < slices.size(); ++slice)
            transform.evaluate(coefficients, slice, slices[slice], 0);
    };
    runPair(state, {{}, [&] { writeAll(slices); }}, {{}, evaluate}, ROUNDS);
    if (row.evaluationAim > 0.0)
        aimAtRatio(state, row.evaluationAim);
}

} // namespace

void registerIrradiance() {
    for (const Case& row : CASES) {
        const std::string name = row.name;
        benchmark::RegisterBenchmark(("irradiance/project_over_read/" + name).c_str(), projectOverRead, row)
            ->Iterations(1)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("irradiance/evaluate_over_write/" + name).c_str(), evaluateOverWrite,
                                     row)
            ->Iterations(1)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
}

} // namespace ovBenchmarks
