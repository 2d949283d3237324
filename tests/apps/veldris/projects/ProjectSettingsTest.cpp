#include <veldris/projects/ProjectSettings.h>

#include <gtest/gtest.h>

using namespace veldris;
using ovMemory::Buffer;
using ovMemory::String;

namespace {

Buffer<String> problemsOf(ovMemory::StringView text) {
    Buffer<String> problems;
    readSettings(text, problems);
    return problems;
}

} // namespace

TEST(ProjectSettingsTest, sayWhatIsNoSetting) {
    EXPECT_EQ(problemsOf("[]"), (Buffer<String>{"1: this is no object."}));
    EXPECT_EQ(problemsOf("{\"camera\": 1,\n\"shadows\": true}"), Buffer<String>());
    EXPECT_EQ(problemsOf("{\"size\": \"1x1\",\n\"kamera\": 1}"),
              (Buffer<String>{"2: there is no setting \"kamera\". Did you mean 'camera'?"}));
    EXPECT_EQ(problemsOf("{\"output\": \"/etc/passwd\"}"),
              (Buffer<String>{"1: there is no setting \"output\"."}));
    EXPECT_EQ(problemsOf("{\"size\": []}"), (Buffer<String>{"1: \"size\" is no text, number or bool."}));
    const String text = "{\"size\": \"1x1\"}";
    for (std::size_t size = 0; size < text.size(); ++size)
        EXPECT_EQ(problemsOf({text.data(), size}).size(), 1u) << size;
}
