// Whatever a text is, its problems are lines of the text, in order, with messages of one line; and only
// entries of a text that is JSON are found.
#include <algorithm>
#include <cstdlib>
#include <veldris/materials/DeclarationCheck.h>

namespace {

void expect(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ovMemory::StringView text(reinterpret_cast<const char*>(data), size);
    const auto lines = static_cast<unsigned int>(1 + std::count(text.begin(), text.end(), '\n'));
    const veldris::DeclarationFile file = veldris::checkDeclarations(text);
    expect(file.tree || (file.problems.size() == 1 && file.entries.empty()));
    unsigned int last = 1;
    for (const veldris::DeclarationProblem& problem : file.problems) {
        expect(problem.line >= last && problem.line <= lines);
        expect(!problem.message.empty() && problem.message.find('\n') == ovMemory::String::npos);
        last = problem.line;
    }
    last = 1;
    for (const veldris::DeclaredEntry& entry : file.entries) {
        expect(entry.node && entry.line >= last && entry.line <= lines);
        last = entry.line;
    }
    return 0;
}
