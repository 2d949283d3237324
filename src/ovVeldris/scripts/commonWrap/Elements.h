// Elements by number, in everything that has them.
#pragma once

#include <ovVeldris/scripts/commonWrap/Bind.h>

namespace ovCommonWrap {

/// Throws an error of the script unless there is an element of that number.
inline void checkIndex(std::size_t index, std::size_t count) {
    if (index < count)
        return;
    throw ArgumentError("argument 2 is past the end, got " + std::to_string(index) + "; there are " +
                        std::to_string(count) + " elements, the first is 0");
}

/// Adds the functions that read and set an element, "getSize", and the operator # to a type whose objects
/// have operator[] and size(). Elements that are objects are handed out as parts of their owner.
template <typename Owner, typename Element>
void elementFunctions(ovScripts::UserType& type, ovMemory::StringView getName, ovMemory::StringView setName) {
    method(
        type, getName,
        [](Owner& self, std::size_t index) -> Element& {
            checkIndex(index, self.size());
            return self[index];
        },
        {"index"}, "The element of a number; the first is 0. Past the end an error.");
    method(
        type, "getSize", [](Owner& self) { return self.size(); }, {}, "Count of the elements.");
    method(
        type, setName,
        [](Owner& self, std::size_t index, const Element& value) {
            checkIndex(index, self.size());
            self[index] = value;
        },
        {"index", "value"}, "Sets the element of a number; the first is 0. Past the end an error.");
    type.addOperator(ovScripts::USER_TYPE_OPERATOR::LENGTH)
        ->addParameter(ovScripts::FUNCTION_PARAMETER_TYPE::USER_DATA_PTR, type.getFullName())
        .setResult(ovScripts::FUNCTION_PARAMETER_TYPE::INT)
        .setFunction([](Arguments arguments) {
            return ovScripts::FunctionParameter(arguments[0].getValueAsUserData<Owner>()->size());
        });
}

} // namespace ovCommonWrap
