// Whatever the bytes are, a cube is read whole or refused with one line; and what was read of half floats and
// floats is written as the same texels.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <ovImages/cubes/CubeFile.h>

namespace {

void expect(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ovImages::CubeReadResult read = ovImages::decodeCube({data, size});
    expect(read.error.empty() != read.cube.mips.empty());
    expect(read.error.find('\n') == ovMemory::String::npos);
    for (const char* format : {"dds", "ktx2"}) {
        const auto bytes = ovImages::encodeCube(format, read.cube);
        if (bytes.empty())
            continue;
        const ovImages::CubeReadResult again = ovImages::decodeCube(bytes);
        expect(again.cube.mips.size() == read.cube.mips.size());
        for (std::size_t mip = 0; mip < read.cube.mips.size(); ++mip)
            expect(std::ranges::equal(again.cube.mips[mip].getBytes(), read.cube.mips[mip].getBytes()));
    }
    return 0;
}
