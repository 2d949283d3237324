#include <algorithm>
#include <ovGraphics/device/DeviceTesting.h>

namespace ovGraphics::device::testing {

namespace {

constexpr Color SOURCE = {0.25f, 0.5f, 0.75f, 0.375f};
constexpr Color SECOND_SOURCE = {0.125f, 0.875f, 0.5f, 0.625f};
constexpr Color DESTINATION = {0.625f, 0.3125f, 0.875f, 0.6875f};
constexpr Color FACTOR = {0.1875f, 0.4375f, 0.5625f, 0.8125f};
// The inputs are exact in binary; sums and products of floats round in the last places.
constexpr float TOLERANCE = 1e-6f;

/// A blend factor for one component, from the definition of the Direct3D enumeration.
float factorOf(BLEND blend, std::size_t component) {
    const float limit = std::min(SOURCE[3], 1.0f - DESTINATION[3]);
    switch (blend) {
    case BLEND::ZERO:
        return 0.0f;
    case BLEND::ONE:
        return 1.0f;
    case BLEND::SRC_COLOR:
        return SOURCE[component];
    case BLEND::INV_SRC_COLOR:
        return 1.0f - SOURCE[component];
    case BLEND::SRC_ALPHA:
        return SOURCE[3];
    case BLEND::INV_SRC_ALPHA:
        return 1.0f - SOURCE[3];
    case BLEND::DEST_ALPHA:
        return DESTINATION[3];
    case BLEND::INV_DEST_ALPHA:
        return 1.0f - DESTINATION[3];
    case BLEND::DEST_COLOR:
        return DESTINATION[component];
    case BLEND::INV_DEST_COLOR:
        return 1.0f - DESTINATION[component];
    case BLEND::SRC_ALPHA_SAT:
        return component == 3 ? 1.0f : limit;
    case BLEND::BLEND_FACTOR:
        return FACTOR[component];
    case BLEND::INV_BLEND_FACTOR:
        return 1.0f - FACTOR[component];
    case BLEND::SRC1_COLOR:
        return SECOND_SOURCE[component];
    case BLEND::INV_SRC1_COLOR:
        return 1.0f - SECOND_SOURCE[component];
    case BLEND::SRC1_ALPHA:
        return SECOND_SOURCE[3];
    case BLEND::INV_SRC1_ALPHA:
        return 1.0f - SECOND_SOURCE[3];
    }
    return 0.0f;
}

float combine(BLEND_OPERATION operation, float source, float destination, float sourceFactor,
              float destinationFactor) {
    const float a = source * sourceFactor;
    const float b = destination * destinationFactor;
    switch (operation) {
    case BLEND_OPERATION::ADD:
        return a + b;
    case BLEND_OPERATION::SUBTRACT:
        return a - b;
    case BLEND_OPERATION::REV_SUBTRACT:
        return b - a;
    case BLEND_OPERATION::MIN: // MIN and MAX take the values without their factors
        return std::min(source, destination);
    case BLEND_OPERATION::MAX:
        return std::max(source, destination);
    }
    return 0.0f;
}

class BlendBench {
public:
    explicit BlendBench(Device& device)
        : _device(device)
        , _result(makeTexture(device, flat(FORMAT::R32G32B32A32_FLOAT, 1, 1)))
        , _program(makeProgram(device, R"(#version 450
layout(location = 0, index = 0) out vec4 colour;
layout(location = 0, index = 1) out vec4 second;
void main() { colour = vec4(0.25, 0.5, 0.75, 0.375); second = vec4(0.125, 0.875, 0.5, 0.625); }
)")) {}

    void check(const TargetBlendDesc& desc, const ovMemory::String& what) {
        BlendStateDesc state;
        state.blendFactor = FACTOR;
        state.targets[0] = desc;
        _device.uploadTexture(*_result, 0, 0,
                              bytesOf(ovMemory::Buffer<float>(DESTINATION.begin(), DESTINATION.end())), 0);
        drawOver(_device, *_result, *_program, state);
        Color expected = SOURCE;
        for (std::size_t i = 0; desc.enabled && i < 4; ++i) {
            const bool alpha = i == 3;
            expected[i] = combine(alpha ? desc.alphaOperation : desc.operation, SOURCE[i], DESTINATION[i],
                                  factorOf(alpha ? desc.alphaSourceFactor : desc.sourceFactor, i),
                                  factorOf(alpha ? desc.alphaDestinationFactor : desc.destinationFactor, i));
        }
        for (std::size_t i = 0; i < 4; ++i)
            if (!(desc.writeMask & (1u << i)))
                expected[i] = DESTINATION[i];
        expectColor(texelOf(readFloats(_device, *_result), 1, 0, 0), expected, TOLERANCE, what);
    }

private:
    Device& _device;
    ovMemory::UniquePtr<GpuTexture> _result;
    ovMemory::UniquePtr<GpuProgram> _program;
};

} // namespace

TEST(GlStates, everyBlendFactor) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    BlendBench bench(*device);
    constexpr BLEND FACTORS[] = {BLEND::ZERO,
                                 BLEND::ONE,
                                 BLEND::SRC_COLOR,
                                 BLEND::INV_SRC_COLOR,
                                 BLEND::SRC_ALPHA,
                                 BLEND::INV_SRC_ALPHA,
                                 BLEND::DEST_ALPHA,
                                 BLEND::INV_DEST_ALPHA,
                                 BLEND::DEST_COLOR,
                                 BLEND::INV_DEST_COLOR,
                                 BLEND::SRC_ALPHA_SAT,
                                 BLEND::BLEND_FACTOR,
                                 BLEND::INV_BLEND_FACTOR,
                                 BLEND::SRC1_COLOR,
                                 BLEND::INV_SRC1_COLOR,
                                 BLEND::SRC1_ALPHA,
                                 BLEND::INV_SRC1_ALPHA};
    for (const BLEND factor : FACTORS) {
        TargetBlendDesc desc;
        desc.enabled = true;
        const ovMemory::String what = "factor " + std::to_string(static_cast<unsigned int>(factor));
        desc.sourceFactor = desc.alphaSourceFactor = factor;
        desc.destinationFactor = desc.alphaDestinationFactor = BLEND::ONE;
        bench.check(desc, "source " + what);
        desc.sourceFactor = desc.alphaSourceFactor = BLEND::ONE;
        desc.destinationFactor = desc.alphaDestinationFactor = factor;
        bench.check(desc, "destination " + what);
        desc.alphaDestinationFactor = BLEND::ZERO;
        bench.check(desc, "colour destination only " + what);
    }
    expectNoDriverErrors(*device);
}

TEST(GlStates, everyBlendOperationAndWriteMask) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    BlendBench bench(*device);
    for (unsigned int color = 1; color <= 5; ++color) {
        for (const unsigned int alpha : {1u, color, 5u}) {
            TargetBlendDesc desc;
            desc.enabled = true;
            desc.operation = static_cast<BLEND_OPERATION>(color);
            desc.alphaOperation = static_cast<BLEND_OPERATION>(alpha);
            desc.sourceFactor = desc.alphaSourceFactor = BLEND::DEST_COLOR;
            desc.destinationFactor = desc.alphaDestinationFactor = BLEND::SRC_ALPHA;
            bench.check(desc, "operations " + std::to_string(color) + ", " + std::to_string(alpha));
        }
    }
    for (unsigned int mask = 0; mask <= 15; ++mask) {
        TargetBlendDesc desc;
        desc.writeMask = mask;
        bench.check(desc, "mask " + std::to_string(mask));
    }
    expectNoDriverErrors(*device);
}

// The ten values of two states in use: destination colour x source + destination, and destination x source
// alpha.
TEST(GlStates, knownCombinations) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    BlendBench bench(*device);
    TargetBlendDesc grain;
    grain.enabled = true;
    grain.alphaOperation = BLEND_OPERATION::MAX;
    grain.sourceFactor = BLEND::DEST_COLOR;
    grain.destinationFactor = BLEND::ONE;
    grain.alphaSourceFactor = grain.alphaDestinationFactor = BLEND::ONE;
    bench.check(grain, "grain");
    TargetBlendDesc occlusion = grain;
    occlusion.sourceFactor = BLEND::ZERO;
    occlusion.destinationFactor = BLEND::SRC_ALPHA;
    bench.check(occlusion, "occlusion");
    expectNoDriverErrors(*device);
}

} // namespace ovGraphics::device::testing
