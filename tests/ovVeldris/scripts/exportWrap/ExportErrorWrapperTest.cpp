#include <ovVeldris/scripts/exportWrap/ExportErrorWrapper.h>

#include "../support/Cases.h"

TEST(ExportErrorWrapperTest, tellsWhatIsWrongAndWhere) {
    luaTest::expectCases({
        {"return ovExport.JsonExporter.importIntoTree('[1, }')._error._index", "4"},
        {"return #ovExport.JsonExporter.importIntoTree('[1, }')._error._errorDesc > 0", "true"},
        {"return ovExport.JsonExporter.importIntoTree('[1,\\n }')._error._errorInfo:find('line 2', 1, true) "
         "~= nil",
         "true"},
        {"return ovExport.JsonExporter.importIntoTree('[]')._error._errorDesc", ""},
        {"ovExport.JsonExporter.importIntoTree('')._error._index = 3",
         "error: test:1: ovExport.ExportError._index can be read, not set"},
        // The error is a part of its result and keeps it alive.
        {"local e = ovExport.JsonExporter.importIntoTree('[1, }')._error for i = 1, 3 do collectgarbage() "
         "end "
         "return e._activated",
         "true"},
    });
}
