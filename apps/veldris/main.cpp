// The veldris program.
#include <veldris/commands/Commands.h>

#include <chrono>
#include <ctime>

namespace {

// Loading the libraries takes some 20 ms before main() is reached, nearly all of it on the processor.
std::chrono::steady_clock::time_point startOfProcess() {
    constexpr auto CLOCKS_A_SECOND = static_cast<double>(CLOCKS_PER_SEC);
    const std::chrono::duration<double> passed(static_cast<double>(std::clock()) / CLOCKS_A_SECOND);
    return std::chrono::steady_clock::now() -
           std::chrono::duration_cast<std::chrono::steady_clock::duration>(passed);
}

} // namespace

int main(int argumentCount, char** arguments) {
    return veldris::runProgram(argumentCount, arguments, startOfProcess());
}
