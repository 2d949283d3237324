#include <algorithm>
#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <ovGraphics/scene/MeshOptimizer.h>
#include <random>
#include <support/Numbers.h>

using namespace ovGraphics;

namespace {

using Bytes = ovMemory::Buffer<unsigned char>;
using Indices = ovMemory::Buffer<std::uint32_t>;
using Vertex = std::array<float, 4>;

VertexComposition makeComposition(FORMAT position = FORMAT::R32G32B32_FLOAT) {
    VertexComposition composition;
    composition.addAttribute("POSITION", position);
    composition.addAttribute("ID", FORMAT::R32_FLOAT);
    return composition;
}

Bytes pack(const std::vector<Vertex>& vertices) {
    const auto* begin = reinterpret_cast<const unsigned char*>(vertices.data());
    return {begin, begin + vertices.size() * sizeof(Vertex)};
}

// Each triangle begun at its smallest corner, which keeps its sense of rotation; in ascending order.
std::vector<std::array<Vertex, 3>> trianglesOf(const Bytes& bytes, const Indices& indices) {
    std::vector<Vertex> vertices(bytes.size() / sizeof(Vertex));
    if (!bytes.empty())
        std::memcpy(vertices.data(), bytes.data(), bytes.size());
    std::vector<std::array<Vertex, 3>> triangles;
    const std::size_t corners = indices.empty() ? vertices.size() : indices.size();
    const auto corner = [&](std::size_t i) { return vertices[indices.empty() ? i : indices[i]]; };
    for (std::size_t i = 0; i + 2 < corners; i += 3) {
        auto& triangle =
            triangles.emplace_back(std::array<Vertex, 3>{corner(i), corner(i + 1), corner(i + 2)});
        std::rotate(triangle.begin(), std::min_element(triangle.begin(), triangle.end()), triangle.end());
    }
    std::sort(triangles.begin(), triangles.end());
    return triangles;
}

// A bumpy grid of quads, its triangles in random order.
void makeGrid(unsigned int side, std::vector<Vertex>& vertices, Indices& indices) {
    for (unsigned int y = 0; y <= side; ++y)
        for (unsigned int x = 0; x <= side; ++x)
            vertices.push_back({float(x), float(y), float((x * 7 + y * 3) % 5), float(y * (side + 1) + x)});
    std::vector<std::array<std::uint32_t, 3>> triangles;
    for (unsigned int y = 0; y < side; ++y)
        for (unsigned int x = 0; x < side; ++x) {
            const std::uint32_t a = y * (side + 1) + x;
            triangles.push_back({a, a + 1, a + side + 1});
            triangles.push_back({a + 1, a + side + 2, a + side + 1});
        }
    std::shuffle(triangles.begin(), triangles.end(), std::mt19937(1));
    for (const auto& triangle : triangles)
        indices.insert(indices.end(), triangle.begin(), triangle.end());
}

// Vertices that a cache of 16, first in first out, has to fetch.
std::size_t countFetches(const Indices& indices) {
    std::vector<std::uint32_t> cache;
    std::size_t fetches = 0;
    for (const std::uint32_t index : indices) {
        if (std::find(cache.begin(), cache.end(), index) != cache.end())
            continue;
        ++fetches;
        cache.push_back(index);
        if (cache.size() > 16)
            cache.erase(cache.begin());
    }
    return fetches;
}

} // namespace

TEST(MeshOptimizerTest, drawsTheSameTrianglesWithFewerFetches) {
    std::vector<Vertex> vertices;
    Indices indices;
    makeGrid(24, vertices, indices);
    const Bytes before = pack(vertices);
    Bytes bytes = before;
    Indices optimized = indices;
    ASSERT_TRUE(optimizeMesh(makeComposition(), bytes, optimized));
    EXPECT_EQ(trianglesOf(bytes, optimized), trianglesOf(before, indices));
    EXPECT_EQ(bytes.size(), before.size());
    // A random order fetches nearly every corner; a good one each vertex not much more than once.
    EXPECT_GT(countFetches(indices), 3000u);
    EXPECT_LT(countFetches(optimized), vertices.size() * 3 / 2);
    // Vertices come in the order of their first use.
    std::uint32_t next = 0;
    for (const std::uint32_t index : optimized) {
        EXPECT_LE(index, next);
        next = std::max(next, index + 1);
    }
}

TEST(MeshOptimizerTest, isDeterministic) {
    std::vector<Vertex> vertices;
    Indices indices;
    makeGrid(16, vertices, indices);
    Bytes one = pack(vertices);
    Bytes other = one;
    Indices otherIndices = indices;
    ASSERT_TRUE(optimizeMesh(makeComposition(), one, indices));
    ASSERT_TRUE(optimizeMesh(makeComposition(), other, otherIndices));
    EXPECT_EQ(one, other);
    EXPECT_EQ(indices, otherIndices);
}

