#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/ScenePass.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>

// What can be held from outside, destroyed in every way that the interface offers: held pointers become null.
// Run under the address sanitizer, a pointer that is followed after all fails the test.

using namespace ovGraphics;
using ovMemory::Borrowed;

namespace {

/// A system with one object of each kind that is owned by another one.
struct World {
    World()
        : system(std::make_unique<System>())
        , shader(system->getShaderManager()->createOrRetrieve("shader"))
        , queue(system->getRenderQueueManager()->createOrRetrieve("queue"))
        , compositor(system->getCompositorManager()->createOrRetrieve("compositor"))
        , node(system->getNodeManager()->createOrRetrieve("node"))
        , buffer(shader->addConstantBuffer(0, 0))
        , slot(buffer->addPassMemorySlot())
        , instanceSlot(shader->addInstanceMemorySlot())
        , entity(queue->addEntity(nullptr, shader.get(), node.get()))
        , compositorNode(compositor->appendNode())
        , block(compositorNode->appendOperationsBlock())
        , pass(block->appendScenePass()) {}

    std::unique_ptr<System> system;
    Borrowed<Shader> shader;
    Borrowed<RenderQueue> queue;
    Borrowed<Compositor> compositor;
    Borrowed<Node> node;
    Borrowed<ConstantBuffer> buffer;
    Borrowed<ShaderPassMemorySlot> slot;
    Borrowed<ShaderInstanceMemorySlot> instanceSlot;
    Borrowed<Entity> entity;
    Borrowed<CompositorNode> compositorNode;
    Borrowed<CompositorOperationsBlock> block;
    Borrowed<ScenePass> pass;
};

struct Ending {
    const char* name;
    std::function<void(World&)> end;
    std::function<bool(const World&)> gone;  ///< what this must destroy
    std::function<bool(const World&)> there; ///< what it must leave
};

bool partsOfShaderAreGone(const World& world) {
    return !world.buffer && !world.slot && !world.instanceSlot;
}
bool compositorIsEmpty(const World& world) {
    return !world.compositorNode && !world.block && !world.pass;
}

const std::array ENDINGS = {
    Ending{"shader reset", [](World& world) { world.shader->reset(); }, partsOfShaderAreGone,
           [](const World& world) { return world.shader && world.entity; }},
    Ending{"shader erased", [](World& world) { world.system->getShaderManager()->erase("shader"); },
           [](const World& world) { return !world.shader && partsOfShaderAreGone(world); },
           [](const World& world) { return world.entity && !world.entity->getShader(); }},
    Ending{"entity erased", [](World& world) { world.queue->eraseEntity(world.entity.get()); },
           [](const World& world) { return !world.entity; },
           [](const World& world) { return world.queue && world.node; }},
    Ending{"queue cleared", [](World& world) { world.queue->clearQueue(); },
           [](const World& world) { return !world.entity; },
           [](const World& world) { return !!world.queue; }},
    Ending{"queue reset", [](World& world) { world.queue->reset(); },
           [](const World& world) { return !world.entity; },
           [](const World& world) { return !!world.queue; }},
    Ending{"queue erased", [](World& world) { world.system->getRenderQueueManager()->erase("queue"); },
           [](const World& world) { return !world.entity && !world.queue; },
           [](const World& world) { return world.pass && world.shader; }},
    Ending{"node erased", [](World& world) { world.system->getNodeManager()->erase("node"); },
           [](const World& world) { return !world.node; },
           [](const World& world) { return world.entity && !world.entity->getNode(); }},
    Ending{"pass removed", [](World& world) { world.block->removePass(world.pass.get()); },
           [](const World& world) { return !world.pass; }, [](const World& world) { return !!world.block; }},
    Ending{"block removed",
           [](World& world) { world.compositorNode->removeOperationsBlock(world.block.get()); },
           [](const World& world) { return !world.pass && !world.block; },
           [](const World& world) { return !!world.compositorNode; }},
    Ending{"compositor node removed",
           [](World& world) { world.compositor->removeNode(world.compositorNode.get()); }, compositorIsEmpty,
           [](const World& world) { return !!world.compositor; }},
    Ending{"compositor reset", [](World& world) { world.compositor->reset(); }, compositorIsEmpty,
           [](const World& world) { return !!world.compositor; }},
    Ending{"compositor erased",
           [](World& world) { world.system->getCompositorManager()->erase("compositor"); },
           [](const World& world) { return !world.compositor && compositorIsEmpty(world); },
           [](const World& world) { return !!world.queue; }},
    Ending{"system destroyed", [](World& world) { world.system.reset(); },
           [](const World& world) {
               return !world.shader && !world.queue && !world.compositor && !world.node && !world.entity &&
                      partsOfShaderAreGone(world) && compositorIsEmpty(world);
           },
           [](const World&) { return true; }},
};

} // namespace

TEST(LifetimeTest, heldObjectsBecomeNullHoweverTheyEnd) {
    for (const Ending& ending : ENDINGS) {
        World world;
        EXPECT_FALSE(ending.gone(world)) << ending.name << ": nothing is gone before";
        ending.end(world);
        EXPECT_TRUE(ending.gone(world)) << ending.name;
        EXPECT_TRUE(ending.there(world)) << ending.name;
    }
}

TEST(LifetimeTest, managersAndSystemsCanBeHeldToo) {
    auto system = std::make_unique<System>();
    const Borrowed<System> held = system.get();
    const Borrowed<TextureManager> textures = system->getTextureManager();
    EXPECT_TRUE(held && textures);
    system.reset();
    EXPECT_FALSE(held);
    EXPECT_FALSE(textures);
}

TEST(LifetimeTest, whatTheHostOwnsOutlivesTheSystemAndRefusesToLoad) {
    auto system = std::make_unique<System>();
    const auto compositor = Compositor::create(system.get());
    const auto queue = RenderQueue::create(system.get());
    const auto node = Node::create(system.get());
    const auto mesh = Mesh::create(system.get());
    const auto shader = Shader::create(system.get());
    const auto camera = Camera::create(system.get());
    Entity* const entity = queue->addEntity(mesh.get(), shader.get(), node.get());
    system.reset();
    EXPECT_FALSE(mesh->load());
    EXPECT_FALSE(shader->load());
    entity->setVisible(false);
    entity->setMesh(nullptr);
    node->setPosition({1.0f, 2.0f, 3.0f});
    shader->addConstantBuffer(0, 0)->addPassMemorySlot()->setAsViewMatrix(camera.get());
    compositor->appendNode()->appendOperationsBlock()->appendClearPass();
    compositor->unload();
    EXPECT_TRUE(queue->eraseEntity(entity));
}
