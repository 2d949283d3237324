-- Effects: maps bright light to the range of a picture by three curves, and looks at mistakes.
--
--     veldris run effects.lua [FOLDER]
local folder = arg[1] or "."
local WIDTH, HEIGHT = 64, 32
local FORMAT = ovGraphics.FORMAT
local textures = ovGraphics.TextureManager.getInstance()

local function sized(name, format)
    local texture = textures:createOrRetrieve(name)
    texture:setWidth(WIDTH)
    texture:setHeight(HEIGHT)
    texture:setFormat(format)
    return texture
end

-- From left to right light rises from 1/16 to 16, in four colours from top to bottom.
local COLORS = {{1, 1, 1}, {1, 0.2, 0.1}, {0.2, 1, 0.2}, {0.1, 0.3, 1}}
local texels = {}
for y = 0, HEIGHT - 1 do
    local color = COLORS[y * #COLORS // HEIGHT + 1]
    for x = 0, WIDTH - 1 do
        local light = 2 ^ (8 * x / (WIDTH - 1) - 4)
        texels[#texels + 1] = ("<ffff"):pack(color[1] * light, color[2] * light, color[3] * light, 1)
    end
end
local light = sized("light", FORMAT.R32G32B32A32_FLOAT)
light:setCpuData(0, 0, ovMemory.Buffer.fromString(table.concat(texels)))
assert(light:load())

local picture = sized("picture", FORMAT.R8G8B8A8_UNORM_SRGB)
picture:setUsableAsRenderTarget(true)
assert(picture:load())

-- An effect has its settings as members, with underscores for dashes. Settings that choose another program wait for
-- the next load().
local tone = ovVeldris.EffectManager.getInstance():createOrRetrieve("tone", "tone-mapping")
tone.source_texture = light
for _, operator in ipairs({"reinhard", "hables", "aces"}) do
    tone.operator = operator
    assert(tone:load())
    local frame = ovVeldris.Frame()
    frame:drawInto(picture)
    frame:drawShader(tone:getShader())
    assert(frame:draw())
    local jpeg = ovImages.JpgEncoder.encode(picture:convertToImage())
    assert(ovResources.ResourceManager.getInstance():saveFileToDisk(folder .. "/" .. operator .. ".jpg", jpeg))
end

-- A mistake is an error that names what is possible, and changes nothing.
print(select(2, pcall(function() tone.operator = "ace" end)))
print(select(2, pcall(function() tone.gamma = -1 end)))
print(select(2, pcall(function() return tone.exposure end)))
print("operator is still " .. tone.operator)

-- The effect tells its settings.
for i = 0, 3 do
    local name = tone:getSettingName(i)
    print(name .. ": " .. tone:getSettingHelp(name))
end
