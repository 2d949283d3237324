#include <ovVeldris/scripts/exportWrap/JsonExporterWrapper.h>

#include "../support/Cases.h"

TEST(JsonExporterWrapperTest, readsAndWritesTexts) {
    luaTest::expectCases({
        {"return (ovExport.JsonExporter.exportTreeIntoString(ovExport.JsonExporter.importIntoTree("
         "'[1, {\"a\": \"\\\\u00e9\"}]')._tree):gsub('%s', ''))",
         "[1,{\"a\":\"\xC3\xA9\"}]"},
        {"ovExport.JsonExporter.importIntoTree(nil)",
         "error: test:1: ovExport.JsonExporter.importIntoTree: argument 1 (text) expected string, got nil"},
        {"ovExport.JsonExporter.exportTreeIntoString(nil)",
         "error: test:1: ovExport.JsonExporter.exportTreeIntoString: argument 1 (node) expected "
         "ovExport.Node, got "
         "nil"},
    });
}
