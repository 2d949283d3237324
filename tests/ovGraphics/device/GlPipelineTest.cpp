#include <algorithm>
#include <ovGraphics/device/DeviceTesting.h>

namespace ovGraphics::device::testing {

namespace {

/// A vertex stage that changes the quad's clip position.
ovMemory::String vertexText(const ovMemory::String& change) {
    return "#version 450\nlayout(location = 0) in vec4 position;\nlayout(location = 2) in vec2 coordinates;\n"
           "layout(location = 0) out vec2 uv;\nvoid main() { uv = coordinates; vec4 p = position; " +
           change + " gl_Position = p; }\n";
}

ovMemory::UniquePtr<GpuProgram> plainProgram(Device& device, const ovMemory::String& color,
                                             const ovMemory::String& change = {}) {
    return makeProgram(device, pixelText("colour = " + color + ";"), vertexText(change));
}

ovMemory::Buffer<float> redsOf(Device& device, GpuTexture& texture) {
    const auto values = readFloats(device, texture);
    ovMemory::Buffer<float> reds;
    for (std::size_t i = 0; i < values.size(); i += 4)
        reds.push_back(values[i]);
    return reds;
}

} // namespace

TEST(GlPipeline, windingIsJudgedOnTheTargetInBothLanguages) {
    struct Row {
        const char* change; // x mirrored turns the clockwise quad around
        CULL_MODE cull;
        bool counterClockwise;
        float expected; // 1 front, 2 back, 0 culled
    };
    constexpr const char* MIRROR = "p.x = -p.x;";
    constexpr Row ROWS[] = {{"", CULL_MODE::NONE, false, 1},  {MIRROR, CULL_MODE::NONE, false, 2},
                            {"", CULL_MODE::BACK, false, 1},  {MIRROR, CULL_MODE::BACK, false, 0},
                            {"", CULL_MODE::FRONT, false, 0}, {MIRROR, CULL_MODE::FRONT, false, 2},
                            {"", CULL_MODE::NONE, true, 2},   {MIRROR, CULL_MODE::NONE, true, 1},
                            {"", CULL_MODE::BACK, true, 0},   {MIRROR, CULL_MODE::BACK, true, 1},
                            {"", CULL_MODE::FRONT, true, 2},  {MIRROR, CULL_MODE::FRONT, true, 0}};
    for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
        const auto device = openDevice(language);
        ASSERT_TRUE(device);
        const auto texture = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, 2, 2));
        const auto target = makeTarget(*device, {{texture.get(), 0, 0}});
        for (const Row& row : ROWS) {
            const auto program = plainProgram(*device, "vec4(gl_FrontFacing ? 1.0 : 2.0)", row.change);
            RasterStateDesc raster;
            raster.cull = row.cull;
            raster.frontCounterClockwise = row.counterClockwise;
            device->setTarget(*target, {0, 0, 2, 2});
            device->clearColor(0, {0, 0, 0, 0});
            device->setProgram(*program);
            device->setDepthStencilState(noDepth());
            device->setRasterState(raster);
            device->drawFullScreenQuad();
            EXPECT_EQ(redsOf(*device, *texture), ovMemory::Buffer<float>(4, row.expected))
                << nameOf(language) << ", row " << &row - ROWS;
        }
        expectNoDriverErrors(*device);
    }
}

