#include <gtest/gtest.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/resources/Viewport.h>
#include <set>

using namespace ovGraphics;

namespace {

template <typename Manager>
Manager* managerOf(const System& system);

template <>
TextureManager* managerOf(const System& system) {
    return system.getTextureManager();
}
template <>
SamplerManager* managerOf(const System& system) {
    return system.getSamplerManager();
}
template <>
ProgramManager* managerOf(const System& system) {
    return system.getProgramManager();
}
template <>
ShaderManager* managerOf(const System& system) {
    return system.getShaderManager();
}
template <>
CameraManager* managerOf(const System& system) {
    return system.getCameraManager();
}
template <>
ViewportManager* managerOf(const System& system) {
    return system.getViewportManager();
}
template <>
CompositorManager* managerOf(const System& system) {
    return system.getCompositorManager();
}
template <>
RenderContextManager* managerOf(const System& system) {
    return system.getRenderContextManager();
}

template <typename Manager>
class ManagersTest : public testing::Test {};

using AllManagers = testing::Types<TextureManager, SamplerManager, ProgramManager, ShaderManager,
                                   CameraManager, ViewportManager, CompositorManager, RenderContextManager>;
TYPED_TEST_SUITE(ManagersTest, AllManagers);

} // namespace

TYPED_TEST(ManagersTest, ownsByName) {
    System system;
    TypeParam& manager = *managerOf<TypeParam>(system);
    auto* first = manager.createOrRetrieve("first");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->getName(), "first");
    EXPECT_EQ(first->getSystem(), &system);
    EXPECT_TRUE(first->isUnloaded());
    EXPECT_FALSE(first->getHidden());
    EXPECT_EQ(manager.createOrRetrieve("first"), first);
    auto* second = manager.createOrRetrieve("second");
    EXPECT_NE(second, first);
    EXPECT_EQ(manager.getCount(), 2u);
    EXPECT_EQ(manager.get("second"), second);
    EXPECT_EQ(manager.get("third"), nullptr);
    EXPECT_EQ((std::set{manager.getByIndex(0), manager.getByIndex(1)}), (std::set{first, second}));
    EXPECT_EQ(manager.getByIndex(2), nullptr);

    EXPECT_FALSE(manager.rename("unknown", "third"));
    EXPECT_FALSE(manager.rename("first", "second")); // taken
    EXPECT_EQ(manager.get("first"), first);
    EXPECT_EQ(first->getName(), "first");
    EXPECT_EQ(manager.get("second"), second);
    EXPECT_TRUE(manager.rename("first", "third"));
    EXPECT_EQ(manager.get("first"), nullptr);
    EXPECT_EQ(manager.get("third"), first);
    EXPECT_EQ(first->getName(), "third");
    EXPECT_TRUE(manager.rename(first->getName(), first->getName().substr(1))); // views into what changes
    EXPECT_EQ(manager.get("hird"), first);

    manager.erase("unknown");
    EXPECT_EQ(manager.getCount(), 2u);
    manager.erase(first->getName()); // a view into what goes away
    EXPECT_EQ(manager.get("hird"), nullptr);
    EXPECT_EQ(manager.getCount(), 1u);
    EXPECT_NE(manager.createOrRetrieve(""), nullptr); // the empty name is a name
    EXPECT_EQ(manager.getCount(), 2u);
}

TYPED_TEST(ManagersTest, getInstanceIsTheSingletonSystems) {
    ASSERT_EQ(System::getInstanceIfExisting(), nullptr);
    TypeParam* manager = TypeParam::getInstance();
    ASSERT_NE(System::getInstanceIfExisting(), nullptr);
    EXPECT_EQ(manager, managerOf<TypeParam>(System::getInstanceRef()));
    EXPECT_EQ(manager->createOrRetrieve("x")->getSystem(), System::getInstance());
    EXPECT_TRUE(manager->isTheSingletonInstance());
    System other;
    EXPECT_FALSE(managerOf<TypeParam>(other)->isTheSingletonInstance());
    System::kill();
    EXPECT_EQ(System::getInstanceIfExisting(), nullptr);
}

TEST(ActiveResourcesTest, areForgottenWhenDestroyed) {
    System system;
    CameraManager& cameras = *system.getCameraManager();
    EXPECT_EQ(cameras.getActiveRenderCamera(), nullptr);
    cameras.setActiveRenderCamera(cameras.createOrRetrieve("eye"));
    EXPECT_EQ(cameras.getActiveRenderCamera(), cameras.get("eye"));
    cameras.erase("eye");
    EXPECT_EQ(cameras.getActiveRenderCamera(), nullptr);

    ViewportManager& viewports = *system.getViewportManager();
    viewports.setActiveViewport(viewports.createOrRetrieve("part"));
    EXPECT_EQ(viewports.getActiveViewport(), viewports.get("part"));
    viewports.erase("part");
    EXPECT_EQ(viewports.getActiveViewport(), nullptr);

    RenderContextManager& contexts = *system.getRenderContextManager();
    const auto texture = Texture::create(&system);
    RenderContext* context = contexts.createOrRetrieve("main", {.texture = texture.get()});
    EXPECT_EQ(context->getBackBuffer(), texture.get());
    EXPECT_EQ(contexts.createOrRetrieve("main", {}), context); // set up anew
    EXPECT_EQ(context->getBackBuffer(), nullptr);
    contexts.setActiveRenderContext(context);
    EXPECT_EQ(contexts.getActiveRenderContext(), context);
    contexts.erase("main");
    EXPECT_EQ(contexts.getActiveRenderContext(), nullptr);
}
