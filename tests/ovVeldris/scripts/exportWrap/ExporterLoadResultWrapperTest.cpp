#include <ovVeldris/scripts/exportWrap/ExporterLoadResultWrapper.h>

#include "../support/Cases.h"

TEST(ExporterLoadResultWrapperTest, hasATreeOrAnError) {
    luaTest::expectCases({
        {"local r = ovExport.JsonExporter.importIntoTree('[]') return tostring(r._tree ~= nil) .. ' ' .. "
         "tostring(r._error._activated)",
         "true false"},
        {"local r = ovExport.JsonExporter.importIntoTree('[1, }') return tostring(r._tree) .. ' ' .. "
         "tostring(r._error._activated)",
         "nil true"},
        {"ovExport.JsonExporter.importIntoTree('[]')._tree = nil",
         "error: test:1: ovExport.ExporterLoadResult._tree can be read, not set"},
    });
}
