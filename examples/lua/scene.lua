-- A model under a sky: loads a glTF file, lights it with the sky and the sun, adds effects and writes the picture.
--
--     veldris run scene.lua [FOLDER] [MODEL.glb] [SIZE]      without a model it draws a gem of its own
local folder, path, size = arg[1] or ".", arg[2], tonumber(arg[3] or 64)
local FORMAT, Vector = ovGraphics.FORMAT, ovMaths.Vector
local effects = ovVeldris.EffectManager.getInstance()

local function texture(name)
    return ovGraphics.TextureManager.getInstance():createOrRetrieve(name)
end

local function target(name, format)
    local made = texture(name)
    made:setWidth(size)
    made:setHeight(size)
    made:setFormat(format)
    made:setUsableAsRenderTarget(true)
    assert(made:load())
    return made
end

local function save(name, bytes)
    local file = folder .. "/" .. name
    assert(ovResources.ResourceManager.getInstance():saveFileToDisk(file, bytes), "cannot write " .. file)
end

-- Six points, which are their own normals, and eight triangles.
local GEM = [[{"asset": {"version": "2.0"}, "nodes": [{"mesh": 0}], "scenes": [{"nodes": [0]}],
    "meshes": [{"primitives": [{"attributes": {"POSITION": 0, "NORMAL": 0}, "indices": 1, "material": 0}]}],
    "materials": [{"pbrMetallicRoughness":
        {"baseColorFactor": [0.5, 0.02, 0.03, 1], "metallicFactor": 0, "roughnessFactor": 0.2}}],
    "accessors": [
        {"bufferView": 0, "componentType": 5126, "count": 6, "type": "VEC3", "min": [-1, -1, -1], "max": [1, 1, 1]},
        {"bufferView": 1, "componentType": 5121, "count": 24, "type": "SCALAR"}],
    "bufferViews": [{"buffer": 0, "byteLength": 72}, {"buffer": 0, "byteOffset": 72, "byteLength": 24}],
    "buffers": [{"byteLength": 96, "uri": "data:application/octet-stream;base64,]] ..
    "AACAPwAAAAAAAAAAAACAvwAAAAAAAAAAAAAAAAAAgD8AAAAAAAAAAAAAgL8AAAAAAAAAAAAAAAAAAIA/" ..
    'AAAAAAAAAAAAAIC/AAIEAAUCAAQDAAMFAQQCAQIFAQMEAQUD"}]}'
if not path then
    save("gem.gltf", ovMemory.Buffer.fromString(GEM))
    path = folder .. "/gem.gltf"
end

-- The sky: all around, as rough surfaces mirror it, and as dull surfaces receive it.
local sun = Vector.newVec3(0.5, 0.6, -0.5)
local air = effects:createOrRetrieve("air", "atmosphere")
air.sun_position, air.sun_illuminance_factor, air.display_sun = sun, 40, false
assert(air:load())
local sky, mirrored, received = texture("sky"), texture("mirrored"), texture("received")
assert(ovVeldris.EnvironmentRenderer.renderCubemap(sky, air:getShader(), 64, FORMAT.R32G32B32A32_FLOAT))
assert(ovVeldris.PbsEnvironmentMapFilter.requestEnvironmentMapFiltering(sky, mirrored, 64))
assert(ovVeldris.PbsEnvironmentMapFilter.requestIrradianceComputing(sky, received))

-- The model, with that light on its materials.
local model = ovVeldris.ModelLoader.load(path)
for i = 0, model:getMaterialCount() - 1 do
    local material = model:getMaterial(i)
    material.environment_texture, material.environment_prefiltered = mirrored, true
    material.irradiance_texture = received
    material.combine_light_and_environment = true
    material.light_direction, material.light_color = sun * -1, "4,3.8,3.5"
end
assert(model:loadMaterials())
local queues = ovGraphics.RenderQueueManager.getInstance()
local solid, blended = queues:createOrRetrieve("solid"), queues:createOrRetrieve("blended")
model:addTo(solid, blended)

-- A camera that sees all of it.
local box = model:getBoundingBox()
local radius = box:getSize():getLengthVec3() / 2
local eye = ovGraphics.CameraManager.getInstance():createOrRetrieve("eye")
local forward = Vector.newVec3(-0.4, 0.3, 1):getNormalizedVec3()
eye:setPosition(box:getCenter() - forward * (2.8 * radius))
eye:lookAt(forward, Vector.newVec3(0, 1, 0))
assert(eye:setPerspective(math.rad(45), 1, radius / 10, radius * 10))

-- The light in floats, then the effects, then the picture.
local light, depth = target("light", FORMAT.R32G32B32A32_FLOAT), target("depth", FORMAT.D32_FLOAT)
local toned, picture = target("toned", FORMAT.R8G8B8A8_UNORM_SRGB), target("picture", FORMAT.R8G8B8A8_UNORM_SRGB)
local background = effects:createOrRetrieve("background", "image-environment")
local tone, grain = effects:createOrRetrieve("tone", "tone-mapping"), effects:createOrRetrieve("grain", "film-grain")
background.source_texture = sky
tone.source_texture, tone.operator = light, "aces"
grain.source_texture, grain.strength = toned, 0.1
assert(background:load() and tone:load() and grain:load())
local frame = ovVeldris.Frame()
frame:drawInto(light, depth)
frame:clear(Vector.newVec4(0, 0, 0, 1))
frame:drawShader(background:getShader(), eye)
frame:drawQueue(solid, eye)
frame:drawQueue(blended, eye, true)
frame:drawInto(toned)
frame:drawShader(tone:getShader())
frame:drawInto(picture)
frame:drawShader(grain:getShader())
assert(frame:draw())
save("scene.jpg", ovImages.JpgEncoder.encode(picture:convertToImage()))
