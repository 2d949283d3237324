#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Viewport.h>
#include <utility>

using namespace ovGraphics;

TEST(BorrowedTest, becomesNullWithItsResource) {
    System system;
    Borrowed<Viewport> before;
    EXPECT_FALSE(before);
    EXPECT_EQ(before.get(), nullptr);
    {
        const auto viewport = Viewport::create(&system);
        viewport->setSize(7, 9);
        before = viewport.get();
        const Borrowed<Viewport> copy = before;
        Borrowed<Viewport> assigned;
        assigned = copy;
        EXPECT_TRUE(before);
        EXPECT_EQ(copy.get(), viewport.get());
        EXPECT_EQ(assigned->getWidth(), 7u);
    }
    EXPECT_FALSE(before);
}

TEST(BorrowedTest, everyOrderOfLeavingTheListIsSafe) {
    System system;
    for (std::size_t first = 0; first < 3; ++first) {
        for (std::size_t second = 0; second < 3; ++second) {
            auto viewport = Viewport::create(&system);
            std::array<Borrowed<Viewport>, 3> borrowers = {viewport.get(), viewport.get(), viewport.get()};
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
            viewport.reset();
            EXPECT_EQ(count(), 0u);
        }
    }
}

TEST(BorrowedTest, assignmentMovesFromOneResourceToAnother) {
    System system;
    auto first = Viewport::create(&system);
    auto second = Viewport::create(&system);
    Borrowed<Viewport> borrower = first.get();
    Borrowed<Viewport> other = second.get();
    borrower = *&borrower; // to itself
    EXPECT_EQ(borrower.get(), first.get());
    borrower = other;
    first.reset();
    EXPECT_EQ(borrower.get(), second.get());
    ovMemory::Buffer<Borrowed<Viewport>> many(5, borrower); // copies that move when the buffer grows
    many.resize(100, other);
    second.reset();
    for (const auto& each : many)
        EXPECT_FALSE(each);
    EXPECT_FALSE(borrower);
}
