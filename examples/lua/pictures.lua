-- Pictures: fills a texture, writes it as a JPEG, reads it again and looks at its mips.
--
--     veldris run pictures.lua [FOLDER]
local folder = arg[1] or "."
local SIZE = 64
local files = ovResources.ResourceManager.getInstance()
local textures = ovGraphics.TextureManager.getInstance()

-- Texels are bytes, row after row from the top: here a chessboard of orange and blue.
local texels = {}
for y = 0, SIZE - 1 do
    for x = 0, SIZE - 1 do
        local isOrange = (x // 8 + y // 8) % 2 == 0
        texels[#texels + 1] = isOrange and "\xF0\xA0\x30\xFF" or "\x20\x60\xC0\xFF"
    end
end
local board = textures:createOrRetrieve("board")
board:setWidth(SIZE)
board:setHeight(SIZE)
board:setFormat(ovGraphics.FORMAT.R8G8B8A8_UNORM_SRGB)
board:setCpuData(0, 0, ovMemory.Buffer.fromString(table.concat(texels)))
assert(board:load()) -- settings and texels take effect here

local jpeg = ovImages.JpgEncoder.encode(board:convertToImage())
assert(files:saveFileToDisk(folder .. "/board.jpg", jpeg))

-- The decoder knows PNG, JPEG, EXR and HDR by their first bytes.
local image = ovImages.CompositeEncoder.decode(files:loadFileIntoMemory(folder .. "/board.jpg"))
print("read " .. image:getWidth() .. " x " .. image:getHeight())
local copy = textures:createOrRetrieve("copy")
copy:setMipCount(0) -- all of them, down to one texel
copy:setFromImage(image)
assert(copy:load())
copy:generateMips()
local last = copy:getMipCount() - 1
print("mip " .. last .. " is the mean colour: " .. table.concat({tostring(copy:readBack(0, last)):byte(1, 4)}, " "))

-- What is no picture is an error that says so.
print(select(2, pcall(ovImages.CompositeEncoder.decode, ovMemory.Buffer.fromString("not a picture"))))