TEST(GlPipeline, depthIsZeroNearAndOneFarInBothLanguages) {
    for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
        const auto device = openDevice(language);
        ASSERT_TRUE(device);
        const bool hlsl = language == SHADER_LANGUAGE::HLSL;
        const auto depth = makeTexture(*device, flat(FORMAT::D32_FLOAT, 1, 1));
        const auto target = makeTarget(*device, {}, {depth.get(), 0, 0});
        DepthStencilStateDesc state;
        state.depthComparison = COMPARISON::ALWAYS;
        struct Row {
            const char* hlslZ;
            const char* glslZ;
            float expected;
        };
        constexpr Row ROWS[] = {{"0.0", "-1.0", 0.0f}, {"0.25", "-0.5", 0.25f}, {"1.0", "1.0", 1.0f}};
        for (const Row& row : ROWS) {
            const auto program = plainProgram(
                *device, "vec4(0.0)", ovMemory::String("p.z = ") + (hlsl ? row.hlslZ : row.glslZ) + ";");
            device->setTarget(*target, {0, 0, 1, 1});
            device->clearDepthStencil(true, 0.5f, false, 0);
            EXPECT_EQ(readFloats(*device, *depth)[0], 0.5f);
            device->setProgram(*program);
            device->setRasterState(noCulling());
            device->setDepthStencilState(state);
            device->drawFullScreenQuad();
            EXPECT_NEAR(readFloats(*device, *depth)[0], row.expected, 1e-6f) << nameOf(language);
        }
        // Beyond the far plane: cut off, or held at the plane without clipping.
        const auto beyond = plainProgram(*device, "vec4(0.0)", "p.z = 1.5;");
        for (const bool clip : {true, false}) {
            RasterStateDesc raster = noCulling();
            raster.depthClip = clip;
            device->clearDepthStencil(true, 0.5f, false, 0);
            device->setProgram(*beyond);
            device->setRasterState(raster);
            device->drawFullScreenQuad();
            EXPECT_EQ(readFloats(*device, *depth)[0], clip ? 0.5f : 1.0f) << nameOf(language);
        }
        expectNoDriverErrors(*device);
    }
}

TEST(GlPipeline, depthComparisonsAndWrites) {
    const auto device = openDevice(SHADER_LANGUAGE::HLSL);
    ASSERT_TRUE(device);
    const auto color = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, 1, 1));
    const auto depth = makeTexture(*device, flat(FORMAT::D32_FLOAT, 1, 1));
    const auto target = makeTarget(*device, {{color.get(), 0, 0}}, {depth.get(), 0, 0});
    // Outcomes of a new depth of 0.25, 0.5 and 0.75 against 0.5.
    constexpr bool PASSES[9][3] = {{},
                                   {false, false, false},
                                   {true, false, false},
                                   {false, true, false},
                                   {true, true, false},
                                   {false, false, true},
                                   {true, false, true},
                                   {false, true, true},
                                   {true, true, true}};
    constexpr float DEPTHS[] = {0.25f, 0.5f, 0.75f};
    for (unsigned int at = 0; at < 3; ++at) {
        const auto program = plainProgram(*device, "vec4(1.0)", "p.z = " + std::to_string(DEPTHS[at]) + ";");
        for (unsigned int number = 1; number <= 8; ++number) {
            for (const bool write : {true, false}) {
                for (const bool test : {true, false}) {
                    DepthStencilStateDesc state;
                    state.depthTest = test;
                    state.depthWrite = write;
                    state.depthComparison = static_cast<COMPARISON>(number);
                    device->setTarget(*target, {0, 0, 1, 1});
                    device->clearColor(0, {0, 0, 0, 0});
                    device->clearDepthStencil(true, 0.5f, true, 0);
                    device->setProgram(*program);
                    device->setDepthStencilState(state);
                    device->drawFullScreenQuad();
                    const bool drawn = !test || PASSES[number][at];
                    const ovMemory::String what =
                        "comparison " + std::to_string(number) + " of " + std::to_string(DEPTHS[at]);
                    EXPECT_EQ(redsOf(*device, *color)[0], drawn ? 1.0f : 0.0f) << what;
                    // Without the test nothing is written either, as in Direct3D.
                    EXPECT_EQ(readFloats(*device, *depth)[0], drawn && test && write ? DEPTHS[at] : 0.5f)
                        << what;
                }
            }
        }
    }
    expectNoDriverErrors(*device);
}

