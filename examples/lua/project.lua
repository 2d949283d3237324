-- A project: saves a scene of a textured square to files, forgets it, and loads it again.
--
--     veldris run project.lua      writes square.ovs and more into the folder in which it is run
--     veldris render --project square.ovs -o square.png
local FORMAT = ovGraphics.FORMAT
local textures, materials = ovGraphics.TextureManager.getInstance(), ovVeldris.MaterialManager.getInstance()

-- Two by two texels of four colours, on a square of two triangles that faces -z.
local colors = textures:createOrRetrieve("colors")
colors:setWidth(2)
colors:setHeight(2)
colors:setFormat(FORMAT.R8G8B8A8_UNORM_SRGB)
colors:setCpuData(0, 0, ovMemory.Buffer.fromString("\xE0\x40\x30\xFF\xF0\xC0\x30\xFF\x30\x90\x60\xFF\x30\x60\xC0\xFF"))
assert(colors:load())
local composition = ovGraphics.VertexComposition()
composition:addAttribute("POSITION", FORMAT.R32G32B32_FLOAT)
composition:addAttribute("NORMAL", FORMAT.R32G32B32_FLOAT)
composition:addAttribute("TEXCOORD", FORMAT.R32G32_FLOAT)
local corners = {}
for _, corner in ipairs({{0, 0}, {1, 0}, {0, 1}, {1, 1}}) do
    local u, v = corner[1], corner[2]
    corners[#corners + 1] = ("<ffffffff"):pack(2 * u - 1, 1 - 2 * v, 0, 0, 0, -1, u, v)
end
local square = ovGraphics.MeshManager.getInstance():createOrRetrieve("square")
square.vertexComposition = composition
square:setNewVertexArray(ovMemory.Buffer.fromString(table.concat(corners)))
square:setNewIndexArray(ovMemory.Buffer.fromString(("<i4i4i4i4i4i4"):pack(0, 1, 2, 2, 1, 3)))
assert(square:load())

local paint = materials:createOrRetrieve("paint", "pbs")
paint.albedo_texture, paint.environment_color = colors, "0.8,0.8,0.8"
assert(paint:load())
local queue = ovGraphics.RenderQueueManager.getInstance():createOrRetrieve("solid")
local node = ovGraphics.NodeManager.getInstance():createOrRetrieve("place")
queue:addEntity(square, paint:getShader(), node)

-- Everything that the managers hold goes into the files.
ovVeldris.ProjectLoader.save("square.ovs")

queue:clearQueue()
materials:erase("paint")
textures:erase("colors")
local loaded = ovVeldris.ProjectLoader.load("square.ovs")
local texture = textures:get("colors")
print(loaded:getMaterialCount() .. " material: " .. loaded:getMaterial(0):getName())
print("its texture: " .. texture:getWidth() .. " x " .. texture:getHeight())
print("entities: " .. queue:getEntityCount())
