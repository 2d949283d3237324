#include <gtest/gtest.h>
#include <memory>
#include <ovCommon/MaybeSingletonClass.h>
#include <ovCommon/singletonLibraries/Counter.h>

namespace {

// A type whose constructor and destructor only its base may call: it exists as the instance alone.
class Hidden : public ovCommon::MaybeSingletonClass<Hidden> {
    friend class ovCommon::MaybeSingletonClass<Hidden>;

public:
    static inline int alive = 0;

private:
    explicit Hidden(bool) { ++alive; }
    ~Hidden() override { --alive; }
};

class MaybeSingletonClassTest : public testing::Test {
protected:
    void SetUp() override { Counter::kill(); }
    void TearDown() override { Counter::kill(); }
};

} // namespace

TEST_F(MaybeSingletonClassTest, IsCreatedByTheFirstGetInstanceOnly) {
    EXPECT_EQ(Counter::getInstanceIfExisting(), nullptr);
    EXPECT_EQ(Counter::getInstanceIfExisting(), nullptr) << "asking must not create it";
    Counter* const first = Counter::getInstance();
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(first->wasMadeAsSingleton());
    EXPECT_EQ(Counter::getInstance(), first);
    EXPECT_EQ(&Counter::getInstanceRef(), first);
    EXPECT_EQ(Counter::getInstanceIfExisting(), first);
}

TEST_F(MaybeSingletonClassTest, ReferenceCreatesItToo) {
    Counter& reference = Counter::getInstanceRef();
    EXPECT_EQ(Counter::getInstanceIfExisting(), &reference);
}

TEST_F(MaybeSingletonClassTest, KillDeletesAndMayBeRepeated) {
    Counter::kill();
    EXPECT_EQ(Counter::getInstanceIfExisting(), nullptr);
    Counter::getInstance();
    Counter::kill();
    EXPECT_EQ(Counter::getInstanceIfExisting(), nullptr);
    Counter::kill();
    EXPECT_NE(Counter::getInstance(), nullptr) << "it can be made anew";
}

TEST_F(MaybeSingletonClassTest, AnyWayOfDeletingClearsThePointer) {
    using Route = void (*)(Counter*);
    const Route routes[] = {
        [](Counter* counter) { delete counter; },
        [](Counter* counter) { delete static_cast<ovCommon::MaybeSingletonClass<Counter>*>(counter); },
        [](Counter* counter) { std::unique_ptr<Counter>{counter}; },
        [](Counter*) { Counter::kill(); },
    };
    for (const Route route : routes) {
        route(Counter::getInstance());
        EXPECT_EQ(Counter::getInstanceIfExisting(), nullptr);
    }
}

TEST_F(MaybeSingletonClassTest, OrdinaryObjectsLeaveTheInstanceAlone) {
    {
        const Counter before(false);
        EXPECT_FALSE(before.isTheSingletonInstance());
        EXPECT_FALSE(before.wasMadeAsSingleton());
        EXPECT_EQ(Counter::getInstanceIfExisting(), nullptr);
    }
    const Counter* const instance = Counter::getInstance();
    {
        const Counter beside(true);
        EXPECT_FALSE(beside.isTheSingletonInstance()) << "the constructor's flag alone makes no instance";
        EXPECT_TRUE(instance->isTheSingletonInstance());
    }
    EXPECT_EQ(Counter::getInstanceIfExisting(), instance);
}

TEST_F(MaybeSingletonClassTest, ServesTypesThatOnlyTheBaseCanMakeAndDelete) {
    EXPECT_EQ(Hidden::alive, 0);
    Hidden::getInstance();
    Hidden::getInstance();
    EXPECT_EQ(Hidden::alive, 1);
    Hidden::kill();
    EXPECT_EQ(Hidden::alive, 0);
    EXPECT_EQ(Hidden::getInstanceIfExisting(), nullptr);
}

TEST_F(MaybeSingletonClassTest, IsOneAcrossSharedLibraries) {
    EXPECT_EQ(getExistingCounterOfUserLibrary(), nullptr);
    Counter* const fromUser = getCounterOfUserLibrary();
    EXPECT_EQ(Counter::getInstanceIfExisting(), fromUser);
    EXPECT_EQ(Counter::getInstance(), fromUser);
    delete fromUser;
    EXPECT_EQ(getExistingCounterOfUserLibrary(), nullptr);
    Counter* const fromHere = Counter::getInstance();
    EXPECT_EQ(getCounterOfUserLibrary(), fromHere);
    Counter::kill();
    EXPECT_EQ(getExistingCounterOfUserLibrary(), nullptr);
}
