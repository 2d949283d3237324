// Whole files in and out of memory, so that nobody ever finds half of one. The place of each failure is the
// path.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>
#include <ovMemory/Result.h>

namespace ovResources {

/// Reads a whole regular file.
///
/// @param path absolute, or relative to the process' current folder; UTF-8
/// @param bytes receives the content; empty for an empty file and after a failure
/// @return a failure when the path is empty, missing, unreadable or a loop of symbolic links,
///         when it is not a regular file (a folder, a device, a pipe),
///         or when the content does not fit into memory
OV_API ovMemory::Result readFile(ovMemory::StringView path, ovMemory::Buffer<char>& bytes);

/// Writes a whole file: first a temporary one in the same folder, which then takes the name in one step.
/// Whoever reads the path finds the old content or the new, never a part, also when the process is killed;
/// after a failure the old file is unchanged and no temporary is left. (The disk's own cache is not flushed.)
///
/// A symbolic link is followed: what it points to is written. An existing file's permissions are kept.
/// Folders are not created.
///
/// @param path absolute, or relative to the process' current folder; UTF-8
/// @return a failure when the path is empty, its folder is missing or not writable, the path is an existing
///         file without write permission, a loop of symbolic links or no regular file, or when the disk is
///         full
OV_API ovMemory::Result writeFileAtomically(ovMemory::StringView path,
                                            ovMemory::BufferView<const char> bytes);

/// The same for bytes held as unsigned numbers, as image encoders have them.
OV_API ovMemory::Result writeFileAtomically(ovMemory::StringView path,
                                            ovMemory::BufferView<const unsigned char> bytes);

/// Writes a whole file as writeFileAtomically() does; where only that is impossible, in place, as an ordinary
/// file stream writes. This is the case of a file that may be written in a folder that may not, of one with
/// several names (hard links, which all show the new content), of one that is mounted by itself, and of
/// devices and pipes. Who reads in the meantime may find a part, and so does everybody after a failure.
///
/// @param path as of writeFileAtomically()
/// @return a warning where the file was written in place. A failure where neither way is possible; also for a
///         pipe that nobody reads, which is not waited for
OV_API ovMemory::Result writeFile(ovMemory::StringView path, ovMemory::BufferView<const char> bytes);

/// Looks before long work whether a file can be written: its folder is there, nothing is in the way, and the
/// process has the right to. It writes nothing. Writing may still fail later, as when the disk is full.
/// @return the failure that writeFile() would give
OV_API ovMemory::Result checkWritable(ovMemory::StringView path);

} // namespace ovResources
