#include <ovVeldris/complexEffects/MultiPassEffect.h>

#include <ovGraphics/resources/Program.h>
#include <ovVeldris/complexEffects/ComplexEffectFixture.h>
#include <ovVeldris/complexEffects/ComplexEffectKind.h>
#include <ovVeldris/complexEffects/ComplexEffectManager.h>

// What holds for every kind of complex effect, in the node of an application that does what it likes.

using namespace ovVeldris;

namespace {

class MultiPassEffectTest : public ComplexEffectFixture {
protected:
    ovMemory::UniquePtr<ComplexEffect> makeLoaded(const ComplexEffectKind& kind, System* system,
                                                  ovGraphics::CompositorNode& node) {
        auto effect = kind.create(system);
        effect->setName("effect");
        effect->setCompositorNode(&node);
        EXPECT_TRUE(effect->load()) << getLog().getText() << getGraphicsLogger().getText();
        return effect;
    }
    ovMemory::UniquePtr<ComplexEffect> makeLoaded(const ComplexEffectKind& kind) {
        return makeLoaded(kind, getSystem(), getNode());
    }

    std::vector<ovGraphics::CompositorOperationsBlock*> blocksOf(const ovGraphics::CompositorNode& node) {
        std::vector<ovGraphics::CompositorOperationsBlock*> blocks;
        for (unsigned int i = 0; i < node.getOperationsBlockCount(); ++i)
            blocks.push_back(node.getOperationsBlock(i));
        return blocks;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, MultiPassEffectTest, bothLanguages(), languageName);

TEST_P(MultiPassEffectTest, UnloadRemovesExactlyWhatLoadAdded) {
    for (const ComplexEffectKind& kind : complexEffectKinds()) {
        const auto* first = getNode().appendOperationsBlock();
        const auto effect = makeLoaded(kind);
        const auto* last = getNode().appendOperationsBlock();
        const auto* between = getNode().insertOperationsBlock(2);
        const auto* front = getNode().insertOperationsBlock(0);
        effect->unload();
        EXPECT_EQ(blocksOf(getNode()), (std::vector<ovGraphics::CompositorOperationsBlock*>{
                                           const_cast<ovGraphics::CompositorOperationsBlock*>(front),
                                           const_cast<ovGraphics::CompositorOperationsBlock*>(first),
                                           const_cast<ovGraphics::CompositorOperationsBlock*>(between),
                                           const_cast<ovGraphics::CompositorOperationsBlock*>(last)}));
        effect->unload();
        EXPECT_EQ(getNode().getOperationsBlockCount(), 4u);
        for (const auto* block : {front, first, between, last})
            getNode().removeOperationsBlock(block);
    }
}

TEST_P(MultiPassEffectTest, LoadingAgainReplacesTheBlocks) {
    for (const ComplexEffectKind& kind : complexEffectKinds()) {
        const auto effect = makeLoaded(kind);
        const std::size_t count = blocksOf(getNode()).size();
        ASSERT_TRUE(effect->load());
        EXPECT_EQ(blocksOf(getNode()).size(), count);

        ovGraphics::CompositorNode& other = *getCompositor().appendNode();
        effect->setCompositorNode(&other);
        EXPECT_EQ(blocksOf(getNode()).size(), count) << "nodes wait for load()";
        ASSERT_TRUE(effect->load());
        EXPECT_EQ(blocksOf(getNode()).size(), 0u);
        EXPECT_EQ(blocksOf(other).size(), count);
        effect->setCompositorNode(nullptr);
        EXPECT_FALSE(effect->load());
        EXPECT_EQ(blocksOf(other).size(), 0u);
        getLog().messages.clear();
    }
}

TEST_P(MultiPassEffectTest, AnEffectThatIsDestroyedTakesItsPassesOutOfALiveCompositor) {
    for (const ComplexEffectKind& kind : complexEffectKinds()) {
        auto effect = makeLoaded(kind);
        EXPECT_TRUE(frame());
        effect.reset();
        EXPECT_EQ(getNode().getOperationsBlockCount(), 0u);
        EXPECT_TRUE(frame());
    }
    expectNothingButWholeNumbers();
}

TEST_P(MultiPassEffectTest, TheNodeMayGoFirst) {
    for (const ComplexEffectKind& kind : complexEffectKinds()) {
        ovGraphics::CompositorNode& node = *getCompositor().appendNode();
        const auto effect = makeLoaded(kind, getSystem(), node);
        getCompositor().removeNode(&node);
        EXPECT_TRUE(frame());
        effect->unload();
        EXPECT_FALSE(effect->load()) << "it has no node any more";
        EXPECT_EQ(getLog().messages.size(), 1u);
        getLog().messages.clear();
        effect->setCompositorNode(&getNode());
        EXPECT_TRUE(effect->load());
    }
}

TEST_P(MultiPassEffectTest, BlocksMayGoFirst) {
    for (const ComplexEffectKind& kind : complexEffectKinds()) {
        const auto effect = makeLoaded(kind);
        getNode().removeOperationsBlock(getNode().getOperationsBlock(0));
        const auto* others = getNode().insertOperationsBlock(0);
        effect->unload();
        EXPECT_EQ(blocksOf(getNode()).size(), 1u);
        EXPECT_TRUE(getNode().removeOperationsBlock(others));
        ASSERT_TRUE(effect->load());
        while (getNode().getOperationsBlockCount() > 0)
            getNode().removeOperationsBlock(getNode().getOperationsBlock(0));
        effect->unload();
    }
}

TEST_P(MultiPassEffectTest, TheCompositorMayGoFirst) {
    for (const ComplexEffectKind& kind : complexEffectKinds()) {
        auto compositor = ovGraphics::Compositor::create(&getGraphics());
        const auto effect = makeLoaded(kind, getSystem(), *compositor->appendNode());
        compositor.reset();
        effect->unload();
    }
}

TEST_P(MultiPassEffectTest, TheSystemMayGoFirst) {
    for (const ComplexEffectKind& kind : complexEffectKinds()) {
        auto own = std::make_unique<System>();
        ASSERT_TRUE(initializeOwn(*own)) << getLog().getText();
        ovGraphics::CompositorNode node;
        auto effect = makeLoaded(kind, own.get(), node);
        auto other = makeLoaded(kind, own.get(), node);
        own.reset();
        effect->unload();
        EXPECT_FALSE(effect->load());
        other.reset();
        EXPECT_EQ(node.getOperationsBlockCount(), 0u);
    }
}

TEST_P(MultiPassEffectTest, WaitsForASystemThatIsNotInitialised) {
    const std::pair<COMPLEX_EFFECT_TYPE, const char*> MESSAGES[] = {
        {COMPLEX_EFFECT_TYPE::BLUR, "Could not load the blurring complex effect textures for 'early'. Effect "
                                    "will be unusable as-is, this "
                                    "needs to be addressed within the effect creation."},
        {COMPLEX_EFFECT_TYPE::DOF, "Error when loading the textures of ComplexEffect 'early'. Aborting."},
    };
    for (const auto& [type, message] : MESSAGES) {
        const ComplexEffectKind& kind = *findComplexEffectKind(type);
        System own;
        own.getLogManager()->setReceiver(&getLog());
        getLog().messages.clear();
        ovGraphics::CompositorNode node;
        const auto effect = kind.create(&own);
        effect->setName("early");
        effect->setCompositorNode(&node);
        EXPECT_EQ(kind.getOutput(*effect), nullptr);
        EXPECT_FALSE(effect->load());
        ASSERT_EQ(getLog().messages.size(), 1u);
        EXPECT_EQ(getLog().messages[0].message, message);
        effect->unload();
        ASSERT_TRUE(initializeOwn(own));
        EXPECT_TRUE(effect->load()) << getLog().getText();
        ASSERT_NE(kind.getOutput(*effect), nullptr);
        EXPECT_FALSE(kind.getOutput(*effect)->isUnloaded());
        own.shutdown();
        EXPECT_TRUE(kind.getOutput(*effect)->isUnloaded());
        ASSERT_TRUE(initializeOwn(own));
        EXPECT_TRUE(effect->load()) << getLog().getText();
        effect->unload();
    }
}

TEST_P(MultiPassEffectTest, TakesNoReferenceFromAnothersTracker) {
    for (const ComplexEffectKind& kind : complexEffectKinds()) {
        System own;
        ASSERT_TRUE(initializeOwn(own)) << getLog().getText();
        ovGraphics::CompositorNode node;
        const auto old = makeLoaded(kind, &own, node);
        // Starting anew replaces the trackers: the old effect's programs are gone with its reference.
        ASSERT_TRUE(initializeOwn(own));
        ovGraphics::CompositorNode second;
        const auto current = makeLoaded(kind, &own, second);
        const auto* pass =
            dynamic_cast<ovGraphics::PostProcessPass*>(second.getOperationsBlock(0)->getPass(0));
        const ovMemory::Borrowed<ovGraphics::Program> program = pass->getShader()->getProgram();
        old->unload();
        EXPECT_TRUE(program);
        current->unload();
        EXPECT_FALSE(program);
    }
}

TEST_P(MultiPassEffectTest, ManagersMakeEveryKind) {
    ComplexEffectManager& manager = *getSystem()->getComplexEffectManager();
    for (const ComplexEffectKind& kind : complexEffectKinds()) {
        ComplexEffect* const effect = manager.createOrRetrieve("made", kind.type);
        ASSERT_NE(effect, nullptr);
        EXPECT_EQ(effect->getType(), kind.type);
        EXPECT_EQ(effect->getName(), "made");
        EXPECT_EQ(manager.createOrRetrieve("made", kind.type), effect);
        effect->setCompositorNode(&getNode());
        EXPECT_TRUE(effect->load());
        EXPECT_EQ(kind.getOutput(*effect)->getName().substr(0, 5), "made_");
        manager.erase("made");
        EXPECT_EQ(getNode().getOperationsBlockCount(), 0u);
    }
    EXPECT_EQ(getLog().getText(), "");
}
