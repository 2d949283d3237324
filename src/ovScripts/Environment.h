// The world of a script: an interpreter and what it was given.
#pragma once

#include <atomic>
#include <optional>
#include <ovScripts/EnvironmentOptions.h>
#include <ovScripts/ExecutionResult.h>
#include <ovScripts/Namespace.h>
#include <ovScripts/Script.h>
#include <ovScripts/UserType.h>

namespace ovScripts {

namespace detail {
class LuaState;
}

/// An interpreter with everything that was declared for it: namespaces, user types and functions, which
/// scripts use by their full names ("ovMaths.Vector").
///
/// Belongs to one thread at a time; two environments share nothing and may live on two threads. Nothing
/// throws: a failure is false or an empty value, and getLastExecutionResult() says why. An error leaves the
/// environment usable. What scripts own is destroyed with the environment.
class OV_API Environment : public ovMemory::Borrowable {
public:
    /// An environment without an interpreter.
    static ovMemory::UniquePtr<Environment> create(const EnvironmentOptions& options = {});

    explicit Environment(const EnvironmentOptions& options);
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;
    ~Environment();

    /// Starts an interpreter; everything before is dropped, with all declarations.
    /// @return false for an unknown interpreter, and for lack of memory
    bool setEnvironmentFor(INTERPRETER interpreter);
    INTERPRETER getInterpreter() const;
    const EnvironmentOptions& getOptions() const { return _options; }
    /// Time and steps count from now on, and an interruption is over.
    void restartLimits();
    /// Ends the script that runs, and each later one, as if a limit were reached. From any thread and from a
    /// handler of signals; heeded where the options say so.
    void interrupt();
    /// Whether interrupt() was called since the last restartLimits().
    bool isInterrupted() const { return *_interruptions != _forgottenInterruptions; }
    /// Makes interrupt() of either environment end the scripts of both; each forgets it by its own
    /// restartLimits(). Before this environment runs scripts.
    void shareInterruptions(const Environment& other);
    /// Where the interpreter's own warnings go, as that of an error in a finaliser.
    void setWarningReceiver(std::function<void(ovMemory::StringView)> receiver);

    /// Declares a namespace, or gives the declared one. Those that the name begins with must be declared
    /// ("ovScripts" for "ovScripts.INTERPRETER"). @return null without an interpreter
    Namespace* setNamespace(ovMemory::StringView fullName);
    /// @return null when it was not declared
    Namespace* getNamespace(ovMemory::StringView fullName) const;
    /// Declares a type in a declared namespace, or gives the declared one. @return as setNamespace()
    UserType* setUserType(ovMemory::StringView fullName);
    UserType* getUserType(ovMemory::StringView fullName) const;
    /// Declares a global function, or gives the declared one. @return as setNamespace()
    Function* setFunc(ovMemory::StringView name);
    Function* getFunc(ovMemory::StringView name) const;
    // What was declared, in order.
    const ovMemory::Buffer<ovMemory::UniquePtr<Namespace>>& getNamespaces() const { return _namespaces; }
    const ovMemory::Buffer<ovMemory::UniquePtr<UserType>>& getUserTypes() const { return _userTypes; }
    const ovMemory::Buffer<ovMemory::UniquePtr<Function>>& getFunctions() const { return _functions; }

    /// Executes a loaded script. @param arguments reach it as "..."
    bool execute(const Script& script, ovMemory::BufferView<const FunctionParameter> arguments = {});
    /// Executes a loaded script and takes what it returns: as many values as results has room for, VOID for
    /// those that it does not return.
    bool execute(const Script& script, ovMemory::BufferView<const FunctionParameter> arguments,
                 ovMemory::BufferView<FunctionParameter> results);
    /// Calls a function of a script. @param results as of execute()
    bool callScriptFunction(const ScriptObjectReference& function,
                            ovMemory::BufferView<const FunctionParameter> arguments,
                            ovMemory::BufferView<FunctionParameter> results);
    /// How the last execute(), callScriptFunction(), serialize... or deserialize... ended.
    const ExecutionResult& getLastExecutionResult() const { return _result; }

