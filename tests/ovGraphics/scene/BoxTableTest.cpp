#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <ovGraphics/resources/Frustum.h>
#include <ovGraphics/scene/BoxTable.h>
#include <random>

using namespace ovGraphics;
using ovMaths::Matrix;
using ovMaths::Vector;

TEST(BoxTableTest, seesWhatTheBoxesSee) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> place(-30.0f, 30.0f);
    std::uniform_real_distribution<float> size(0.0f, 6.0f);
    constexpr std::size_t COUNT = 3000; // more than one block, the last one not full
    BoxTable table;
    ovMemory::Buffer<BoundingBox> boxes;
    table.insert(0, COUNT);
    for (std::size_t i = 0; i < COUNT; ++i) {
        boxes.push_back(BoundingBox::newBox({place(random), place(random), place(random)},
                                            {size(random), size(random), size(random)}));
        table.set(i, boxes[i]);
    }
    for (int view = 0; view < 20; ++view) {
        Matrix projection;
        projection.setToPerspectiveMatrix(0.9f, 1.5f, 0.5f, 40.0f);
        Matrix movement;
        movement.setPositionComponent({place(random), place(random), place(random)});
        const Frustum frustum(projection * movement);
        const std::size_t begin = static_cast<std::size_t>(view) * 7;
        ovMemory::Buffer<unsigned char> inside(COUNT, 9);
        table.check(frustum, Frustum::PLANE_COUNT, begin, COUNT - 3, inside.data() + begin);
        std::size_t seen = 0;
        for (std::size_t i = begin; i < COUNT - 3; ++i) {
            ASSERT_EQ(inside[i] != 0, boxes[i].checkAgainst(frustum)) << view << ", " << i;
            seen += inside[i];
        }
        EXPECT_EQ(inside[COUNT - 3], 9) << "beyond the end";
        EXPECT_LT(seen, COUNT / 2);
    }
}

TEST(BoxTableTest, planesThatCutNothingOffAreLeftOut) {
    Matrix projection;
    projection.setToOrthographicMatrix(4.0f, 4.0f, 1.0f, 10.0f);
    BoxTable table;
    table.insert(0, 3);
    table.set(0, BoundingBox::newCube({0.0f, 0.0f, 5.0f}, 1.0f));
    table.set(1, BoundingBox::newCube({0.0f, 0.0f, 50.0f}, 1.0f));
    table.set(2, BoundingBox::newCube({9.0f, 0.0f, -5.0f}, 1.0f));
    const auto check = [&](unsigned int planes) {
        std::array<unsigned char, 3> inside{};
        table.check(Frustum(projection), planes, 0, 3, inside.data());
        return inside;
    };
    EXPECT_EQ(check(Frustum::PLANE_COUNT), (std::array<unsigned char, 3>{1, 0, 0}));
    EXPECT_EQ(check(4), (std::array<unsigned char, 3>{1, 1, 0})) << "near and far come last";
}

TEST(BoxTableTest, boxesComeGoAndMove) {
    BoxTable table;
    table.insert(0, 2);
    EXPECT_EQ(table.getCenter(0), Vector());
    table.set(0, BoundingBox::newCube({1.0f, 0.0f, 0.0f}, 1.0f));
    table.set(1, BoundingBox::newCube({2.0f, 0.0f, 0.0f}, 1.0f));
    table.insert(1);
    EXPECT_EQ(table.getCount(), 3u);
    EXPECT_EQ(table.getCenter(0), Vector(1.0f, 0.0f));
    EXPECT_EQ(table.getCenter(1), Vector());
    EXPECT_EQ(table.getCenter(2), Vector(2.0f, 0.0f));
    table.copy(2, 0);
    table.truncate(1);
    EXPECT_EQ(table.getCount(), 1u);
    EXPECT_EQ(table.getCenter(0), Vector(2.0f, 0.0f));

    table.set(0, BoundingBox());
    unsigned char inside = 0;
    Matrix projection;
    projection.setToPerspectiveMatrix(0.9f, 1.0f, 0.5f, 40.0f);
    table.check(Frustum(projection), Frustum::PLANE_COUNT, 0, 1, &inside);
    EXPECT_EQ(inside, 1) << "an empty box holds everything here";
}

TEST(BoxTableTest, aBoxThatMovesKeepsItsSize) {
    BoxTable table;
    table.insert(0, 10);
    table.set(9, BoundingBox::newBox({0.0f, 0.0f, 5.0f}, {0.2f, 0.4f, 0.6f}));
    for (int step = 1; step <= 10000; ++step) // far enough for a size that is computed from corners to drift
        ASSERT_TRUE(table.setCenter(9, {0.1f * static_cast<float>(step), 3e4f, 5.0f}));
    ASSERT_TRUE(table.setCenter(9, {2.0f, 0.0f, 5.0f}));
    EXPECT_EQ(table.getCenter(9), Vector(2.0f, 0.0f, 5.0f));
    const auto sees = [&](float width) {
        Matrix projection;
        projection.setToOrthographicMatrix(width, 4.0f, 1.0f, 10.0f);
        unsigned char inside = 9;
        table.check(Frustum(projection), Frustum::PLANE_COUNT, 9, 10, &inside);
        return inside == 1;
    };
    EXPECT_TRUE(sees(2.0f * 1.9001f));
    EXPECT_FALSE(sees(2.0f * 1.8999f)) << "its nearer side is at 1.9";
}

TEST(BoxTableTest, whatHoldsEverythingDoesNotMove) {
    BoxTable table;
    table.insert(0, 2);
    EXPECT_FALSE(table.setCenter(0, {1.0f, 2.0f, 3.0f}));
    EXPECT_EQ(table.getCenter(0), Vector());
    table.set(1, BoundingBox::newCube({1.0f, 0.0f, 0.0f}, 1.0f));
    const float infinite = std::numeric_limits<float>::infinity();
    for (const Vector& center : {Vector(infinite, 0.0f), Vector(0.0f, -infinite),
                                 Vector(0.0f, 0.0f, std::numeric_limits<float>::quiet_NaN())}) {
        EXPECT_FALSE(table.setCenter(1, center));
        EXPECT_EQ(table.getCenter(1), Vector(1.0f, 0.0f));
    }
}
