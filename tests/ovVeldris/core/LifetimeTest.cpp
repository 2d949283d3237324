#include <ovGraphics/Managers.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovVeldris/complexEffects/ComplexEffectManager.h>
#include <ovVeldris/complexEffects/TestComplexEffect.h>
#include <ovVeldris/content/ModelTesting.h>
#include <ovVeldris/core/SingletonTest.h>
#include <ovVeldris/core/TestGraphics.h>
#include <ovVeldris/effects/ImageEnvironmentEffect.h>
#include <ovVeldris/effects/ToneMappingEffect.h>
#include <ovVeldris/environment/EnvironmentRenderer.h>
#include <ovVeldris/environment/PbsEnvironmentMapFilter.h>
#include <ovVeldris/materials/MaterialManager.h>
#include <ovVeldris/materials/PbsMaterial.h>

// What applications and scripts can hold of the library, destroyed in every way that the interface offers and
// used afterwards: null, or false with a line of log. Under the address sanitizer nothing is read.

using namespace ovVeldris;
using ovMemory::Borrowed;
using ovMemory::UniquePtr;

namespace {

constexpr ovMemory::StringView NAME = "held";
constexpr ovMemory::StringView OTHER = "other";

class LifetimeTest : public SingletonTest {
protected:
    /// A system with a graphics system of its own, logging to log.
    UniquePtr<System> makeSystem(ovGraphics::System* host = nullptr) {
        auto system = std::make_unique<System>();
        system->getLogManager()->setReceiver(&log);
        EXPECT_TRUE(system->initialize(makeWorkingConfiguration(&log, host)));
        return system;
    }

    /// A model of one part, whose material is "paint".
    static UniquePtr<Model> makeModel(System& system) {
        SceneOfCode scene;
        ovGraphics::GltfMaterial material;
        material.name = "paint";
        material.metallic = 0.0f;
        material.baseColorTexture = scene.addTexture("picture", pngOf({{1, 2, 3, 255}}));
        scene.addMaterial(material);
        ModelLoadResult result = ModelLoader(&system).create(scene);
        EXPECT_TRUE(result) << result.error;
        EXPECT_TRUE(result.model && result.model->loadMaterials());
        return std::move(result.model);
    }

    RecordingLogger log;
};

/// A manager's ways to destroy what it holds under NAME. The object that takes its place comes from make().
template <typename Object, typename Manager, typename Make>
void expectEveryEndIsNoticed(Manager& manager, const Make& make, bool newcomerWins) {
    const auto hold = [&](ovMemory::StringView name) -> Borrowed<Object> {
        return manager.record(name, make());
    };
    Borrowed<Object> held = hold(NAME);
    manager.erase(NAME);
    EXPECT_FALSE(held) << "erased";

    held = hold(NAME);
    const Borrowed<Object> newcomer = hold(OTHER);
    manager.rename(OTHER, NAME);
    EXPECT_EQ(static_cast<bool>(held), !newcomerWins) << "renamed onto";
    EXPECT_EQ(static_cast<bool>(newcomer), newcomerWins) << "renamed";

    held = manager.get(NAME);
    ASSERT_TRUE(held);
    {
        const UniquePtr<Object> taken = manager.relinquish(NAME);
        EXPECT_EQ(held.get(), taken.get());
    }
    EXPECT_FALSE(held) << "relinquished and destroyed";
}

} // namespace

TEST_F(LifetimeTest, heldEffectsBecomeNull) {
    auto system = makeSystem();
    const auto make = [&]() -> UniquePtr<Effect> { return ToneMappingEffect::create(system.get()); };
    EffectManager& manager = *system->getEffectManager();
    expectEveryEndIsNoticed<Effect>(manager, make, true);
    Borrowed<Effect> held = manager.record(NAME, make());
    manager.record(NAME, make());
    EXPECT_FALSE(held) << "another was recorded over it";
    held = manager.get(NAME);
    const Borrowed<EffectManager> heldManager = &manager;
    system->shutdown();
    EXPECT_FALSE(held) << "system shut down";
    EXPECT_FALSE(heldManager);
}

