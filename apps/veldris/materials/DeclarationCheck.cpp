#include <veldris/materials/DeclarationCheck.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <ovExport/JsonExporter.h>
#include <ovResources/Files.h>
#include <ovVeldris/content/MaterialMembers.h>
#include <ovVeldris/core/NearestName.h>
#include <ovVeldris/materials/MaterialTypeUtils.h>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace veldris {

namespace {

using ovExport::Node;
using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;
using ovVeldris::MaterialMember;
using ovVeldris::SETTING_KIND;

constexpr StringView IGNORED = "it is ignored";

/// A text of the file in quotes, for messages of one line: cut where it is long, without control characters.
String quoted(StringView text) {
    constexpr std::size_t LONGEST = 60;
    String result(text.substr(0, LONGEST));
    if (text.size() > LONGEST) {
        while (!result.empty() && (static_cast<unsigned char>(text[result.size()]) & 0xc0) == 0x80)
            result.pop_back(); // not within a character of UTF-8
        result += "...";
    }
    std::replace_if(
        result.begin(), result.end(),
        [](char character) { return static_cast<unsigned char>(character) < 0x20 || character == 0x7f; },
        '?');
    return "\"" + result + "\"";
}

StringView natureOf(const Node& node) {
    if (node.isObject())
        return "an object";
    if (node.isArray())
        return "an array";
    if (node.isString())
        return "a string";
    if (node.isBool())
        return "a bool";
    return node.isValueTypeNumber() ? "a number" : "null";
}

/// Lines of bytes of one text; asked for in ascending order, all of them together read the text once.
class LineCounter {
public:
    explicit LineCounter(StringView text)
        : _text(text) {}

    // A file of ten thousand materials may have a problem in each. Counting on from the last place reads the
    // text once for all of them.
    unsigned int lineOf(std::size_t index) {
        if (index < _index) {
            _index = 0;
            _line = 1;
        }
        const StringView between = _text.substr(_index, index - _index);
        _line += static_cast<unsigned int>(std::count(between.begin(), between.end(), '\n'));
        _index = index;
        return _line;
    }

private:
    StringView _text;
    std::size_t _index = 0;
    unsigned int _line = 1;
};

/// Problems by the byte of the text at which they are.
// Problems are found in the order of the checks and shown in the order of the file, so they are kept with
// their place and sorted at the end.
class ProblemList {
public:
    void add(const Node& place, String message) {
        _problems.emplace_back(place.getSourceIndex(), std::move(message));
    }

    /// All of them in the order of the text.
    Buffer<DeclarationProblem> take(StringView text) {
        std::stable_sort(_problems.begin(), _problems.end(),
                         [](const auto& left, const auto& right) { return left.first < right.first; });
        LineCounter lines(text);
        Buffer<DeclarationProblem> result;
        for (auto& [index, message] : _problems)
            result.push_back({lines.lineOf(index), std::move(message)});
        return result;
    }

private:
    Buffer<std::pair<std::size_t, String>> _problems;
};

String hintOf(StringView name, const Buffer<StringView>& known) {
    const StringView nearest = ovVeldris::findNearestName(name, known);
    return nearest.empty() ? String(".") : fmt::format("; did you mean \"{}\"?", nearest);
}

/// Checks the members of an object against a list of names.
/// @param check called with each known name and its value, the first of a name
template <typename Check>
void checkMembers(const Node& object, const Buffer<StringView>& known, const String& subject,
                  ProblemList& problems, const Check& check) {
    std::unordered_set<StringView> seen;
    for (unsigned int i = 0; i < object.getMemberCount(); ++i) {
        const StringView name = object.getMemberKey(i);
        const Node& value = *object.getMemberValueIndex(i);
        // JSON allows a name twice, and the reader keeps both; the library reads the first. An editor's user
        // mostly means the second, so it is worth a line.
        if (!seen.insert(name).second)
            problems.add(value,
                         fmt::format("{}{} is given again; the first one counts.", subject, quoted(name)));
        else if (std::find(known.begin(), known.end(), name) != known.end())
            check(name, value);
        else
            problems.add(
                value, fmt::format("{}there is no member {}{}", subject, quoted(name), hintOf(name, known)));
    }
}

/// Checks the value of one member of an entry, by the kind of its setting.
class ValueChecker {
public:
    ValueChecker(const Node& entry, const MaterialMember& member, const Node& value, String subject,
                 ProblemList& problems)
        : _entry(entry)
        , _member(member)
        , _value(value)
        , _subject(std::move(subject))
        , _problems(problems) {}

    void check() const {
        if (!_member.setting)
            return; // "name" and "type" are checked before, present or not
        switch (_member.setting->kind) {
        case SETTING_KIND::FLAG:
            return _checkFlag();
        case SETTING_KIND::ENUMERATION:
            return _checkChoice();
        case SETTING_KIND::TEXTURE:
            return _checkTexture(_member.property->texture);
        case SETTING_KIND::VECTOR:
            return _checkVector();
        case SETTING_KIND::NUMBER:
            return _checkNumber();
        default:
            return _checkIdentifier();
        }
    }

private:
    void _checkFlag() const {
        if (!_value.isBool())
            _addWrongNature("true or false");
    }

