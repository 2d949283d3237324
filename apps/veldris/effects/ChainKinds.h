// The kinds of effects that chains know: those of one pass, and those of several.
#pragma once

#include <ovVeldris/complexEffects/ComplexEffectKind.h>
#include <ovVeldris/effects/EffectKind.h>

namespace veldris {

/// A kind of either table: one of the two is set.
struct ChainKind {
    const ovVeldris::EffectKind* single = nullptr;
    const ovVeldris::ComplexEffectKind* complex = nullptr; ///< of several passes

    ovMemory::String getName() const { return single ? single->getName() : complex->getName(); }
    ovMemory::StringView getSummary() const { return single ? single->summary : complex->summary; }
    std::optional<ovVeldris::PICTURE_CONTENT> takes() const;
    std::optional<ovVeldris::PICTURE_CONTENT> gives() const;
};

/// All kinds, by their names.
ovMemory::Buffer<ChainKind> chainKinds();

/// The kind of a name. @return nothing with one line in error that lists the names
std::optional<ChainKind> findChainKind(ovMemory::StringView name, ovMemory::String& error);

} // namespace veldris
