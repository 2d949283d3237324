#include <ovVeldris/core/NamedObjects.h>

#include <gtest/gtest.h>
#include <set>

using ovMemory::String;
using ovMemory::StringView;

namespace {

class Thing {
public:
    static inline int alive = 0;
    explicit Thing(StringView name)
        : _name(name) {
        ++alive;
    }
    ~Thing() { --alive; }
    void setName(StringView name) { _name = name; }
    StringView getName() const { return _name; }

private:
    String _name;
};

class NamedObjectsTest : public testing::Test {
protected:
    ~NamedObjectsTest() override { EXPECT_EQ(Thing::alive, _count()) << "as many things as are listed"; }

    Thing* insert(StringView name) {
        auto thing = std::make_unique<Thing>("own");
        Thing* const inserted = thing.get();
        things.insert(name, std::move(thing));
        return inserted;
    }

    ovVeldris::NamedObjects<Thing> things;

private:
    int _count() const {
        int count = 0;
        while (things.getByIndex(static_cast<unsigned int>(count)))
            ++count;
        return count;
    }
};

} // namespace

TEST_F(NamedObjectsTest, FindsByExactNameAndIndex) {
    EXPECT_EQ(things.get("a"), nullptr);
    EXPECT_EQ(things.getByIndex(0), nullptr);
    const String names[] = {"a", "A", "", String("a\0b", 3), "a "};
    std::set<Thing*> inserted;
    for (const String& name : names) {
        Thing* const thing = insert(name);
        inserted.insert(thing);
        EXPECT_EQ(things.get(name), thing);
        EXPECT_EQ(thing->getName(), "own") << "inserting does not rename";
    }
    EXPECT_EQ(things.get("b"), nullptr);
    std::set<Thing*> listed;
    for (unsigned int i = 0; i < std::size(names); ++i)
        listed.insert(things.getByIndex(i));
    EXPECT_EQ(listed, inserted);
    EXPECT_EQ(things.getByIndex(std::size(names)), nullptr);
    EXPECT_EQ(things.getByIndex(~0u), nullptr);
}

TEST_F(NamedObjectsTest, TheFirstOfANameStays) {
    Thing* const first = insert("a");
    insert("a");
    EXPECT_EQ(things.get("a"), first);
    EXPECT_EQ(Thing::alive, 1) << "the second was destroyed";
}

TEST_F(NamedObjectsTest, RenameMovesAndTells) {
    Thing* const thing = insert("a");
    things.rename("a", "b");
    EXPECT_EQ(things.get("a"), nullptr);
    EXPECT_EQ(things.get("b"), thing);
    EXPECT_EQ(thing->getName(), "b");
    things.rename("b", "b");
    EXPECT_EQ(things.get("b"), thing) << "renamed to its own name";
    things.rename("absent", "c");
    EXPECT_EQ(things.get("c"), nullptr);
    things.rename(thing->getName(), "longer than any short string buffer holds");
    EXPECT_EQ(things.get("longer than any short string buffer holds"), thing) << "a view of its own name";
    things.rename(thing->getName(), thing->getName().substr(0, 6));
    EXPECT_EQ(things.get("longer"), thing);
    EXPECT_EQ(thing->getName(), "longer");
}

TEST_F(NamedObjectsTest, RenameToATakenNameDestroysTheMovedOne) {
    insert("a");
    Thing* const kept = insert("b");
    things.rename("a", "b");
    EXPECT_EQ(things.get("a"), nullptr);
    EXPECT_EQ(things.get("b"), kept);
    EXPECT_EQ(kept->getName(), "own");
    EXPECT_EQ(Thing::alive, 1);
}

TEST_F(NamedObjectsTest, RelinquishHandsOver) {
    EXPECT_EQ(things.relinquish("a"), nullptr);
    Thing* const thing = insert("a");
    const ovMemory::UniquePtr<Thing> taken = things.relinquish("a");
    EXPECT_EQ(taken.get(), thing);
    EXPECT_EQ(things.get("a"), nullptr);
    things.insert("a", std::make_unique<Thing>("second"));
    EXPECT_EQ(things.get("a")->getName(), "second") << "the name is free again";
    things.relinquish("a");
}

TEST(TypeConflictMessageTest, SaysWhatIsWantedAndWhatIsThere) {
    EXPECT_EQ(
        ovVeldris::typeConflictMessage("effect", "it's", "DOF", "BLUR"),
        "Requesting effect 'it's' as DOF but it already exists as BLUR. Preventing override and returning "
        "nullptr.");
}
