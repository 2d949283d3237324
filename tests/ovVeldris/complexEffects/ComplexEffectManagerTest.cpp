#include <ovVeldris/complexEffects/ComplexEffectManager.h>

#include <ovVeldris/complexEffects/TestComplexEffect.h>
#include <ovVeldris/core/SingletonTest.h>
#include <support/RecordingLogger.h>

using namespace ovVeldris;
using ovMemory::StringView;

namespace {

class ComplexEffectManagerTest : public SingletonTest {
protected:
    ComplexEffectManagerTest()
        : manager(*ComplexEffectManager::getInstance()) {
        System::getInstance()->getLogManager()->setReceiver(&log);
    }
    ~ComplexEffectManagerTest() override {
        ComplexEffectManager::kill();
        EXPECT_EQ(TestComplexEffect::alive, 0);
    }

    TestComplexEffect* record(StringView name, COMPLEX_EFFECT_TYPE type = COMPLEX_EFFECT_TYPE::BLUR) {
        auto effect = std::make_unique<TestComplexEffect>(type);
        TestComplexEffect* const passedIn = effect.get();
        EXPECT_EQ(manager.record(name, std::move(effect)), passedIn);
        return passedIn;
    }

    RecordingLogger log;
    ComplexEffectManager& manager;
};

} // namespace

TEST_F(ComplexEffectManagerTest, RetrievesByNameAndTypeWithoutTouchingTheEffect) {
    TestComplexEffect* const blur = record("a", COMPLEX_EFFECT_TYPE::BLUR);
    EXPECT_EQ(manager.createOrRetrieve("a", COMPLEX_EFFECT_TYPE::BLUR), blur);
    EXPECT_EQ(manager.createOrRetrieve("a", COMPLEX_EFFECT_TYPE::BLUR), blur);
    EXPECT_EQ(blur->calls, 0);
    EXPECT_EQ(blur->getName(), "") << "recording does not rename";
    EXPECT_EQ(log.messages, RecordingLogger::Messages());
}

TEST_F(ComplexEffectManagerTest, RefusesANameOfAnotherType) {
    struct Case {
        COMPLEX_EFFECT_TYPE existing;
        COMPLEX_EFFECT_TYPE requested;
        const char* message;
    };
    const Case cases[] = {
        {COMPLEX_EFFECT_TYPE::BLUR, COMPLEX_EFFECT_TYPE::DOF,
         "Requesting effect 'a' as DOF but it already exists as BLUR. Preventing override and returning "
         "nullptr."},
        {COMPLEX_EFFECT_TYPE::DOF, COMPLEX_EFFECT_TYPE::BLUR,
         "Requesting effect 'a' as BLUR but it already exists as DOF. Preventing override and returning "
         "nullptr."},
        {COMPLEX_EFFECT_TYPE::BLUR, static_cast<COMPLEX_EFFECT_TYPE>(77),
         "Requesting effect 'a' as UNKNOWN but it already exists as BLUR. Preventing override and returning "
         "nullptr."},
    };
    for (const Case& row : cases) {
        manager.erase("a");
        log.messages.clear();
        TestComplexEffect* const existing = record("a", row.existing);
        EXPECT_EQ(manager.createOrRetrieve("a", row.requested), nullptr);
        EXPECT_EQ(log.messages, (RecordingLogger::Messages{{row.message, "EffectManager"}}));
        EXPECT_EQ(manager.get("a"), existing);
    }
}

TEST_F(ComplexEffectManagerTest, RefusesAnUnknownType) {
    for (const uint32_t type : {0u, 3u, 0xffffffffu}) {
        log.messages.clear();
        EXPECT_EQ(manager.createOrRetrieve("a", static_cast<COMPLEX_EFFECT_TYPE>(type)), nullptr);
        EXPECT_EQ(log.messages,
                  (RecordingLogger::Messages{
                      {"Requested an unknown type of effect, allocation cannot happen. Returning nullptr.",
                       "EffectManager"}}));
        EXPECT_EQ(manager.get("a"), nullptr);
        EXPECT_EQ(manager.getByIndex(0), nullptr) << "nothing is recorded";
    }
}

TEST_F(ComplexEffectManagerTest, RecordingUnderATakenNameKeepsTheFirst) {
    TestComplexEffect* const first = record("a");
    record("a");
    EXPECT_EQ(manager.get("a"), first);
    EXPECT_EQ(TestComplexEffect::alive, 1) << "the second was destroyed";
    EXPECT_EQ(log.messages, (RecordingLogger::Messages{
                                {"Trying to record from outside over already registered complex effect "
                                 "named 'a'. Beware the existing resource will be erased and freed.",
                                 "MaterialManager"}}));
}

TEST_F(ComplexEffectManagerTest, RecordingNothingChangesNothing) {
    EXPECT_EQ(manager.record("a", nullptr), nullptr);
    EXPECT_EQ(manager.getByIndex(0), nullptr);
    EXPECT_EQ(log.messages,
              (RecordingLogger::Messages{
                  {"Trying to record no complex effect under 'a'. Nothing is recorded; pass an effect in.",
                   "ComplexEffectManager"}}));
}

TEST_F(ComplexEffectManagerTest, RenamesErasesAndRelinquishes) {
    TestComplexEffect* const a = record("a");
    TestComplexEffect* const b = record("b");
    manager.rename("a", "c");
    EXPECT_EQ(manager.get("a"), nullptr);
    EXPECT_EQ(manager.get("c"), a);
    EXPECT_EQ(a->getName(), "c");
    manager.rename("c", "b");
    EXPECT_EQ(manager.get("b"), b) << "the one that has the name stays";
    EXPECT_EQ(manager.get("c"), nullptr);
    EXPECT_EQ(TestComplexEffect::alive, 1);

    EXPECT_EQ(manager.getByIndex(0), b);
    EXPECT_EQ(manager.getByIndex(1), nullptr);
    const ovMemory::UniquePtr<ComplexEffect> taken = manager.relinquish("b");
    EXPECT_EQ(taken.get(), b);
    EXPECT_EQ(manager.get("b"), nullptr);
    record("d");
    manager.erase("d");
    EXPECT_EQ(manager.get("d"), nullptr);
    EXPECT_EQ(TestComplexEffect::alive, 1) << "only the relinquished one is left";
    EXPECT_EQ(log.messages, RecordingLogger::Messages());
}

TEST_F(ComplexEffectManagerTest, UnknownNamesAreIgnored) {
    record("a");
    manager.rename("x", "y");
    manager.erase("x");
    EXPECT_EQ(manager.relinquish("x"), nullptr);
    EXPECT_EQ(manager.get("x"), nullptr);
    EXPECT_EQ(manager.get("y"), nullptr);
    EXPECT_EQ(TestComplexEffect::alive, 1);
    EXPECT_EQ(log.messages, RecordingLogger::Messages());
}

TEST_F(ComplexEffectManagerTest, OwnsWhatItHolds) {
    record("a");
    record("b");
    ComplexEffectManager::kill();
    EXPECT_EQ(TestComplexEffect::alive, 0);
}