TEST(GlPipeline, stencilOperationsAndMasks) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const auto depth = makeTexture(*device, flat(FORMAT::D24_UNORM_S8_UINT, 1, 1));
    const auto target = makeTarget(*device, {}, {depth.get(), 0, 0});
    const auto program = plainProgram(*device, "vec4(0.0)");
    const auto mirrored = plainProgram(*device, "vec4(0.0)", "p.x = -p.x;");
    using OP = STENCIL_OPERATION;
    struct Row {
        StencilFaceDesc front;
        unsigned int before, reference, readMask, writeMask, expected;
        bool back;
    };
    const Row rows[] = {
        {{OP::KEEP, OP::KEEP, OP::KEEP, COMPARISON::ALWAYS}, 5, 9, 0xff, 0xff, 5, false},
        {{OP::KEEP, OP::KEEP, OP::ZERO, COMPARISON::ALWAYS}, 5, 9, 0xff, 0xff, 0, false},
        {{OP::KEEP, OP::KEEP, OP::REPLACE, COMPARISON::ALWAYS}, 5, 9, 0xff, 0xff, 9, false},
        {{OP::KEEP, OP::KEEP, OP::REPLACE, COMPARISON::ALWAYS}, 0xf0, 0x0f, 0xff, 0x3c, 0xcc, false},
        {{OP::KEEP, OP::KEEP, OP::INCR_SAT, COMPARISON::ALWAYS}, 255, 9, 0xff, 0xff, 255, false},
        {{OP::KEEP, OP::KEEP, OP::INCR, COMPARISON::ALWAYS}, 255, 9, 0xff, 0xff, 0, false},
        {{OP::KEEP, OP::KEEP, OP::DECR_SAT, COMPARISON::ALWAYS}, 0, 9, 0xff, 0xff, 0, false},
        {{OP::KEEP, OP::KEEP, OP::DECR, COMPARISON::ALWAYS}, 0, 9, 0xff, 0xff, 255, false},
        {{OP::KEEP, OP::KEEP, OP::INVERT, COMPARISON::ALWAYS}, 0x0f, 9, 0xff, 0xff, 0xf0, false},
        {{OP::INVERT, OP::KEEP, OP::ZERO, COMPARISON::EQUAL}, 5, 9, 0xff, 0xff, 0xfa, false},
        {{OP::INVERT, OP::KEEP, OP::ZERO, COMPARISON::EQUAL}, 0x19, 0x29, 0x0f, 0xff, 0, false},
        {{OP::KEEP, OP::KEEP, OP::ZERO, COMPARISON::ALWAYS}, 5, 9, 0xff, 0xff, 77, true},
    };
    for (const Row& row : rows) {
        DepthStencilStateDesc state = noDepth();
        state.stencilTest = true;
        state.stencilReadMask = row.readMask;
        state.stencilWriteMask = row.writeMask;
        state.stencilReference = row.back ? 77 : row.reference;
        state.front = row.front;
        state.back = {OP::KEEP, OP::KEEP, OP::REPLACE, COMPARISON::ALWAYS};
        device->setTarget(*target, {0, 0, 1, 1});
        device->clearDepthStencil(true, 1.0f, true, row.before);
        device->setProgram(row.back ? *mirrored : *program);
        device->setRasterState(noCulling());
        device->setDepthStencilState(state);
        device->drawFullScreenQuad();
        // The stencil is the upper byte of the word; the depth below stays 1.
        EXPECT_EQ(readBytes(*device, *depth),
                  (Bytes{0xff, 0xff, 0xff, static_cast<unsigned char>(row.expected)}))
            << "row " << &row - rows;
    }
    expectNoDriverErrors(*device);
}

TEST(GlPipeline, viewportsCountFromTheTopLeftInBothLanguages) {
    constexpr unsigned int WIDTH = 6;
    constexpr unsigned int HEIGHT = 5;
    for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
        const auto device = openDevice(language);
        ASSERT_TRUE(device);
        const auto texture = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, WIDTH, HEIGHT));
        const auto target = makeTarget(*device, {{texture.get(), 0, 0}});
        const auto program = plainProgram(*device, "vec4(1.0 + uv.y)");
        constexpr Rectangle RECTANGLES[] = {
            {0, 0, 6, 5}, {1, 0, 2, 3}, {2, 3, 4, 2}, {5, 4, 1, 1}, {-1, -2, 3, 4}};
        for (const Rectangle& rectangle : RECTANGLES) {
            device->setTarget(*target, rectangle);
            device->clearColor(0, {0, 0, 0, 0}); // the whole target, whatever the viewport
            device->setProgram(*program);
            device->setDepthStencilState(noDepth());
            device->drawFullScreenQuad();
            const auto reds = redsOf(*device, *texture);
            for (unsigned int y = 0; y < HEIGHT; ++y) {
                for (unsigned int x = 0; x < WIDTH; ++x) {
                    const int column = static_cast<int>(x) - rectangle.x;
                    const int row = static_cast<int>(y) - rectangle.y;
                    const bool inside = column >= 0 && row >= 0 &&
                                        column < static_cast<int>(rectangle.width) &&
                                        row < static_cast<int>(rectangle.height);
                    const float v = (static_cast<float>(row) + 0.5f) / static_cast<float>(rectangle.height);
                    EXPECT_NEAR(reds[y * WIDTH + x], inside ? 1.0f + v : 0.0f, 1e-5f)
                        << nameOf(language) << ", " << x << ", " << y;
                }
            }
        }
        expectNoDriverErrors(*device);
    }
}

