#include <array>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <numbers>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <support/Numbers.h>
#include <support/RecordingLogger.h>

using namespace ovGraphics;
using ovMaths::Matrix;
using ovMaths::Vector;

namespace {

using Double3 = std::array<double, 3>;
using Double4 = std::array<double, 4>;

// Values are computed in double precision or a few float operations deep: a few units of the last place.
constexpr double FEW_ROUNDINGS = 1e-6;

Double3 toDouble(const Vector& vector) {
    return {vector.x, vector.y, vector.z};
}

double dot(const Double3& a, const Double3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Double3 cross(const Double3& a, const Double3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Double3 normalized(const Double3& vector) {
    const double length = std::sqrt(dot(vector, vector));
    return {vector[0] / length, vector[1] / length, vector[2] / length};
}

Double4 transform(const Matrix& matrix, const Double4& vector) {
    Double4 result{};
    for (int row = 0; row < 4; ++row)
        for (unsigned int column = 0; column < 4; ++column)
            result[static_cast<std::size_t>(row)] += double(matrix.m[row][column]) * vector[column];
    return result;
}

void expectNear(const Vector& actual, const Double3& expected, double tolerance, const std::string& what) {
    EXPECT_NEAR(actual.x, expected[0], tolerance) << what;
    EXPECT_NEAR(actual.y, expected[1], tolerance) << what;
    EXPECT_NEAR(actual.z, expected[2], tolerance) << what;
}

class CameraTest : public testing::Test {
protected:
    CameraTest() {
        _camera->setName("eye");
        Configuration configuration;
        configuration.logger = &_logger;
        configuration.device = 1000000; // no such device: the system stays closed but knows its logger
        EXPECT_FALSE(_system.initialize(configuration));
        _logger.messages.clear();
    }

    RecordingLogger _logger;
    System _system;
    ovMemory::UniquePtr<Camera> _camera = Camera::create(&_system);
};

struct Pose {
    const char* name;
    Vector position;
    Vector direction;
    Vector up;
    Double3 expectedUpHint; ///< what the up vector must mean
};

const std::array POSES = {
    Pose{"as new", {}, {0, 0, 1}, {0, 1, 0}, {0, 1, 0}},
    Pose{"zero up means y", {1, 2, 3}, {3, -1, 2}, {}, {0, 1, 0}},
    Pose{"not finite up means y", {1, 2, 3}, {3, -1, 2}, {NOT_A_NUMBER, 0, 0}, {0, 1, 0}},
    Pose{"any length", {-4, 0.5f, 100}, {0, 0, -250}, {0, 30, 0}, {0, 1, 0}},
    Pose{"tilted up", {0, 0, 0}, {1, 1, 1}, {1, 0, 0}, {1, 0, 0}},
    Pose{"tiny", {0, 0, 0}, {1e-18f, 0, 2e-18f}, {0, 1e-18f, 0}, {0, 1, 0}},
    Pose{"down with an up", {7, 8, 9}, {0, -1, 0}, {0, 0, 1}, {0, 0, 1}},
};

} // namespace

TEST_F(CameraTest, viewMatrixIsTheRotatedTranslation) {
    for (const Pose& pose : POSES) {
        _camera->setPosition(pose.position);
        _camera->lookAt(pose.direction, pose.up);
        // Left-handed: right = up x forward, up = forward x right.
        const Double3 forward = normalized(toDouble(pose.direction));
        const Double3 right = normalized(cross(pose.expectedUpHint, forward));
        const Double3 up = cross(forward, right);
        const Matrix view = _camera->getViewMatrix();
        const std::array<Double3, 3> axes = {right, up, forward};
        for (std::size_t row = 0; row < 3; ++row) {
            for (std::size_t column = 0; column < 3; ++column)
                EXPECT_NEAR(view.m[row][column], axes[row][column], FEW_ROUNDINGS) << pose.name;
            // The position is at most about 100 m away: its rounding dominates.
            EXPECT_NEAR(view.m[row][3], -dot(axes[row], toDouble(pose.position)), 2e-5) << pose.name;
        }
        EXPECT_EQ(view.getRow3(), Vector(0, 0, 0, 1)) << pose.name;
        expectNear(_camera->getDirection(), forward, FEW_ROUNDINGS, pose.name);
    }
}

TEST_F(CameraTest, upAlongTheDirectionStillGivesARotation) {
    for (const Vector& direction : {Vector(0, 1, 0), Vector(0, -1, 0), Vector(2, 0, 0), Vector(1, 2, 3)}) {
        for (const float sign : {1.0f, -1.0f}) {
            _camera->lookAt(direction, direction * sign);
            const Matrix view = _camera->getViewMatrix();
            const std::array<Double3, 3> rows = {toDouble(view.getRow0()), toDouble(view.getRow1()),
                                                 toDouble(view.getRow2())};
            const Double3 rightCrossUp = cross(rows[0], rows[1]);
            for (std::size_t i = 0; i < 3; ++i) {
                EXPECT_NEAR(dot(rows[i], rows[i]), 1.0, FEW_ROUNDINGS);
                EXPECT_NEAR(dot(rows[i], rows[(i + 1) % 3]), 0.0, FEW_ROUNDINGS);
                EXPECT_NEAR(rightCrossUp[i], rows[2][i], FEW_ROUNDINGS); // not mirrored
            }
            expectNear(_camera->getDirection(), normalized(toDouble(direction)), FEW_ROUNDINGS, "direction");
        }
    }
}

TEST_F(CameraTest, directionsThatAreNoneChangeNothing) {
    _camera->lookAt({1, 2, 3}, {0, 1, 0});
    const Matrix before = _camera->getViewMatrix();
    for (const Vector& direction :
         {Vector(), Vector(NOT_A_NUMBER, 0, 1), Vector(INFINITE, 0, 0), Vector(0, -INFINITE, 1)}) {
        _camera->lookAt(direction, {0, 1, 0});
        for (int i = 0; i < 16; ++i)
            EXPECT_EQ(_camera->getViewMatrix().get(i / 4, i % 4), before.get(i / 4, i % 4));
    }
}

TEST_F(CameraTest, projectionsOfBothLanguages) {
    struct Row {
        double fov, aspect, nearPlane, farPlane;
    };
    for (const Row& row : {Row{1.0471976, 1.0, 0.1, 1000.0}, Row{0.5, 16.0 / 9.0, 0.5, 50.0},
                           Row{3.0, 0.25, 1.0, 2.0}, Row{std::numbers::pi / 2, 1.0, 0.01, 10.0}}) {
        ASSERT_TRUE(_camera->setPerspective(float(row.fov), float(row.aspect), float(row.nearPlane),
                                            float(row.farPlane)));
        const double tangent = std::tan(row.fov / 2);
        for (const double z : {row.nearPlane, 0.5 * (row.nearPlane + row.farPlane), row.farPlane}) {
            for (const double x : {-1.0, 0.0, 0.5}) {
                const double y = 0.75;
                const Double4 point = {x * tangent * row.aspect * z, y * tangent * z, z, 1.0};
                // D3D's clip space: z / w = far / (far - near) (1 - near / z).
                const double depth =
                    row.farPlane / (row.farPlane - row.nearPlane) * (1.0 - row.nearPlane / z);
                const Double4 plain = transform(_camera->getProjectionMatrix(), point);
                const Double4 hlsl = transform(_camera->getProjectionMatrix(SHADER_LANGUAGE::HLSL), point);
                const Double4 glsl = transform(_camera->getProjectionMatrix(SHADER_LANGUAGE::GLSL), point);
                for (const Double4& clip : {plain, hlsl}) {
                    EXPECT_NEAR(clip[3], z, FEW_ROUNDINGS * z);
                    EXPECT_NEAR(clip[0] / clip[3], x, FEW_ROUNDINGS);
                    EXPECT_NEAR(clip[1] / clip[3], y, FEW_ROUNDINGS);
                    EXPECT_NEAR(clip[2] / clip[3], depth, FEW_ROUNDINGS);
                }
                EXPECT_NEAR(glsl[3], z, FEW_ROUNDINGS * z);
                EXPECT_NEAR(glsl[0] / glsl[3], x, FEW_ROUNDINGS);
                EXPECT_NEAR(glsl[1] / glsl[3], -y, FEW_ROUNDINGS); // row 0 of a target is the top
                EXPECT_NEAR(glsl[2] / glsl[3], 2 * depth - 1, 2 * FEW_ROUNDINGS);
            }
        }
    }
}

TEST_F(CameraTest, orthographicProjection) {
    ASSERT_TRUE(_camera->setOrthographic(8.0f, 4.0f, 1.0f, 11.0f));
    EXPECT_TRUE(_camera->isOrthographic());
    EXPECT_EQ(_camera->getOrthographicHeight(), 4.0f);
    EXPECT_EQ(_camera->getAspect(), 2.0f);
    const Double4 plain = transform(_camera->getProjectionMatrix(), {4.0, -2.0, 6.0, 1.0});
    const Double4 glsl =
        transform(_camera->getProjectionMatrix(SHADER_LANGUAGE::GLSL), {4.0, -2.0, 6.0, 1.0});
    const Double4 expectedPlain = {1.0, -1.0, 0.5, 1.0};
    const Double4 expectedGlsl = {1.0, 1.0, 0.0, 1.0};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_NEAR(plain[i], expectedPlain[i], FEW_ROUNDINGS);
        EXPECT_NEAR(glsl[i], expectedGlsl[i], FEW_ROUNDINGS);
    }
    const Camera::Corners corners = _camera->getCornersView();
    expectNear(corners[0], {-4, 2, 1}, FEW_ROUNDINGS, "top left");
    expectNear(corners[3], {4, -2, 1}, FEW_ROUNDINGS, "bottom right");
    expectNear(_camera->getDirectionAtPixelView(0.9f, 0.1f), {0, 0, 1}, 0.0, "parallel");
    _camera->setAspect(3.0f);
    expectNear(_camera->getCornersView()[1], {6, 2, 1}, FEW_ROUNDINGS, "top right");
}

TEST_F(CameraTest, projectionParametersTurnDepthBack) {
    for (const auto& [nearPlane, farPlane] :
         {std::pair(0.5, 50.0), std::pair(0.1, 1000.0), std::pair(1.0, 2.0)}) {
        ASSERT_TRUE(_camera->setPerspective(1.0f, 1.0f, float(nearPlane), float(farPlane)));
        const Vector parameters = _camera->getProjectionParameters();
        EXPECT_EQ(parameters.z, float(nearPlane));
        EXPECT_EQ(parameters.w, float(farPlane));
        for (const double z : {nearPlane, 0.25 * nearPlane + 0.75 * farPlane, farPlane}) {
            const double depth = farPlane / (farPlane - nearPlane) * (1.0 - nearPlane / z);
            const double fromParameters = parameters.y / (depth - parameters.x);
            // A is rounded to a float near 1, and the difference of two numbers near 1 magnifies that.
            const double magnified = 1.2e-7 / std::abs(depth - double(parameters.x));
            EXPECT_NEAR(fromParameters / (z / farPlane), 1.0, magnified + FEW_ROUNDINGS);
        }
    }
}

TEST_F(CameraTest, cornersInTheQuadsVertexOrder) {
    const float fov = 0.9f;
    const float aspect = 1.5f;
    ASSERT_TRUE(_camera->setPerspective(fov, aspect, 0.1f, 100.0f));
    _camera->setPosition({10, 20, 30}); // corners are directions: the position does not matter
    _camera->lookAt({1, -2, 0.5f}, {0, 1, 0});
    const double y = std::tan(double(fov) / 2);
    const double x = y * aspect;
    const std::array<Double3, 4> expected = {{{-x, y, 1}, {x, y, 1}, {-x, -y, 1}, {x, -y, 1}}};
    const Double3 forward = normalized({1, -2, 0.5});
    const Double3 right = normalized(cross({0, 1, 0}, forward));
    const Double3 up = cross(forward, right);
    for (std::size_t i = 0; i < 4; ++i) {
        expectNear(_camera->getCornersView()[i], expected[i], FEW_ROUNDINGS, "view " + std::to_string(i));
        Double3 world{};
        for (std::size_t axis = 0; axis < 3; ++axis)
            world[axis] = right[axis] * expected[i][0] + up[axis] * expected[i][1] + forward[axis];
        expectNear(_camera->getCornersWorld()[i], world, FEW_ROUNDINGS, "world " + std::to_string(i));
        const float u = i % 2 == 0 ? 0.0f : 1.0f;
        const float v = i < 2 ? 0.0f : 1.0f;
        expectNear(_camera->getDirectionAtPixelView(u, v), normalized(expected[i]), FEW_ROUNDINGS, "pixel");
        expectNear(_camera->getDirectionAtPixelWorld(u, v), normalized(world), FEW_ROUNDINGS, "pixel");
    }
}

TEST_F(CameraTest, cubeFacesLookWhereDirect3dHasTheirTexels) {
    struct Face {
        Vector direction, up;
        std::function<Double3(double, double)> texel; ///< of u to the right and v down, -1 to 1
    };
    const std::array faces = {
        Face{{1, 0, 0},
             {0, 1, 0},
             [](double u, double v) {
                 return Double3{1, -v, -u};
             }},
        Face{{-1, 0, 0},
             {0, 1, 0},
             [](double u, double v) {
                 return Double3{-1, -v, u};
             }},
        Face{{0, 1, 0},
             {0, 0, -1},
             [](double u, double v) {
                 return Double3{u, 1, v};
             }},
        Face{{0, -1, 0},
             {0, 0, 1},
             [](double u, double v) {
                 return Double3{u, -1, -v};
             }},
        Face{{0, 0, 1},
             {0, 1, 0},
             [](double u, double v) {
                 return Double3{u, -v, 1};
             }},
        Face{{0, 0, -1},
             {0, 1, 0},
             [](double u, double v) {
                 return Double3{-u, -v, -1};
             }},
    };
    ASSERT_TRUE(_camera->setPerspective(std::numbers::pi_v<float> / 2, 1.0f, 0.1f, 10.0f));
    for (const Face& face : faces) {
        _camera->lookAt(face.direction, face.up);
        for (const double u : {-1.0, -0.25, 0.5})
            for (const double v : {-0.75, 0.0, 1.0})
                expectNear(_camera->getDirectionAtPixelWorld(float(0.5 + 0.5 * u), float(0.5 + 0.5 * v)),
                           normalized(face.texel(u, v)), FEW_ROUNDINGS, face.direction.toString());
    }
}

TEST_F(CameraTest, invalidValuesAreRefusedWithOneLine) {
    const float pi = std::numbers::pi_v<float>;
    const std::array<std::array<float, 4>, 12> perspectives = {{{0, 1, 1, 2},
                                                                {-1, 1, 1, 2},
                                                                {pi + 0.001f, 1, 1, 2},
                                                                {NOT_A_NUMBER, 1, 1, 2},
                                                                {1, 0, 1, 2},
                                                                {1, INFINITE, 1, 2},
                                                                {1, 1, 0, 2},
                                                                {1, 1, -1, 2},
                                                                {1, 1, 2, 2},
                                                                {1, 1, 2, 1},
                                                                {1, 1, 1, INFINITE},
                                                                {1, 1, NOT_A_NUMBER, 2}}};
    const std::array<std::array<float, 4>, 5> orthographics = {
        {{0, 1, 1, 2}, {1, -1, 1, 2}, {NOT_A_NUMBER, 1, 1, 2}, {1, 1, 0, 2}, {1, 1, 3, 2}}};
    ASSERT_TRUE(_camera->setPerspective(1.25f, 1.5f, 0.25f, 75.0f));
    for (const auto& values : perspectives)
        EXPECT_FALSE(_camera->setPerspective(values[0], values[1], values[2], values[3])) << values[0];
    for (const auto& values : orthographics)
        EXPECT_FALSE(_camera->setOrthographic(values[0], values[1], values[2], values[3])) << values[0];
    for (const float aspect : {0.0f, -1.0f, NOT_A_NUMBER, INFINITE})
        _camera->setAspect(aspect);
    EXPECT_FALSE(_camera->isOrthographic());
    EXPECT_EQ(_camera->getPerspectiveFov(), 1.25f);
    EXPECT_EQ(_camera->getAspect(), 1.5f);
    EXPECT_EQ(_camera->getNear(), 0.25f);
    EXPECT_EQ(_camera->getFar(), 75.0f);
    ASSERT_EQ(_logger.messages.size(), perspectives.size() + orthographics.size());
    EXPECT_EQ(
        _logger.messages.front(),
        (RecordingLogger::Message{
            "Could not set the perspective of the camera 'eye': vertical angle 0.000000 rad, aspect "
            "1.000000, near 1.000000, far 2.000000 were given; the angle must lie between 0 and pi, the "
            "aspect above 0, near above 0 and far beyond near, all of them finite.",
            "Camera"}));
    EXPECT_EQ(
        _logger.messages.back().message,
        "Could not set the orthographic view of the camera 'eye': width 1.000000 m, height 1.000000 m, "
        "near 3.000000, far 2.000000 were given; width and height must lie above 0, near above 0 and far "
        "beyond near, all of them finite.");
}

TEST_F(CameraTest, resetMakesItNew) {
    _camera->setPosition({1, 2, 3});
    _camera->lookAt({0, 1, 0}, {1, 0, 0});
    ASSERT_TRUE(_camera->setOrthographic(2, 2, 3, 4));
    _camera->reset();
    const ovMemory::UniquePtr<Camera> fresh = Camera::create(&_system);
    EXPECT_FALSE(_camera->isOrthographic());
    EXPECT_EQ(_camera->getPosition(), Vector());
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(_camera->getViewMatrix().get(i / 4, i % 4), fresh->getViewMatrix().get(i / 4, i % 4));
        EXPECT_EQ(_camera->getProjectionMatrix().get(i / 4, i % 4),
                  fresh->getProjectionMatrix().get(i / 4, i % 4));
    }
}
