#include <veldris/samples/SampleModel.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <ovGraphics/gltf/GltfEncoder.h>
#include <vector>

namespace {

using Point = std::array<double, 3>;
using Triangle = std::array<Point, 3>;

Point positionAt(const ovGraphics::GltfPrimitive& primitive, std::size_t vertex) {
    std::array<float, 3> position; // the first attribute
    std::memcpy(position.data(), primitive.vertices.data() + vertex * primitive.composition.getStride(),
                sizeof position);
    return {position[0], position[1], position[2]};
}

std::vector<Triangle> trianglesOf(const ovGraphics::GltfScene& scene) {
    std::vector<Triangle> triangles;
    for (const ovGraphics::GltfMesh& mesh : scene.meshes)
        for (const ovGraphics::GltfPrimitive& primitive : mesh.primitives)
            for (std::size_t i = 0; i + 2 < primitive.indices.size(); i += 3)
                triangles.push_back({positionAt(primitive, primitive.indices[i]),
                                     positionAt(primitive, primitive.indices[i + 1]),
                                     positionAt(primitive, primitive.indices[i + 2])});
    return triangles;
}

/// Twice the area that p, q and a place span as seen from above: positive where the place is left of the way
/// from p to q with x to the right and z up the page.
double areaSeenFromAbove(const Point& p, const Point& q, double x, double z) {
    return (q[0] - p[0]) * (z - p[2]) - (q[2] - p[2]) * (x - p[0]);
}

/// Where an upright line meets a triangle.
struct Crossing {
    double height;
    bool facesUp;
};

/// From the lowest to the highest.
std::vector<Crossing> crossingsOf(const std::vector<Triangle>& triangles, double x, double z) {
    std::vector<Crossing> crossings;
    for (const auto& [a, b, c] : triangles) {
        const double ofA = areaSeenFromAbove(b, c, x, z);
        const double ofB = areaSeenFromAbove(c, a, x, z);
        const double ofC = areaSeenFromAbove(a, b, x, z);
        const bool isInside = (ofA > 0.0 && ofB > 0.0 && ofC > 0.0) || (ofA < 0.0 && ofB < 0.0 && ofC < 0.0);
        if (!isInside)
            continue;
        // Fronts run clockwise: seen from above on a page with x to the right and z up, as cameras see it.
        const double area = ofA + ofB + ofC;
        crossings.push_back({(ofA * a[1] + ofB * b[1] + ofC * c[1]) / area, area < 0.0});
    }
    std::ranges::sort(crossings, {}, &Crossing::height);
    return crossings;
}

TEST(SampleModelTest, isAModelThatIsReadWithoutWarnings) {
    const auto bytes = veldris::makeSampleModel();
    const auto read = ovGraphics::GltfEncoder().decode(bytes);
    ASSERT_TRUE(read) << read.error;
    EXPECT_EQ(read.warning, "");
    ASSERT_EQ(read.scene->materials.size(), 2u);
    EXPECT_EQ(read.scene->materials[0].name, "ceramic");
    EXPECT_EQ(read.scene->materials[1].name, "brass");
    EXPECT_EQ(read.scene->images.size(), 1u);
    EXPECT_EQ(veldris::makeSampleModel(), bytes);
}

// Seen from any side, also from below, there is no look into the hollow inside.
TEST(SampleModelTest, isClosedFromAboveAndBelow) {
    const auto read = ovGraphics::GltfEncoder().decode(veldris::makeSampleModel());
    ASSERT_TRUE(read) << read.error;
    const std::vector<Triangle> triangles = trianglesOf(*read.scene);
    constexpr double FOOT_RADIUS = 0.36;
    constexpr int LINES = 40; // in each direction
    unsigned int met = 0;
    for (int i = 0; i < LINES; ++i) {
        for (int j = 0; j < LINES; ++j) {
            // Not on the edges of triangles, which meet in the axis and at round angles.
            const double x = FOOT_RADIUS * (2.0 * (i + 0.5137) / LINES - 1.0);
            const double z = FOOT_RADIUS * (2.0 * (j + 0.4871) / LINES - 1.0);
            if (std::hypot(x, z) > 0.95 * FOOT_RADIUS)
                continue;
            const std::vector<Crossing> crossings = crossingsOf(triangles, x, z);
            ASSERT_GE(crossings.size(), 2u) << x << ", " << z;
            EXPECT_FALSE(crossings.front().facesUp) << x << ", " << z;
            EXPECT_NEAR(crossings.front().height, 0.0, 1e-6) << "it stands on its bottom";
            EXPECT_TRUE(crossings.back().facesUp) << x << ", " << z;
            ++met;
        }
    }
    EXPECT_GT(met, 1000u);
}

} // namespace
