#include <ovImages/PngEncoder.h>
#include <ovImages/fuzz/FuzzDecoder.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzzDecoder<ovImages::PngEncoder>(data, size);
}
