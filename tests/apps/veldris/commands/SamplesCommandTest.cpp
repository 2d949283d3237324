#include "veldris/commands/CommandTesting.h"
#include "veldris/commands/ModelFile.h"
#include "veldris/console/ProgramTesting.h"

#include <sstream>

namespace {

using ovMemory::String;

TEST(SamplesCommandTest, writesTheSameFilesAgain) {
    const TemporaryFolder folder;
    const Outcome first = runVeldris({"samples", folder.getPath("new/samples")});
    ASSERT_EQ(first.status, 0) << first.error;
    const Outcome second = runVeldris({"samples", folder.getPath("more"), "--json"});
    const auto report = parseJson(second);
    ASSERT_EQ(report["files"].Size(), 4u);
    String printed;
    for (const auto& file : report["files"].GetArray()) {
        const std::filesystem::path path(file.GetString());
        const auto bytesOf = [](const std::filesystem::path& from) {
            std::ifstream stream(from, std::ios::binary);
            return String(std::istreambuf_iterator<char>(stream), {});
        };
        EXPECT_FALSE(bytesOf(path).empty()) << path;
        EXPECT_EQ(bytesOf(path), bytesOf(folder.getPath("new/samples/" + path.filename().native()))) << path;
        printed += folder.getPath("new/samples/" + path.filename().native()) + "\n";
    }
    EXPECT_EQ(first.output, printed);
    EXPECT_EQ(runVeldris({"check", folder.getPath("more/copper.ovm")}).status, 0);
    const Outcome refused = runVeldris({"samples", "/proc/samples"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.error.starts_with("veldris: could not make the folder '/proc/samples'"))
        << refused.error;
}

/// The lines of shell below a heading, without their comments.
ovMemory::Buffer<String> linesBelow(const String& heading) {
    std::ifstream readme(OV_README);
    ovMemory::Buffer<String> lines;
    bool isBelow = false;
    bool isShell = false;
    for (String line; std::getline(readme, line);) {
        isBelow = isBelow || line == heading;
        if (isBelow && isShell && line == "```")
            break;
        if (isBelow && isShell)
            lines.push_back(line);
        isShell = isShell || (isBelow && line == "```sh");
    }
    return lines;
}

String withoutComment(const String& line) {
    return line.substr(0, line.find(" #"));
}

// What a newcomer does: everything in order, in an empty folder.
TEST(SamplesCommandTest, theLinesOfTheReadmeWorkOneAfterAnother) {
    const TemporaryFolder folder;
    const ovMemory::Buffer<String> lines = linesBelow("## The command line");
    ASSERT_GE(lines.size(), 8u);
    const String surroundings =
        "cd " + folder.getPath() +
        "; PATH=\"$(dirname $V):$PATH\"; export XDG_CACHE_HOME=" + folder.getPath("cache") + "; ";
    for (const String& line : lines) {
        // Of all pictures and of all programs one will do: the tests of those commands make all of them.
        const bool drawsAll = line.find("veldris demo") != String::npos;
        const bool listsAll = line.find("veldris shaders") != String::npos;
        const char* smaller = drawsAll   ? " --width 64 --height 36 --only aces"
                              : listsAll ? " --effect fxaa"
                                         : "";
        EXPECT_EQ(runShell(surroundings + "( " + withoutComment(line) + smaller + "\n) >printed 2>errors"), 0)
            << line;
        std::ifstream errors(folder.getPath("errors"));
        EXPECT_EQ(String(std::istreambuf_iterator<char>(errors), {}), "") << line;
    }
}

} // namespace
