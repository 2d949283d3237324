#include <ovGraphics/device/DeviceTesting.h>

namespace ovGraphics::device::testing {

// The texture coordinates drawn as a colour name the place of each texel: row 0 is the top in both languages.
TEST(GlDevice, quadCoversTheTargetFromTheTopLeftInBothLanguages) {
    constexpr unsigned int SIDE = 4;
    for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
        const auto device = openDevice(language);
        ASSERT_TRUE(device);
        const auto texture = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, SIDE, SIDE));
        const auto program = makeProgram(*device, pixelText("colour = vec4(uv, gl_FragCoord.xy);"));
        drawOver(*device, *texture, *program);
        const auto values = readFloats(*device, *texture);
        for (unsigned int y = 0; y < SIDE; ++y)
            for (unsigned int x = 0; x < SIDE; ++x) {
                const float u = (static_cast<float>(x) + 0.5f) / SIDE;
                const float v = (static_cast<float>(y) + 0.5f) / SIDE;
                // A rasteriser interpolates with some 8 bits below the texel.
                expectColor(texelOf(values, SIDE, x, y), {u, v, u * SIDE, v * SIDE}, 1e-5f, nameOf(language));
            }
        expectNoDriverErrors(*device);
    }
}

} // namespace ovGraphics::device::testing
