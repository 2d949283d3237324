#include <ovGraphics/shading/ProgramDiskCache.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <ovGraphics/shading/ShadingPrograms.h>
#include <support/TemporaryFolder.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace ovGraphics::shading {

using ovMemory::Buffer;
using ovMemory::String;

namespace {

ProgramText makeText(const String& pixel = "pixel") {
    return makeProgram(SHADER_LANGUAGE::GLSL, "vertex", pixel);
}

CachedProgram makeCached(const String& mark = "a") {
    CachedProgram cached;
    cached.program.vertexText = "vertex " + mark;
    cached.program.pixelText = "pixel " + mark;
    cached.program.attributes = {{"POSITION", 0, 4}, {"TEXCOORD", 2, 2}};
    cached.program.constantBuffers = {{"constants", 1, 3, 48, {{"first", 0, 16}, {"second", 16, 32}}}};
    cached.program.textureUnits = {
        {"a", 1, "s", 2, TEXTURE_TYPE::CUBE, true, false, 2},
        {"b", 3, "", TextureUnitInfo::NO_SAMPLER, TEXTURE_TYPE::TEXTURE_2D, false, true, 1}};
    cached.program.colorOutputs = 2;
    cached.driverBinary = {0, 255, 10, 13, 0};
    cached.driverBinaryFormat = 0x8e21;
    return cached;
}

bool isSame(const ovMemory::UniquePtr<CachedProgram>& loaded, const CachedProgram& expected) {
    return loaded && loaded->program == expected.program && loaded->driverBinary == expected.driverBinary &&
           loaded->driverBinaryFormat == expected.driverBinaryFormat;
}

Buffer<String> listFiles(const String& folder) {
    Buffer<String> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        files.push_back(entry.path().native());
    }
    return files;
}

