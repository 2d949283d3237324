#include <gtest/gtest.h>
#include <limits>
#include <ovGraphics/resources/Frustum.h>
#include <ovGraphics/scene/DrawGroup.h>

using namespace ovGraphics;
using ovMaths::Matrix;
using ovMaths::Vector;

namespace {

constexpr uint32_t NO_GAPS = 0;

class DrawGroupTest : public testing::Test {
protected:
    /// The entities in their order, gaps as '-'; hidden ones are the same as seen ones.
    ovMemory::String entities() const {
        ovMemory::String text;
        for (uint32_t i = 0; i < _group.getSize(); ++i)
            text += _group.getEntity(i) == DrawGroup::GAP ? "-" : std::to_string(_group.getEntity(i));
        return text;
    }
    /// What the runs draw: the index of the first, a colon, how many.
    ovMemory::String runs() const {
        ovMemory::String text;
        for (const DrawGroup::Run& run : _group.getRuns())
            text += (text.empty() ? "" : " ") + std::to_string(run.first) + ":" + std::to_string(run.count);
        return text;
    }
    uint32_t add(uint32_t entity, uint64_t order, float x = 0.0f) {
        const uint32_t index = _group.insert(entity, order);
        _group.show(index, BoundingBox::newCube({x, 0.0f, 5.0f}, 1.0f));
        return index;
    }
    static Frustum fourWide() {
        Matrix projection;
        projection.setToOrthographicMatrix(4.0f, 4.0f, 1.0f, 10.0f);
        return Frustum(projection);
    }

    DrawGroup _group{{}, nullptr, nullptr};
};

} // namespace

TEST_F(DrawGroupTest, keepsTheOrderOfAdditionAndIndices) {
    EXPECT_TRUE(_group.isEmpty());
    EXPECT_EQ(add(0, 10), 0u);
    EXPECT_EQ(add(1, 20), 1u);
    EXPECT_EQ(add(2, 30), 2u);
    _group.isPlaced = true;
    _group.erase(1);
    EXPECT_EQ(entities(), "0-2");
    EXPECT_EQ(add(3, 25), 1u) << "the gap is where it belongs";
    EXPECT_EQ(entities(), "032");
    _group.erase(1);
    EXPECT_EQ(add(4, 26), 1u);
    EXPECT_TRUE(_group.isPlaced) << "nobody moved";
    EXPECT_EQ(add(5, 15), 1u);
    EXPECT_EQ(entities(), "0542");
    EXPECT_FALSE(_group.isPlaced);
    EXPECT_EQ(_group.getOrder(3), 30u);
}

TEST_F(DrawGroupTest, gapsAtTheEndAreGivenBack) {
    add(0, 1);
    add(1, 2);
    add(2, 3);
    _group.erase(1);
    _group.erase(2);
    EXPECT_EQ(entities(), "0");
    _group.erase(0);
    EXPECT_TRUE(_group.isEmpty());
    EXPECT_EQ(_group.getSize(), 0u);
}

TEST_F(DrawGroupTest, closesGapsWhenTheyPrevail) {
    for (uint32_t i = 0; i < 40; ++i)
        add(i, i);
    for (uint32_t i = 0; i < 20; ++i)
        _group.erase(i);
    EXPECT_FALSE(_group.closeGaps()) << "half of them";
    _group.isPlaced = true;
    _group.erase(20);
    EXPECT_TRUE(_group.closeGaps());
    EXPECT_FALSE(_group.isPlaced);
    EXPECT_EQ(_group.getSize(), 19u);
    EXPECT_EQ(_group.getEntity(0), 21u);
    EXPECT_EQ(_group.getOrder(18), 39u);
    EXPECT_EQ(_group.getBoxes().getCount(), 19u);
    _group.updateSights(nullptr, 0, false, NO_GAPS);
    EXPECT_EQ(runs(), "0:19");
}

TEST_F(DrawGroupTest, runsEndAtWhatIsHiddenAndAtLongGaps) {
    const Frustum frustum = fourWide();
    constexpr float OUT = 9.0f;
    const float places[] = {OUT, 0.0f, OUT, 1.0f, OUT, OUT, OUT, 0.0f, 0.0f, OUT};
    for (const float x : places)
        add(_group.getSize(), _group.getSize(), x);
    const auto runsWith = [&](uint32_t gapLength) {
        _group.hide(8);
        _group.show(8, BoundingBox::newCube({0.0f, 0.0f, 5.0f}, 1.0f));
        _group.updateSights(&frustum, Frustum::PLANE_COUNT, true, gapLength);
        return runs();
    };
    EXPECT_EQ(runsWith(NO_GAPS), "1:1 3:1 7:2");
    EXPECT_EQ(runsWith(1), "1:3 7:2");
    EXPECT_EQ(runsWith(2), "1:3 7:2");
    EXPECT_EQ(runsWith(3), "1:8");
    _group.hide(5);
    EXPECT_EQ(runsWith(3), "1:3 7:2") << "a hidden one is never drawn along";
    _group.updateSights(nullptr, 0, true, NO_GAPS);
    EXPECT_EQ(runs(), "0:5 6:4");
}

TEST_F(DrawGroupTest, looksOnlyAtThoseThatWereShownUnlessAskedForAll) {
    const Frustum frustum = fourWide();
    for (uint32_t i = 0; i < 3; ++i)
        add(i, i);
    _group.updateSights(&frustum, Frustum::PLANE_COUNT, false, NO_GAPS);
    EXPECT_EQ(runs(), "0:3");
    _group.show(1, BoundingBox::newCube({9.0f, 0.0f, 5.0f}, 1.0f));
    _group.updateSights(&frustum, Frustum::PLANE_COUNT, false, NO_GAPS);
    EXPECT_EQ(runs(), "0:1 2:1");
    const Frustum elsewhere(Matrix::newMat4(1, 0, 0, 100, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
    _group.updateSights(&elsewhere, Frustum::PLANE_COUNT, false, NO_GAPS);
    EXPECT_EQ(runs(), "0:1 2:1");
    _group.updateSights(&elsewhere, Frustum::PLANE_COUNT, true, NO_GAPS);
    EXPECT_EQ(runs(), "");
}

TEST_F(DrawGroupTest, whatMovesIsLookedAtAgain) {
    add(0, 10);
    add(1, 20, 50.0f);
    const Frustum frustum = fourWide();
    _group.updateSights(&frustum, Frustum::PLANE_COUNT, true, NO_GAPS);
    EXPECT_EQ(runs(), "0:1");
    ASSERT_TRUE(_group.move(1, {1.0f, 0.0f, 5.0f}));
    _group.updateSights(&frustum, Frustum::PLANE_COUNT, false, NO_GAPS);
    EXPECT_EQ(runs(), "0:2");
    ASSERT_TRUE(_group.move(0, {-9.0f, 0.0f, 5.0f}));
    _group.updateSights(&frustum, Frustum::PLANE_COUNT, false, NO_GAPS);
    EXPECT_EQ(runs(), "1:1");
    EXPECT_FALSE(_group.move(0, {std::numeric_limits<float>::infinity(), 0.0f, 5.0f}));
}
