#include <ovVeldris/scripts/exportWrap/NodeWrapper.h>

#include "../support/Cases.h"

using luaTest::expectCases;

namespace {

void expectNodeResults(const ovMemory::String& before, std::initializer_list<luaTest::Case> cases) {
    ovVeldris::ScriptsEngine engine(nullptr);
    engine.initialize();
    for (const luaTest::Case& row : cases)
        EXPECT_EQ(
            luaTest::evaluate(*engine.getEnvironment(), before + "return " + ovMemory::String(row.text)),
            row.expected)
            << row.text;
}

} // namespace

TEST(NodeWrapperTest, walksATree) {
    expectNodeResults(
        R"(local t = ovExport.JsonExporter.importIntoTree(
        '{"name": "stone", "sizes": [1, -2.5, true, null], "of": {"a": 7, "a": 8}}')._tree
)",
        {
            {"t:getNodeNature()", "2"},
            {"t:getMemberCount()", "3"},
            {"t:getMemberKey(0)", "name"},
            {"t:getMemberKey(2)", "of"},
            {"t:getMemberKey(3)", ""},
            {"t:getMemberValue('name'):getValueAsString()", "stone"},
            {"t:getMemberValue('name'):getNodeNature()", "1"},
            {"t:getMemberValue('name'):getNodeValueType()", "2"},
            {"t:getMemberValue('Name')", "nil"},
            {"t:getMemberValueIndex(1):getNodeNature()", "3"},
            {"t:getMemberValueIndex(3)", "nil"},
            {"t:getMemberValueIndex(2):getMemberCount()", "2"},
            {"t:getMemberValueIndex(2):getMemberValue('a'):getValueAsInt()", "7"},
            {"t:getMemberValueIndex(2):getMemberValueIndex(1):getValueAsInt()", "8"},
            {"t:getMemberValue('sizes'):getArraySize()", "4"},
            {"t:getMemberValue('sizes'):getArrayElement(1):getValueAsDouble()", "-2.5"},
            {"t:getMemberValue('sizes'):getArrayElement(1):isValueTypeNumber()", "true"},
            {"t:getMemberValue('sizes'):getArrayElement(2):isValueTypeNumber()", "false"},
            {"t:getMemberValue('sizes'):getArrayElement(2):getValueAsBool()", "true"},
            {"t:getMemberValue('sizes'):getArrayElement(3):getNodeNature()", "0"},
            {"t:getMemberValue('sizes'):getArrayElement(4)", "nil"},
            {"t:getArraySize()", "0"},
            {"t:getMemberKey(-1)", "error: test:3: ovExport.Node.getMemberKey: argument 2 expected "
                                   "an integer from 0 to 4294967295, got -1"},
            {"t:getMemberValue(1)", "error: test:3: ovExport.Node.getMemberValue: argument 2 (name) "
                                    "expected string, got number"},
        });
}

TEST(NodeWrapperTest, convertsValues) {
    expectNodeResults(
        R"(local t = ovExport.JsonExporter.importIntoTree('[3.75, 4000000000, "12", false, -1]')._tree
        local function at(i) return t:getArrayElement(i) end
)",
        {
            {"at(0):getValueAsInt()", "3"},
            {"at(0):getValueAsUint()", "3"},
            {"at(0):getValueAsFloat()", "3.75"},
            {"at(0):getValueAsString()", "3.75"},
            {"at(1):getValueAsUint()", "4000000000"},
            {"at(1):getValueAsInt()", "2147483647"},
            {"at(2):getValueAsInt()", "12"},
            {"at(2):getValueAsDouble()", "12.0"},
            {"at(3):getValueAsBool()", "false"},
            {"at(4):getValueAsUint()", "0"},
            {"at(4):getValueAsBool()", "true"},
        });
}

TEST(NodeWrapperTest, buildsATree) {
    expectCases({
        {R"(local t = ovExport.JsonExporter.importIntoTree('{}')._tree
            t:addMember('text'):setAsString('a"b') t:addMember('int'):setAsInt(-2147483648)
            t:addMember('uint'):setAsUint(4294967295) t:addMember('float'):setAsFloat(0.1)
            t:addMember('double'):setAsDouble(0.1) t:addMember('bool'):setAsBool(true)
            local list = t:addMember('list') list:addElement():setAsInt(1) list:addElement()
            return (ovExport.JsonExporter.exportTreeIntoString(t):gsub('%s+', '')))",
         R"({"text":"a\"b","int":-2147483648,"uint":4294967295,"float":0.1,"double":0.1,"bool":true,"list":[1,null]})"},
        {"ovExport.JsonExporter.importIntoTree('{}')._tree:setAsInt(1 << 31)",
         "error: test:1: ovExport.Node.setAsInt: argument 2 expected an integer from -2147483648 to "
         "2147483647, got "
         "2147483648"},
        {"ovExport.JsonExporter.importIntoTree('{}')._tree:setAsUint(-1)",
         "error: test:1: ovExport.Node.setAsUint: argument 2 expected an integer from 0 to 4294967295, got "
         "-1"},
        {"ovExport.JsonExporter.importIntoTree('{}')._tree:setAsBool(1)",
         "error: test:1: ovExport.Node.setAsBool: argument 2 (value) expected boolean, got number"},
    });
}

TEST(NodeWrapperTest, keepsItsTreeAlive) {
    expectCases({
        {"local n = ovExport.JsonExporter.importIntoTree('[[[\"deep\"]]]')._tree:getArrayElement(0)"
         ":getArrayElement(0):getArrayElement(0) for i = 1, 3 do collectgarbage() end return "
         "n:getValueAsString()",
         "deep"},
        // A chain of a hundred thousand nodes, each kept by the one below it, is let go at once.
        {"local text = ('['):rep(99999) .. (']'):rep(99999) "
         "local n = ovExport.JsonExporter.importIntoTree(text)._tree "
         "for i = 1, 99998 do n = n:getArrayElement(0) end n = n:getArraySize() collectgarbage() return n",
         "0"},
    });
}
