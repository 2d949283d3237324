#include <gtest/gtest.h>
#include <ovExport/JsonExporter.h>

namespace {

using namespace ovExport;

TEST(JsonExporterTest, aDocumentIsReadAndWritten) {
    const JsonExporter exporter;
    const ExporterLoadResult result =
        exporter.importIntoTree(R"({"name": "gold", "values": [1, 2.5, null]})");
    ASSERT_TRUE(result) << result._error._errorInfo;
    EXPECT_EQ(
        exporter.exportTreeIntoString(result._tree.get()),
        "{\n    \"name\": \"gold\",\n    \"values\": [\n        1,\n        2.5,\n        null\n    ]\n}");
}

} // namespace
