// Whatever the bytes are, a cube is read whole or refused with one line; and what was read is written as the
// same texels. The first byte chooses the format.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <veldris/bake/CubeFile.h>

namespace {

void expect(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const veldris::CubeFileFormat& format = *veldris::findCubeFormat(data[0] % 2 == 0 ? ".dds" : ".ktx2");
    veldris::CubeMap cube;
    ovMemory::String error;
    const bool isRead = format.decode({data + 1, size - 1}, cube, error);
    expect(isRead == error.empty() && isRead != cube.mips.empty());
    expect(error.find('\n') == ovMemory::String::npos);
    if (!isRead)
        return 0;
    veldris::CubeMap again;
    expect(format.decode(format.encode(cube), again, error) && again.mips.size() == cube.mips.size());
    for (std::size_t mip = 0; mip < cube.mips.size(); ++mip)
        expect(std::ranges::equal(again.mips[mip].getBytes(), cube.mips[mip].getBytes()));
    return 0;
}
