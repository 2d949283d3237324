#include <ovGraphics/resourceSets/detail/SetData.h>

#include <ovExport/JsonExporter.h>
#include <ovExport/Node.h>
#include <ovGraphics/resourceSets/SetTesting.h>

using namespace ovGraphics::detail;
using Tree = ovExport::Node;

namespace {

/// Writes "abcdef" as two blocks to a folder.
struct WrittenData {
    WrittenData() {
        const unsigned char bytes[] = {'a', 'b', 'c', 'd', 'e', 'f'};
        const auto first = Tree::create();
        SetDataWriter writer;
        EXPECT_TRUE(writer.isEmpty());
        writer.add({bytes, 4}, *first);
        writer.add({bytes + 4, 2}, *second);
        writer.describe("x.data", *description);
        writeBytes(folder.getPath("x.data"),
                   {reinterpret_cast<const char*>(writer.getBytes().data()), writer.getBytes().size()});
    }
    TemporaryFolder folder;
    ovMemory::UniquePtr<Tree> second = Tree::create();
    ovMemory::UniquePtr<Tree> description = Tree::create();
};

} // namespace

TEST(SetDataTest, findsBlocksAgain) {
    const WrittenData data;
    SetDataReader reader;
    ASSERT_EQ(reader.open(*data.description, data.folder.getPath()), "");
    SetBytes bytes;
    ASSERT_EQ(reader.find(*data.second, bytes), "");
    EXPECT_EQ(ovMemory::String(bytes.begin(), bytes.end()), "ef");
}

TEST(SetDataTest, refusesPlacesOutside) {
    const WrittenData data;
    SetDataReader reader;
    ASSERT_EQ(reader.open(*data.description, data.folder.getPath()), "");
    const std::pair<const char*, const char*> CASES[] = {
        {R"({"offset": 0, "size": 6})", ""},
        {R"({"offset": 6, "size": 0})", ""},
        {R"({"offset": 0, "size": 7})", "7 bytes from 0 on lie outside the data of the set, which has 6"},
        {R"({"offset": 7, "size": 0})", "0 bytes from 7 on lie outside the data of the set, which has 6"},
        {R"({"offset": 18446744073709551615, "size": 2})",
         "2 bytes from 18446744073709551615 on lie outside the data of the set, which has 6"},
        {R"({"offset": 2, "size": 18446744073709551615})",
         "18446744073709551615 bytes from 2 on lie outside the data of the set, which has 6"},
        {R"({"offset": -1, "size": 2})", R"("offset" and "size" must be whole numbers)"},
        {R"({"offset": 0.5, "size": 2})", R"("offset" and "size" must be whole numbers)"},
        {R"({"offset": 1e300, "size": 2})", R"("offset" and "size" must be whole numbers)"},
        {R"({"offset": "0", "size": 2})", R"("offset" and "size" must be whole numbers)"},
        {R"([])", R"("offset" and "size" must be whole numbers)"},
    };
    for (const auto& [place, expected] : CASES) {
        const auto parsed = ovExport::JsonExporter().importIntoTree(place);
        ASSERT_TRUE(parsed) << place;
        SetBytes bytes;
        EXPECT_EQ(reader.find(*parsed._tree, bytes), expected) << place;
    }
}

TEST(SetDataTest, refusesFilesOfAnotherSave) {
    const WrittenData data;
    const ovMemory::String path = data.folder.getPath("x.data");
    for (const char* const bytes : {"", "abcde", "abcdeg", "abcdefg"}) {
        writeBytes(path, bytes);
        EXPECT_EQ(SetDataReader().open(*data.description, data.folder.getPath()),
                  "the file '" + path +
                      "' is not the one that was saved with the set: it was cut, changed, or belongs to "
                      "another save; "
                      "copy both files together, or save the set anew.");
    }
    for (const char* const file : {"", "/x.data", "../x.data"}) {
        data.description->addMember("file")->setAsString(file);
        EXPECT_EQ(SetDataReader().open(*data.description, data.folder.getPath()),
                  "\"data\" names no file inside the folder of the set; save the set anew.");
    }
}
