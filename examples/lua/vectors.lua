-- Vectors, rotations and matrices: where a camera sees a point.
--
--     veldris run vectors.lua
local Vector, Quaternion, Matrix = ovMaths.Vector, ovMaths.Quaternion, ovMaths.Matrix

-- Vectors are added and multiplied element by element. The last letters of a function say how many of the four
-- elements it looks at.
local east, up = Vector.newVec3(1, 0, 0), Vector.newVec3(0, 1, 0)
print("sum       " .. tostring(east + up * 2))
print("dot       " .. Vector.dotVec3(east, up))
print("cross     " .. tostring(Vector.crossVec3(east, up)))

-- A quarter turn about the vertical axis.
local turn = Quaternion()
turn:setFromAxisAngle(up, math.pi / 2)
print("turned    " .. tostring(turn:transform(east)))

-- Points are scaled, then rotated, then moved.
local placed = Matrix()
placed:setToTransformation(Vector.newVec3(0, 0, 5), Vector.newVec3(2, 2, 2), turn)
local corner = placed * Vector.newVec4(1, 0.5, 0, 1)
print("placed    " .. tostring(corner))

-- What has no inverse gives a matrix of zeros, so ask for the determinant first.
assert(placed:getDeterminantMat4() ~= 0)
print("back      " .. tostring(placed:getInverseMat4() * corner))

-- A camera 10 m behind the origin that looks along +z, and its lens.
local view, lens = Matrix(), Matrix()
view:setToViewMatrixDirection(Vector.newVec3(0, 0, -10), Vector.newVec3(0, 0, 1), nil)
assert(lens:setToPerspectiveMatrix(math.rad(60), 16 / 9, 0.1, 100))
local seen = lens * view * corner
print(("on screen %.3f %.3f"):format(seen._x / seen._w, seen._y / seen._w))
