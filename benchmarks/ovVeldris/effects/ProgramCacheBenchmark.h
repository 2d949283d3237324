// What a second start of a program saves by the disk cache of compiled programs.
#pragma once

namespace ovBenchmarks {

/// The argument that makes this program a child of the benchmark: load every program with the cache folder
/// that follows, print "milliseconds compiled", and leave.
inline constexpr const char* LOAD_PROGRAMS_ARGUMENT = "--load-programs";

int loadPrograms(const char* cacheFolder);

/// Registers the benchmark. @param program path of this program, to start it again
void registerProgramCache(const char* program);

} // namespace ovBenchmarks
