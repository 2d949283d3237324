#include <veldris/console/OutputFile.h>

#include <cerrno>
#include <cstdio>
#include <fmt/format.h>
#include <ovResources/Files.h>
#include <system_error>
#include <veldris/console/Console.h>

namespace veldris {

using ovMemory::BufferView;
using ovMemory::Result;
using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr StringView STANDARD_OUTPUT = ":-";

} // namespace

bool isStandardOutput(StringView output) {
    return output.ends_with(STANDARD_OUTPUT);
}

String nameWithFormat(StringView output) {
    if (!isStandardOutput(output))
        return String(output);
    return fmt::format("standard output.{}", output.substr(0, output.size() - STANDARD_OUTPUT.size()));
}

void printPath(Console& console, StringView output) {
    if (!isStandardOutput(output))
        console.print(output);
}

Result checkOutput(StringView output) {
    return isStandardOutput(output) ? Result() : ovResources::checkWritable(output);
}

Result writeOutput(StringView output, BufferView<const char> bytes) {
    if (!isStandardOutput(output))
        return ovResources::writeFile(output, bytes);
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() && std::fflush(stdout) == 0)
        return {};
    const int code = errno;
    std::clearerr(stdout); // told here, once
    return ovMemory::failed(
        fmt::format("standard output could not be written: {}; free space or write elsewhere.",
                    std::generic_category().message(code)));
}

Result writeOutput(StringView output, BufferView<const unsigned char> bytes) {
    return writeOutput(output,
                       BufferView<const char>(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

} // namespace veldris
