// Deciding which channels of an EXR file are the picture. Internal to the library.
#pragma once

#include <ovMemory/Memory.h>

namespace ovImages::detail {

/// The channels that make the picture.
struct ExrSelection {
    ovMemory::Buffer<ovMemory::String>
        channels;                   ///< full names in the order of the picture's; empty: undecided
    ovMemory::String layer;         ///< the layer they are of, without the dot
    bool isLuminanceChroma = false; ///< channels are Y, RY, BY and maybe A
};

/// Chooses among the full channel names of a part; the rule is in ExrEncoder.h.
ExrSelection selectExrChannels(ovMemory::BufferView<const ovMemory::String> names,
                               ovMemory::StringView layer);

/// The layers with a name in which selectExrChannels() finds a picture when they are asked for.
ovMemory::Buffer<ovMemory::String> listExrLayers(ovMemory::BufferView<const ovMemory::String> names);

} // namespace ovImages::detail
