#include <array>
#include <gtest/gtest.h>
#include <memory>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Memory.h>

using namespace ovMemory;

namespace {

struct Lamp : Borrowable {
    explicit Lamp(int power)
        : watts(power) {}
    int watts;
};

/// A base before the borrowable one, so that the two pointers differ.
struct Named {
    virtual ~Named() = default;
    int number = 5;
};
struct NamedLamp final : Named, Lamp {
    NamedLamp()
        : Lamp(60) {}
};

/// Reads a borrowed pointer to itself while it is destroyed.
struct Listener : Borrowable {
    explicit Listener(bool& answer)
        : found(answer) {}
    ~Listener() {
        _forgetBorrowers();
        found = static_cast<bool>(*self);
    }
    Borrowed<Listener>* self = nullptr;
    bool& found;
};

} // namespace

TEST(BorrowedTest, becomesNullWithItsObject) {
    Borrowed<Lamp> before;
    EXPECT_FALSE(before);
    EXPECT_EQ(before.get(), nullptr);
    {
        Lamp lamp(40);
        before = &lamp;
        const Borrowed<Lamp> copy = before;
        Borrowed<Lamp> assigned;
        assigned = copy;
        EXPECT_TRUE(before);
        EXPECT_EQ(copy.get(), &lamp);
        EXPECT_EQ(assigned->watts, 40);
        EXPECT_EQ((*assigned).watts, 40);
    }
    EXPECT_FALSE(before);
}

TEST(BorrowedTest, everyOrderOfLeavingTheListIsSafe) {
    for (std::size_t first = 0; first < 3; ++first) {
        for (std::size_t second = 0; second < 3; ++second) {
            auto lamp = std::make_unique<Lamp>(1);
            std::array<Borrowed<Lamp>, 3> borrowers = {lamp.get(), lamp.get(), lamp.get()};
            borrowers[first] = nullptr;
            borrowers[second] = nullptr; // also when it is null already
            const std::size_t left = first == second ? 2 : 1;
            const auto count = [&] {
                std::size_t linked = 0;
                for (const auto& borrower : borrowers)
                    linked += borrower ? 1 : 0;
                return linked;
            };
            EXPECT_EQ(count(), left);
            lamp.reset();
            EXPECT_EQ(count(), 0u);
        }
    }
}

TEST(BorrowedTest, assignmentMovesFromOneObjectToAnother) {
    auto first = std::make_unique<Lamp>(1);
    auto second = std::make_unique<Lamp>(2);
    Borrowed<Lamp> borrower = first.get();
    Borrowed<Lamp> other = second.get();
    borrower = *&borrower; // to itself
    EXPECT_EQ(borrower.get(), first.get());
    borrower = other;
    first.reset();
    EXPECT_EQ(borrower.get(), second.get());
    Buffer<Borrowed<Lamp>> many(5, borrower); // copies that move when the buffer grows
    many.resize(100, other);
    second.reset();
    for (const auto& each : many)
        EXPECT_FALSE(each);
    EXPECT_FALSE(borrower);
}

TEST(BorrowedTest, aCopyOfAnObjectIsAnotherObject) {
    auto original = std::make_unique<Lamp>(1);
    const Borrowed<Lamp> toOriginal = original.get();
    Lamp copy = *original;
    const Borrowed<Lamp> toCopy = &copy;
    copy = *original;
    original.reset();
    EXPECT_FALSE(toOriginal);
    EXPECT_EQ(toCopy.get(), &copy);
}

TEST(BorrowedTest, findsTheObjectBehindSeveralBases) {
    auto lamp = std::make_unique<NamedLamp>();
    const Borrowed<NamedLamp> whole = lamp.get();
    const Borrowed<const Lamp> part = lamp.get();
    EXPECT_EQ(whole->number, 5);
    EXPECT_EQ(part->watts, 60);
    lamp.reset();
    EXPECT_FALSE(whole);
    EXPECT_FALSE(part);
}

TEST(BorrowedTest, anObjectMayBeForgottenBeforeItIsGone) {
    bool found = true;
    Borrowed<Listener> borrower;
    {
        Listener listener(found);
        borrower = &listener;
        listener.self = &borrower;
    }
    EXPECT_FALSE(found);
}