TEST(MeshOptimizerTest, findsPositionsBehindOtherAttributes) {
    std::vector<Vertex> vertices;
    Indices indices;
    makeGrid(40, vertices, indices);
    Bytes bytes = pack(vertices);
    for (Vertex& vertex : vertices)
        std::rotate(vertex.begin(), vertex.begin() + 3, vertex.end());
    Bytes rotated = pack(vertices);
    VertexComposition composition;
    composition.addAttribute("ID", FORMAT::R32_FLOAT);
    composition.addAttribute("POSITION", FORMAT::R32G32B32_FLOAT);
    Indices rotatedIndices = indices;
    ASSERT_TRUE(optimizeMesh(makeComposition(), bytes, indices));
    ASSERT_TRUE(optimizeMesh(composition, rotated, rotatedIndices));
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        float id = 0.0f;
        float rotatedId = 0.0f;
        std::memcpy(&id, &bytes[i * sizeof(Vertex) + 3 * sizeof(float)], sizeof(float));
        std::memcpy(&rotatedId, &rotated[i * sizeof(Vertex)], sizeof(float));
        ASSERT_EQ(rotatedId, id) << "vertex " << i << " in the order in which they are drawn";
    }
}

TEST(MeshOptimizerTest, dropsDoublesAndWhatIsNotUsed) {
    const Vertex a{0, 0, 0, 1};
    const Vertex b{1, 0, 0, 2};
    const Vertex c{0, 1, 0, 3};
    const Vertex d{1, 1, 0, 4};
    struct Case {
        const char* name;
        std::vector<Vertex> vertices;
        Indices indices;
        std::size_t expectedVertices;
    };
    const Case cases[] = {
        {"without indices", {a, b, c, b, d, c}, {}, 4},
        {"doubles", {a, b, c, b, d, c}, {0, 1, 2, 3, 4, 5}, 4},
        {"one not used", {a, b, c, d}, {0, 1, 2}, 3},
        {"the same triangle twice", {a, b, c}, {0, 1, 2, 0, 1, 2}, 3},
        {"no area", {a, b, c}, {0, 0, 1, 1, 1, 1}, 2},
        {"nothing", {}, {}, 0},
    };
    for (const Case& row : cases) {
        Bytes bytes = pack(row.vertices);
        Indices indices = row.indices;
        ASSERT_TRUE(optimizeMesh(makeComposition(), bytes, indices)) << row.name;
        EXPECT_EQ(bytes.size(), row.expectedVertices * sizeof(Vertex)) << row.name;
        EXPECT_EQ(trianglesOf(bytes, indices), trianglesOf(pack(row.vertices), row.indices)) << row.name;
    }
}

// A fan, and many vertices that are equal: the order for the cache would take minutes.
TEST(MeshOptimizerTest, endsWhereManyTrianglesMeet) {
    constexpr std::uint32_t TRIANGLES = 200'000;
    std::vector<Vertex> vertices = {{0, 0, 0, -1}};
    Indices fan;
    for (std::uint32_t i = 0; i < TRIANGLES; ++i) {
        vertices.push_back({1, static_cast<float>(i), 0, 0});
        fan.insert(fan.end(), {0, i + 1, i + 1 < TRIANGLES ? i + 2 : 1});
    }
    Bytes bytes = pack(vertices);
    const auto before = trianglesOf(bytes, fan);
    EXPECT_TRUE(optimizeMesh(makeComposition(), bytes, fan));
    EXPECT_EQ(trianglesOf(bytes, fan), before);
    Bytes equal(3 * TRIANGLES * sizeof(Vertex));
    Indices none;
    EXPECT_TRUE(optimizeMesh(makeComposition(), equal, none));
    EXPECT_EQ(equal.size(), sizeof(Vertex));
    EXPECT_EQ(none.size(), 3 * TRIANGLES);
}

TEST(MeshOptimizerTest, takesPositionsOfEveryKind) {
    const std::vector<Vertex> vertices = {
        {0, 0, 0, 1}, {1, 0, 0, 2}, {0, 1, 0, 3}, {INFINITE, 0, 0, 4}, {3e38f, 0, -3e38f, 5}};
    const Indices before = {0, 1, 2, 0, 2, 3, 2, 3, 4};
    for (const bool withNan : {false, true}) {
        std::vector<Vertex> own = vertices;
        if (withNan)
            own[1][1] = NOT_A_NUMBER;
        Bytes bytes = pack(own);
        Indices indices = before;
        ASSERT_TRUE(optimizeMesh(makeComposition(), bytes, indices));
        EXPECT_EQ(indices.size(), before.size());
        EXPECT_EQ(bytes.size(), own.size() * sizeof(Vertex));
    }
    VertexComposition other; // no positions to order by
    other.addAttribute("UV", FORMAT::R16G16B16A16_FLOAT);
    Bytes bytes = pack(vertices); // ten of these, of 8 bytes
    Indices indices = {0, 2, 4};
    ASSERT_TRUE(optimizeMesh(other, bytes, indices));
    EXPECT_EQ(indices.size(), 3u);
}

TEST(MeshOptimizerTest, refusesWhatIsNoTriangleList) {
    struct Case {
        const char* name;
        VertexComposition composition;
        std::size_t byteCount;
        Indices indices;
    };
    const VertexComposition composition = makeComposition();
    const Case cases[] = {
        {"no attribute", {}, 48, {0, 1, 2}},
        {"part of a vertex", composition, 47, {0, 1, 2}},
        {"part of a triangle", composition, 48, {0, 1}},
        {"part of a triangle without indices", composition, 64, {}},
        {"index out of range", composition, 48, {0, 1, 3}},
    };
    for (const Case& row : cases) {
        Bytes bytes(row.byteCount, 7);
        Indices indices = row.indices;
        EXPECT_FALSE(optimizeMesh(row.composition, bytes, indices)) << row.name;
        EXPECT_EQ(bytes, Bytes(row.byteCount, 7)) << row.name;
        EXPECT_EQ(indices, row.indices) << row.name;
    }
}
