-- Materials: makes them of a text, tells mistakes, changes one and writes it to a file.
--
--     veldris run materials.lua      writes leather.json into the folder in which it is run
--     veldris check leather.json

-- An entry for each material. One whose type is unknown is refused, and the others are made.
local result = ovVeldris.ContentLoader.processMaterialSources([[
[
    {"name": "leather", "type": "PBS", "albedoColor": "Vec(0.3, 0.12, 0.05, 0)", "roughnessGlossinessValue": 0.6},
    {"name": "chrome", "type": "PBS", "specularColor": "Vec(0.55, 0.55, 0.55, 0)", "metalnessValue": 1},
    {"name": "water", "type": "LIQUID"}
]
]])
for i = 0, result:getErrorCount() - 1 do print(result:getError(i)) end

-- Materials belong to their manager, which finds them by name.
local materials = ovVeldris.MaterialManager.getInstance()
for i = 0, materials:getCount() - 1 do
    local material = materials:getByIndex(i)
    local isLoaded = material:getShader() ~= nil
    print(("%s: roughness %.2f, loaded: %s"):format(material:getName(), material.roughness_glossiness, isLoaded))
end

-- Colours and numbers reach a loaded material at once; another model waits for the next load().
local leather = materials:get("leather")
leather.albedo_color = leather.albedo_color * 0.5
leather.roughness_glossiness = 0.8
leather.pbs_model = "specular-glossiness"
assert(leather:load())
assert(ovVeldris.ContentLoader.saveObjectDeclaration(leather, "leather.json"))

-- What was erased is gone for scripts, too: using it is an error, not a crash.
materials:erase("leather")
print(select(2, pcall(leather.load, leather)))
local again = ovVeldris.ContentLoader.loadMaterialDeclaration("leather.json"):getMaterial(0)
print(("read again: roughness %.2f"):format(again.roughness_glossiness))
