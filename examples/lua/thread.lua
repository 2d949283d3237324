-- A thread: hands it a task, waits, and reads what the task gave.
--
--     veldris run thread.lua
local Buffer, CastFloat = ovMemory.Buffer, ovMemory.BufferCastFloat

-- The numbers that the task is about. A buffer is shared with the task, not copied.
local numbers = Buffer.new(1000 * 4)
local floats = CastFloat.new(numbers)
for i = 0, #floats - 1 do floats:setData(i, i + 1) end

-- The function runs in an environment of its own, with a copy of the locals that it uses: here "factor". Whatever it
-- does to them stays there.
local factor = 0.5
local task = ovTasks.Task()
task._inputBinaryData = numbers
task:addInputUserData(ovMaths.Vector.newVec3(0, 0, 100), false) -- false: this script keeps the vector, too
task._workFunc = function()
    local me = ovTasks.CURRENT_TASK
    local values = ovMemory.BufferCastFloat.new(me._inputBinaryData)
    local sum = me:getInputUserData(0)._z
    for i = 0, #values - 1 do sum = sum + factor * values:getData(i) end
    me:addOutputUserData(ovMaths.Vector(sum), true)
end

local thread = ovTasks.Thread()
thread:addTask(task)
thread:run()

-- The task belongs to the thread until it is over; asking it for its output before is an error.
local work = task:getSubmittedWork()
assert(work:waitFor(10), "the task takes too long")
assert(work:getState() == "FINISHED", work:getFailure())
print("sum " .. task:getOutputUserData(0)._x)
thread:releaseTaskRef(task)
