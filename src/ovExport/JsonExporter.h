// Reading and writing JSON.
#pragma once

#include <ovExport/Exportable.h>
#include <ovExport/ExporterLoadResult.h>

namespace ovExport {

/// Reads JSON (RFC 8259) into trees of nodes and writes trees as JSON.
///
/// Texts are UTF-8. A byte order mark at the start is skipped, never written. Nothing else beyond the RFC is
/// accepted: no comments, no trailing commas, no NaN. Neither direction recurses, throws or depends on the
/// locale. An object holds only its settings, so several threads may share one while nobody changes them.
class OV_API JsonExporter {
public:
    /// Arrays and objects that may stand inside each other in a text that is read. Deeper ones are an error.
    static constexpr unsigned int MAX_DEPTH = 100000;
    /// Nesting from which on a pretty text goes without line breaks, lest its indentation outgrow its
    /// content.
    static constexpr unsigned int MAX_INDENTED_DEPTH = 64;

    /// Whether texts are written with line breaks, four blanks of indentation a level and a blank after each
    /// colon (the default), or without any of it.
    void setPretty(bool pretty) { _pretty = pretty; }
    bool isPretty() const { return _pretty; }

    /// Reads a text. Numbers keep their exact value if 64-bit integers or doubles have it, and otherwise
    /// become the nearest double; below the smallest double they become 0. Of members with one name all are
    /// kept, see Node::getMemberValue(). The text is not needed afterwards.
    ///
    /// Errors, each of which gives no tree: an empty text, anything against the grammar, content behind the
    /// first value, bytes that are not UTF-8, a `\u` escape that is half a surrogate pair, a number beyond
    /// the largest double, nesting beyond MAX_DEPTH, a text of 4 GiB or more, lack of memory.
    ExporterLoadResult importIntoTree(ovMemory::StringView text) const;

    /// Writes a node and all below it; no line feed at the end. Empty for null, and for lack of memory.
    ///
    /// Reading the text again gives the same values in the same order: floats and doubles are written with
    /// the fewest digits that read back as exactly the same float or double, always with a point or an
    /// exponent. (A float comes back as a DOUBLE that rounds to it, an integer in the narrowest type.) JSON
    /// has no NaN and no infinities: they are written as the strings "NaN", "Infinity" and "-Infinity", which
    /// Node::getValueAsFloat() and getValueAsDouble() understand. Bytes of strings and names that are not
    /// UTF-8 are written as U+FFFD.
    ovMemory::String exportTreeIntoString(const Node* tree) const;

    /// Lets an object write itself to an empty object node, and writes that. Empty for null.
    ovMemory::String exportObjectIntoString(Exportable* object) const;

private:
    bool _pretty = true;
};

} // namespace ovExport
