-- JSON: reads a text into a tree, walks it, changes it and writes it to a file.
--
--     veldris run json.lua [FOLDER]
local folder = arg[1] or "."
local NATURES = {[0] = "nothing", "value", "object", "array"}

local text = [[{"name": "oak", "height": 21.5, "leaves": ["round", "lobed"]}]]
local result = ovExport.JsonExporter.importIntoTree(text)
assert(result._tree, result._error._errorInfo)
local tree = result._tree

-- Members have a name and a number, elements of arrays only a number. Both count from 0.
for i = 0, tree:getMemberCount() - 1 do
    print(tree:getMemberKey(i) .. ": " .. NATURES[tree:getMemberValueIndex(i):getNodeNature()])
end
local leaves = tree:getMemberValue("leaves")
for i = 0, leaves:getArraySize() - 1 do
    print("leaf " .. leaves:getArrayElement(i):getValueAsString())
end

-- A member that is there is changed, another one is added at the end.
tree:addMember("height"):setAsDouble(tree:getMemberValue("height"):getValueAsDouble() + 0.5)
leaves:addElement():setAsString("golden")
local place = tree:addMember("place")
place:addMember("x"):setAsInt(4)
place:addMember("y"):setAsInt(-7)

local bytes = ovMemory.Buffer.fromString(ovExport.JsonExporter.exportTreeIntoString(tree))
assert(ovResources.ResourceManager.getInstance():saveFileToDisk(folder .. "/tree.json", bytes))

-- A text that is not JSON gives no tree, but says where it went wrong.
local broken = ovExport.JsonExporter.importIntoTree('{"name": oak}')
print(broken._error._errorDesc .. " at byte " .. broken._error._index)
