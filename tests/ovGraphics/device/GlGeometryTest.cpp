#include <ovGraphics/device/DeviceTesting.h>

namespace ovGraphics::device::testing {

namespace {

// A vertex stage with a position of the vertex and a colour of the instance.
constexpr const char* VERTEX = R"(#version 450
layout(location = 0) in vec4 position;
layout(location = 5) in vec4 instanceColour;
layout(location = 0) out vec2 uv;
layout(location = 1) out vec4 passed;
void main() { uv = vec2(0.0); passed = instanceColour; gl_Position = position; }
)";

/// A device, a triangle that covers a texture of one texel, and the data of four instances.
class GlGeometryTest : public ::testing::Test {
protected:
    void SetUp() override {
        device = openDevice();
        ASSERT_TRUE(device);
        vertices = make<float>(BUFFER_USAGE::VERTICES, {-1, -1, 3, -1, -1, 3});
        instances = make<float>(BUFFER_USAGE::VERTICES, {1, 0, 0, 1, 0, 2, 0, 1, 0, 0, 4, 1, 0, 0, 0, 0});
        texture = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, 1, 1));
        target = makeTarget(*device, {{texture.get(), 0, 0}});
        program = makeProgram(*device, pixelText("colour = passed;", "layout(location = 1) in vec4 passed;"),
                              VERTEX);
        geometry = makeGeometry(nullptr);
    }

    template <typename T>
    ovMemory::UniquePtr<GpuBuffer> make(BUFFER_USAGE usage, const ovMemory::Buffer<T>& values) {
        const Bytes bytes = bytesOf(values);
        ovMemory::String error;
        auto buffer = device->createBuffer(static_cast<unsigned int>(bytes.size()), usage, error);
        EXPECT_TRUE(buffer) << error;
        device->updateBuffer(*buffer, 0, bytes);
        return buffer;
    }
    ovMemory::UniquePtr<GpuGeometry> makeGeometry(GpuBuffer* indices, bool shortIndices = false) {
        ovMemory::String error;
        auto made = device->createGeometry({vertices.get(),
                                            8,
                                            {{0, FORMAT::R32G32_FLOAT, 0}},
                                            indices,
                                            shortIndices,
                                            {{5, FORMAT::R32G32B32A32_FLOAT, 0}}},
                                           error);
        EXPECT_TRUE(made) << error;
        return made;
    }
    Color draw(GpuGeometry& drawn, const GeometryDraw& how) {
        device->setTarget(*target, {0, 0, 1, 1});
        device->clearColor(0, {0, 0, 0, 0});
        device->setProgram(*program);
        device->setBlendState(additive());
        device->setRasterState(noCulling());
        device->setDepthStencilState(noDepth());
        device->drawGeometry(drawn, how);
        return texelOf(readFloats(*device, *texture), 1, 0, 0);
    }
    static BlendStateDesc additive() {
        BlendStateDesc blend;
        blend.targets[0].enabled = true;
        blend.targets[0].destinationFactor = blend.targets[0].alphaDestinationFactor = BLEND::ONE;
        return blend;
    }

    ovMemory::UniquePtr<Device> device;
    ovMemory::UniquePtr<GpuBuffer> vertices, instances;
    ovMemory::UniquePtr<GpuTexture> texture;
    ovMemory::UniquePtr<GpuTarget> target;
    ovMemory::UniquePtr<GpuProgram> program;
    ovMemory::UniquePtr<GpuGeometry> geometry;
};

constexpr auto TRIANGLES = PRIMITIVE_TOPOLOGY::TRIANGLELIST;

} // namespace

TEST_F(GlGeometryTest, drawsTheInstancesThatItIsAskedFor) {
    EXPECT_EQ(draw(*geometry, {TRIANGLES, 3, instances.get(), 16, 0, 3}), (Color{1, 2, 4, 3}));
    EXPECT_EQ(draw(*geometry, {TRIANGLES, 3, instances.get(), 16, 1, 1}), (Color{0, 2, 0, 1}));
    EXPECT_EQ(draw(*geometry, {TRIANGLES, 3, instances.get(), 32, 1, 1}), (Color{0, 0, 4, 1}))
        << "another stride";
    const auto longIndices = make<uint32_t>(BUFFER_USAGE::INDICES, {2, 1, 0});
    const auto shortIndices = make<uint16_t>(BUFFER_USAGE::INDICES, {0, 1, 2});
    const GeometryDraw both{TRIANGLES, 3, instances.get(), 16, 1, 2};
    EXPECT_EQ(draw(*makeGeometry(longIndices.get()), both), (Color{0, 2, 4, 2}));
    EXPECT_EQ(draw(*makeGeometry(shortIndices.get(), true), both), (Color{0, 2, 4, 2}));
    expectNoDriverErrors(*device);
}

TEST_F(GlGeometryTest, anotherBufferInTheSamePlaceIsNoticed) {
    const GeometryDraw first{TRIANGLES, 3, instances.get(), 16, 0, 1};
    EXPECT_EQ(draw(*geometry, first), (Color{1, 0, 0, 1}));
    instances.reset(); // OpenGL gives its name to the next one
    instances = make<float>(BUFFER_USAGE::VERTICES, {8, 8, 8, 8});
    EXPECT_EQ(draw(*geometry, {TRIANGLES, 3, instances.get(), 16, 0, 1}), (Color{8, 8, 8, 8}));
    expectNoDriverErrors(*device);
}

TEST_F(GlGeometryTest, whatIsNotThereIsNotDrawn) {
    const Color nothing{};
    EXPECT_EQ(draw(*geometry, {TRIANGLES, 3, instances.get(), 16, 3, 2}), nothing);
    EXPECT_EQ(device->takeDebugErrors(),
              "Nothing was drawn: 2 instances of 16 bytes from instance 3 on are not in their buffer");
    EXPECT_EQ(draw(*geometry, {TRIANGLES, 3, nullptr, 16, 0, 1}), nothing);
    EXPECT_EQ(device->takeDebugErrors(),
              "Nothing was drawn: 1 instances of 16 bytes from instance 0 on are not in their buffer");
    EXPECT_EQ(draw(*geometry, {PRIMITIVE_TOPOLOGY::CONTROL_POINT_PATCHLIST_1, 3, instances.get(), 16, 0, 1}),
              nothing);
    EXPECT_EQ(device->takeDebugErrors(), "Nothing was drawn: topology 33 is not offered");
    ovMemory::String error;
    EXPECT_EQ(device->createGeometry({}, error), nullptr);
    EXPECT_EQ(error, "A geometry needs a buffer of vertices and their size in bytes");
}

} // namespace ovGraphics::device::testing
