-- Irradiance: what a dull surface receives of an environment, for each direction that it may face.
--
--     veldris run irradiance.lua [FOLDER]
local folder = arg[1] or "."
local SIZE = 16
local textures = ovGraphics.TextureManager.getInstance()

-- A cube of floats: blue-grey on all sides, and a bright warm ceiling. The faces are +x, -x, +y, -y, +z, -z.
local room = textures:createOrRetrieve("room")
room:setTexType(ovGraphics.TEXTURE_TYPE.CUBE)
room:setWidth(SIZE)
room:setHeight(SIZE)
room:setFormat(ovGraphics.FORMAT.R32G32B32A32_FLOAT)
local wall, ceiling = ("<ffff"):pack(0.1, 0.12, 0.16, 1), ("<ffff"):pack(4, 3, 2, 1)
for face = 0, 5 do
    local texel = face == 2 and ceiling or wall
    room:setCpuData(face, 0, ovMemory.Buffer.fromString(texel:rep(SIZE * SIZE)))
end
assert(room:load())

local received = textures:createOrRetrieve("received")
assert(ovGraphics.TextureUtils.computeIrradianceSH(room, received))

-- The middle of the faces that look up and down. The values are over pi: a white surface has this brightness.
local side = received:getWidth()
local middle = (side // 2 * side + side // 2) * 4
for _, direction in ipairs({{"up", 2}, {"down", 3}}) do
    local name, face = direction[1], direction[2]
    local light = ovMemory.BufferCastFloat.new(received:readBack(face))
    local red, green, blue = light:getData(middle), light:getData(middle + 1), light:getData(middle + 2)
    print(("%-4s receives %.2f %.2f %.2f"):format(name, red, green, blue))
end

-- Unwrapped by longitude and latitude, both are pictures that programs show.
local map = textures:createOrRetrieve("map")
for _, cube in ipairs({room, received}) do
    assert(ovVeldris.EnvironmentRenderer.cubemapToSphericalMap(map, cube, 64, 32))
    assert(ovGraphics.TextureSaver.saveToHdr(map, folder .. "/" .. cube:getName() .. ".hdr"))
end
