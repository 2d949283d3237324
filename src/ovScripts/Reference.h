// Pages about what scripts see.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovScripts {

class Environment;

/// Everything that was declared in an environment, as Markdown: namespaces with their constants and
/// functions, types with their constructor, members, methods, static functions and operators, each with its
/// arguments and its result. Made of the declarations that calls are checked against, so that it says what
/// is.
OV_API ovMemory::String describeDeclarations(const Environment& environment);

} // namespace ovScripts