TEST_F(LifetimeTest, heldMaterialsBecomeNull) {
    auto system = makeSystem();
    const auto make = [&]() -> UniquePtr<Material> { return PbsMaterial::create(system.get()); };
    MaterialManager& manager = *system->getMaterialManager();
    expectEveryEndIsNoticed<Material>(manager, make, false);
    manager.record(NAME, make());
    const Borrowed<Material> held = manager.get(NAME);
    system.reset();
    EXPECT_FALSE(held) << "system destroyed";
}

TEST_F(LifetimeTest, heldComplexEffectsBecomeNull) {
    auto system = makeSystem();
    const auto make = []() -> UniquePtr<ComplexEffect> {
        return std::make_unique<TestComplexEffect>(COMPLEX_EFFECT_TYPE::BLUR);
    };
    ComplexEffectManager& manager = *system->getComplexEffectManager();
    expectEveryEndIsNoticed<ComplexEffect>(manager, make, false);
    manager.record(NAME, make());
    const Borrowed<ComplexEffect> held = manager.get(NAME);
    system.reset();
    EXPECT_FALSE(held);
}

TEST_F(LifetimeTest, complexEffectsForgetTheirNode) {
    ovGraphics::System graphics;
    const auto compositor = ovGraphics::Compositor::create(&graphics);
    TestComplexEffect effect(COMPLEX_EFFECT_TYPE::BLUR);
    effect.setCompositorNode(compositor->appendNode());
    const TestComplexEffect copy(effect);
    compositor->reset();
    EXPECT_EQ(effect.getNode(), nullptr);
    EXPECT_EQ(copy.getNode(), nullptr);
}

// An application may keep what it took from a manager, or made, longer than the system.
TEST_F(LifetimeTest, effectsAndMaterialsRefuseToLoadWithoutTheirSystem) {
    for (const bool shutDownOnly : {true, false}) {
        auto system = makeSystem();
        const auto toneMapping = ToneMappingEffect::create(system.get());
        const auto environment = ImageEnvironmentEffect::create(system.get());
        const auto material = PbsMaterial::create(system.get());
        ASSERT_TRUE(toneMapping->load() && environment->load() && material->load()) << log.getText();
        if (shutDownOnly)
            system->shutdown();
        else
            system.reset();
        EXPECT_FALSE(toneMapping->load());
        EXPECT_FALSE(environment->load());
        EXPECT_FALSE(material->load());
        toneMapping->setAsReinhard({1.0f, 2.0f, 3.0f});
        environment->setSourceSampler(nullptr);
        environment->setSourceTexture(nullptr);
        material->setLightColor({1.0f, 2.0f, 3.0f});
        material->setAlbedoTexture(nullptr, THREE_CHANNEL_PACK::RGB);
        toneMapping->unload();
        material->unload();
    }
}

TEST_F(LifetimeTest, killingTheGraphicsSingletonLeavesTheSystemUsable) {
    System* const system = System::getInstance();
    system->getLogManager()->setReceiver(&log);
    ASSERT_TRUE(system->initialize(makeWorkingConfiguration(&log)));
    Effect* const effect = system->getEffectManager()->createOrRetrieve(NAME, EFFECT_TYPE::TONE_MAPPING);
    Material* const material = system->getMaterialManager()->createOrRetrieve(NAME, MATERIAL_TYPE::PBS);
    ASSERT_TRUE(effect->load() && material->load()) << log.getText();

    ovGraphics::System::kill();
    EXPECT_EQ(system->getGraphicsEngine()->getProgramTrackersHolder(), nullptr);
    EXPECT_FALSE(effect->load());
    EXPECT_FALSE(material->load());
    ovGraphics::System::getInstance(); // another one, which knows none of the programs
    EXPECT_EQ(system->getGraphicsEngine()->getProgramTrackersHolder(), nullptr);
    EXPECT_FALSE(effect->load());
    EXPECT_FALSE(material->load());
    EXPECT_TRUE(log.contains("Could not load the tone mapping effect program for 'held'")) << log.getText();

    ASSERT_TRUE(system->initialize(makeWorkingConfiguration(&log)));
    Effect* const again = system->getEffectManager()->createOrRetrieve(NAME, EFFECT_TYPE::TONE_MAPPING);
    EXPECT_TRUE(again->load()) << log.getText();
    System::kill();
}