    void _checkIdentifier() const {
        if (!_value.isString())
            _addWrongNature("a string");
        else if (!ovVeldris::isIdentifier(_value.getValueAsStringView()))
            _add("is {}, which is no identifier (letters, digits and _, no digit first); {}.", _text(),
                 IGNORED);
    }

    void _checkChoice() const {
        const auto& choices = _member.setting->choices;
        if (!_value.isString())
            _addWrongNature("a string");
        else if (!ovVeldris::isChoice(*_member.setting, _value.getValueAsStringView()))
            _add("is {}, not \"{}\"; {}.", _text(), fmt::join(choices, "\" or \""), IGNORED);
    }

    void _checkTexture(const ovVeldris::PbsTextureRow& texture) const {
        if (!_value.isObject())
            return _addWrongNature(R"(an object {"name": ..., "packing": ...})");
        const String subject = fmt::format("{}\"{}\": ", _subject, _member.name);
        const Node* const name = _value.getMemberValue(ovVeldris::PBS_TEXTURE_NAME);
        if (!name)
            _problems.add(_value, subject + "there is no \"name\" of a texture; none is set.");
        checkMembers(_value, {ovVeldris::PBS_TEXTURE_NAME, ovVeldris::PBS_TEXTURE_PACKING}, subject,
                     _problems, [&](StringView member, const Node& value) {
                         if (!value.isString())
                             _problems.add(value, fmt::format("{}\"{}\" is {}, not a string; {}.", subject,
                                                              member, natureOf(value), IGNORED));
                         else if (member == ovVeldris::PBS_TEXTURE_NAME &&
                                  value.getValueAsStringView().empty())
                             _problems.add(value, subject + "the name is empty.");
                         else if (member == ovVeldris::PBS_TEXTURE_PACKING)
                             _checkPacking(texture, value, subject);
                     });
    }

    void _checkVector() const {
        ovMaths::Vector read;
        if (!_value.isString())
            return _addWrongNature("a string as \"Vec(0.5, 0.5, 0.5, 0)\"");
        if (!read.fromString(_value.getValueAsStringView()))
            return _add("is {}, not four finite numbers as \"Vec(0.5, 0.5, 0.5, 0)\"; {}.", _text(), IGNORED);
        const ovVeldris::SettingRange& range = _member.setting->range;
        if (_member.property->value.isDirection && read.x == 0.0f && read.y == 0.0f && read.z == 0.0f)
            _add("has no length; a direction has.");
        if (!range.holds(read.x) || !range.holds(read.y) || !range.holds(read.z))
            _add("is {}: light and reflectance are not negative.", _text());
        _checkReplacement();
    }

    void _checkNumber() const {
        if (!_value.isValueTypeNumber())
            return _addWrongNature("a number");
        const double number = _value.getValueAsDouble();
        const ovVeldris::SettingRange& range = _member.setting->range;
        if (!range.holds(number))
            _add("is {}, not between {} and {}.", number, range.minimum, range.maximum);
        _checkReplacement();
    }

    String _text() const { return quoted(_value.getValueAsStringView()); }

    template <typename... Arguments>
    void _add(fmt::format_string<Arguments...> format, Arguments&&... arguments) const {
        _problems.add(_value, fmt::format("{}\"{}\" ", _subject, _member.name) +
                                  fmt::format(format, std::forward<Arguments>(arguments)...));
    }

    void _addWrongNature(StringView expected) const {
        _add("is {}, not {}; {}.", natureOf(_value), expected, IGNORED);
    }

    void _checkReplacement() const {
        if (_member.property && ovVeldris::isReplaced(_entry, *_member.property))
            _add("is not used: \"{}\" replaces it; remove one, or multiply both with \"{}\": true.",
                 _member.property->texture.name.member, _member.property->mix.name.member);
    }

    void _checkPacking(const ovVeldris::PbsTextureRow& texture, const Node& packing,
                       const String& subject) const {
        const StringView text = packing.getValueAsStringView();
        // Asked of the library's own reading, so that the message says what really happens.
        const StringView readAs = ovVeldris::readPacking(texture, text);
        const StringView expected =
            texture.vectorChannels ? "three different letters of r, g, b and a" : "r, g, b or a";
        if (readAs != text)
            _problems.add(packing, fmt::format("{}the packing {} is not {}; it is read as \"{}\".", subject,
                                               quoted(text), expected, readAs));
    }

    const Node& _entry;
    const MaterialMember& _member;
    const Node& _value;
    String _subject;
    ProblemList& _problems;
};

/// Checks the entries of one file.
class FileChecker {
public:
    FileChecker(StringView text, DeclarationFile& file)
        : _lines(text)
        , _file(file) {
        for (const MaterialMember& member : ovVeldris::materialMembers())
            _memberNames.push_back(member.name);
    }

