#include <ovVeldris/scripts/exportWrap/ExporterLoadResultWrapper.h>

#include "../support/Cases.h"

TEST(ExporterLoadResultWrapperTest, growingTreesCountAgainstTheMemoryOfTheirEnvironment) {
    ovVeldris::ScriptsEngine engine(nullptr);
    engine.initialize({.memoryLimit = 4 << 20});
    luaTest::expectCases(*engine.getEnvironment(),
                         {
                             {"local node = ovExport.JsonExporter.importIntoTree('[]')._tree while true do "
                              "node:addElement() end",
                              "error: not enough memory"},
                             {"local node = ovExport.JsonExporter.importIntoTree('[]')._tree while true do "
                              "node = node:addElement() end",
                              "error: not enough memory"},
                             {"local text = '[' .. string.rep('0,', 1 << 18) .. '0]' "
                              "local kept = ovExport.JsonExporter.importIntoTree(text) return kept._tree",
                              "error: not enough memory"},
                             {"for i = 1, 200 do ovExport.JsonExporter.importIntoTree('[\"' .. "
                              "string.rep('x', 1 << 17) .. '\"]') end "
                              "return 'collected'",
                              "collected"},
                         });
}

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
