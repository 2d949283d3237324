#include "veldris/commands/CommandTesting.h"
#include "veldris/commands/ModelFile.h"

namespace {

using ovMemory::String;

class MaterialsCommandTest : public testing::Test {
protected:
    Outcome materials(const String& model, const String& output, const ovMemory::Buffer<String>& more = {}) {
        ovMemory::Buffer<String> arguments = {"materials", model,      "-o",        output,
                                              "--device",  "software", "--no-cache"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return runVeldris(arguments);
    }

    TemporaryFolder _folder;
};

TEST_F(MaterialsCommandTest, writesAFileThatCheckFindsNoFaultWith) {
    const String output = _folder.getPath("quad.ovm");
    const Outcome written = materials(writeQuad(_folder), output);
    ASSERT_EQ(written.status, 0) << written.error;
    EXPECT_EQ(written.output, output + "\n");
    std::ifstream file(output);
    const String text{std::istreambuf_iterator<char>(file), {}};
    rapidjson::Document document;
    document.Parse(text.c_str());
    ASSERT_TRUE(document.IsArray() && document.Size() == 1) << text;
    EXPECT_STREQ(document[0]["name"].GetString(), "paint");
    EXPECT_STREQ(document[0]["type"].GetString(), "PBS");
    EXPECT_TRUE(document[0]["albedoTexture"].IsObject()) << text;
    const Outcome checked = runVeldris({"check", output});
    EXPECT_EQ(checked.status, 0) << checked.output << checked.error;
}

TEST_F(MaterialsCommandTest, reportsForMachines) {
    const auto report = parseJson(materials(writeQuad(_folder), _folder.getPath("quad.ovm"), {"--json"}));
    EXPECT_EQ(report["materials"].GetInt(), 1);
}

TEST_F(MaterialsCommandTest, failuresLeaveNoFile) {
    const String output = _folder.getPath("o.ovm");
    EXPECT_EQ(materials("nowhere.glb", output).status, 1);
    EXPECT_FALSE(std::filesystem::exists(output));
    const Outcome unwritable = materials(writeQuad(_folder), _folder.getPath("no/such/folder.ovm"));
    EXPECT_EQ(unwritable.status, 1);
    EXPECT_NE(unwritable.error.find("no/such/folder.ovm"), String::npos) << unwritable.error;
}

} // namespace
