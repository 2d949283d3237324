-- A scheduler: many tasks over all cores. Each task computes some rows of a picture of the Mandelbrot set.
--
--     veldris run scheduler.lua [FOLDER]
local folder = arg[1] or "."
local SIZE, ROWS = 64, 8

-- Counts the steps until a point leaves the circle of radius 2, and gives a pixel of four bytes.
local function pixelAt(x, y)
    local r, i, steps = 0, 0, 0
    while r * r + i * i < 4 and steps < 100 do
        r, i, steps = r * r - i * i + x, 2 * r * i + y, steps + 1
    end
    local level = steps < 100 and math.floor(255 * (steps / 100) ^ 0.4) or 0
    return string.char(level, level * level // 255, 96, 255)
end

-- A task takes copies of the locals that its function uses, so that "first" differs from task to task.
local scheduler = ovTasks.Scheduler()
local tasks = {}
for first = 0, SIZE - 1, ROWS do
    local task = ovTasks.Task()
    task._workFunc = function()
        local pixels = {}
        for y = first, first + ROWS - 1 do
            for x = 0, SIZE - 1 do
                pixels[#pixels + 1] = pixelAt(3 * x / SIZE - 2.2, 3 * y / SIZE - 1.5)
            end
        end
        ovTasks.CURRENT_TASK._outputBinaryData = ovMemory.Buffer.fromString(table.concat(pixels))
    end
    scheduler:addTask(task)
    tasks[#tasks + 1] = task
end
scheduler:run()

-- Managers and textures belong to this thread: tasks give bytes, and the script makes the picture of them.
local bands = {}
for number, task in ipairs(tasks) do
    local work = task:getSubmittedWork()
    assert(work:waitFor(60) and work:getState() == "FINISHED", work:getFailure())
    bands[number] = tostring(task._outputBinaryData)
    scheduler:releaseTaskRef(task)
end
local texture = ovGraphics.TextureManager.getInstance():createOrRetrieve("mandelbrot")
texture:setWidth(SIZE)
texture:setHeight(SIZE)
texture:setFormat(ovGraphics.FORMAT.R8G8B8A8_UNORM_SRGB)
texture:setCpuData(0, 0, ovMemory.Buffer.fromString(table.concat(bands)))
assert(texture:load())
local jpeg = ovImages.JpgEncoder.encode(texture:convertToImage())
assert(ovResources.ResourceManager.getInstance():saveFileToDisk(folder .. "/mandelbrot.jpg", jpeg))
print(#tasks .. " tasks")
