#include <ovScripts/Environment.h>
#include <ovScripts/Reference.h>
#include <ovScripts/detail/ValuesInternal.h>

namespace ovScripts {

namespace {

using ovMemory::String;
using ovMemory::StringView;

// "name: type", in brackets when it may be left out.
String describe(const FunctionArgument& argument) {
    const String text = argument.name.empty() ? detail::expectationOf(argument)
                                              : argument.name + ": " + detail::expectationOf(argument);
    return argument.isOptional ? '[' + text + ']' : text;
}

String describeArguments(const Function& function, bool isMethod) {
    String text;
    for (std::size_t i = isMethod ? 1 : 0; i < function.getArguments().size(); ++i) {
        if (!text.empty())
            text += ", ";
        text += describe(function.getArguments()[i]);
    }
    return '(' + text + ')';
}

String describeResult(const Function& function) {
    return function.getResult().type == FUNCTION_PARAMETER_TYPE::VOID
               ? String()
               : " → " + detail::expectationOf(function.getResult());
}

// A line of a list.
String line(StringView code, StringView help) {
    String text = "- `" + String(code) + '`';
    if (!help.empty())
        text += ": " + String(help);
    return text + '\n';
}

String describe(const Function& function, StringView name, bool isMethod) {
    return line(String(name) + describeArguments(function, isMethod) + describeResult(function),
                function.getHelp());
}

String toText(const FunctionParameter& value) {
    if (value.getType() == FUNCTION_PARAMETER_TYPE::STRING)
        return '"' + String(value.getValueAsString()) + '"';
    if (value.getType() == FUNCTION_PARAMETER_TYPE::INT)
        return std::to_string(value.getValueAsInt());
    return std::to_string(value.getValueAsDouble());
}

String describe(const Namespace& space) {
    String text = "\n## " + space.getFullName() + "\n\n";
    for (const Namespace::Constant& constant : space.getConstants())
        text += line(constant.name + " = " + toText(constant.value), {});
    for (const auto& function : space.getFunctions())
        text += describe(*function, function->getFullName(), false);
    return text;
}

String describe(const UserType::Member& member) {
    String access;
    if (!member.setter)
        access = " (read only)";
    else if (!member.getter)
        access = " (set only)";
    return line("." + member.name + ": " + detail::expectationOf(member.value) + access, member.help);
}

String describeNamedMembers(const UserType& type) {
    String text;
    for (const UserType::NamedMembers& members : type.getNamedMembers()) {
        text += members.kind.empty() ? "- settings:" : "- settings of `" + members.kind + "`:";
        for (const String& name : members.names)
            text += (&name == &members.names.front() ? " `." : ", `.") + name + '`';
        text += '\n';
    }
    return text;
}

String describeOperators(const UserType& type) {
    String text;
    for (const auto& [kind, function] : type.getOperators())
        text += (text.empty() ? "" : ", ") + String(ovMemory::enumToText(kind));
    return text.empty() ? text : "- operators: " + text + '\n';
}

String describe(const UserType& type) {
    String text = "\n### " + type.getFullName() + "\n\n";
    if (!type.getHelp().empty())
        text += type.getHelp() + "\n\n";
    if (const Function* constructor = type.getConstructor())
        text += describe(*constructor, type.getFullName(), false);
    for (const auto& function : type.getStaticFunctions())
        text += describe(*function, function->getFullName(), false);
    for (const auto& member : type.getMembers())
        text += describe(*member);
    text += describeNamedMembers(type);
    for (const auto& method : type.getMethods())
        text += describe(*method, ":" + String(method->getName()), true);
    return text + describeOperators(type);
}

bool isInside(StringView fullName, const Namespace& space) {
    return fullName.substr(0, fullName.rfind('.')) == space.getFullName();
}

} // namespace

ovMemory::String describeDeclarations(const Environment& environment) {
    String text = "## Globals\n\n";
    for (const auto& function : environment.getFunctions())
        text += describe(*function, function->getFullName(), false);
    for (const auto& space : environment.getNamespaces()) {
        text += describe(*space);
        for (const auto& type : environment.getUserTypes())
            if (isInside(type->getFullName(), *space))
                text += describe(*type);
    }
    return text;
}

} // namespace ovScripts