String readAll(const String& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeAll(const String& path, const String& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

TEST(ProgramDiskCache, GivesBackWhatWasStored) {
    const TemporaryFolder folder;
    const ProgramDiskCache cache(folder.getPath("new/deep"), "driver 1");
    EXPECT_EQ(cache.load(makeText()), nullptr);
    String error = "old";
    ASSERT_TRUE(cache.store(makeText(), makeCached("a"), &error));
    EXPECT_EQ(error, "");
    EXPECT_TRUE(isSame(cache.load(makeText()), makeCached("a")));
    ASSERT_TRUE(cache.store(makeText(), makeCached("b")));
    EXPECT_TRUE(isSame(cache.load(makeText()), makeCached("b"))) << "the last store counts";
    EXPECT_TRUE(
        isSame(ProgramDiskCache(folder.getPath("new/deep"), "driver 1").load(makeText()), makeCached("b")));
    EXPECT_EQ(listFiles(folder.getPath("new/deep")).size(), 1u);
}

TEST(ProgramDiskCache, KeepsWhatACompilationGives) {
    const TemporaryFolder folder;
    const ProgramDiskCache cache(folder.getPath(), "driver");
    const ProgramText text = makeProgram(SHADER_LANGUAGE::HLSL, QUAD_VERTEX,
                                         makePixelText("ovTexture2dDecl(t, 0);\novSamplerDecl(s, 0);\n",
                                                       "ovReturn(ovSample(t, s, PIX_TEXCOORD));"));
    CachedProgram cached;
    cached.program = compileOrFail(text);
    ASSERT_TRUE(cache.store(text, cached));
    EXPECT_TRUE(isSame(cache.load(text), cached));
}

TEST(ProgramDiskCache, KeyIsAllThatDecidesTheProgram) {
    const TemporaryFolder folder;
    const ProgramDiskCache cache(folder.getPath(), "driver 1");
    const ProgramText base = makeText();
    ASSERT_TRUE(cache.store(base, makeCached()));
    ProgramText renamed = base;
    renamed.name = "another name";
    EXPECT_TRUE(isSame(cache.load(renamed), makeCached())) << "names are for messages only";

    Buffer<ProgramText> others(6, base);
    others[0].pixel.text += " ";
    others[1].vertex.text += " ";
    others[2].language = SHADER_LANGUAGE::HLSL;
    others[3].pixel.defines = {{"A", ""}};
    others[4].crossCompilerDefines = false;
    std::swap(others[5].vertex, others[5].pixel);
    for (std::size_t i = 0; i < others.size(); ++i) {
        EXPECT_EQ(cache.load(others[i]), nullptr) << i;
    }
    EXPECT_EQ(ProgramDiskCache(folder.getPath(), "driver 2").load(base), nullptr);
    EXPECT_EQ(ProgramDiskCache(folder.getPath(), "").load(base), nullptr);
}

TEST(ProgramDiskCache, FileOfAnotherKeyUnderTheSameNameCountsAsAbsent) {
    const TemporaryFolder folder;
    const ProgramDiskCache cache(folder.getPath(), "driver");
    ASSERT_TRUE(cache.store(makeText("one"), makeCached("one")));
    const String one = listFiles(folder.getPath()).front();
    const String bytes = readAll(one);
    std::filesystem::remove(one);
    ASSERT_TRUE(cache.store(makeText("two"), makeCached("two")));
    writeAll(listFiles(folder.getPath()).front(), bytes); // as if both keys had one hash
    EXPECT_EQ(cache.load(makeText("two")), nullptr);
}

TEST(ProgramDiskCache, DamagedFilesCountAsAbsentAndAreReplaced) {
    const TemporaryFolder folder;
    const ProgramDiskCache cache(folder.getPath(), "driver");
    ASSERT_TRUE(cache.store(makeText(), makeCached()));
    const String path = listFiles(folder.getPath()).front();
    const String bytes = readAll(path);
    for (const String& damaged : {String(), bytes.substr(0, 10), bytes.substr(0, bytes.size() - 1),
                                  bytes + "x", String("foo"), String(100000, '\xff')}) {
        writeAll(path, damaged);
        EXPECT_EQ(cache.load(makeText()), nullptr) << damaged.size();
        ASSERT_TRUE(cache.store(makeText(), makeCached()));
        EXPECT_TRUE(isSame(cache.load(makeText()), makeCached()));
    }
}

TEST(ProgramDiskCache, EmptyFolderSwitchesItOff) {
    const ProgramDiskCache cache("", "driver");
    String error = "old";
    EXPECT_TRUE(cache.store(makeText(), makeCached(), &error));
    EXPECT_EQ(error, "");
    EXPECT_EQ(cache.load(makeText()), nullptr);
}

TEST(ProgramDiskCache, FolderThatCannotBeWrittenIsAnError) {
    const TemporaryFolder folder;
    writeAll(folder.getPath("file"), "a file where a folder should be");
    const ProgramDiskCache cache(folder.getPath("file/sub"), "driver");
    String error;
    EXPECT_FALSE(cache.store(makeText(), makeCached(), &error));
    EXPECT_EQ(error.rfind(
                  "Could not make the folder '" + folder.getPath("file/sub") + "' of compiled programs: ", 0),
              0u)
        << error;
    EXPECT_FALSE(cache.store(makeText(), makeCached())) << "the reason is optional";
    EXPECT_EQ(cache.load(makeText()), nullptr);

    // A folder in the file's place stops the rename, whoever the user is.
    const ProgramDiskCache blocked(folder.getPath("blocked"), "driver");
    ASSERT_TRUE(blocked.store(makeText(), makeCached()));
    const String path = listFiles(folder.getPath("blocked")).front();
    std::filesystem::remove(path);
    std::filesystem::create_directories(path + "/inside");
    EXPECT_FALSE(blocked.store(makeText(), makeCached(), &error));
    EXPECT_NE(error, "");
    EXPECT_EQ(blocked.load(makeText()), nullptr);
    EXPECT_EQ(listFiles(folder.getPath("blocked")).size(), 1u) << "no temporary file is left";
}

/// Stores one of two programs of one key and loads in between; what is found is always one of the two, whole.
bool storeAndLoad(const String& folder, const String& mark, int rounds) {
    const ProgramDiskCache cache(folder, "driver");
    for (int i = 0; i < rounds; ++i) {
        if (!cache.store(makeText(), makeCached(mark))) {
            return false;
        }
        const auto loaded = cache.load(makeText());
        if (!isSame(loaded, makeCached("a")) && !isSame(loaded, makeCached("longer than a"))) {
            return false;
        }
    }
    return true;
}

TEST(ProgramDiskCacheThreads, ThreadsMayShareTheFolder) {
    const TemporaryFolder folder;
    std::atomic<int> good = 0;
    Buffer<std::thread> threads;
    for (const char* mark : {"a", "longer than a", "a", "longer than a"}) {
        threads.emplace_back([&folder, &good, mark] { good += storeAndLoad(folder.getPath(), mark, 50); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(good, 4);
    EXPECT_EQ(listFiles(folder.getPath()).size(), 1u);
}

TEST(ProgramDiskCache, ProcessesMayShareTheFolder) {
    const TemporaryFolder folder;
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::_exit(storeAndLoad(folder.getPath(), "longer than a", 100) ? 0 : 1);
    }
    EXPECT_TRUE(storeAndLoad(folder.getPath(), "a", 100));
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(listFiles(folder.getPath()).size(), 1u);
}

} // namespace

} // namespace ovGraphics::shading
