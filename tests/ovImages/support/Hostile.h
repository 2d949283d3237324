// What decoders must survive.
#pragma once

#include <ovImages/Encoder.h>

namespace hostile {

/// Expects each proper beginning of a sound file to be refused with a message, and to be survived when
/// damaged data is allowed.
void expectCutsRefused(const ovImages::Encoder& encoder, ovMemory::BufferView<const unsigned char> file);

/// Decodes so many copies of the file with one to eight bytes changed, the same ones each time, and expects
/// of each a valid picture within the limit or a message.
void expectMutationsSurvived(const ovImages::Encoder& encoder, ovMemory::BufferView<const unsigned char> file,
                             unsigned count);

} // namespace hostile
