// Commands of the program that benchmarks run in their own process, and what they cost.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace ovBenchmarks {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start);
/// @param values at least one
double medianOf(std::vector<double> values);
/// The peak of the resident set since the process began. It never falls.
double peakMegabytes();

/// A new folder for as long as the object lives.
class BenchmarkFolder {
public:
    /// @param name of the benchmark
    explicit BenchmarkFolder(const std::string& name);
    ~BenchmarkFolder();
    BenchmarkFolder(const BenchmarkFolder&) = delete;
    BenchmarkFolder& operator=(const BenchmarkFolder&) = delete;

    std::string path(const std::string& file) const { return _folder / file; }

private:
    std::filesystem::path _folder;
};

/// Runs a command of the program; what it prints goes to a file of the folder.
/// @param arguments without the program's name @return its exit status, -1 when it could not be run
int runCommand(const BenchmarkFolder& folder, std::vector<std::string> arguments);
/// The milliseconds of all passes that the last command reported (--timings --json).
double passMilliseconds(const BenchmarkFolder& folder);

} // namespace ovBenchmarks