TEST_F(LifetimeTest, aHostMayDestroyItsGraphicsSystemFirst) {
    bool deleted = false;
    auto host = std::make_unique<HostGraphics>(deleted);
    auto system = makeSystem(host.get());
    const auto effect = ToneMappingEffect::create(system.get());
    const auto material = PbsMaterial::create(system.get());
    const auto model = makeModel(*system);
    ASSERT_TRUE(effect->load() && material->load()) << log.getText();
    host.reset();
    EXPECT_TRUE(deleted);
    EXPECT_EQ(system->getGraphicsEngine()->getGraphicsSystem(), nullptr);
    EXPECT_FALSE(effect->load());
    EXPECT_FALSE(material->load());
    EXPECT_FALSE(model->loadMaterials());
    EXPECT_FALSE(ModelLoader(system.get()).create(SceneOfCode()));
    system->shutdown();
}

TEST_F(LifetimeTest, environmentToolsRefuseWithoutTheirSystem) {
    auto system = makeSystem();
    EnvironmentRenderer renderer(system.get());
    PbsEnvironmentMapFilter filter(system.get());
    ovGraphics::System graphics;
    const auto texture = ovGraphics::Texture::create(&graphics);
    const auto other = ovGraphics::Texture::create(&graphics);
    system.reset();
    EXPECT_EQ(renderer.getSystem(), nullptr);
    EXPECT_EQ(filter.getSystem(), nullptr);
    filter.requestEnvironmentMapFiltering(texture.get(), other.get(), 16);
    renderer.cubemapToSphericalMap(other.get(), texture.get(), 16, 8);
    EXPECT_TRUE(other->isUnloaded());
}

TEST_F(LifetimeTest, modelsMissMaterialsThatWereErased) {
    auto system = makeSystem();
    auto model = makeModel(*system);
    const Borrowed<Model> held = model.get();
    system->getMaterialManager()->erase("paint");
    log.messages.clear();
    EXPECT_FALSE(model->loadMaterials());
    EXPECT_TRUE(log.contains(
        "Could not load the material 'paint' of a model: it was destroyed; load the model anew."))
        << log.getText();
    const auto queue = ovGraphics::RenderQueue::create(system->getGraphicsEngine()->getGraphicsSystem());
    model->addTo(*queue, *queue);
    EXPECT_EQ(queue->getEntityCount(), 0u);
    model.reset();
    EXPECT_FALSE(held);
}

TEST_F(LifetimeTest, modelsMayOutliveTheirSystem) {
    for (const bool shutDownOnly : {true, false}) {
        auto system = makeSystem();
        const auto model = makeModel(*system);
        if (shutDownOnly)
            system->shutdown();
        else
            system.reset();
        EXPECT_EQ(model->getMaterials()[0].material.get(), nullptr);
        EXPECT_FALSE(model->loadMaterials());
    }
}

TEST_F(LifetimeTest, renamedMaterialsGoWithTheirModel) {
    auto system = makeSystem();
    auto model = makeModel(*system);
    MaterialManager& manager = *system->getMaterialManager();
    manager.rename("paint", "new paint");
    EXPECT_EQ(manager.get("new paint"), model->getMaterials()[0].material.get());
    model.reset();
    EXPECT_EQ(manager.get("new paint"), nullptr);
}

TEST_F(LifetimeTest, materialsTakenFromTheManagerOutliveTheirModel) {
    auto system = makeSystem();
    auto model = makeModel(*system);
    const UniquePtr<Material> taken = system->getMaterialManager()->relinquish("paint");
    system->getMaterialManager()->createOrRetrieve("paint", MATERIAL_TYPE::PBS);
    model.reset();
    EXPECT_NE(system->getMaterialManager()->get("paint"), nullptr) << "another's, not the model's to erase";
    EXPECT_EQ(static_cast<PbsMaterial&>(*taken).getAlbedoTexture(), nullptr);
    EXPECT_TRUE(taken->load()) << log.getText();
}
