#include "support/TemporaryFolder.h"
#include "veldris/commands/CommandTesting.h"

#include <fstream>
#include <ovImages/CompositeEncoder.h>
#include <set>
#include <sstream>

namespace {

TEST(DemoCommandTest, drawsAGalleryAndASecondStartCompilesNothing) {
    const TemporaryFolder folder;
    const ovMemory::Buffer<ovMemory::String> arguments = {
        "demo",     "--out",   folder.getPath("gallery"), "--width", "96", "--height", "54", "--device",
        "software", "--cache", folder.getPath("cache"),   "--json"};
    const Outcome first = runVeldris(arguments);
    ASSERT_EQ(first.status, 0) << first.error;
    const auto report = parseJson(first);
    EXPECT_EQ(report["page"].GetString(), folder.getPath("gallery/index.html"));
    const int compiled = report["programsCompiled"].GetInt();
    EXPECT_GT(compiled, 6); // those of the effects alone: ACES draws two pictures with one program

    std::stringstream page;
    page << std::ifstream(folder.getPath("gallery/index.html")).rdbuf();
    std::set<ovMemory::String> contents;
    for (const auto& picture : report["pictures"].GetArray()) {
        const ovMemory::String file = picture["file"].GetString();
        const ovImages::DecodeResult read =
            ovImages::CompositeEncoder().decodeFile(folder.getPath("gallery/" + file));
        ASSERT_TRUE(read) << read.error;
        const bool isOfTexels = file == "prefiltered-mips.png" || file == "sky-tables.png"; // not drawn
        const bool isSheet = isOfTexels || file == "sky-sun-heights.png";
        EXPECT_TRUE(read.image->getWidth() == 96u || isSheet) << file;
        const auto bytes = read.image->getBytes();
        EXPECT_TRUE(contents.insert({bytes.begin(), bytes.end()}).second)
            << file << " is the same as another";
        EXPECT_NE(page.str().find(file), ovMemory::String::npos);
        EXPECT_EQ(picture["passes"].Empty(), isOfTexels) << file;
        for (const auto& pass : picture["passes"].GetArray())
            EXPECT_GE(pass["milliseconds"].GetDouble(), 0.0) << file;
    }
    EXPECT_GE(contents.size(), 18u);
    EXPECT_EQ(page.str().find(" 0.000 ms in all"), ovMemory::String::npos);
    EXPECT_EQ(page.str().find("src=\"texture-copy.png\""), page.str().rfind("src=\"texture-copy.png\""));
    // A command of the page draws its picture again, bit for bit.
    const ovMemory::String again = folder.getPath("again.png");
    const Outcome applied =
        runVeldris({"apply", folder.getPath("gallery/scene.exr"), "--effects", "tone-mapping:operator=aces",
                    "-o", again, "--device", "software", "--no-cache"});
    ASSERT_EQ(applied.status, 0) << applied.error;
    const auto drawnAgain = ovImages::CompositeEncoder().decodeFile(again);
    ASSERT_TRUE(drawnAgain) << drawnAgain.error;
    const auto bytesAgain = drawnAgain.image->getBytes();
    EXPECT_TRUE(contents.contains({bytesAgain.begin(), bytesAgain.end()}));
    EXPECT_NE(
        page.str().find("<pre>veldris apply scene.exr --effects &quot;tone-mapping:operator=aces&quot; -o "
                        "aces.png</pre>"),
        ovMemory::String::npos);

    const auto second = parseJson(runVeldris(arguments));
    EXPECT_EQ(second["programsCompiled"].GetInt(), 0);
    EXPECT_GT(report["programsMilliseconds"].GetDouble(), second["programsMilliseconds"].GetDouble());
    EXPECT_GT(second["programsMilliseconds"].GetDouble(), 0.0);
    EXPECT_GE(second["programsFromCache"].GetInt(),
              compiled); // a program is read again after its last user went
}

TEST(DemoCommandTest, drawsOnePictureAlone) {
    const TemporaryFolder folder;
    for (const char* name : {"spheres-glossiness", "environment-dusk", "aces"}) {
        const Outcome outcome = runVeldris({"demo", "--only", name, "--out", folder.getPath("one"), "--width",
                                            "32", "--height", "18", "--device", "software", "--no-cache"});
        ASSERT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.output, folder.getPath("one/" + ovMemory::String(name) + ".png\n"));
    }
    EXPECT_FALSE(std::filesystem::exists(folder.getPath("one/spheres-metalness.png")));
    EXPECT_FALSE(std::filesystem::exists(folder.getPath("one/aces-bright.png")));
    const Outcome none = runVeldris({"demo", "--only", "spheres", "--out", folder.getPath("one"), "--width",
                                     "32", "--height", "18", "--device", "software", "--no-cache"});
    EXPECT_EQ(none.status, 1);
    EXPECT_NE(none.error.find("there is no picture 'spheres'"), ovMemory::String::npos) << none.error;
}

TEST(DemoCommandTest, aFolderThatCannotBeMadeFails) {
    const TemporaryFolder folder;
    std::ofstream(folder.getPath("file")) << "x";
    const Outcome outcome = runVeldris({"demo", "--out", folder.getPath("file/gallery")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.error.find("file/gallery"), ovMemory::String::npos) << outcome.error;
}

} // namespace
