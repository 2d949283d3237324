#include <ovResources/ResourceManager.h>

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <support/TemporaryFolder.h>
#include <unistd.h>

using namespace ovResources;
namespace fs = std::filesystem;

namespace {

// A manager launched in a folder of a known name; the process is back in its own folder afterwards.
class ResourceManagerTest : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(folder.getPath("launch/data"));
        fs::current_path(folder.getPath("launch"));
        manager = std::make_unique<ResourceManager>();
    }
    void TearDown() override { fs::current_path(_kept); }

    // The launched path without the separator at its end.
    String launch() const { return folder.getPath("launch"); }

    TemporaryFolder folder;
    std::unique_ptr<ResourceManager> manager;

private:
    fs::path _kept = fs::current_path();
};

void put(const String& path, StringView content) {
    std::ofstream(path, std::ios::binary) << content;
}

// Whatever stands in for the launched path in a table of cases.
String expand(StringView text, const String& launch, const String& above) {
    String result(text);
    for (const auto& [mark, value] : {std::pair<String, String>{"$L", launch}, {"$A", above}})
        if (const std::size_t place = result.find(mark); place != String::npos)
            result.replace(place, mark.size(), value);
    return result;
}

} // namespace

TEST_F(ResourceManagerTest, KnowsTheFolderItWasMadeIn) {
    EXPECT_EQ(manager->getLaunchedPath(), launch() + "/");
    EXPECT_EQ(manager->getWorkingPath(), "./");
    EXPECT_EQ(manager->getWorkingPathAbsolute(), launch() + "/");
    fs::current_path(folder.getPath());
    EXPECT_EQ(manager->getLaunchedPath(), launch() + "/") << "a later change of folder must not matter";
}

TEST_F(ResourceManagerTest, SurvivesADeletedFolder) {
    fs::create_directory(folder.getPath("gone"));
    fs::current_path(folder.getPath("gone"));
    fs::remove(folder.getPath("gone"));
    const ResourceManager lost;
    EXPECT_EQ(lost.getLaunchedPath(), "/");
}

TEST_F(ResourceManagerTest, WorkingPathEndsInASeparator) {
    const struct {
        StringView set, expected, absolute;
    } cases[] = {
        {"", "./", "$L/"},
        {".", "./", "$L/"},
        {"data", "data/", "$L/data/"},
        {"data/", "data/", "$L/data/"},
        {"./data//sub/../", "./data//sub/../", "$L/data/"},
        {"..", "../", "$A/"},
        {"../../../../../../../../../../../../..", "../../../../../../../../../../../../../", "/"},
        {"/", "/", "/"},
        {"/opt/my assets", "/opt/my assets/", "/opt/my assets/"},
        {"\xC3\xA9t\xC3\xA9", "\xC3\xA9t\xC3\xA9/", "$L/\xC3\xA9t\xC3\xA9/"},
    };
    for (const auto& row : cases) {
        manager->setWorkingPath(row.set);
        EXPECT_EQ(manager->getWorkingPath(), row.expected);
        EXPECT_EQ(manager->getWorkingPathAbsolute(), expand(row.absolute, launch(), folder.getPath()))
            << row.set;
    }
}

