#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>

using namespace ovGraphics;

TEST(EntityTest, borrowsWhatItIsMadeOf) {
    System system;
    const auto queue = RenderQueue::create(&system);
    auto mesh = Mesh::create(&system);
    auto node = Node::create(&system);
    auto shader = Shader::create(&system);
    Entity* entity = queue->addEntity(mesh.get(), shader.get(), node.get());
    EXPECT_TRUE(entity->getVisible());
    EXPECT_FALSE(entity->getDoubleSided());
    entity->setShader(shader.get(), Entity::VARIANT_COUNT - 1);
    EXPECT_EQ(entity->getShader(0), shader.get());
    EXPECT_EQ(entity->getShader(1), nullptr);
    EXPECT_EQ(entity->getShader(Entity::VARIANT_COUNT - 1), shader.get());
    mesh.reset();
    node.reset();
    shader.reset();
    EXPECT_EQ(entity->getMesh(), nullptr);
    EXPECT_EQ(entity->getNode(), nullptr);
    EXPECT_EQ(entity->getShader(0), nullptr);
}
