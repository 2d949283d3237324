#include <veldris/console/OutputFile.h>

#include "veldris/commands/CommandTesting.h"
#include "veldris/commands/ModelFile.h"
#include "veldris/console/ProgramTesting.h"

namespace {

using ovMemory::String;

TEST(OutputFileTest, standardOutputHasAFormat) {
    EXPECT_TRUE(veldris::isStandardOutput("png:-"));
    EXPECT_FALSE(veldris::isStandardOutput("png-"));
    EXPECT_EQ(veldris::nameWithFormat("png:-"), "standard output.png");
    EXPECT_EQ(veldris::nameWithFormat("a/b.exr"), "a/b.exr");
}

TEST(OutputFileTest, everyCommandWritesToPipes) {
    const TemporaryFolder folder;
    writeQuad(folder);
    const String drawn = " --device software --no-cache";
    const struct {
        String call;
        const char* beginning;
    } CASES[] = {
        {"$V apply quad.png --effects texture-copy -o png:-" + drawn, "\x89PNG"},
        {"$V apply quad.png --effects texture-copy -o JPG:-" + drawn, "\xff\xd8"},
        {"$V render quad.gltf --size 8x8 --samples 1 --environment none -o exr:-" + drawn,
         "\x76\x2f\x31\x01"},
        {"$V render quad.gltf --size 8x8 --samples 1 --environment none -o hdr:-" + drawn, "#?"},
        {"$V materials quad.gltf -o ovm:-" + drawn, "["},
        {"$V bake cubemap quad.png --size 4 dds:-", "DDS "},
        {"$V bake cubemap quad.png --size 4 ktx2:-", "\xabKTX"},
        {"$V bake irradiance quad.png --size 4 x.dds --coefficients json:-", "{\"coefficients\""},
    };
    for (const auto& test : CASES) {
        ASSERT_EQ(runShell("cd " + folder.getPath() + "; " + test.call + " 2>errors >printed"), 0)
            << test.call;
        std::ifstream file(folder.getPath("printed"), std::ios::binary);
        const String printed(std::istreambuf_iterator<char>(file), {});
        EXPECT_TRUE(printed.starts_with(test.beginning)) << test.call;
        EXPECT_EQ(runShell("cd " + folder.getPath() + "; " + test.call + " 2>errors >/dev/full"), 1)
            << test.call;
    }
}

TEST(OutputFileTest, aFullStandardOutputIsAFailure) {
    for (const char* call :
         {"info --no-cache --device software", "--help", "--version", "help bake", "shaders --help"})
        EXPECT_EQ(runShell("$V " + String(call) + " >/dev/full 2>/dev/null"), 1) << call;
}

// What can be told of an output is told before the input is even looked at: there is none here.
TEST(OutputFileTest, outputsAreCheckedBeforeTheWork) {
    const TemporaryFolder folder;
    const String missing = folder.getPath("no/such/folder/");
    std::filesystem::create_directory(folder.getPath("folder.png"));
    const String isFolder = folder.getPath("folder.png");
    const ovMemory::Buffer<ovMemory::Buffer<String>> cases = {
        {"apply", "none.png", "--effects", "texture-copy", "-o", missing + "a.png"},
        {"apply", "none.png", "--effects", "texture-copy", "-o", isFolder},
        {"render", "none.glb", "-o", missing + "a.png"},
        {"materials", "none.glb", "-o", missing + "a.ovm"},
        {"bake", "prefilter", "none.exr", missing + "a.dds"},
        {"bake", "cubemap", "none.exr", missing + "{face}.png"},
        {"bake", "prefilter", "none.exr", missing + "{face}-{mip}.exr"},
        {"bake", "irradiance", "none.exr", folder.getPath("a.dds"), "--coefficients", missing + "a.json"},
        {"bake", "spherical", "none.dds", missing + "a.exr"},
    };
    for (const auto& arguments : cases) {
        const Outcome outcome = runVeldris(arguments);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_TRUE(outcome.error.starts_with("veldris: Writing file '")) << outcome.error;
    }
}

} // namespace
