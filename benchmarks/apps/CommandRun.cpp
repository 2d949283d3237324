#include "apps/CommandRun.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string_view>
#include <sys/resource.h>
#include <unistd.h>
#include <veldris/commands/Commands.h>

namespace ovBenchmarks {

namespace {

constexpr const char* OUTPUT = "output";

} // namespace

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double medianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

BenchmarkFolder::BenchmarkFolder(const std::string& name)
    : _folder(std::filesystem::temp_directory_path() / ("veldris_" + name + "_" + std::to_string(getpid()))) {
    std::filesystem::create_directories(_folder);
}

BenchmarkFolder::~BenchmarkFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(_folder, ignored);
}

int runCommand(const BenchmarkFolder& folder, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "veldris");
    std::vector<const char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(argument.c_str());
    std::fflush(stdout);
    const int terminal = dup(STDOUT_FILENO);
    if (!std::freopen(folder.path(OUTPUT).c_str(), "w", stdout))
        return -1;
    const int status = veldris::runProgram(static_cast<int>(pointers.size()), pointers.data());
    std::fflush(stdout);
    dup2(terminal, STDOUT_FILENO);
    close(terminal);
    return status;
}

double passMilliseconds(const BenchmarkFolder& folder) {
    constexpr std::string_view KEY = "\"milliseconds\":";
    std::ifstream file(folder.path(OUTPUT));
    const std::string report((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    double sum = 0.0;
    const std::size_t passes = report.find("\"passes\":"); // behind the steps of the run
    for (std::size_t at = report.find(KEY, passes); at != std::string::npos; at = report.find(KEY, at + 1))
        sum += std::strtod(report.c_str() + at + KEY.size(), nullptr);
    return sum;
}

} // namespace ovBenchmarks
