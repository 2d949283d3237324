#include <ovVeldris/core/NearestName.h>

#include <gtest/gtest.h>

TEST(NearestNameTest, findsWhatWasMeant) {
    const ovMemory::Buffer<ovMemory::StringView> known = {"name",           "type",      "albedoColor",
                                                          "metalnessValue", "metalness", "metalnessTexture"};
    const std::pair<ovMemory::String, const char*> cases[] = {
        {"albedoColour", "albedoColor"},         // one put in
        {"albdoColor", "albedoColor"},           // one left out
        {"AlbedoColor", "albedoColor"},          // one replaced
        {"abledoColor", "albedoColor"},          // two replaced
        {"metallnes", "metalness"},              // one put in, one left out
        {"metalnessText", "metalnessTexture"},   // three left out
        {"metalnessTex", "metalness"},           // a part of one, and one is a part of it
        {"Texture", "metalnessTexture"},         // a part
        {"baseMetalnessmetalness", "metalness"}, // one is a part of it
        {"nam", "name"},
        {"naem", "name"},
        {"xy", ""},
        {"x", ""},
        {"", ""},
        {"occlusion", ""},
        {ovMemory::String(65, 'a'), ""},
        {ovMemory::String(60, 'a') + "name", "name"},
        {ovMemory::String(61, 'a') + "name", ""}, // too long for a name
    };
    for (const auto& [name, expected] : cases)
        EXPECT_EQ(ovVeldris::findNearestName(name, known), expected) << name;
    EXPECT_EQ(ovVeldris::findNearestName("name", {}), "");
}

TEST(NearestNameTest, aHintEndsAMessage) {
    EXPECT_EQ(ovVeldris::nearestNameHint("naem", {"type", "name"}), " Did you mean 'name'?");
    EXPECT_EQ(ovVeldris::nearestNameHint("occlusion", {"type", "name"}), "");
}
