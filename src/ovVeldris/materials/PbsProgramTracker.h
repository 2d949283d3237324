// Programs of PBS materials, shared by key.
#pragma once

#include <ovVeldris/core/ProgramTracker.h>
#include <ovVeldris/materials/PbsMaterialParameters.h>

namespace ovVeldris {

/// The key of a material's program: bits 0 to 38 name its features, bits 39 to 63 hash the rest.
///
/// It is deliberately coarser than the texts that it stands for: most orders of channels share code 0, the
/// glossiness model shares bit 38 with the occlusion channel, and neither the kind of an environment map
/// (cube or flat) nor which properties share a texture takes part. Materials of one key share the program of
/// the one that was loaded first. Textures count by being named, not by which they are; numbers and colours
/// do not count.
struct OV_API PbsIdGenerator {
    uint64_t operator()(const PbsMaterialParameters& parameters) const;
};

struct PbsNameGenerator {
    ovMemory::StringView operator()() const { return "ORVANE_PBS_PROGRAM_"; }
};

class OV_API PbsProgramTracker
    : public ProgramTracker<PbsMaterialParameters, PbsIdGenerator, PbsNameGenerator> {
public:
    using ProgramTracker::ProgramTracker;
};

} // namespace ovVeldris
