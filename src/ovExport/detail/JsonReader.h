// Reading JSON into nodes. Internal to the library.
#pragma once

#include <ovExport/ExporterLoadResult.h>
#include <ovExport/detail/NodeArena.h>

namespace ovExport::detail {

/// Reads one text.
///
/// The text is copied once, into the arena of the tree; names and strings stay where they are in that copy
/// and are unescaped in place, where they only get shorter. Nodes are gathered on a stack until the array or
/// object around them ends, and then laid side by side in the arena. Nothing recurses.
class JsonReader {
public:
    explicit JsonReader(ovMemory::StringView text)
        : _text(text) {}

    /// Call once. Throws nothing.
    ExporterLoadResult read();

private:
    /// What comes next.
    enum class STEP { VALUE, END, FAILURE };

    /// Why reading stopped.
    struct Failure {
        const char* description = nullptr;
        const char* expected = nullptr; ///< completes "expected"; null if what was found does not matter
        std::size_t index = 0;
    };

    bool _prepare();
    STEP _readValue();
    STEP _readWord(ovMemory::StringView word, NODE_NATURE nature, NODE_VALUE_TYPE type, bool value);
    STEP _readNumber();
    STEP _readStringValue();
    STEP _readName();
    STEP _open(NODE_NATURE nature);
    void _close();
    STEP _finishValue();

    bool _readString(char*& text, std::uint32_t& size);
    char* _readEscape(char* out);
    bool _readHexadecimal(unsigned int& code);

    Node::Record& _push(NODE_NATURE nature, NODE_VALUE_TYPE type);
    void _skipSpace();
    STEP _fail(const char* description, const char* expected, const char* at);
    STEP _failUnexpected(const char* expected);
    ovMemory::UniquePtr<Node> _makeRoot();
    ExportError _describeFailure() const;

    ovMemory::StringView _text;
    ovMemory::UniquePtr<NodeArena> _arena;
    char* _begin = nullptr; ///< the copy; zeros follow it
    char* _at = nullptr;
    char* _end = nullptr;

    ovMemory::Buffer<Node::Record> _stack;
    static constexpr std::size_t NO_CONTAINER = ~std::size_t{0};
    std::size_t _container = NO_CONTAINER; ///< place on the stack of the innermost array or object
    unsigned int _depth = 0;
    char* _name = nullptr; ///< of the member whose value comes next
    std::uint32_t _nameSize = 0;
    Failure _failure;
};

} // namespace ovExport::detail
