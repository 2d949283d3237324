#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <numbers>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/ShaderPassMemorySlot.h>
#include <ovGraphics/resources/Texture.h>

using namespace ovGraphics;
using ovMaths::Matrix;
using ovMaths::Vector;

namespace {

using Floats = ovMemory::Buffer<float>;

Floats floatsOf(const ShaderPassMemorySlot& slot, const PassEnvironment& environment) {
    Floats values(slot.getRegisterCount() * 4, -1.0f);
    slot.evaluate(environment, reinterpret_cast<unsigned char*>(values.data()));
    return values;
}

Floats floatsOf(std::initializer_list<Vector> vectors) {
    Floats values;
    for (const Vector& vector : vectors)
        values.insert(values.end(), {vector.x, vector.y, vector.z, vector.w});
    return values;
}

Floats floatsOf(const Matrix& matrix) {
    return {&matrix.m[0][0], &matrix.m[0][0] + 16};
}

class ShaderPassMemorySlotTest : public testing::Test {
protected:
    System _system;
    ovMemory::UniquePtr<Camera> _rendering = Camera::create(&_system);
    ovMemory::UniquePtr<Camera> _named = Camera::create(&_system);
    PassEnvironment _environment{&_system, _rendering.get()};
    ShaderPassMemorySlot _slot;
};

} // namespace

TEST_F(ShaderPassMemorySlotTest, fixedValues) {
    EXPECT_EQ(floatsOf(_slot, _environment), Floats(4, 0.0f)); // a new slot
    const Matrix matrix = Matrix::newMat4(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
    _slot.setFromMatrix(matrix);
    EXPECT_EQ(_slot.getRegisterCount(), 4u);
    EXPECT_EQ(floatsOf(_slot, _environment),
              (Floats{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16})); // row after row
    _slot.setFromVector({1, 2, 3, 4});
    EXPECT_EQ(_slot.getRegisterCount(), 1u);
    EXPECT_EQ(floatsOf(_slot, _environment), (Floats{1, 2, 3, 4}));
}

TEST_F(ShaderPassMemorySlotTest, textureSizeInIntegers) {
    const auto sizes = [&] {
        std::array<int, 4> values{-1, -1, -1, -1};
        _slot.evaluate(_environment, reinterpret_cast<unsigned char*>(values.data()));
        return values;
    };
    auto texture = Texture::create(&_system);
    texture->setWidth(20);
    texture->setHeight(10);
    texture->setSliceCount(3);
    texture->setMipCount(0);
    _slot.setAsTextureSize(texture.get());
    EXPECT_EQ(_slot.getRegisterCount(), 1u);
    EXPECT_EQ(sizes(), (std::array<int, 4>{20, 10, 3, 5}));
    texture->setTexType(TEXTURE_TYPE::CUBE);
    texture->setWidth(40);
    texture->setMipCount(2);
    EXPECT_EQ(sizes(), (std::array<int, 4>{40, 10, 6, 2}));
    texture.reset();
    EXPECT_EQ(sizes(), (std::array<int, 4>{0, 0, 0, 0}));
}

TEST_F(ShaderPassMemorySlotTest, timeWrapsInDoublePrecision) {
    struct Row {
        float modulo;
        double seconds;
        double delta;
        float expected;
    };
    for (const Row& row : {Row{10.0f, 25.5, 0.125, 5.5f}, Row{1.0f, 0.25, 0.0, 0.25f},
                           Row{0.0f, 25.5, 0.5, 25.5f}, Row{-3.0f, 7.0, 0.5, 7.0f},
                           // a float of twelve days has steps of a sixteenth of a second
                           Row{2.0f, 1048577.0078125, 0.015625, 1.0078125f}}) {
        _system.setFixedTime(row.seconds, row.delta);
        _slot.setAsTime(row.modulo);
        EXPECT_EQ(floatsOf(_slot, _environment), (Floats{row.modulo, row.expected, float(row.delta), 0.0f}));
    }
}

TEST_F(ShaderPassMemorySlotTest, cameraValuesOfTheNamedOrRenderingCamera) {
    _rendering->setPosition({1, 2, 3});
    _rendering->lookAt({1, 0, 0}, {});
    ASSERT_TRUE(_rendering->setPerspective(std::numbers::pi_v<float> / 2, 2.0f, 1.0f, 3.0f));
    _named->setPosition({-7, 0, 5});
    ASSERT_TRUE(_named->setPerspective(1.0f, 1.0f, 0.5f, 9.0f));

    using Set = std::function<void(ShaderPassMemorySlot&, Camera*)>;
    using Value = std::function<Floats(const Camera&)>;
    const auto corners = [](const Camera::Corners& c) { return floatsOf({c[0], c[1], c[2], c[3]}); };
    const std::array<std::pair<Set, Value>, 6> kinds = {{
        {[](auto& slot, Camera* camera) { slot.setAsCamCornersWorld(camera); },
         [&](const Camera& camera) { return corners(camera.getCornersWorld()); }},
        {[](auto& slot, Camera* camera) { slot.setAsCamCornersView(camera); },
         [&](const Camera& camera) { return corners(camera.getCornersView()); }},
        {[](auto& slot, Camera* camera) { slot.setAsViewMatrix(camera); },
         [](const Camera& camera) { return floatsOf(camera.getViewMatrix()); }},
        {[](auto& slot, Camera* camera) { slot.setAsProjectionMatrix(camera); },
         [](const Camera& camera) { return floatsOf(camera.getProjectionMatrix(SHADER_LANGUAGE::GLSL)); }},
        {[](auto& slot, Camera* camera) { slot.setAsCameraPosition(camera); },
         [](const Camera& camera) {
             const Vector position = camera.getPosition();
             return Floats{position.x, position.y, position.z, 1.0f};
         }},
        {[](auto& slot, Camera* camera) { slot.setAsProjectionParameters(camera); },
         [](const Camera& camera) { return floatsOf({camera.getProjectionParameters()}); }},
    }};
    for (const auto& [set, value] : kinds) {
        set(_slot, nullptr);
        EXPECT_EQ(floatsOf(_slot, _environment), value(*_rendering));
        EXPECT_EQ(floatsOf(_slot, {&_system, nullptr}), Floats(_slot.getRegisterCount() * 4, 0.0f));
        set(_slot, _named.get());
        EXPECT_EQ(floatsOf(_slot, _environment), value(*_named));
        auto destroyed = Camera::create(&_system);
        set(_slot, destroyed.get());
        destroyed.reset(); // not taken for "the camera that renders"
        EXPECT_EQ(floatsOf(_slot, _environment), Floats(_slot.getRegisterCount() * 4, 0.0f));
    }
    // Not only equal to the camera's: the numbers themselves. Right of +x is -z; half width 2, half height 1.
    _slot.setAsCamCornersWorld();
    const Floats world = floatsOf(_slot, _environment);
    const Floats expected = {1, 1, 2, 0, 1, 1, -2, 0, 1, -1, 2, 0, 1, -1, -2, 0};
    ASSERT_EQ(world.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(world[i], expected[i], 1e-6f) << i; // a tangent and two products of floats
    _slot.setAsProjectionParameters();
    EXPECT_EQ(floatsOf(_slot, _environment), (Floats{1.5f, -0.5f, 1.0f, 3.0f}));
}
