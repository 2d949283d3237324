// Parts of buffers, in scripts.
#pragma once

#include <algorithm>
#include <ovVeldris/scripts/memoryWrap/BufferCastWrapper.h>

namespace ovMemoryWrap {

/// A part of some elements. @param count may be VOID: all from the offset on
template <typename T>
ovMemory::BufferView<T> partOf(ovMemory::BufferView<T> elements, const ovScripts::FunctionParameter& offset,
                               const ovScripts::FunctionParameter& count) {
    const auto first = ovCommonWrap::toInteger<std::size_t>(offset.getValueAsInt(), 1);
    if (first > elements.size())
        throw ovCommonWrap::ArgumentError("argument 2 (offset) is past the end, got " +
                                          std::to_string(first) + "; there are " +
                                          std::to_string(elements.size()) + " elements");
    const std::size_t rest = elements.size() - first;
    if (count.isVoid())
        return elements.subspan(first);
    const auto wanted = ovCommonWrap::toInteger<std::size_t>(count.getValueAsInt(), 2);
    if (wanted > rest)
        throw ovCommonWrap::ArgumentError("argument 3 (count) goes past the end, got " +
                                          std::to_string(wanted) + "; behind the offset there are " +
                                          std::to_string(rest) + " elements");
    return elements.subspan(first, wanted);
}

/// Binds a view of elements of type T. It keeps alive what it looks into.
template <typename T>
class BufferViewWrapper {
public:
    /// @param fullName of the type to fill
    static void updateEnvironment(ovScripts::Environment* environment, ovMemory::StringView fullName) {
        using namespace ovCommonWrap;
        ovScripts::UserType& type = *environment->getUserType(fullName);
        type.setHelp("Elements of something else, which it keeps alive; the first is number 0.");
        destructible<View>(type);
        elementFunctions<View, T>(type, "getData", "setData");
        ovScripts::Function& subView = *type.addMethod("subView");
        subView.addParameter(ovScripts::FUNCTION_PARAMETER_TYPE::INT, {}, "offset");
        subView.addOptionalParameter(ovScripts::FUNCTION_PARAMETER_TYPE::INT, {}, "count");
        subView.setHelp("A part of the view; without a count all from the offset on.");
        _bindPart(subView, fullName,
                  [](const ovScripts::FunctionParameter& self) { return *self.getValueAsUserData<View>(); });
        ovScripts::Function& view = *type.addStaticFunction("view");
        view.addParameter(ovScripts::FUNCTION_PARAMETER_TYPE::USER_DATA_PTR, {}, "source");
        view.addOptionalParameter(ovScripts::FUNCTION_PARAMETER_TYPE::INT, {}, "offset");
        view.addOptionalParameter(ovScripts::FUNCTION_PARAMETER_TYPE::INT, {}, "count");
        view.setHelp("Elements of an ovMemory.Buffer or of a cast to them, or a part of these.");
        _bindPart(view, fullName, _sourceOf);
    }

private:
    using View = ovMemory::BufferView<T>;

    template <typename Source>
    static void _bindPart(ovScripts::Function& function, ovMemory::StringView fullName, Source source) {
        function.setResult(ovScripts::FUNCTION_PARAMETER_TYPE::USER_DATA, fullName);
        function.setFunction([source](ovCommonWrap::Arguments arguments) {
            const View part = partOf(source(arguments[0]), arguments[1], arguments[2]);
            return ovCommonWrap::toScript(std::make_unique<View>(part)).keeping(0);
        });
    }

    static View _sourceOf(const ovScripts::FunctionParameter& source) {
        using ovCommonWrap::TYPE_NAME;
        const ovMemory::StringView typeName = source.getUserDataTypeName();
        if (typeName == TYPE_NAME<ByteBuffer>)
            return elementsOf<T>(*source.getValueAsUserData<ByteBuffer>());
        if constexpr (!std::is_same_v<T, unsigned char>)
            if (typeName == TYPE_NAME<BufferCast<T>>)
                return source.getValueAsUserData<BufferCast<T>>()->elements;
        throw ovCommonWrap::ArgumentError("argument 1 (source) expected ovMemory.Buffer, or a cast of it to "
                                          "the same elements, got " +
                                          ovMemory::String(typeName));
    }
};

} // namespace ovMemoryWrap
