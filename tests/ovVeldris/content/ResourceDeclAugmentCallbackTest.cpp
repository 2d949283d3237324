#include <ovVeldris/content/ResourceDeclAugmentCallback.h>

#include <gtest/gtest.h>
#include <ovExport/JsonExporter.h>
#include <ovVeldris/materials/TestMaterial.h>

using namespace ovVeldris;

TEST(ResourceDeclAugmentCallbackTest, DoesNothingUnlessOverridden) {
    TestMaterial material(MATERIAL_TYPE::PBS);
    const auto node = ovExport::Node::create();
    ResourceDeclAugmentCallback callback;
    ResourceDeclAugmentCallback copy(callback);
    copy.onMaterial(&material, node.get());
    copy.onMaterial(nullptr, nullptr);
    EXPECT_EQ(material.calls, 0);
    EXPECT_EQ(material.getName(), "");
    EXPECT_EQ(node->getMemberCount(), 0u);
}

TEST(ResourceDeclAugmentCallbackTest, ReachesTheOverride) {
    struct Remember : ResourceDeclAugmentCallback {
        explicit Remember(bool& flag)
            : destroyed(flag) {}
        ~Remember() override { destroyed = true; }
        void onMaterial(Material* material, ovExport::Node* node) override {
            node->addMember("seen")->setAsString(material->getName());
        }
        bool& destroyed;
    };
    TestMaterial material(MATERIAL_TYPE::PBS);
    material.setName("gold");
    const auto node = ovExport::Node::create();
    bool destroyed = false;
    ovMemory::UniquePtr<ResourceDeclAugmentCallback> callback = std::make_unique<Remember>(destroyed);
    callback->onMaterial(&material, node.get());
    EXPECT_EQ(node->getMemberValue("seen")->getValueAsString(), "gold");
    callback.reset();
    EXPECT_TRUE(destroyed);
}
