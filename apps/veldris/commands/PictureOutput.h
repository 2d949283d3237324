// What commands that draw a picture of scene light have in common: its size, its way into a file, its report.
#pragma once

#include <ovGraphics/System.h>
#include <veldris/JsonText.h>
#include <veldris/Session.h>
#include <veldris/effects/EffectChain.h>

namespace veldris {

class Console;

/// Reads WIDTHxHEIGHT, whole numbers of pixels from 1. @return false with one line in error
bool readPictureSize(ovMemory::StringView text, unsigned int& width, unsigned int& height,
                     ovMemory::String& error);

/// Whether a number of samples is the square of a whole one. @return false with one line in error
bool checkSamples(unsigned int samples, ovMemory::String& error);

/// Plans the effects over a picture of scene light that goes into a file, for planChain().
/// @param effects a list as of planEffects(); empty: none for files that hold scene light, otherwise
///        DEFAULT_TONE_MAPPING
/// @return false with one line in error
bool planPictureEffects(ovMemory::StringView effects, const ovMemory::String& output,
                        ovMemory::Buffer<PlannedEffect>& planned, ChainOptions& chain,
                        ovMemory::String& error);

/// What is told of a picture that was written.
struct PictureReport {
    unsigned int width = 0;
    unsigned int height = 0;
    ovMemory::String timingMethod;
    /// Those of the scene, then the effects'.
    ovMemory::Buffer<ovGraphics::PassTiming> passes;
};

/// Adds what a chain of effects took to the report, and the size of its picture.
void addToReport(const ChainResult& result, Session& session, PictureReport& report);

/// Prints the steps of the run and the passes, where they are measured, and the outputs' paths; with --json
/// one object. @param object what machines are told of the result; steps and passes are added
void printPictureReport(Console& console, const DrawingOptions& options, const PictureReport& report,
                        const ovMemory::Buffer<ovMemory::String>& outputs, JsonObject object);

} // namespace veldris
