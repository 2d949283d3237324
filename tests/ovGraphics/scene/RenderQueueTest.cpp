#include <gtest/gtest.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>

using namespace ovGraphics;

TEST(RenderQueueTest, ownsItsEntitiesInTheOrderOfAddition) {
    System system;
    const auto queue = RenderQueue::create(&system);
    const auto mesh = Mesh::create(&system);
    const auto node = Node::create(&system);
    Entity* a = queue->addEntity(mesh.get(), nullptr, node.get());
    Entity* b = queue->addEntity(nullptr, nullptr, nullptr);
    EXPECT_EQ(queue->getEntityCount(), 2u);
    EXPECT_EQ(queue->getEntity(0), a);
    EXPECT_EQ(queue->getEntity(1), b);
    EXPECT_EQ(queue->getEntity(2), nullptr);
    EXPECT_EQ(a->getMesh(), mesh.get());
    EXPECT_EQ(a->getNode(), node.get());
    EXPECT_EQ(a->getShader(), nullptr);

    const auto other = RenderQueue::create(&system);
    EXPECT_FALSE(other->eraseEntity(a));
    EXPECT_FALSE(queue->eraseEntity(nullptr));
    EXPECT_TRUE(queue->eraseEntity(a));
    EXPECT_EQ(queue->getEntity(0), b);
    queue->clearQueue();
    EXPECT_EQ(queue->getEntityCount(), 0u);
    queue->addEntity(nullptr, nullptr, nullptr);
    queue->reset();
    EXPECT_EQ(queue->getEntityCount(), 0u);
}

TEST(RenderQueueTest, theManagersKeepQueuesNodesAndMeshesByName) {
    System system;
    EXPECT_EQ(system.getRenderQueueManager()->get("a"), nullptr);
    RenderQueue* queue = system.getRenderQueueManager()->createOrRetrieve("a");
    EXPECT_EQ(system.getRenderQueueManager()->createOrRetrieve("a"), queue);
    Node* node = system.getNodeManager()->createOrRetrieve("a");
    Mesh* mesh = system.getMeshManager()->createOrRetrieve("a");
    queue->addEntity(mesh, nullptr, node);
    EXPECT_TRUE(system.getNodeManager()->rename("a", "b"));
    EXPECT_EQ(node->getName(), "b");
    system.getNodeManager()->erase("b");
    EXPECT_EQ(queue->getEntity(0)->getNode(), nullptr);
    system.getMeshManager()->erase("a");
    EXPECT_EQ(queue->getEntity(0)->getMesh(), nullptr);
}