TEST(GlPipeline, clearsReachWhatMasksHideAndLeaveTheMasksAlone) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    struct Row {
        FORMAT format;
        Color color;
        Bytes expected;
    };
    const Row rows[] = {{FORMAT::R8G8B8A8_UNORM, {1, 0, 0.2f, 2}, {255, 0, 51, 255}},
                        {FORMAT::R8G8B8A8_UNORM_SRGB, {1, 0, 0.21404114f, 0.2f}, {255, 0, 127, 51}},
                        {FORMAT::R8G8B8A8_UINT, {1, 200, 77, 0}, {1, 200, 77, 0}},
                        {FORMAT::R8G8B8A8_SINT, {-1, 100, 77, 0}, {255, 100, 77, 0}}};
    for (const Row& row : rows) {
        const auto texture = makeTexture(*device, flat(row.format, 1, 1));
        const auto target = makeTarget(*device, {{texture.get(), 0, 0}});
        const auto program =
            makeProgram(*device, "#version 450\nlayout(location = 0) out vec4 c;\nvoid main() { c = "
                                 "vec4(0.0); }\n");
        BlendStateDesc nothing;
        nothing.targets[0].writeMask = 0;
        device->setTarget(*target, {0, 0, 1, 1});
        device->setProgram(*program);
        device->setBlendState(nothing);
        device->setDepthStencilState(noDepth());
        if (TextureUtils::getFormatComponent(row.format) == FORMAT_COMPONENT::UNORM)
            device->drawFullScreenQuad();
        device->clearColor(0, row.color);
        const Bytes cleared = readBytes(*device, *texture);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(cleared[i], row.expected[i], 1)
                << TextureUtils::getFormatName(row.format) << ", " << i;
        if (TextureUtils::getFormatComponent(row.format) == FORMAT_COMPONENT::UNORM)
            device->drawFullScreenQuad();
        EXPECT_EQ(readBytes(*device, *texture), cleared); // the mask hides the draw again
    }
    expectNoDriverErrors(*device);
    const auto texture = makeTexture(*device, flat(FORMAT::R8_UNORM, 1, 1));
    const auto target = makeTarget(*device, {{texture.get(), 0, 0}});
    device->setTarget(*target, {0, 0, 1, 1});
    device->clearColor(1, {});
    EXPECT_EQ(device->takeDebugErrors(), "Colour 1 was not cleared: the target has 1");
    device->clearDepthStencil(true, 0.0f, true, 0); // there is none: nothing to do
    expectNoDriverErrors(*device);
}