    void check() {
        Node& root = *_file.tree;
        Node* const materials = root.getMemberValue(MATERIALS);
        if (root.isArray()) {
            _checkArray(root);
        } else if (materials) {
            checkMembers(root, {MATERIALS}, "", problems, [](StringView, const Node&) {});
            if (materials->isArray())
                _checkArray(*materials);
            else
                problems.add(*materials, fmt::format("\"{}\" is {}, not an array of materials.", MATERIALS,
                                                     natureOf(*materials)));
        } else if (root.isObject()) {
            _checkEntry(root, "the material");
        } else {
            problems.add(root,
                         fmt::format("the file holds {}; materials are an object, an array of objects, or "
                                     "{{\"{}\": [...]}}.",
                                     natureOf(root), MATERIALS));
        }
    }

    ProblemList problems;

private:
    static constexpr StringView MATERIALS = "materials";

    void _checkArray(Node& array) {
        for (unsigned int i = 0; i < array.getArraySize(); ++i)
            _checkEntry(*array.getArrayElement(i), fmt::format("material number {}", i + 1));
    }

    void _checkEntry(Node& entry, const String& place) {
        _file.entries.push_back({&entry, _lines.lineOf(entry.getSourceIndex())});
        if (!entry.isObject())
            return problems.add(entry, fmt::format("{} is {}, not an object.", place, natureOf(entry)));
        const Node* const name = entry.getMemberValue("name");
        // Messages name the material if they can, since lines move while the user edits.
        const bool hasName = name && name->isString();
        const String subject = (hasName ? "material " + quoted(name->getValueAsStringView()) : place) + ": ";
        if (hasName)
            _checkName(*name, subject);
        else
            _addMissing(entry, "name", name, subject);
        _checkType(entry, subject);
        checkMembers(entry, _memberNames, subject, problems, [&](StringView member, const Node& value) {
            ValueChecker(entry, *ovVeldris::findMaterialMember(member), value, subject, problems).check();
        });
    }

    void _checkName(const Node& name, const String& subject) {
        const StringView text = name.getValueAsStringView();
        if (text.empty())
            problems.add(name, subject + "the name is empty.");
        // No error to the library, which overwrites the first with the second; but hardly ever what was
        // meant.
        const auto [first, isNew] = _linesOfNames.try_emplace(text, _file.entries.back().line);
        if (!isNew)
            problems.add(name, fmt::format("{}the name is that of the material in line {}, which this one "
                                           "overwrites.",
                                           subject, first->second));
    }

    void _checkType(const Node& entry, const String& subject) {
        const Node* const type = entry.getMemberValue("type");
        if (!type || !type->isString())
            return _addMissing(entry, "type", type, subject);
        if (ovVeldris::MaterialTypeUtils::stringToEnum(type->getValueAsStringView()) ==
            ovVeldris::MATERIAL_TYPE::UNKNOWN)
            problems.add(*type, fmt::format("{}the type {} is unknown; it is \"PBS\".", subject,
                                            quoted(type->getValueAsStringView())));
    }

    void _addMissing(const Node& entry, StringView member, const Node* value, const String& subject) {
        if (value)
            problems.add(*value, fmt::format("{}\"{}\" is {}, not a string; the material is not loaded.",
                                             subject, member, natureOf(*value)));
        else
            problems.add(entry,
                         fmt::format("{}there is no \"{}\"; the material is not loaded.", subject, member));
    }

    LineCounter _lines;
    DeclarationFile& _file;
    Buffer<StringView> _memberNames;
    std::unordered_map<StringView, unsigned int> _linesOfNames; ///< of the entries
};

} // namespace

String toText(StringView path, const DeclarationProblem& problem) {
    if (problem.line == 0)
        return fmt::format("{}: {}", path, problem.message);
    return fmt::format("{}:{}: {}", path, problem.line, problem.message);
}

DeclarationFile checkDeclarations(StringView text) {
    DeclarationFile file;
    ovExport::ExporterLoadResult parsed = ovExport::JsonExporter().importIntoTree(text);
    if (!parsed) {
        // Where the line stands is told by whoever shows the problem.
        StringView message = parsed._error._errorInfo;
        if (const String line = fmt::format("line {}, ", parsed._error._line); message.starts_with(line))
            message.remove_prefix(line.size());
        file.problems.push_back({parsed._error._line, String(message)});
        return file;
    }
    file.tree = std::move(parsed._tree);
    FileChecker checker(text, file);
    checker.check();
    file.problems = checker.problems.take(text);
    return file;
}

bool checkDeclarationFile(StringView path, DeclarationFile& file, String& error) {
    Buffer<char> bytes;
    error = ovResources::readFile(path, bytes).error;
    if (!error.empty())
        return false;
    file = checkDeclarations({bytes.data(), bytes.size()});
    return true;
}

} // namespace veldris
