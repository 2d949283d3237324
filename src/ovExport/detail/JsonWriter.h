// Writing trees as JSON. Internal to the library.
#pragma once

#include <ovExport/Node.h>

namespace ovExport::detail {

/// Writes one tree. Keeps its own stack, so that the depth of trees does not matter. Throws std::bad_alloc.
class JsonWriter {
public:
    explicit JsonWriter(bool pretty)
        : _pretty(pretty) {}

    /// Call once.
    ovMemory::String write(const Node& root);

private:
    /// An array or object whose children are being written.
    struct Container {
        const Node* node;
        unsigned int next;
        unsigned int count;
    };

    void _writeNode(const Node& node);
    void _writeValue(const Node& node);
    void _writeString(ovMemory::StringView text);
    void _escape(unsigned char character);
    void _writeNextChild();
    void _closeContainer();
    bool _isIndented() const;
    void _breakLine(std::size_t level);

    bool _pretty;
    ovMemory::String _text;
    ovMemory::Buffer<Container> _open;
};

} // namespace ovExport::detail
