// The command line: which commands there are is in Commands.h, what one takes and does is in its own file.
#pragma once

#include "acg/Keys.h"
#include "acg/Output.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <string>
#include <vector>

namespace acg::tool
{

/// What every command gets beside its own options.
struct Context {
    std::string Parameters; ///< --reader
    Output Out;
};

class CommandLine
{
public:
    /// Prints the result, returns the exit status, and throws one of acg/Failures.h if it can't do what it is
    /// asked.
    using Action = std::function<int(Context&)>;

    CommandLine();

    /// Adds a command, whose options the caller adds to what is returned. Example: a whole command line.
    CLI::App& Add(const char* Name, const char* Description, const char* Example, Action Run);

    /// Runs what the arguments say. The exit status; every failure has been said.
    int Run(std::vector<std::string> Arguments);

private:
    /// What is wrong with the arguments. It may hold a key.
    [[nodiscard]] std::string Explain(const CLI::ParseError& error) const;

    CLI::App m_program{"Reads and writes contactless cards through an ACG Multi-ISO reader."};
    Context m_context;
    Action m_chosen;
};

/// The options of a command that logs in with one key.
void TakesKey(CLI::App& Command, KeyOptions& Key);
/// The options of a command that tries one key or several, each as key A and as key B.
void TakesKeys(CLI::App& Command, KeyOptions& Key);

} // namespace acg::tool
