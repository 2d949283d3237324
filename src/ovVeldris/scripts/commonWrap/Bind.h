// Declarations of functions for scripts from functions of C++.
#pragma once

#include <functional>
#include <initializer_list>
#include <limits>
#include <optional>
#include <ovMemory/Result.h>
#include <ovScripts/Environment.h>
#include <ovVeldris/scripts/commonWrap/TypeNames.h>
#include <stdexcept>
#include <utility>

/// Shared pieces of the bindings.
///
/// A binding names a member function and its arguments; what they are is read off the function itself, so
/// that a declaration cannot differ from what is called:
///
///     method(type, "getDistanceVec3", &Vector::getDistanceVec3, {"other"}, "Distance of two points.");
namespace ovCommonWrap {

using Arguments = ovMemory::BufferView<ovScripts::FunctionParameter>;
using ArgumentNames = std::initializer_list<ovMemory::StringView>;

/// A value of the right kind that C++ cannot take; becomes an error of the script.
class ArgumentError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What a call ended with, for scripts: its warning or nothing; an error of the script when it failed.
inline std::optional<ovMemory::String> warningOf(const ovMemory::Result& result) {
    if (!result)
        throw ArgumentError(result.error);
    return result.warning.empty() ? std::nullopt : std::optional(result.warning);
}

template <typename T>
using Bare = std::remove_cv_t<std::remove_reference_t<T>>;

template <typename T>
inline constexpr bool isText = std::is_same_v<Bare<T>, ovMemory::StringView> ||
                               std::is_same_v<Bare<T>, ovMemory::String> || std::is_same_v<T, const char*>;

template <typename T>
inline constexpr bool isPlain = std::is_arithmetic_v<Bare<T>> || std::is_enum_v<Bare<T>> || isText<T>;

template <typename T>
struct OptionalValue : std::false_type {
    using Type = T;
};
template <typename T>
struct OptionalValue<std::optional<T>> : std::true_type {
    using Type = T;
};

/// What a function declares for an argument or a result of C++.
template <typename T>
constexpr ovScripts::FUNCTION_PARAMETER_TYPE parameterTypeOf() {
    using ovScripts::FUNCTION_PARAMETER_TYPE;
    if constexpr (std::is_void_v<T>)
        return FUNCTION_PARAMETER_TYPE::VOID;
    else if constexpr (OptionalValue<Bare<T>>::value)
        return parameterTypeOf<typename OptionalValue<Bare<T>>::Type>();
    else if constexpr (std::is_same_v<Bare<T>, bool>)
        return FUNCTION_PARAMETER_TYPE::BOOL;
    else if constexpr (std::is_integral_v<Bare<T>> || std::is_enum_v<Bare<T>>)
        return FUNCTION_PARAMETER_TYPE::INT;
    else if constexpr (std::is_same_v<Bare<T>, float>)
        return FUNCTION_PARAMETER_TYPE::FLOAT;
    else if constexpr (std::is_same_v<Bare<T>, double>)
        return FUNCTION_PARAMETER_TYPE::DOUBLE;
    else if constexpr (isText<T>)
        return FUNCTION_PARAMETER_TYPE::STRING;
    else if constexpr (std::is_same_v<Bare<T>, ovScripts::FunctionParameter>)
        return FUNCTION_PARAMETER_TYPE::ANY;
    else if constexpr (std::is_pointer_v<Bare<T>>)
        return FUNCTION_PARAMETER_TYPE::USER_DATA;
    else
        return FUNCTION_PARAMETER_TYPE::USER_DATA_PTR;
}

template <typename T>
struct OwnedPointer : std::false_type {};
template <typename T>
struct OwnedPointer<ovMemory::UniquePtr<T>> : std::true_type {};

/// The class behind a reference, a pointer or an owning pointer.
template <typename T>
struct ObjectOf {
    using Type = Bare<T>;
};
template <typename T>
struct ObjectOf<T*> {
    using Type = Bare<T>;
};
template <typename T>
struct ObjectOf<ovMemory::UniquePtr<T>> {
    using Type = T;
};

/// The user type that a declaration names; empty for what is none.
template <typename T>
ovMemory::StringView typeNameOf() {
    if constexpr (std::is_void_v<T> || isPlain<T> || std::is_same_v<Bare<T>, ovScripts::FunctionParameter>)
        return {};
    else if constexpr (OptionalValue<Bare<T>>::value)
        return typeNameOf<typename OptionalValue<Bare<T>>::Type>();
    else
        return TYPE_NAME<typename ObjectOf<Bare<T>>::Type>;
}

template <typename Integer>
Integer toInteger(int64_t value, std::size_t position) {
    if (std::in_range<Integer>(value))
        return static_cast<Integer>(value);
    using Limits = std::numeric_limits<Integer>;
    throw ArgumentError("argument " + std::to_string(position + 1) + " expected an integer from " +
                        std::to_string(Limits::min()) + " to " + std::to_string(Limits::max()) + ", got " +
                        std::to_string(value));
}

/// An enumeration's value; an error that lists the values for a number that it lacks.
template <typename Enum>
Enum toEnum(int64_t value, std::size_t position) {
    for (const ovMemory::EnumEntry<Enum>& entry : ovMemory::enumTableOf<Enum>())
        if (static_cast<int64_t>(entry.value) == value)
            return entry.value;
    throw ArgumentError("argument " + std::to_string(position + 1) + " is no value of " +
                        ovMemory::String(ovMemory::enumTableOf<Enum>().name) + ", got " +
                        std::to_string(value) + "; the values are " + ovMemory::enumTexts<Enum>());
}

/// An argument as C++ takes it. Its kind was checked.
template <typename T>
decltype(auto) fromScript(const ovScripts::FunctionParameter& argument, std::size_t position) {
    if constexpr (std::is_same_v<Bare<T>, ovScripts::FunctionParameter>)
        return (argument);
    else if constexpr (OptionalValue<Bare<T>>::value)
        return argument.isVoid()
                   ? Bare<T>()
                   : Bare<T>(fromScript<typename OptionalValue<Bare<T>>::Type>(argument, position));
    else if constexpr (std::is_same_v<Bare<T>, bool>)
        return argument.getValueAsBool();
    else if constexpr (std::is_enum_v<Bare<T>>)
        return toEnum<Bare<T>>(argument.getValueAsInt(), position);
    else if constexpr (std::is_integral_v<Bare<T>>)
        return toInteger<Bare<T>>(argument.getValueAsInt(), position);
    else if constexpr (std::is_floating_point_v<Bare<T>>)
        return static_cast<Bare<T>>(argument.getValueAsDouble());
    else if constexpr (isText<T>)
        return Bare<T>(argument.getValueAsString());
    else if constexpr (std::is_pointer_v<Bare<T>>)
        return argument.getValueAsUserData<typename ObjectOf<Bare<T>>::Type>();
    else
        return (*argument.getValueAsUserData<Bare<T>>());
}

/// A result as scripts get it. Values and owning pointers are theirs. What plain pointers and references lead
/// to is not; it keeps the object of the first argument alive, of which it may be a part. Without a value it
/// is nil.
template <typename T>
ovScripts::FunctionParameter toScript(T&& value) {
    using Value = Bare<T>;
    if constexpr (std::is_same_v<Value, ovScripts::FunctionParameter>)
        return std::forward<T>(value);
    else if constexpr (OptionalValue<Value>::value)
        return value ? toScript(*std::forward<T>(value)) : ovScripts::FunctionParameter::VOID;
    else if constexpr (std::is_enum_v<Value>)
        return static_cast<int64_t>(value);
    else if constexpr (isPlain<T>)
        return ovScripts::FunctionParameter(value);
    else if constexpr (std::is_pointer_v<Value>) {
        using Object = typename ObjectOf<Value>::Type;
        return ovScripts::FunctionParameter(const_cast<Object*>(value), TYPE_NAME<Object>, false).keeping(0);
    } else if constexpr (OwnedPointer<Value>::value) {
        return ovScripts::FunctionParameter(value.release(), TYPE_NAME<typename ObjectOf<Value>::Type>, true);
    } else if constexpr (std::is_lvalue_reference_v<T> && !std::is_const_v<std::remove_reference_t<T>>) {
        return ovScripts::FunctionParameter(&value, TYPE_NAME<Value>, false).keeping(0);
    } else {
        return ovScripts::FunctionParameter(new Value(std::forward<T>(value)), TYPE_NAME<Value>, true);
    }
}

/// A function's result and parameters; of a member function the object is the first one.
template <typename Result, typename... Parameters>
struct Signature {};

template <typename R, typename... P>
Signature<R, P...> signatureOf(R (*)(P...));
template <typename R, typename C, typename... P>
Signature<R, C&, P...> signatureOf(R (C::*)(P...));
template <typename R, typename C, typename... P>
Signature<R, C&, P...> signatureOf(R (C::*)(P...) const);

template <typename R, typename C, typename... P>
Signature<R, P...> signatureOfCall(R (C::*)(P...) const);

template <typename Self, typename R, typename C, typename... P>
Signature<R, Self&, P...> withSelf(Signature<R, C&, P...>);

/// A signature by a function pointer, a member function pointer or a lambda.
template <typename F>
auto deduceSignature() {
    if constexpr (std::is_class_v<F>)
        return decltype(signatureOfCall(&F::operator())){};
    else
        return decltype(signatureOf(std::declval<F>())){};
}

template <typename F, typename R, typename... P, std::size_t... I>
ovScripts::FunctionParameter invokeWith(F& callable, Arguments arguments, Signature<R, P...>,
                                        std::index_sequence<I...>) {
    if constexpr (std::is_void_v<R>) {
        std::invoke(callable, fromScript<P>(arguments[I], I)...);
        return ovScripts::FunctionParameter::VOID;
    } else {
        return toScript<R>(std::invoke(callable, fromScript<P>(arguments[I], I)...));
    }
}

template <typename... P>
void declareParameters(ovScripts::Function& function, std::size_t declared, ArgumentNames names) {
    const auto* name = names.begin();
    std::size_t position = 0;
    [[maybe_unused]] const auto declare = [&](ovScripts::FUNCTION_PARAMETER_TYPE type,
                                              ovMemory::StringView typeName, bool isOptional) {
        if (position++ < declared)
            return;
        const ovMemory::StringView given = name == names.end() ? ovMemory::StringView() : *name++;
        if (isOptional)
            function.addOptionalParameter(type, typeName, given);
        else
            function.addParameter(type, typeName, given);
    };
    (declare(parameterTypeOf<P>(), typeNameOf<P>(), OptionalValue<Bare<P>>::value), ...);
}

template <typename F, typename R, typename... P>
void bindSignature(ovScripts::Function& function, F callable, ArgumentNames names,
                   Signature<R, P...> signature) {
    declareParameters<P...>(function, function.getArguments().size(), names);
    function.setResult(parameterTypeOf<R>(), typeNameOf<R>());
    function.setFunction([callable, signature](Arguments arguments) mutable {
        return invokeWith(callable, arguments, signature, std::index_sequence_for<P...>());
    });
}

/// Gives a function its arguments, its result and its body.
/// @param callable a function, a member function or a lambda; parameters that are declared already, as self
///        of a method, come first
template <typename F>
ovScripts::Function& bind(ovScripts::Function& function, F callable, ArgumentNames names = {},
                          ovMemory::StringView help = {}) {
    bindSignature(function, callable, names, deduceSignature<F>());
    return function.setHelp(help);
}

template <typename F>
ovScripts::Function& method(ovScripts::UserType& type, ovMemory::StringView name, F callable,
                            ArgumentNames names = {}, ovMemory::StringView help = {}) {
    return bind(*type.addMethod(name), callable, names, help);
}

/// A method of a base class: its object is a T. An object of a script is known by its own type alone.
template <typename T, typename F>
ovScripts::Function& methodOf(ovScripts::UserType& type, ovMemory::StringView name, F callable,
                              ArgumentNames names = {}, ovMemory::StringView help = {}) {
    ovScripts::Function& function = *type.addMethod(name);
    bindSignature(function, callable, names, decltype(withSelf<T>(deduceSignature<F>())){});
    return function.setHelp(help);
}

template <typename F>
ovScripts::Function& staticFunction(ovScripts::UserType& type, ovMemory::StringView name, F callable,
                                    ArgumentNames names = {}, ovMemory::StringView help = {}) {
    return bind(*type.addStaticFunction(name), callable, names, help);
}

/// An operator of one or two operands.
template <typename F>
ovScripts::Function& binaryOperator(ovScripts::UserType& type, ovScripts::USER_TYPE_OPERATOR kind,
                                    F callable) {
    return bind(*type.addOperator(kind), callable);
}

/// Lets scripts make objects of T without arguments, and destroys those that they own.
template <typename T>
void constructible(ovScripts::UserType& type) {
    type.setConstructor([](Arguments) -> void* { return new T(); });
    type.setDestructor([](void* object) { delete static_cast<T*>(object); });
}

/// Destroys objects of T that scripts own but cannot make.
template <typename T>
void destructible(ovScripts::UserType& type) {
    type.setDestructor([](void* object) { delete static_cast<T*>(object); });
}

/// A member variable that is a field of the class. Objects in fields are handed out as parts of their object.
template <typename C, typename T>
ovScripts::UserType::Member* field(ovScripts::UserType& type, ovMemory::StringView name, T C::*member) {
    return type.addMemberVariable(
        name, parameterTypeOf<T>(), typeNameOf<T>(),
        [member](void* object) { return toScript(static_cast<C*>(object)->*member); },
        [member](void* object, const ovScripts::FunctionParameter& value) {
            static_cast<C*>(object)->*member = fromScript<T>(value, 0);
            return ovScripts::FunctionParameter::VOID;
        });
}

/// The same, only to be read.
template <typename C, typename T>
ovScripts::UserType::Member* readOnlyField(ovScripts::UserType& type, ovMemory::StringView name,
                                           T C::*member) {
    return type.addMemberVariable(
        name, parameterTypeOf<T>(), typeNameOf<T>(),
        [member](void* object) { return toScript(static_cast<C*>(object)->*member); }, nullptr);
}

/// A member variable that functions of the object read and set.
/// @param getter, setter callables on a C&; the setter's value is of the getter's type
template <typename C, typename Getter, typename Setter>
ovScripts::UserType::Member* property(ovScripts::UserType& type, ovMemory::StringView name, Getter getter,
                                      Setter setter) {
    using Value = std::invoke_result_t<Getter, C&>;
    return type.addMemberVariable(
        name, parameterTypeOf<Value>(), typeNameOf<Value>(),
        [getter](void* object) { return toScript<Value>(std::invoke(getter, *static_cast<C*>(object))); },
        [setter](void* object, const ovScripts::FunctionParameter& value) {
            std::invoke(setter, *static_cast<C*>(object), fromScript<Value>(value, 0));
            return ovScripts::FunctionParameter::VOID;
        });
}

/// The same, only to be read.
template <typename C, typename Getter>
ovScripts::UserType::Member* readOnlyProperty(ovScripts::UserType& type, ovMemory::StringView name,
                                              Getter getter) {
    using Value = std::invoke_result_t<Getter, C&>;
    return type.addMemberVariable(
        name, parameterTypeOf<Value>(), typeNameOf<Value>(),
        [getter](void* object) { return toScript<Value>(std::invoke(getter, *static_cast<C*>(object))); },
        nullptr);
}

} // namespace ovCommonWrap