    /// Writes an object down, so that another environment of this process can read it: nil, booleans,
    /// numbers, strings, tables (with cycles), functions of scripts with copies of what they enclose,
    /// functions and types that were declared, and user data, which both environments then point at.
    /// @param forwardOwnership whether user data that this environment's scripts own goes over to whoever
    ///        reads it, once; until then this environment keeps it. Without it the reader owns nothing
    /// @return empty for a coroutine and for foreign user data or functions inside
    ovMemory::Buffer<unsigned char> serializeScriptObject(const ScriptObjectReference& object,
                                                          bool forwardOwnership);
    /// Reads what serializeScriptObject() of this process wrote; refuses everything else: a changed byte
    /// could break the interpreter. @return empty then
    ScriptObjectReference deserializeScriptObject(ovMemory::BufferView<const unsigned char> bytes);

    /// A hold on an argument of a call that is running.
    ScriptObjectReference referTo(const FunctionParameter& argument);
    /// The elements of a table from 1 up to its length, each as what it is: objects by their pointer, which
    /// the table keeps alive, and by reference what is gone or no user data.
    /// @param longest more elements are refused
    /// @return nothing for what is no table, for a longer one, and for lack of memory
    std::optional<ovMemory::Buffer<FunctionParameter>> readList(const ScriptObjectReference& table,
                                                                std::size_t longest);
    /// A hold on a global of scripts ("main"); empty when it is nil.
    ScriptObjectReference referToGlobal(ovMemory::StringView name);
    /// Sets a global of scripts.
    void setGlobal(ovMemory::StringView name, const FunctionParameter& value);
    /// Takes the object of an argument of a call that is running out of this environment, for another one. Of
    /// a value type that is a copy.
    /// @param forwardOwnership whether this environment lets go of an object that its scripts own: they then
    ///        get an error when they use it
    /// @return empty for anything but user data, for an object that only passes through a worker, for a part
    ///         of another object (which it would outlive), and where the type stays in its environment
    SharedUserData share(const FunctionParameter& argument, bool forwardOwnership);

    /// Collects everything that scripts let go.
    void collectGarbage();
    /// Bytes that the interpreter and the objects owned by scripts hold.
    std::size_t getUsedMemory() const;
    /// Whether scripts may take so many bytes more. For whoever makes large objects for them.
    bool canAllocate(std::size_t bytes);

    /// What a person who typed a text may mean, sorted: for "x = ovGraphics.Tex" everything of that namespace
    /// that begins with Tex, as "ovGraphics.Texture". Behind a colon the methods of a global's object.
    ovMemory::Buffer<ovMemory::String> getCompletions(ovMemory::StringView text);

    /// The interpreter, for the library's own sources; null without one.
    detail::LuaState* getState() const { return _lua.get(); }

private:
    friend class detail::LuaState;

    template <typename Push>
    bool _run(Push&& push, ovMemory::BufferView<const FunctionParameter> arguments,
              ovMemory::BufferView<FunctionParameter> results);

    EnvironmentOptions _options;
    // Counted: one that forgets too early would take the interruption from the others.
    std::shared_ptr<std::atomic<uint32_t>> _interruptions = std::make_shared<std::atomic<uint32_t>>(0);
    uint32_t _forgottenInterruptions = 0;
    ExecutionResult _result;
    ovMemory::Buffer<ovMemory::UniquePtr<Namespace>> _namespaces;
    ovMemory::Buffer<ovMemory::UniquePtr<UserType>> _userTypes;
    ovMemory::Buffer<ovMemory::UniquePtr<Function>> _functions;
    std::function<void(ovMemory::StringView)> _warningReceiver;
    ovMemory::UniquePtr<detail::LuaState> _lua; // last: ends before what it points at
};

} // namespace ovScripts
