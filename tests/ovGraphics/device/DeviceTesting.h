// Helpers of the device's tests: a headless software device, programs in plain GLSL, textures as numbers.
#pragma once

#include <cstring>
#include <gtest/gtest.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/formats/TextureUtils.h>

namespace ovGraphics::device::testing {

using Color = std::array<float, 4>;
using Bytes = ovMemory::Buffer<unsigned char>;

inline constexpr std::array BOTH_LANGUAGES = {SHADER_LANGUAGE::GLSL, SHADER_LANGUAGE::HLSL};

inline const char* nameOf(SHADER_LANGUAGE language) {
    return language == SHADER_LANGUAGE::GLSL ? "GLSL" : "HLSL";
}

/// A software device that reports errors; the test fails when there is none.
inline ovMemory::UniquePtr<Device> openDevice(SHADER_LANGUAGE language = SHADER_LANGUAGE::GLSL) {
    DeviceRequest request;
    request.language = language;
    request.software = true;
    request.debugOutput = true;
    ovMemory::String error;
    auto device = createDevice(request, error);
    EXPECT_TRUE(device) << error;
    return device;
}

template <typename T>
Bytes bytesOf(const ovMemory::Buffer<T>& values) {
    Bytes bytes(values.size() * sizeof(T));
    if (!bytes.empty())
        std::memcpy(bytes.data(), values.data(), bytes.size());
    return bytes;
}

template <typename T>
ovMemory::Buffer<T> valuesOf(const Bytes& bytes) {
    ovMemory::Buffer<T> values(bytes.size() / sizeof(T));
    if (!values.empty())
        std::memcpy(values.data(), bytes.data(), values.size() * sizeof(T));
    return values;
}

inline TextureDesc flat(FORMAT format, unsigned int width, unsigned int height, unsigned int mips = 1) {
    TextureDesc desc;
    desc.format = format;
    desc.width = width;
    desc.height = height;
    desc.mips = mips;
    return desc;
}

inline ovMemory::UniquePtr<GpuTexture> makeTexture(Device& device, const TextureDesc& desc) {
    ovMemory::String error;
    auto texture = device.createTexture(desc, error);
    EXPECT_TRUE(texture) << error;
    return texture;
}

inline ovMemory::UniquePtr<GpuSampler> makeSampler(Device& device, const SamplerDesc& desc) {
    ovMemory::String error;
    auto sampler = device.createSampler(desc, error);
    EXPECT_TRUE(sampler) << error;
    return sampler;
}

inline ovMemory::UniquePtr<GpuTarget> makeTarget(Device& device,
                                                 const ovMemory::Buffer<TargetAttachment>& colors,
                                                 const TargetAttachment& depth = {}) {
    ovMemory::String error;
    auto target = device.createTarget({colors, depth}, error);
    EXPECT_TRUE(target) << error;
    return target;
}

/// The vertex stage that hands the quad's texture coordinates on as `uv`.
inline constexpr const char* QUAD_VERTEX = R"(#version 450
layout(location = 0) in vec4 position;
layout(location = 2) in vec2 coordinates;
layout(location = 0) out vec2 uv;
void main() { uv = coordinates; gl_Position = position; }
)";

/// A pixel stage with the input `uv` and the output `colour`; declarations stand before main.
inline ovMemory::String pixelText(const ovMemory::String& body, const ovMemory::String& declarations = {}) {
    return "#version 450\nlayout(location = 0) in vec2 uv;\nlayout(location = 0) out vec4 colour;\n" +
           declarations + "\nvoid main() { " + body + " }\n";
}

inline ovMemory::UniquePtr<GpuProgram> makeProgram(Device& device, const ovMemory::String& pixel,
                                                   const ovMemory::String& vertex = QUAD_VERTEX) {
    shading::CompiledProgram texts;
    texts.vertexText = vertex;
    texts.pixelText = pixel;
    ovMemory::String error;
    auto program = device.createProgram(texts, {}, 0, error);
    EXPECT_TRUE(program) << error;
    return program;
}

inline RasterStateDesc noCulling() {
    RasterStateDesc raster;
    raster.cull = CULL_MODE::NONE;
    return raster;
}

inline DepthStencilStateDesc noDepth() {
    DepthStencilStateDesc depth;
    depth.depthTest = false;
    depth.depthWrite = false;
    return depth;
}

/// Draws the quad over a whole texture, with no depth test.
inline void drawOver(Device& device, GpuTexture& texture, GpuProgram& program,
                     const BlendStateDesc& blend = {}) {
    const auto target = makeTarget(device, {{&texture, 0, 0}});
    device.setTarget(*target, {0, 0, texture.getDesc().width, texture.getDesc().height});
    device.setProgram(program);
    device.setBlendState(blend);
    device.setRasterState(RasterStateDesc{});
    device.setDepthStencilState(noDepth());
    device.drawFullScreenQuad();
}

inline Bytes readBytes(Device& device, GpuTexture& texture, unsigned int slice = 0, unsigned int mip = 0) {
    Bytes data;
    EXPECT_TRUE(device.readTexture(texture, slice, mip, data));
    return data;
}

inline ovMemory::Buffer<float> readFloats(Device& device, GpuTexture& texture, unsigned int slice = 0,
                                          unsigned int mip = 0) {
    return valuesOf<float>(readBytes(device, texture, slice, mip));
}

/// The four values of a texel of an R32G32B32A32_FLOAT texture of this width.
inline Color texelOf(const ovMemory::Buffer<float>& values, unsigned int width, unsigned int x,
                     unsigned int y) {
    Color texel{};
    const std::size_t at = (std::size_t{y} * width + x) * 4;
    if (at + 4 <= values.size())
        std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(at), 4, texel.begin());
    else
        ADD_FAILURE() << "texel " << x << ", " << y << " is not there";
    return texel;
}

inline void expectColor(const Color& actual, const Color& expected, float tolerance,
                        const ovMemory::String& what) {
    for (std::size_t i = 0; i < actual.size(); ++i)
        EXPECT_NEAR(actual[i], expected[i], tolerance) << what << ", component " << i;
}

inline void expectNoDriverErrors(Device& device) {
    EXPECT_EQ(device.takeDebugErrors(), "");
}

} // namespace ovGraphics::device::testing
