// The command line. What a command takes and does is in a file of its own.
#pragma once

#include "tool/Card.h"
#include "tool/Keys.h"
#include "tool/Output.h"

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace CLI
{
class App;
class Error;
} // namespace CLI

namespace acg::tool
{

/// What every command gets beside its own options.
struct Context {
    ReaderOptions Reader;
    Output Out;
};

enum class Need {
    Required,
    Optional
};

/// What one command takes. Values have to outlive the command line.
class CommandOptions
{
public:
    explicit CommandOptions(CLI::App& app) : m_app(app) {}

    /// By its place; the name is in capitals.
    void Argument(const char* name, std::string& value, const char* description, Need need = Need::Required);
    /// name: with "--". type: what the help calls the value. others: options added earlier that can't be
    /// given together with this one. The commands check ranges themselves: CLI11's validators run in another
    /// order and have other words than the program's own messages.
    void Option(const char* name, const char* type, std::string& value, const char* description,
                Need need = Need::Optional, std::initializer_list<const char*> others = {});
    /// One that may be given several times.
    void List(const char* name, const char* type, std::vector<std::string>& values, const char* description);
    void Flag(const char* name, bool& isGiven, const char* description,
              std::initializer_list<const char*> others = {});

private:
    CLI::App& m_app;
};

/// What a failure is in words, and what it makes of the program.
struct Ending {
    int Status;
    std::string Text;
    JsonObject Failure; ///< the member "failure"
};

/// Of the exception that is being handled, one of tool/Failures.h or of the standard library. Others are
/// thrown again.
[[nodiscard]] Ending CurrentEnding();

class CommandLine
{
public:
    /// Prints the result, returns the exit status, and throws one of tool/Failures.h if it can't do what it
    /// is asked.
    using Action = std::function<int(Context&)>;

    CommandLine();
    ~CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    /// Adds a command. example: a whole command line.
    CommandOptions Add(const char* name, const char* description, const char* example, Action run);
    /// Adds a command that is run with the values of its options; returns both, for the caller to add the
    /// options.
    template <class Options>
    std::pair<CommandOptions, Options&> Add(const char* name, const char* description, const char* example,
                                            int (*run)(const Options&, Context&))
    {
        const auto values = std::make_shared<Options>();
        return {Add(name, description, example,
                    [values, run](Context& context) { return run(*values, context); }),
                *values};
    }

    /// Runs what the arguments say. The exit status; every failure has been said.
    int Run(std::vector<std::string> arguments);

private:
    /// What is wrong with the arguments. It may hold a key.
    [[nodiscard]] std::string Explain(const CLI::Error& error) const;

    std::unique_ptr<CLI::App> m_program; // only CommandLine.cpp compiles the parser, which takes long
    Context m_context;
    Action m_chosen;
};

void AddInfo(CommandLine& commands);
void AddCard(CommandLine& commands);
void AddRead(CommandLine& commands);
void AddWrite(CommandLine& commands);
void AddValue(CommandLine& commands);
void AddTrailer(CommandLine& commands);
void AddPreview(CommandLine& commands);
void AddProtect(CommandLine& commands);
void AddDump(CommandLine& commands);
void AddCompare(CommandLine& commands);
void AddRestore(CommandLine& commands);
void AddWatch(CommandLine& commands);
void AddIssue(CommandLine& commands);
void AddDoctor(CommandLine& commands);

/// In the order in which --help lists them.
inline constexpr void (*AllCommands[])(CommandLine&) = {
    AddInfo,    AddCard, AddRead,    AddWrite,   AddValue, AddTrailer, AddPreview,
    AddProtect, AddDump, AddCompare, AddRestore, AddWatch, AddIssue,   AddDoctor,
};

/// The options of a command that tries a list of keys: ReadKeyRing.
void AddKeyRingOptions(CommandOptions& command, KeyOptions& key);
/// The options of a command that logs in with one key: ReadLoginKey.
void AddLoginOptions(CommandOptions& command, KeyOptions& key);
/// --from, a dump in place of the card in the field. others: options that can't be given with it.
void AddFromOption(CommandOptions& command, std::string& dump, std::initializer_list<const char*> others);

} // namespace acg::tool
