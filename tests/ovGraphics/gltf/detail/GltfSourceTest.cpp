#include <fstream>
#include <gtest/gtest.h>
#include <ovGraphics/gltf/detail/GltfSource.h>
#include <support/TemporaryFolder.h>

using namespace ovGraphics::detail;

TEST(GltfSourceTest, loadsDataAndFilesOfTheFolder) {
    const TemporaryFolder folder;
    std::ofstream(folder.getPath("a b.bin")) << "hello";
    for (const ovMemory::String& place : {folder.getPath(), folder.getPath() + "/"}) {
        GltfReport report(10);
        ovMemory::String error = "old";
        const auto bytes = loadGltfUri("a%20b.bin", place, report, error);
        ASSERT_TRUE(bytes) << error;
        EXPECT_EQ(error, "");
        EXPECT_EQ(std::string(bytes->begin(), bytes->end()), "hello");
        EXPECT_FALSE(report.charge(6, 1, "more"));
    }
    GltfReport report(100);
    ovMemory::String error;
    const auto bytes = loadGltfUri("data:,hi", "", report, error);
    ASSERT_TRUE(bytes) << error;
    EXPECT_EQ(std::string(bytes->begin(), bytes->end()), "hi");
}

TEST(GltfSourceTest, saysWhyThereAreNoBytes) {
    const TemporaryFolder folder;
    std::ofstream(folder.getPath("big.bin")) << std::string(101, 'x');
    struct Case {
        std::string uri;
        std::string folder;
        std::string expected; ///< part of the error
    };
    const Case cases[] = {
        {"../a", folder.getPath(), "\"../a\" is refused: only files in the model's folder or below are read"},
        {"a.bin", "", "it lies in another file, \"a.bin\", and no folder is known to look for it in"},
        {"none.bin", folder.getPath(), folder.getPath("none.bin")},
        {"big.bin", folder.getPath(), "the file \"big.bin\" would take 101 x 1 bytes"},
        {"data:;base64,?", "", "the data URI \"data:;base64,?\" is not valid"},
        {"data:," + std::string(100, 'x'), "", "a data URI would take 106 x 1 bytes"},
    };
    for (const Case& row : cases) {
        GltfReport report(100);
        ovMemory::String error;
        EXPECT_FALSE(loadGltfUri(row.uri, row.folder, report, error)) << row.uri;
        EXPECT_NE(error.find(row.expected), std::string::npos) << error;
    }
}
