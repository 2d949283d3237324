#include <ovMemory/InstanceHolder.h>

#include <gtest/gtest.h>
#include <memory>

namespace {

class OV_API Held : public ovCommon::MaybeSingletonClass<Held>, public ovMemory::Borrowable {
public:
    static inline int alive = 0;
    explicit Held(bool = false) { ++alive; }
    ~Held() override { --alive; }
};

using Holder = ovMemory::InstanceHolder<Held>;

class InstanceHolderTest : public testing::Test {
protected:
    InstanceHolderTest() { Held::kill(); }
    ~InstanceHolderTest() override {
        Held::kill();
        EXPECT_EQ(Held::alive, 0);
    }
};

} // namespace

TEST_F(InstanceHolderTest, HoldsNothingAtFirst) {
    Holder holder;
    EXPECT_EQ(holder.get(), nullptr);
    holder.forgetUnlessOwned();
    holder.destroy();
    EXPECT_EQ(holder.get(), nullptr);
    EXPECT_EQ(Held::getInstanceIfExisting(), nullptr);
}

TEST_F(InstanceHolderTest, OwnedObjectsAreDeletedOnce) {
    Holder holder;
    auto* const first = new Held();
    holder.own(first);
    holder.own(first);
    EXPECT_EQ(holder.get(), first);
    EXPECT_EQ(Held::alive, 1) << "owning the same object again keeps it";
    holder.forgetUnlessOwned();
    EXPECT_EQ(holder.get(), first);
    auto* const second = new Held();
    holder.own(second);
    EXPECT_EQ(holder.get(), second);
    EXPECT_EQ(Held::alive, 1) << "the first went when the second came";
    holder.destroy();
    EXPECT_EQ(holder.get(), nullptr);
    EXPECT_EQ(Held::alive, 0);
    holder.own(new Held()); // goes with the holder
}

TEST_F(InstanceHolderTest, BorrowedObjectsLiveOn) {
    Held lent;
    Holder holder;
    using Ending = void (Holder::*)();
    for (const Ending ending : {&Holder::forgetUnlessOwned, &Holder::destroy}) {
        holder.borrow(&lent);
        EXPECT_EQ(holder.get(), &lent);
        (holder.*ending)();
        EXPECT_EQ(holder.get(), nullptr);
    }
    holder.own(new Held());
    holder.borrow(&lent);
    EXPECT_EQ(holder.get(), &lent);
    EXPECT_EQ(Held::alive, 1) << "the owned object went";
}

TEST_F(InstanceHolderTest, BorrowingTheOwnedObjectKeepsItOwned) {
    Holder holder;
    holder.own(new Held());
    holder.borrow(holder.get());
    EXPECT_EQ(Held::alive, 1);
    holder.destroy();
    EXPECT_EQ(Held::alive, 0);
}

TEST_F(InstanceHolderTest, FollowsTheInstance) {
    Holder holder;
    holder.own(new Held());
    holder.useInstance();
    EXPECT_EQ(Held::alive, 1) << "only the instance is left";
    EXPECT_EQ(holder.get(), Held::getInstance());
    Held::kill();
    EXPECT_EQ(holder.get(), nullptr) << "killed by somebody else";
    Held* const second = Held::getInstance();
    EXPECT_EQ(holder.get(), second);
    holder.forgetUnlessOwned();
    EXPECT_EQ(holder.get(), nullptr);
    EXPECT_EQ(Held::getInstanceIfExisting(), second) << "forgetting does not kill";
    holder.useInstance();
    holder.destroy();
    EXPECT_EQ(holder.get(), nullptr);
    EXPECT_EQ(Held::getInstanceIfExisting(), nullptr);
}

TEST_F(InstanceHolderTest, HoldsNothingWhenSomebodyElseDestroysTheObject) {
    Holder owner;
    Holder borrower;
    auto* const held = new Held();
    owner.own(held);
    borrower.borrow(held);
    delete held;
    EXPECT_EQ(owner.get(), nullptr);
    EXPECT_EQ(borrower.get(), nullptr);
    owner.destroy();
    EXPECT_EQ(Held::alive, 0);
}
