#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <ovVeldris/effects/ToneMappingEffect.h>
#include <set>

using namespace ovVeldris;

namespace {

/// Sees effects being destroyed: each copy effect holds a program that goes with it.
class EffectManagerTest : public EffectFixture {
protected:
    void TearDown() override {
        while (Effect* effect = manager().getByIndex(0))
            manager().erase(nameOf(effect));
        EffectFixture::TearDown();
    }

    EffectManager& manager() { return *getSystem()->getEffectManager(); }
    Effect* copyEffect(ovMemory::StringView name) {
        return manager().createOrRetrieve(name, EFFECT_TYPE::TEXTURE_COPY);
    }
    Effect* toneEffect(ovMemory::StringView name) {
        return manager().createOrRetrieve(name, EFFECT_TYPE::TONE_MAPPING);
    }
    /// The shader of an effect, null once it is destroyed.
    static ovMemory::Borrowed<ovGraphics::Shader> watch(Effect* effect) {
        EXPECT_TRUE(effect->load());
        return effect->getShader();
    }

private:
    /// The name that the manager knows an effect by; names that record() gave are "recorded" in these tests.
    ovMemory::String nameOf(Effect* effect) {
        const ovMemory::String name(effect->getName());
        return manager().get(name) == effect ? name : "recorded";
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, EffectManagerTest, bothLanguages(), languageName);

TEST_P(EffectManagerTest, createsNamedUnloadedEffects) {
    Effect* copy = copyEffect("a");
    ASSERT_NE(dynamic_cast<TextureCopyEffect*>(copy), nullptr);
    EXPECT_EQ(copy->getName(), "a");
    EXPECT_EQ(copy->getShader(), nullptr);
    EXPECT_NE(dynamic_cast<ToneMappingEffect*>(toneEffect("b")), nullptr);
    EXPECT_EQ(manager().get("a"), copy);
    EXPECT_EQ(manager().get("A"), nullptr);
    EXPECT_EQ(manager().get(""), nullptr);
    EXPECT_TRUE(getLog().messages.empty()) << getLog().getText();
}

TEST_P(EffectManagerTest, createsForItsSystem) {
    Effect* effect = copyEffect("a");
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(effect->getShader()->getSystem(), &getGraphics());
}

TEST_P(EffectManagerTest, retrievesWhatExists) {
    Effect* effect = copyEffect("a");
    EXPECT_EQ(copyEffect("a"), effect);
    EXPECT_EQ(manager().getByIndex(1), nullptr);
}

TEST_P(EffectManagerTest, refusesAnotherType) {
    Effect* effect = copyEffect("a");
    EXPECT_EQ(toneEffect("a"), nullptr);
    EXPECT_EQ(manager().createOrRetrieve("a", EFFECT_TYPE(99)), nullptr);
    EXPECT_EQ(manager().get("a"), effect);
    const RecordingLogger::Messages expected = {
        {"Requesting effect 'a' as TONE_MAPPING but it already exists as "
         "TEXTURE_COPY. Preventing override and "
         "returning nullptr.",
         "EffectManager"},
        {"Requesting effect 'a' as UNKNOWN but it already exists as TEXTURE_COPY. "
         "Preventing override and returning "
         "nullptr.",
         "EffectManager"}};
    EXPECT_EQ(getLog().messages, expected) << getLog().getText();
}

TEST_P(EffectManagerTest, refusesUnknownTypes) {
    for (const unsigned int type : {0u, 8u, 99u}) {
        getLog().messages.clear();
        EXPECT_EQ(manager().createOrRetrieve("a", EFFECT_TYPE(type)), nullptr);
        const RecordingLogger::Messages expected = {
            {"Requested an unknown type of effect, allocation cannot happen. Returning nullptr.",
             "EffectManager"}};
        EXPECT_EQ(getLog().messages, expected) << type;
        EXPECT_EQ(manager().get("a"), nullptr);
        EXPECT_EQ(manager().getByIndex(0), nullptr);
    }
}

TEST_P(EffectManagerTest, givesEachEffectOneIndex) {
    EXPECT_EQ(manager().getByIndex(0), nullptr);
    std::set<Effect*> created;
    for (int i = 0; i < 40; ++i)
        created.insert(copyEffect("effect" + std::to_string(i)));
    std::set<Effect*> found;
    for (unsigned int i = 0; i < 40; ++i) {
        EXPECT_EQ(manager().getByIndex(i), manager().getByIndex(i));
        found.insert(manager().getByIndex(i));
    }
    EXPECT_EQ(found, created);
    EXPECT_EQ(manager().getByIndex(40), nullptr);
    EXPECT_EQ(manager().getByIndex(0xffffffffu), nullptr);
}

TEST_P(EffectManagerTest, recordsWithoutRenaming) {
    auto effect = TextureCopyEffect::create(getSystem());
    effect->setName("own");
    Effect* raw = effect.get();
    EXPECT_EQ(manager().record("recorded", std::move(effect)), raw);
    EXPECT_EQ(manager().get("recorded"), raw);
    EXPECT_EQ(raw->getName(), "own");
    EXPECT_EQ(manager().get("own"), nullptr);
    EXPECT_TRUE(getLog().messages.empty()) << getLog().getText();
}

TEST_P(EffectManagerTest, replacesWhatIsRecordedOver) {
    const auto old = watch(copyEffect("recorded"));
    auto effect = ToneMappingEffect::create(getSystem());
    Effect* raw = effect.get();
    // The name lent by the effect that goes.
    EXPECT_EQ(manager().record(manager().get("recorded")->getName(), std::move(effect)), raw);
    EXPECT_EQ(manager().get("recorded"), raw);
    EXPECT_EQ(old.get(), nullptr);
    EXPECT_EQ(manager().getByIndex(1), nullptr);
    const RecordingLogger::Messages expected = {
        {"Trying to record from outside over already registered material named 'recorded'. "
         "Beware the existing material will be erased and freed.",
         "MaterialManager"}};
    EXPECT_EQ(getLog().messages, expected) << getLog().getText();
}

TEST_P(EffectManagerTest, recordsNoNull) {
    Effect* effect = copyEffect("a");
    EXPECT_EQ(manager().record("a", nullptr), nullptr);
    EXPECT_EQ(manager().record("b", nullptr), nullptr);
    EXPECT_EQ(manager().get("a"), effect);
    EXPECT_EQ(manager().getByIndex(1), nullptr);
    ASSERT_EQ(getLog().messages.size(), 2u);
    const RecordingLogger::Message expected = {
        "Trying to record a null effect as 'b'. Nothing is recorded and "
        "nullptr is returned, create the effect first.",
        "EffectManager"};
    EXPECT_EQ(getLog().messages[1], expected);
}

TEST_P(EffectManagerTest, renames) {
    Effect* effect = copyEffect("a");
    const auto shader = watch(effect);
    manager().rename("a", "b");
    EXPECT_EQ(manager().get("a"), nullptr);
    EXPECT_EQ(manager().get("b"), effect);
    EXPECT_EQ(effect->getName(), "b");
    EXPECT_EQ(shader->getName(), "b");
    manager().rename(effect->getName(), "c");
    EXPECT_EQ(manager().get("c"), effect);
    manager().rename("c", "c");
    EXPECT_EQ(manager().get("c"), effect);
    manager().rename("missing", "d");
    EXPECT_EQ(manager().get("d"), nullptr);
    EXPECT_EQ(manager().getByIndex(1), nullptr);
    EXPECT_TRUE(getLog().messages.empty()) << getLog().getText();
}

TEST_P(EffectManagerTest, renamesOverAnEffect) {
    Effect* kept = toneEffect("a");
    const auto replaced = watch(copyEffect("b"));
    // The name lent by the effect that goes.
    manager().rename("a", manager().get("b")->getName());
    EXPECT_EQ(replaced.get(), nullptr);
    EXPECT_EQ(manager().get("b"), kept);
    EXPECT_EQ(kept->getName(), "b");
    EXPECT_EQ(manager().getByIndex(1), nullptr);
    EXPECT_TRUE(getLog().messages.empty()) << getLog().getText();
}

TEST_P(EffectManagerTest, keepsAnEffectWhenAMissingOneIsRenamedOverIt) {
    Effect* effect = copyEffect("a");
    manager().rename("missing", "a");
    EXPECT_EQ(manager().get("a"), effect);
}

TEST_P(EffectManagerTest, erases) {
    Effect* effect = copyEffect("a");
    const auto shader = watch(effect);
    manager().erase("missing");
    EXPECT_EQ(manager().get("a"), effect);
    manager().erase(effect->getName());
    EXPECT_EQ(shader.get(), nullptr);
    EXPECT_EQ(manager().get("a"), nullptr);
    EXPECT_TRUE(getLog().messages.empty()) << getLog().getText();
}

TEST_P(EffectManagerTest, relinquishes) {
    Effect* effect = copyEffect("a");
    EXPECT_EQ(manager().relinquish("missing"), nullptr);
    EXPECT_EQ(manager().get("a"), effect);
    const ovMemory::UniquePtr<Effect> owned = manager().relinquish("a");
    EXPECT_EQ(owned.get(), effect);
    EXPECT_EQ(owned->getName(), "a");
    EXPECT_EQ(manager().get("a"), nullptr);
    EXPECT_NE(copyEffect("a"), effect);
}

TEST_P(EffectManagerTest, destroysItsEffectsAtShutdown) {
    System own;
    ASSERT_TRUE(initializeOwn(own)) << getLog().getText();
    const auto shader = watch(own.getEffectManager()->createOrRetrieve("a", EFFECT_TYPE::TEXTURE_COPY));
    const ovMemory::Borrowed<ovGraphics::Program> program = shader->getProgram();
    ASSERT_NE(program.get(), nullptr);
    own.shutdown();
    EXPECT_EQ(own.getEffectManager(), nullptr);
    EXPECT_EQ(shader.get(), nullptr);
    EXPECT_EQ(program.get(), nullptr);
}

TEST(EffectManagerSingletonTest, isOfTheSystemSingleton) {
    ASSERT_EQ(System::getInstanceIfExisting(), nullptr);
    EffectManager* manager = EffectManager::getInstance();
    EXPECT_NE(System::getInstanceIfExisting(), nullptr);
    RecordingLogger log;
    System::getInstance()->getLogManager()->setReceiver(&log);
    EXPECT_EQ(manager->createOrRetrieve("a", EFFECT_TYPE::UNKNOWN), nullptr);
    EXPECT_EQ(log.messages.size(), 1u);
    EXPECT_NE(manager->createOrRetrieve("a", EFFECT_TYPE::TONE_MAPPING), nullptr);
    EffectManager::kill();
    EXPECT_EQ(EffectManager::getInstanceIfExisting(), nullptr);
    System::kill();
}
