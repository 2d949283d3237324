-- Buffers and views: a picture made byte by byte. It is a file of the Radiance format, which holds light without an
-- upper limit: after a short header, each pixel is three bytes of colour and one exponent.
--
--     veldris run buffers.lua [FOLDER]
local folder = arg[1] or "."
local WIDTH, HEIGHT = 64, 32

-- A colour whose largest part lies between 2^(e - 1) and 2^e is stored as 256 / 2^e of it, beside e + 128.
local function encode(r, g, b)
    local largest = math.max(r, g, b)
    if largest < 1e-30 then return {0, 0, 0, 0} end
    local exponent = math.floor(math.log(largest, 2)) + 1
    local scale = 256 / 2 ^ exponent
    return {math.floor(r * scale), math.floor(g * scale), math.floor(b * scale), exponent + 128}
end

local header = "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y " .. HEIGHT .. " +X " .. WIDTH .. "\n"
local file = ovMemory.Buffer.new(#header + WIDTH * HEIGHT * 4)
for i = 1, #header do file:setData(i - 1, header:byte(i)) end

-- A view shows a part of a buffer and copies nothing: writing into a row writes into the file.
local pixels = ovMemory.BufferView.view(file, #header)
for y = 0, HEIGHT - 1 do
    local row = pixels:subView(y * WIDTH * 4, WIDTH * 4)
    for x = 0, WIDTH - 1 do
        local distance = math.sqrt((x - 44) ^ 2 + (y - 10) ^ 2)
        local glow = 40 * math.exp(-distance) -- a sun, much brighter than the sky around it
        local bytes = encode(glow + 0.1, glow + 0.2 + 0.01 * y, 0.6 * glow + 0.9 - 0.015 * y)
        for i = 1, 4 do row:setData(x * 4 + i - 1, bytes[i]) end
    end
end
assert(ovResources.ResourceManager.getInstance():saveFileToDisk(folder .. "/sun.hdr", file))

-- A cast reads the same bytes as other numbers; the first is number 0 everywhere.
local integers = ovMemory.BufferCastInt.new(file)
print(#file .. " bytes are " .. #integers .. " integers, the first " .. ("%x"):format(integers:getData(0)))
print("past the end: " .. select(2, pcall(file.getData, file, #file)))
