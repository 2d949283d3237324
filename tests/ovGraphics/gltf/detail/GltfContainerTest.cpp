#include <gtest/gtest.h>
#include <ovGraphics/gltf/GltfTesting.h>
#include <ovGraphics/gltf/detail/GltfContainer.h>

using namespace ovGraphics::detail;

namespace {

void setWord(GltfBytes& bytes, std::size_t offset, std::uint32_t word) {
    for (std::size_t i = 0; i < 4; ++i)
        bytes[offset + i] = static_cast<unsigned char>(word >> 8 * i);
}

GltfBytes makeFile() {
    return GltfBuilder::toBinary("{\"a\":1}", {1, 2, 3, 4});
}

} // namespace

TEST(GltfContainerTest, takesBinaryFilesApart) {
    const GltfBytes file = makeFile();
    EXPECT_TRUE(isBinaryGltf(file));
    ovMemory::String error = "old";
    const auto container = openGltfContainer(file, error);
    ASSERT_TRUE(container) << error;
    EXPECT_EQ(error, "");
    EXPECT_EQ(container->json, "{\"a\":1} ");
    ASSERT_TRUE(container->binary);
    EXPECT_EQ(GltfBytes(container->binary->begin(), container->binary->end()), GltfBytes({1, 2, 3, 4}));
}

TEST(GltfContainerTest, needsNoSecondChunkAndSkipsOthers) {
    ovMemory::String error;
    GltfBytes file = GltfBuilder::toBinary("{}", {});
    auto container = openGltfContainer(file, error);
    ASSERT_TRUE(container) << error;
    EXPECT_FALSE(container->binary);
    file = makeFile();
    setWord(file, 12 + 8 + 8 + 4, 0x12345678); // the second chunk's type
    container = openGltfContainer(file, error);
    ASSERT_TRUE(container) << error;
    EXPECT_FALSE(container->binary);
    file = makeFile();
    file.push_back(0xff); // behind the end that the header tells
    EXPECT_TRUE(openGltfContainer(file, error)) << error;
}

TEST(GltfContainerTest, takesTextPaddedWithZeros) {
    ovMemory::String error;
    const GltfBytes file = GltfBuilder::toBinary(std::string("{}\0\0", 4), {});
    const auto container = openGltfContainer(file, error);
    ASSERT_TRUE(container) << error;
    EXPECT_EQ(container->json.size(), 2u);
}

TEST(GltfContainerTest, takesAnythingElseForText) {
    ovMemory::String error;
    for (const std::string text : {"{}", "", "glT", "no glTF"}) {
        const GltfBytes bytes(text.begin(), text.end());
        EXPECT_FALSE(isBinaryGltf(bytes));
        const auto container = openGltfContainer(bytes, error);
        ASSERT_TRUE(container);
        EXPECT_EQ(container->json, text);
    }
}

TEST(GltfContainerTest, refusesWhatIsCutShortOrContradictsItself) {
    const GltfBytes whole = makeFile();
    ovMemory::String error;
    for (std::size_t size = 4; size < whole.size(); ++size)
        EXPECT_FALSE(openGltfContainer({whole.data(), size}, error)) << size;
    struct Case {
        std::size_t offset;
        std::uint32_t word;
        const char* error;
    };
    const Case cases[] = {
        {4, 1, "the file is binary glTF of version 1; only 2 can be read"},
        {8, 11, "the file is cut short or damaged: its header says 11 bytes, it has 40"},
        {8, 0xffffffff, "the file is cut short or damaged: its header says 4294967295 bytes, it has 40"},
        {8, 19, "the file is damaged: its first chunk is not whole, or is not JSON"},
        {12, 0xffffffff, "the file is damaged: its first chunk is not whole, or is not JSON"},
        {16, 0x004e4942, "the file is damaged: its first chunk is not whole, or is not JSON"},
        {28, 5, "the file is damaged: its second chunk is longer than what is left of the file"},
    };
    for (const Case& row : cases) {
        GltfBytes file = whole;
        setWord(file, row.offset, row.word);
        EXPECT_FALSE(openGltfContainer(file, error));
        EXPECT_EQ(error, row.error);
    }
}
