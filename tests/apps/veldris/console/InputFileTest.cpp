#include <veldris/console/InputFile.h>

#include "veldris/commands/CommandTesting.h"
#include "veldris/commands/ModelFile.h"
#include "veldris/console/ProgramTesting.h"

#include <fmt/format.h>
#include <veldris/console/Console.h>

namespace {

using ovMemory::String;

String textOf(const String& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(InputFileTest, aPathStaysAsItIs) {
    veldris::Console console(false);
    veldris::InputFile file;
    for (const char* name : {"picture-", "-picture", "./-"}) {
        String path = name;
        String error;
        EXPECT_TRUE(file.open(path, console, error));
        EXPECT_EQ(path, name);
    }
}

TEST(InputFileTest, pipesCarryPicturesThroughChains) {
    const TemporaryFolder folder;
    writeQuad(folder);
    const String options = " --device software --no-cache --effects texture-copy ";
    // Larger than what a pipe holds, so that reading in pieces shows.
    ovImages::Image picture(300, 200, 4, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int i = 0; i < 300 * 200; ++i)
        picture.setComponent(i % 300, i / 300, 1, 0.001f * float(i % 977));
    ASSERT_TRUE(ovImages::CompositeEncoder().encodeFile(folder.getPath("in.exr"), picture.view()));
    const String pipe = "cd " + folder.getPath() + "; $V apply in.exr -o exr:-" + options +
                        "| $V apply - -o exr:-" + options + "| $V apply - -o out.exr" + options +
                        ">printed 2>errors";
    ASSERT_EQ(runShell(pipe), 0) << textOf(folder.getPath("errors"));
    EXPECT_EQ(textOf(folder.getPath("printed")), "out.exr\n");
    EXPECT_EQ(textOf(folder.getPath("errors")), "");
    const auto read = ovImages::CompositeEncoder().decodeFile(folder.getPath("out.exr"));
    ASSERT_TRUE(read) << read.error;
    for (const unsigned int x : {0u, 17u, 299u})
        EXPECT_EQ(read.image->getComponent(x, 150, 1), picture.getComponent(x, 150, 1)) << x;
}

// Standard input has no name that tells a cube from a picture.
TEST(InputFileTest, cubesComeThroughPipes) {
    const TemporaryFolder folder;
    writeQuad(folder);
    for (const char* format : {"dds", "ktx2"}) {
        const String pipe = fmt::format("cd {}; $V bake cubemap quad.png --size 8 in.{} >printed 2>errors && "
                                        "$V bake prefilter in.{} --size 8 file.dds >>printed 2>>errors && "
                                        "$V bake prefilter - --size 8 pipe.dds <in.{} >>printed 2>>errors",
                                        folder.getPath(), format, format, format);
        ASSERT_EQ(runShell(pipe), 0) << textOf(folder.getPath("errors"));
        const String expected = textOf(folder.getPath("file.dds"));
        EXPECT_FALSE(expected.empty());
        EXPECT_EQ(textOf(folder.getPath("pipe.dds")), expected) << format;
    }
}

// Looking into it would wait for somebody who writes.
TEST(InputFileTest, aNamedPipeIsRefusedAtOnce) {
    const TemporaryFolder folder;
    EXPECT_EQ(runShell("cd " + folder.getPath() +
                       "; mkfifo pipe; timeout 20 $V bake cubemap pipe --size 8 x.dds 2>errors"),
              1);
    EXPECT_EQ(
        textOf(folder.getPath("errors")),
        "veldris: Reading file 'pipe' failed: it is a device, a pipe or a socket, not a regular file; name a "
        "file\n");
}

TEST(InputFileTest, messagesNameStandardInput) {
    const TemporaryFolder folder;
    const struct {
        const char* call;
        int status;
        const char* error;
    } CASES[] = {
        {"$V check - </dev/null", 1, "veldris: standard input is empty; '-' reads it once, to its end.\n"},
        {"echo garbage | $V apply - --effects texture-copy -o x.png", 1,
         "veldris: Decoding file standard input failed: no known image format (PNG, JPEG, EXR, HDR): it "
         "begins with "
         "the bytes 67 61 72 62 61 67 65 0a\n"},
        {"echo garbage | $V apply - --effects texture-copy -o x.png --json", 1,
         "{\"error\":\"Decoding file standard input failed: no known image format (PNG, JPEG, EXR, HDR): it "
         "begins "
         "with the bytes 67 61 72 62 61 67 65 0a\"}\n"},
        {"echo garbage | $V bake cubemap - x.dds", 1,
         "veldris: Decoding file standard input failed: no known image format (PNG, JPEG, EXR, HDR): it "
         "begins with "
         "the bytes 67 61 72 62 61 67 65 0a\n"},
        {"$V check - <&-", 1,
         "veldris: standard input cannot be read: Bad file descriptor; give the name of a file instead.\n"},
    };
    for (const auto& test : CASES) {
        EXPECT_EQ(runShell("cd " + folder.getPath() + "; " + test.call + " 2>errors"), test.status)
            << test.call;
        EXPECT_EQ(textOf(folder.getPath("errors")), test.error) << test.call;
    }
    ASSERT_EQ(runShell("cd " + folder.getPath() + "; echo '[{}]' | $V check - >printed"), 1);
    EXPECT_TRUE(textOf(folder.getPath("printed")).starts_with("standard input:1: "));
}

} // namespace