TEST_F(ResourceManagerTest, ConvertsPathsBetweenTheirForms) {
    using Conversion = String (ResourceManager::*)(StringView) const;
    const Conversion relativeFromAbsolute = &ResourceManager::getRelativeFromAbsolute;
    const Conversion absoluteFromRelative = &ResourceManager::getAbsoluteFromRelative;
    const Conversion relativeFromWorking = &ResourceManager::getRelativeFromWorkingDir;
    const Conversion absoluteFromWorking = &ResourceManager::getAbsoluteFromWorkingDir;
    const Conversion workingFromRelative = &ResourceManager::getFromWorkingDirFromRelative;
    const Conversion workingFromAbsolute = &ResourceManager::getFromWorkingDirFromAbsolute;
    // The working folder is data; $L is the launched path and $A the folder above it.
    const struct {
        Conversion conversion;
        StringView path, expected;
    } cases[] = {
        {relativeFromAbsolute, "$L/a/b.png", "a/b.png"},
        {relativeFromAbsolute, "$L", "./"},
        {relativeFromAbsolute, "$L/", "./"},
        {relativeFromAbsolute, "$L/a/", "a/"},
        {relativeFromAbsolute, "$A/other/x", "../other/x"},
        {relativeFromAbsolute, "$A/", "../"},
        {relativeFromAbsolute, "$A/launching", "../launching"},
        {relativeFromAbsolute, "a/../b", "b"},
        {absoluteFromRelative, "a/b.png", "$L/a/b.png"},
        {absoluteFromRelative, "", "$L/"},
        {absoluteFromRelative, "./", "$L/"},
        {absoluteFromRelative, "a//./c/../b", "$L/a/b"},
        {absoluteFromRelative, "../x", "$A/x"},
        {absoluteFromRelative, "../../../../../../../../../../../../../etc", "/etc"},
        {absoluteFromRelative, "/etc/../usr", "/usr"},
        {absoluteFromRelative, "sp ace/\xC3\xA9t\xC3\xA9", "$L/sp ace/\xC3\xA9t\xC3\xA9"},
        {absoluteFromRelative, "...", "$L/..."},
        {relativeFromWorking, "a.png", "data/a.png"},
        {relativeFromWorking, "", "data/"},
        {relativeFromWorking, "..", "./"},
        {relativeFromWorking, "../../x", "../x"},
        {relativeFromWorking, "$L/y", "y"},
        {absoluteFromWorking, "a.png", "$L/data/a.png"},
        {absoluteFromWorking, "", "$L/data/"},
        {absoluteFromWorking, "sub/", "$L/data/sub/"},
        {absoluteFromWorking, "../x", "$L/x"},
        {absoluteFromWorking, "/abs", "/abs"},
        {workingFromRelative, "data/a.png", "a.png"},
        {workingFromRelative, "data", "./"},
        {workingFromRelative, "a.png", "../a.png"},
        {workingFromRelative, "", "../"},
        {workingFromAbsolute, "$L/data/a.png", "a.png"},
        {workingFromAbsolute, "$L/data/", "./"},
        {workingFromAbsolute, "$A/x", "../../x"},
    };
    manager->setWorkingPath("data");
    for (const auto& row : cases) {
        const String path = expand(row.path, launch(), folder.getPath());
        EXPECT_EQ((manager.get()->*row.conversion)(path), expand(row.expected, launch(), folder.getPath()))
            << row.path << " (case " << &row - cases << ")";
    }
}

TEST_F(ResourceManagerTest, ConversionsUndoEachOther) {
    for (const StringView working : {"data", "../x/y", "/", "."}) {
        manager->setWorkingPath(working);
        for (const StringView path : {"/a", "/a/b/", "/tmp/x.png", "/"}) {
            const String fromWorking = manager->getFromWorkingDirFromAbsolute(path);
            EXPECT_EQ(manager->getAbsoluteFromWorkingDir(fromWorking), path) << working;
            const String relative = manager->getRelativeFromAbsolute(path);
            EXPECT_EQ(manager->getAbsoluteFromRelative(relative), path) << working;
            EXPECT_EQ(manager->getFromWorkingDirFromRelative(relative), fromWorking);
            EXPECT_EQ(manager->getRelativeFromWorkingDir(fromWorking), relative);
        }
    }
}

