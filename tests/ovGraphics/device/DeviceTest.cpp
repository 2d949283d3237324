#include <epoxy/gl.h>
#include <ovGraphics/device/DeviceTesting.h>

namespace ovGraphics::device::testing {

TEST(Device, severalDevicesTakeTurns) {
    const auto glsl = openDevice(SHADER_LANGUAGE::GLSL);
    const auto hlsl = openDevice(SHADER_LANGUAGE::HLSL);
    ASSERT_TRUE(glsl && hlsl);
    struct Bench {
        Device* device;
        ovMemory::UniquePtr<GpuTexture> texture;
        ovMemory::UniquePtr<GpuProgram> program;
        ovMemory::UniquePtr<GpuTarget> target;
    };
    Bench benches[2];
    for (std::size_t i = 0; i < 2; ++i) {
        benches[i].device = i == 0 ? glsl.get() : hlsl.get();
        benches[i].texture = makeTexture(*benches[i].device, flat(FORMAT::R32G32B32A32_FLOAT, 1, 2));
        benches[i].program =
            makeProgram(*benches[i].device,
                        pixelText(i == 0 ? "colour = vec4(uv, 1.0, 1.0);" : "colour = vec4(uv, 2.0, 1.0);"));
        benches[i].target = makeTarget(*benches[i].device, {{benches[i].texture.get(), 0, 0}});
    }
    // Every call goes to the other device than the one before.
    for (Bench& bench : benches)
        bench.device->setTarget(*bench.target, {0, 0, 1, 2});
    for (Bench& bench : benches)
        bench.device->setProgram(*bench.program);
    for (Bench& bench : benches)
        bench.device->setDepthStencilState(noDepth());
    for (Bench& bench : benches)
        bench.device->drawFullScreenQuad();
    for (Bench& bench : benches) {
        const auto values = readFloats(*bench.device, *bench.texture);
        const float mark = &bench == benches ? 1.0f : 2.0f;
        expectColor(texelOf(values, 1, 0, 0), {0.5f, 0.25f, mark, 1.0f}, 1e-5f, "row 0");
        expectColor(texelOf(values, 1, 0, 1), {0.5f, 0.75f, mark, 1.0f}, 1e-5f, "row 1");
    }
    expectNoDriverErrors(*glsl);
    expectNoDriverErrors(*hlsl);
}

// Both devices number their objects alike: freeing one must not free the other's.
TEST(Device, objectsMayGoWhileAnotherDeviceIsCurrent) {
    const auto first = openDevice();
    auto second = openDevice();
    ASSERT_TRUE(first && second);
    const auto kept = makeTexture(*second, flat(FORMAT::R8G8B8A8_UNORM, 1, 1));
    auto gone = makeTexture(*first, flat(FORMAT::R8G8B8A8_UNORM, 1, 1));
    auto sampler = makeSampler(*first, {});
    auto program = makeProgram(*first, pixelText("colour = vec4(1.0);"));
    auto target = makeTarget(*first, {{gone.get(), 0, 0}});
    auto timer = first->createTimer();
    second->uploadTexture(*kept, 0, 0, Bytes{1, 2, 3, 4}, 0); // second is current
    target.reset();
    gone.reset();
    sampler.reset();
    program.reset();
    timer.reset();
    EXPECT_EQ(readBytes(*second, *kept), (Bytes{1, 2, 3, 4}));
    {
        const auto third = openDevice();
        makeTexture(*third, flat(FORMAT::R8G8B8A8_UNORM, 1, 1));
        second->finish();
    } // gone while second is current
    EXPECT_EQ(readBytes(*second, *kept), (Bytes{1, 2, 3, 4}));
    expectNoDriverErrors(*first);
    expectNoDriverErrors(*second);
}

// OpenGL gives freed names to new objects: what was bound under the name must not count as bound.
TEST(Device, namesThatAreUsedAgainAreBoundAgain) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const auto result = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, 1, 1));
    const auto program =
        makeProgram(*device, pixelText("colour = texelFetch(source, ivec2(0), 0) + value;",
                                       "layout(binding = 0) uniform sampler2D source;\n"
                                       "layout(std140, binding = 0) uniform B { vec4 value; };"));
    for (unsigned int round = 1; round <= 4; ++round) {
        const float number = static_cast<float>(round);
        const auto texture = makeTexture(*device, flat(FORMAT::R32_FLOAT, 1, 1));
        const auto sampler = makeSampler(*device, {});
        ovMemory::String error;
        const auto buffer = device->createBuffer(16, BUFFER_USAGE::CONSTANTS, error);
        device->uploadTexture(*texture, 0, 0, bytesOf(ovMemory::Buffer<float>{number}), 0);
        device->updateBuffer(*buffer, 0, bytesOf(ovMemory::Buffer<float>{number * 10.0f, 0, 0, 0}));
        device->setTextureUnit(0, texture.get(), sampler.get(), TEXTURE_TYPE::TEXTURE_2D, false);
        device->setConstantBuffer(0, buffer.get());
        drawOver(*device, *result, *program);
        EXPECT_EQ(readFloats(*device, *result)[0], number * 11.0f);
    }
    expectNoDriverErrors(*device);
}

TEST(Device, driverErrorsAreCollected) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    device->finish(); // makes it current
    glEnable(0xdead);
    const ovMemory::String error = device->takeDebugErrors();
    EXPECT_NE(error.find("GL_INVALID_ENUM"), error.npos) << error;
    expectNoDriverErrors(*device); // taken once
    for (int i = 0; i < 1000; ++i)
        glEnable(0xdead);
    EXPECT_LT(device->takeDebugErrors().size(), 100000u); // a flood is cut
}

TEST(Device, foreignStateIsUndone) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const auto texture = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, 1, 1));
    const auto program = makeProgram(*device, pixelText("colour = vec4(1.0);"));
    drawOver(*device, *texture, *program);
    glUseProgram(0);
    glBindVertexArray(0);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, 0, 0);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ZERO, GL_ONE);
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    glCullFace(GL_FRONT_AND_BACK);
    glPixelStorei(GL_PACK_ALIGNMENT, 8);
    glClipControl(GL_UPPER_LEFT, GL_ZERO_TO_ONE);
    device->invalidateState();
    device->uploadTexture(*texture, 0, 0, Bytes(16), 0);
    drawOver(*device, *texture, *program);
    EXPECT_EQ(readFloats(*device, *texture), ovMemory::Buffer<float>(4, 1.0f));
    expectNoDriverErrors(*device);
}

} // namespace ovGraphics::device::testing
