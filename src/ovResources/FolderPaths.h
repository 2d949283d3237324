// Paths of files that must lie inside a folder.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovResources {

/// The path of a file that is named from a folder, by somebody who may be a stranger.
/// @return the file's path; empty when the path is empty, absolute, or leads out of the folder
// By the text alone: a link inside the folder was put there by whoever owns the folder.
OV_API ovMemory::String pathInside(ovMemory::StringView folder, ovMemory::StringView path);

/// The other way. @param file absolute @return empty when the file is not inside the folder
OV_API ovMemory::String pathFromFolder(ovMemory::StringView folder, ovMemory::StringView file);

} // namespace ovResources
