// Neighbours that no process can see: other machines' work on the same core.
#pragma once

namespace ovBenchmarks {

/// How crowded the core of the calling thread is: the time of many independent additions over that of a chain
/// of multiplications. The two hardware threads of a core share its units. A neighbour on the other one
/// leaves the chain as it is, since a chain waits for itself most of the time, and makes the additions up to
/// half slower. The clock's speed and the CPU time of the process show nothing of it. Takes less than 0.1 ms.
/// @return the same number, within some hundredths, whenever the core is ours alone; more when it is not
double measureCrowding();

} // namespace ovBenchmarks
