-- A mesh: makes the points and triangles of a ring, and draws it.
--
--     veldris run mesh.lua [FOLDER]
local folder = arg[1] or "."
local SIZE, SEGMENTS, SIDES = 64, 48, 24
local FORMAT, Vector = ovGraphics.FORMAT, ovMaths.Vector

-- Each vertex is a position and a normal of three floats, written as bytes.
local vertices, indices = {}, {}
for segment = 0, SEGMENTS - 1 do
    for side = 0, SIDES - 1 do
        local a, b = 2 * math.pi * segment / SEGMENTS, 2 * math.pi * side / SIDES
        local normal = Vector.newVec3(math.cos(a) * math.cos(b), math.sin(a) * math.cos(b), math.sin(b))
        local point = Vector.newVec3(math.cos(a), math.sin(a), 0) + normal * 0.4
        vertices[#vertices + 1] = ("<ffffff"):pack(point._x, point._y, point._z, normal._x, normal._y, normal._z)
        -- Two triangles, whose corners go clockwise as seen from outside, lead on to the next segment and side.
        local here, there, after = segment * SIDES, (segment + 1) % SEGMENTS * SIDES, (side + 1) % SIDES
        indices[#indices + 1] = ("<i4i4i4"):pack(here + side, there + side, here + after)
        indices[#indices + 1] = ("<i4i4i4"):pack(there + side, there + after, here + after)
    end
end

local ring = ovGraphics.MeshManager.getInstance():createOrRetrieve("ring")
local composition = ovGraphics.VertexComposition()
composition:addAttribute("POSITION", FORMAT.R32G32B32_FLOAT)
composition:addAttribute("NORMAL", FORMAT.R32G32B32_FLOAT)
ring.vertexComposition = composition
ring:setNewVertexArray(ovMemory.Buffer.fromString(table.concat(vertices)))
ring:setNewIndexArray(ovMemory.Buffer.fromString(table.concat(indices)))
assert(ring:load())
print(ring.vertexCount .. " vertices, " .. ring.indexCount // 3 .. " triangles")

-- Settings take values of their kind, or texts. What is no metal reflects 0.04 of the light that falls on it straight.
local clay = ovVeldris.MaterialManager.getInstance():createOrRetrieve("clay", "pbs")
clay.albedo_color = Vector.newVec3(0.7, 0.25, 0.1)
clay.specular_color, clay.metalness, clay.roughness_glossiness = "0.04,0.04,0.04", 1, 0.35
clay.environment_color = "0.15,0.2,0.3" -- what comes from all around
clay.light_direction, clay.light_color = "0.4,-0.7,0.6", "2,2,2"
assert(clay:load())

-- A node puts the mesh into the world, here turned towards the eye.
local place = ovGraphics.NodeManager.getInstance():createOrRetrieve("place")
local turn = ovMaths.Quaternion()
turn:setFromEuler(math.rad(50), math.rad(20), 0)
place:setOrientation(turn)
local queue = ovGraphics.RenderQueueManager.getInstance():createOrRetrieve("queue")
queue:addEntity(ring, clay:getShader(), place)
local eye = ovGraphics.CameraManager.getInstance():createOrRetrieve("eye")
eye:setPosition(Vector.newVec3(0, 0, -4))
assert(eye:setPerspective(math.rad(45), 1, 0.1, 10))

local function target(name, format)
    local texture = ovGraphics.TextureManager.getInstance():createOrRetrieve(name)
    texture:setWidth(SIZE)
    texture:setHeight(SIZE)
    texture:setFormat(format)
    texture:setUsableAsRenderTarget(true)
    assert(texture:load())
    return texture
end

local picture = target("picture", FORMAT.R8G8B8A8_UNORM_SRGB)
local frame = ovVeldris.Frame()
frame:drawInto(picture, target("depth", FORMAT.D32_FLOAT))
frame:clear(Vector.newVec4(0.02, 0.03, 0.05, 1))
frame:drawQueue(queue, eye)
assert(frame:draw())
local jpeg = ovImages.JpgEncoder.encode(picture:convertToImage())
assert(ovResources.ResourceManager.getInstance():saveFileToDisk(folder .. "/ring.jpg", jpeg))