// A frame sends what changes and nothing else.
TEST(GlPipeline, unchangedStateCostsNoCalls) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const auto texture = makeTexture(*device, flat(FORMAT::R8G8B8A8_UNORM, 4, 4));
    const auto source = makeTexture(*device, flat(FORMAT::R8G8B8A8_UNORM, 4, 4));
    const auto sampler = makeSampler(*device, {});
    const auto target = makeTarget(*device, {{texture.get(), 0, 0}});
    const auto program = plainProgram(*device, "vec4(1.0)");
    ovMemory::String error;
    const auto buffer = device->createBuffer(64, BUFFER_USAGE::CONSTANTS, error);
    BlendStateDesc blend;
    DepthStencilStateDesc depth = noDepth();
    RasterStateDesc raster;
    bool useSource = true;
    Rectangle viewport{0, 0, 4, 4};
    const auto frame = [&] {
        const uint64_t before = device->getStatistics().stateChanges;
        const uint64_t draws = device->getStatistics().drawCalls;
        device->setTarget(*target, viewport);
        device->setProgram(*program);
        device->setBlendState(blend);
        device->setRasterState(raster);
        device->setDepthStencilState(depth);
        device->setTextureUnit(3, useSource ? source.get() : nullptr, sampler.get(), TEXTURE_TYPE::TEXTURE_2D,
                               false);
        device->setConstantBuffer(2, buffer.get());
        device->drawFullScreenQuad();
        EXPECT_EQ(device->getStatistics().drawCalls, draws + 1);
        return device->getStatistics().stateChanges - before;
    };
    EXPECT_GT(frame(), 0u);
    EXPECT_EQ(frame(), 0u);
    blend.targets[0].destinationFactor = BLEND::ONE; // blending is off: the factor does not matter
    EXPECT_EQ(frame(), 0u);
    blend.targets[0].enabled = true; // switch and factors
    EXPECT_EQ(frame(), 2u);
    blend.targets[1].enabled = true; // not independent: the first target's counts
    EXPECT_EQ(frame(), 0u);
    blend.independentBlend = true;
    blend.targets[1] = blend.targets[0];
    blend.targets[1].writeMask = 7;
    for (unsigned int i = 2; i < MAX_COLOR_TARGETS; ++i)
        blend.targets[i] = blend.targets[0];
    EXPECT_EQ(frame(), 1u);
    raster.cull = CULL_MODE::NONE;
    EXPECT_EQ(frame(), 1u);
    depth.stencilReference = 3; // both faces
    EXPECT_EQ(frame(), 2u);
    useSource = false;
    EXPECT_EQ(frame(), 1u);
    viewport.x = 1;
    EXPECT_EQ(frame(), 1u);
    EXPECT_EQ(frame(), 0u);
    device->clearColor(0, {0, 0, 0, 0}); // mask of target 0 is full already
    EXPECT_EQ(frame(), 0u);
    device->invalidateState();
    EXPECT_GT(frame(), 5u);
    EXPECT_EQ(frame(), 0u);
    expectNoDriverErrors(*device);
}

TEST(GlPipeline, drawsWithoutATargetOrProgramAreRefused) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    device->drawFullScreenQuad();
    EXPECT_EQ(device->takeDebugErrors(), "Nothing was drawn: no target is set");
    device->clearColor(0, {});
    EXPECT_EQ(device->takeDebugErrors(), "Colour 0 was not cleared: no target is set");
    device->clearDepthStencil(true, 1.0f, true, 0);
    EXPECT_EQ(device->takeDebugErrors(), "The depth buffer was not cleared: no target is set");
    const auto texture = makeTexture(*device, flat(FORMAT::R8_UNORM, 1, 1));
    auto target = makeTarget(*device, {{texture.get(), 0, 0}});
    auto program = plainProgram(*device, "vec4(1.0)");
    device->setTarget(*target, {0, 0, 1, 1});
    device->drawFullScreenQuad();
    EXPECT_EQ(device->takeDebugErrors(), "Nothing was drawn: no program is set");
    device->setProgram(*program);
    program.reset(); // gone while set
    device->drawFullScreenQuad();
    EXPECT_EQ(device->takeDebugErrors(), "Nothing was drawn: no program is set");
    target.reset();
    device->drawFullScreenQuad();
    EXPECT_EQ(device->takeDebugErrors(), "Nothing was drawn: no target is set");
    device->setTextureUnit(100000, nullptr, nullptr, TEXTURE_TYPE::TEXTURE_2D, false);
    EXPECT_EQ(device->takeDebugErrors().find("Texture unit 100000 is beyond the device's limit of "), 0u);
    device->setConstantBuffer(100000, nullptr);
    EXPECT_EQ(device->takeDebugErrors().find("Constant buffer slot 100000 is beyond the device's limit of "),
              0u);
    EXPECT_EQ(device->getStatistics().drawCalls, 0u);
}

} // namespace ovGraphics::device::testing