TEST_F(ResourceManagerTest, TellsFilesFromFolders) {
    put(launch() + "/data/f \xC3\xA9", "x");
    put(launch() + "/g", "x");
    fs::create_symlink("g", launch() + "/link");
    fs::create_symlink("data", launch() + "/folderLink");
    fs::create_symlink("loop", launch() + "/loop");
    fs::create_symlink("nowhere", launch() + "/dangling");
    const struct {
        StringView path;
        bool fromWorkingDir, isFile, isFolder;
    } cases[] = {
        {"", false, false, true},
        {"", true, false, true},
        {".", true, false, true},
        {"data", false, false, true},
        {"data/", false, false, true},
        {"data", true, false, false},
        {"data/f \xC3\xA9", false, true, false},
        {"f \xC3\xA9", true, true, false},
        {"f \xC3\xA9", false, false, false},
        {"../g", true, true, false},
        {"g", true, false, false},
        {"g/", false, false, false},
        {"link", false, true, false},
        {"folderLink", false, false, true},
        {"folderLink/../g", false, true, false},
        {"loop", false, false, false},
        {"loop/x", false, false, false},
        {"dangling", false, false, false},
        {"none", false, false, false},
        {"$L/g", false, true, false},
        {"$L/g", true, true, false},
        {"$L/data", true, false, true},
        {StringView("g\0x", 3), false, false, false},
        {StringView("data\0x", 6), false, false, false},
        {"/dev/null", false, false, false},
    };
    manager->setWorkingPath("data");
    for (const auto& row : cases) {
        const String path = expand(row.path, launch(), folder.getPath());
        EXPECT_EQ(manager->checkFileExists(path, row.fromWorkingDir), row.isFile) << "case " << &row - cases;
        EXPECT_EQ(manager->checkFolderExists(path, row.fromWorkingDir), row.isFolder)
            << "case " << &row - cases;
    }
    EXPECT_TRUE(manager->checkFileExists("g"));
    EXPECT_FALSE(manager->checkFolderExists("g"));
    EXPECT_FALSE(manager->checkFileExists(String(5000, 'n')));
    EXPECT_FALSE(manager->checkFolderExists(String(5000, 'n')));
}

TEST_F(ResourceManagerTest, SavesAndLoadsFiles) {
    manager->setWorkingPath("data");
    const ovMemory::Buffer<char> content = {'a', '\0', '\xFF', '\n', 'z'};
    // Relative paths start at the launched path, even if the process has moved since.
    fs::current_path(folder.getPath());
    for (const String& path : {String("new file.bin"), String("data/\xC3\xA9"), launch() + "/absolute"}) {
        String error = "left over";
        EXPECT_TRUE(manager->saveFileToDisk(path, content)) << path;
        EXPECT_EQ(manager->loadFileIntoMemory(path), content);
        EXPECT_EQ(manager->loadFileIntoMemory(path, error), content);
        EXPECT_EQ(error, "");
        EXPECT_TRUE(fs::is_regular_file(manager->getAbsoluteFromRelative(path)));
    }
    EXPECT_TRUE(manager->saveFileToDisk("empty", {}));
    const ovMemory::Result inPlace = manager->saveFile("/dev/null", content);
    EXPECT_TRUE(inPlace) << inPlace.error;
    EXPECT_NE(inPlace.warning, "");
    String error = "left over";
    EXPECT_TRUE(manager->loadFileIntoMemory("empty", error).empty());
    EXPECT_EQ(error, "");
}

TEST_F(ResourceManagerTest, FailuresSayWhatFailedAndChangeNothing) {
    const ovMemory::Buffer<char> content = {'x'};
    const struct {
        StringView path, loadReason, saveReason;
    } cases[] = {
        {"none/f", "No such file or directory; check the path",
         "No such file or directory; create the folder first"},
        {"data", "it is a folder; name a file", "it is a folder; name a file"},
        {"", "it is a folder; name a file", "it is a folder; name a file"},
    };
    for (const auto& row : cases) {
        const String path = launch() + "/" + String(row.path);
        String error;
        EXPECT_TRUE(manager->loadFileIntoMemory(row.path).empty());
        EXPECT_TRUE(manager->loadFileIntoMemory(row.path, error).empty());
        EXPECT_EQ(error, "Reading file '" + path + "' failed: " + String(row.loadReason));
        EXPECT_FALSE(manager->saveFileToDisk(row.path, content));
        EXPECT_FALSE(manager->saveFileToDisk(row.path, content, error));
        EXPECT_EQ(error, "Writing file '" + path + "' failed: " + String(row.saveReason));
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(launch()), fs::directory_iterator()), 1)
        << "only data is there";
}

TEST_F(ResourceManagerTest, ServesAsSingletonAndAsObject) {
    EXPECT_EQ(ResourceManager::getInstanceIfExisting(), nullptr);
    ResourceManager* const instance = ResourceManager::getInstance();
    EXPECT_TRUE(instance->isTheSingletonInstance());
    EXPECT_FALSE(manager->isTheSingletonInstance());
    instance->setWorkingPath("data");
    EXPECT_EQ(manager->getWorkingPath(), "./");
    ResourceManager::kill();
    EXPECT_EQ(ResourceManager::getInstanceIfExisting(), nullptr);
}
