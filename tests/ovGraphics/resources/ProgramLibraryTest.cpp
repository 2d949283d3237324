#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <ovGraphics/Canvas.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/ProgramLibrary.h>
#include <support/PictureTest.h>
#include <support/TemporaryFolder.h>

using namespace ovGraphics;

namespace {

class ProgramLibraryTest : public PictureTest {
protected:
    /// Loads two programs in a system of its own that keeps programs in a folder.
    ProgramLibraryStatistics loadWithCache(const ovMemory::String& folder, RecordingLogger& logger) {
        Configuration configuration = HeadlessSystem::makeConfiguration(getLanguage(), &logger);
        configuration.cacheFolder = folder;
        System system;
        EXPECT_TRUE(system.initialize(configuration)) << logger.getText();
        for (const ovMemory::String& text : {UV_TEXT, CONSTANT_TEXT}) {
            const TestShader shader(system, text);
            EXPECT_TRUE(shader.loaded) << logger.getText();
            const auto target = Texture::create(&system);
            target->setUsableAsRenderTarget(true);
            EXPECT_TRUE(target->load());
            Canvas canvas(system, target.get());
            canvas.addDraw(*shader); // what came from the disk really draws
            EXPECT_TRUE(canvas.frame());
        }
        return system.getProgramLibrary().getStatistics();
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, ProgramLibraryTest, bothLanguages(), languageName);

TEST_P(ProgramLibraryTest, sharesTheProgramsOfEqualTexts) {
    ProgramLibrary library(*getGraphics().getDevice(), "");
    ovMemory::String error;
    ovMemory::String warnings;
    shading::ProgramText text = makeUnloadedProgram(getGraphics(), UV_TEXT)->getText();
    const LoadedProgram* first = library.acquire(text, error, warnings);
    ASSERT_NE(first, nullptr) << error;
    text.name = "another name";
    EXPECT_EQ(library.acquire(text, error, warnings), first);
    EXPECT_EQ(first->users, 2u);
    text.pixel.defines.push_back({"X", "1"});
    const LoadedProgram* other = library.acquire(text, error, warnings);
    EXPECT_NE(other, first);
    EXPECT_EQ(library.getStatistics().compiled, 2u);
    EXPECT_EQ(library.getStatistics().fromMemory, 1u);
    library.release(first);
    EXPECT_EQ(first->users, 1u);
    library.release(first); // the last user: freed
    library.release(other);
    text.pixel.defines.clear();
    EXPECT_NE(library.acquire(text, error, warnings), nullptr);
    EXPECT_EQ(library.getStatistics().compiled, 3u);
    text.pixel.text = "nonsense";
    EXPECT_EQ(library.acquire(text, error, warnings), nullptr);
    EXPECT_FALSE(error.empty());
    EXPECT_EQ(warnings, "");
}

TEST_P(ProgramLibraryTest, tellsWhoeverWatches) {
    ProgramLibrary library(*getGraphics().getDevice(), "");
    ovMemory::String error;
    ovMemory::String warnings;
    const shading::ProgramText text = makeUnloadedProgram(getGraphics(), UV_TEXT)->getText();
    ovMemory::Buffer<ovMemory::String> seen;
    library.setObserver([&seen](const shading::ProgramText& asked) { seen.push_back(asked.name); });
    for (int i = 0; i < 2; ++i) // compiled, and shared
        EXPECT_NE(library.acquire(text, error, warnings), nullptr) << error;
    EXPECT_EQ(seen, (ovMemory::Buffer<ovMemory::String>{text.name, text.name}));
    library.setObserver({});
    EXPECT_NE(library.acquire(text, error, warnings), nullptr) << error;
    EXPECT_EQ(seen.size(), 2u);
}

TEST_P(ProgramLibraryTest, theDiskKeepsProgramsBetweenSystems) {
    const TemporaryFolder folder;
    const ovMemory::String cache = folder.getPath("cache");
    RecordingLogger logger;
    EXPECT_EQ(loadWithCache(cache, logger).compiled, 2u);
    const ProgramLibraryStatistics second = loadWithCache(cache, logger);
    EXPECT_EQ(second.compiled, 0u);
    EXPECT_EQ(second.fromDisk, 2u);
    EXPECT_EQ(logger.getText(), "");

    for (const auto& corrupt :
         {std::function([](const std::filesystem::path& file) {
              std::filesystem::resize_file(file, std::filesystem::file_size(file) / 2);
          }),
          std::function([](const std::filesystem::path& file) { std::filesystem::resize_file(file, 0); }),
          std::function([](const std::filesystem::path& file) {
              std::ofstream(file, std::ios::binary | std::ios::in).seekp(40) << "garbage!";
          })}) {
        unsigned int files = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(cache))
            if (entry.is_regular_file()) {
                corrupt(entry.path());
                ++files;
            }
        EXPECT_EQ(files, 2u);
        EXPECT_EQ(loadWithCache(cache, logger).compiled, 2u); // compiled anew, and written again
        EXPECT_EQ(loadWithCache(cache, logger).fromDisk, 2u);
    }
}

TEST_P(ProgramLibraryTest, aFolderThatCannotBeWrittenIsAWarning) {
    const TemporaryFolder folder;
    const ovMemory::String file = folder.getPath("file");
    std::ofstream(file) << "no folder";
    RecordingLogger logger;
    EXPECT_EQ(loadWithCache(file + "/cache", logger).compiled, 2u);
    ASSERT_EQ(logger.messages.size(), 2u) << logger.getText(); // one a program
    EXPECT_TRUE(logger.messages[0].message.starts_with("Program 'TEST_PROGRAM': ")) << logger.getText();
    EXPECT_TRUE(logger.contains(file)) << logger.getText();
}
