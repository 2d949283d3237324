// Whatever the bytes are, a cube is read whole or refused with one line; and what was read with the extended
// header is written as the same texels.
#include <cstdlib>
#include <veldris/bake/DdsFile.h>

namespace {

void expect(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    veldris::CubeMap cube;
    ovMemory::String error;
    const bool isRead = veldris::decodeDds({data, size}, cube, error);
    expect(isRead == error.empty() && isRead != cube.mips.empty());
    expect(error.find('\n') == ovMemory::String::npos);
    if (!isRead)
        return 0;
    veldris::CubeMap again;
    expect(veldris::decodeDds(veldris::encodeDds(cube), again, error));
    expect(again.mips.size() == cube.mips.size() && again.getSide() == cube.getSide());
    return 0;
}
