// Texts of programs that environments execute.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Memory.h>
#include <ovScripts/CompilationResult.h>
#include <ovScripts/Interpreter.h>

namespace ovScripts {

/// A program in a script language: a text, compiled once by load() and then executed any number of times, in
/// any environment of its language.
///
/// Setting another text or language keeps what was compiled until the next load().
class OV_API Script : public ovMemory::Borrowable {
public:
    /// Without name, language and text.
    Script() = default;

    /// Messages say the name: "name:12: ...".
    void setName(ovMemory::StringView name) { _name = name; }
    const ovMemory::String& getName() const { return _name; }
    void setTargetInterpreter(INTERPRETER interpreter) { _interpreter = interpreter; }
    INTERPRETER getTargetInterpreter() const { return _interpreter; }
    /// A text. A first line that begins with # is skipped, as shells expect it. What was compiled before is
    /// not a text and is refused by load(): it could break the interpreter.
    void setSources(ovMemory::StringView sources) { _sources = sources; }
    const ovMemory::String& getSources() const { return _sources; }

    /// Compiles the text. @return false when that failed, see getLastCompilationResult(); the script then is
    /// not loaded
    bool load();
    /// Forgets what was compiled.
    void unload() { _bytecode.clear(); }
    bool isLoaded() const { return !_bytecode.empty(); }
    /// How the last load() ended. Without one: a success without content.
    const CompilationResult& getLastCompilationResult() const { return _result; }
    CompilationResult& getLastCompilationResult() { return _result; }

    /// What load() made; empty when the script is not loaded.
    ovMemory::BufferView<const unsigned char> getBytecode() const { return _bytecode; }

private:
    ovMemory::String _name;
    ovMemory::String _sources;
    INTERPRETER _interpreter = INTERPRETER::UNKNOWN;
    CompilationResult _result;
    ovMemory::Buffer<unsigned char> _bytecode;
};

} // namespace ovScripts
