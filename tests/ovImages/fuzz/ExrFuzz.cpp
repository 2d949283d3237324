#include <ovImages/ExrEncoder.h>
#include <ovImages/fuzz/FuzzDecoder.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzzDecoder<ovImages::ExrEncoder>(data, size);
}
