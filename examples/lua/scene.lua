-- A model under a sky: loads a glTF file, lights it with the sky and the sun, adds effects and writes the picture.
--
--     veldris run scene.lua [FOLDER] [MODEL.glb] [SIZE]      without a model it draws gem.gltf, which lies beside it
local folder, path, size = arg[1] or ".", arg[2] or arg[0]:gsub("scene.lua$", "gem.gltf"), tonumber(arg[3] or 64)
local FORMAT, Frame, Vector = ovGraphics.FORMAT, ovVeldris.Frame, ovMaths.Vector
local effects, queues = ovVeldris.EffectManager.getInstance(), ovGraphics.RenderQueueManager.getInstance()

-- The sky, and the model in its light.
local air = effects:createOrRetrieve("air", "atmosphere")
air.sun_position, air.sun_illuminance_factor = {0.5, 0.6, -0.5}, 10
assert(air:load())
local model = ovVeldris.ModelLoader.load(path)
ovVeldris.SkyLight.draw("sky", air):lightModel(model)
assert(model:loadMaterials())
local solid, blended = queues:createOrRetrieve("solid"), queues:createOrRetrieve("blended")
model:addTo(solid, blended)

-- A camera that sees all of it.
local eye = ovGraphics.CameraManager.getInstance():createOrRetrieve("eye")
eye:frame(model:getBoundingBox(), Vector.newVec3(-0.4, 0.35, 1))

-- The light of the scene, the effects over it, and the picture.
local light = Frame.newTarget("light", size, size, FORMAT.R16G16B16A16_FLOAT)
local depth = Frame.newTarget("depth", size, size, FORMAT.D32_FLOAT)
local picture = Frame.newTarget("picture", size, size, FORMAT.R8G8B8A8_UNORM_SRGB)
local tone, grain = effects:createOrRetrieve("tone", "tone-mapping"), effects:createOrRetrieve("grain", "film-grain")
tone.operator, grain.strength = "aces", 0.1
local frame = Frame()
frame:drawInto(light, depth)
frame:clear(Vector.newVec4(0, 0, 0, 1))
frame:drawShader(air:getShader(), eye)
frame:drawQueue(solid, eye)
frame:drawQueue(blended, eye, true)
frame:drawEffects(light, {tone, effects:createOrRetrieve("smooth", "fxaa"), grain}, picture)
assert(frame:draw())
picture:save(folder .. "/scene.png")
