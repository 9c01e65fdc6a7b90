// The command line: which commands there are is in Commands.h, what one takes and does is in its own file.
#pragma once

#include "tool/Keys.h"
#include "tool/Output.h"

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
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
    std::string Parameters; ///< --reader
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
    explicit CommandOptions(CLI::App& App) : m_app(App) {}

    /// By its place; Name is in capitals.
    void Argument(const char* Name, std::string& Value, const char* Description,
                  Need Needed = Need::Required);
    /// Name: with "--". Type: what the help calls the value. Excluded: options that were added before.
    void Option(const char* Name, const char* Type, std::string& Value, const char* Description,
                Need Needed = Need::Optional, std::initializer_list<const char*> Excluded = {});
    void Flag(const char* Name, bool& IsGiven, const char* Description);

private:
    CLI::App& m_app;
};

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

    /// Adds a command, whose options the caller adds to what is returned. Example: a whole command line.
    CommandOptions Add(const char* Name, const char* Description, const char* Example, Action Run);

    /// Runs what the arguments say. The exit status; every failure has been said.
    int Run(std::vector<std::string> Arguments);

private:
    /// What is wrong with the arguments. It may hold a key.
    [[nodiscard]] std::string Explain(const CLI::Error& error) const;

    std::unique_ptr<CLI::App> m_program; // only CommandLine.cpp compiles the parser, which takes long
    Context m_context;
    Action m_chosen;
};

/// The options of a command that logs in with one key.
void TakesKey(CommandOptions& Command, KeyOptions& Key);
/// The options of a command that tries one key or several, each as key A and as key B.
void TakesKeys(CommandOptions& Command, KeyOptions& Key);

} // namespace acg::tool
