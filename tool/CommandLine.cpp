#include "tool/CommandLine.h"

#include "tool/Failures.h"
#include "tool/Text.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <sstream>

namespace acg::tool
{

namespace
{

/// The rows of a table in the help; nothing for an empty one.
using HelpRows = std::vector<std::pair<std::string, std::string>>;

std::string HelpTable(const char* title, const HelpRows& rows)
{
    constexpr int Column = 24;
    std::string text = rows.empty() ? "" : Format("\n%s:\n", title);
    for (const auto& [name, description] : rows) {
        text += Format("  %-*s%s\n", Column - 2, name.c_str(), Wrap(description, Column).c_str());
    }
    return text;
}

/// The help of the program or of a command, within 80 columns.
std::string Help(const CLI::App* app, const std::string& name, CLI::AppFormatMode /*mode*/)
{
    HelpRows commands;
    HelpRows arguments;
    HelpRows options;
    std::string usage = "Usage: " + name;
    for (const CLI::App* const command : app->get_subcommands({})) {
        commands.emplace_back(command->get_name(), command->get_description());
    }
    for (const CLI::App* from = app; from != nullptr; from = from->get_parent()) {
        for (const CLI::Option* const option : from->get_options()) {
            const std::string description =
                option->get_description() + (option->get_required() ? " (required)" : "");
            if (option->get_positional()) {
                usage += ' ' + (option->get_required() ? option->get_name() : '[' + option->get_name() + ']');
                arguments.emplace_back(option->get_name(), description);
            } else if (from == app || (option != from->get_help_ptr() && option != from->get_version_ptr())) {
                options.emplace_back(option->get_name(false, true) + ' ' + option->get_type_name(),
                                     description);
            }
        }
    }
    usage += commands.empty() ? " [OPTION]..." : " COMMAND ...";
    return Wrap(app->get_description(), 0) + "\n\n" + usage + '\n' + HelpTable("Commands", commands) +
           HelpTable("Arguments", arguments) + HelpTable("Options", options) + '\n' + app->get_footer() +
           '\n';
}

JsonObject ToJson(const CError& failure)
{
    const Remedy* const remedy = FindRemedy(failure);
    return {
        {"number", failure.Number},
        {"description", ToUtf8(failure.Description)},
        {"lastDllError", failure.LastDllError},
        {"comFunction", ToUtf8(failure.ComFunction)},
        {"rdrCommand", ToUtf8(failure.RdrCommand)},
        {"rdrRetCode", ToUtf8(failure.RdrRetCode)},
        {"meaning", remedy != nullptr ? remedy->Meaning : ""},
        {"remedy", remedy != nullptr ? ActionOf(*remedy) : ""},
    };
}

Ending InText(int status, const std::string& text)
{
    // What is typed or written in the wrong place may be a key.
    const std::string shown = status == WrongUse ? MaskKeys(text) : text;
    return {status, shown, JsonObject{{"description", shown}}};
}

/// The parser takes an empty argument for one that isn't there.
void RefuseEmpty(const std::vector<std::string>& arguments)
{
    for (size_t at = 0; at < arguments.size(); ++at) {
        const std::string& argument = arguments[at];
        const bool isOption = argument.starts_with("--");
        const std::string before = at == 0 ? "" : arguments[at - 1];
        if (argument.empty()) {
            throw UsageError{(before.starts_with("--") ? before : "an argument") + " is empty"};
        }
        if (isOption && argument.find('=') == argument.size() - 1) {
            throw UsageError{argument.substr(0, argument.size() - 1) + " is empty"};
        }
    }
}

void AddKeyOptions(CommandOptions& command, KeyOptions& key, const char* aboutFile)
{
    command.Option(
        "--key", "KEY", key.Text,
        "The key to log in with, 12 hexadecimal digits. Unlike a file or a variable, an option is visible "
        "in the process list and the shell's history");
    command.Option("--key-file", "FILE", key.File, aboutFile, Need::Optional, {"--key"});
}

} // namespace

void CommandOptions::Argument(const char* name, std::string& value, const char* description, Need need)
{
    m_app.add_option(name, value, description)->required(need == Need::Required);
}

void CommandOptions::Option(const char* name, const char* type, std::string& value, const char* description,
                            Need need, std::initializer_list<const char*> others)
{
    CLI::Option* const option =
        m_app.add_option(name, value, description)->type_name(type)->required(need == Need::Required);
    for (const char* const other : others) {
        option->excludes(m_app.get_option(other));
    }
}

void CommandOptions::List(const char* name, const char* type, std::vector<std::string>& values,
                          const char* description)
{
    m_app.add_option(name, values, description)->type_name(type)->allow_extra_args(false);
}

void CommandOptions::Flag(const char* name, bool& isGiven, const char* description,
                          std::initializer_list<const char*> others)
{
    CLI::Option* const flag = m_app.add_flag(name, isGiven, description);
    for (const char* const other : others) {
        flag->excludes(m_app.get_option(other));
    }
}

Ending CurrentEnding()
{
    try {
        throw;
    } catch (const CardFailure& failure) {
        return {Failed, InWords(failure.Record), ToJson(failure.Record)};
    } catch (const OtherFailure& failure) {
        return InText(Failed, failure.Text);
    } catch (const UsageError& error) {
        return InText(WrongUse, error.Text);
    } catch (const Interruption&) {
        return InText(Interrupted, "interrupted; the reader is closed");
    } catch (const std::exception& error) { // no memory
        return InText(Failed, error.what());
    }
}

CommandLine::CommandLine()
    : m_program(
          std::make_unique<CLI::App>("Reads and writes contactless cards through an ACG Multi-ISO reader."))
{
    m_program->name("acg");
    m_program->require_subcommand(1);
    m_program->allow_windows_style_options(false);
    m_program->formatter_fn(Help);
    m_program->set_help_flag("-h,--help", "Print this help and exit");
    m_program->option_defaults()->disable_flag_override();
    m_program->set_version_flag("--version", ACG_VERSION, "Print the version and exit");
    m_program
        ->add_option("--reader", m_context.Reader.Parameters,
                     "The reader's settings, as in \"Device=com1;Baud rate=9600\"; default: the variable "
                     "ACG_PARAMETERS")
        ->type_name("TEXT");
    m_program->add_flag("--simulate", m_context.Reader.IsSimulated, "Use the simulated reader");
    m_program->add_flag_callback(
        "--json", [this] { m_context.Out.IsJson = true; }, "Print one JSON object, also after a failure");
    m_program->footer("Exit status: 0 success, 1 failure or difference found, 2 wrong use, 130 Ctrl-C.\n"
                      "acg COMMAND --help lists the options of a command, with an example.");
    for (const auto add : AllCommands) {
        add(*this);
    }
}

CommandLine::~CommandLine() = default;

CommandOptions CommandLine::Add(const char* name, const char* description, const char* example, Action run)
{
    CLI::App* const added = m_program->add_subcommand(name, description);
    added->fallthrough(); // so that --reader may follow
    added->footer(std::string("Example:\n  ") + example);
    added->callback([this, run = std::move(run)] { m_chosen = run; });
    return CommandOptions(*added);
}

int CommandLine::Run(std::vector<std::string> arguments)
{
    Output& out = m_context.Out;
    if (std::ranges::any_of(arguments, [](const std::string& argument) {
            return argument == "--json" || argument.starts_with("--json=");
        })) { // wrong use is JSON too
        out.IsJson = true;
    }
    int status = Done;
    std::string problem;
    const auto fail = [&](Ending ending) {
        status = ending.Status;
        problem = std::move(ending.Text);
        out.Json["failure"] = std::move(ending.Failure);
    };
    try {
        RefuseEmpty(arguments);
        std::ranges::reverse(arguments); // as the library takes them
        m_program->parse(std::move(arguments));
        status = m_chosen(m_context);
    } catch (const CLI::Success& ended) {
        std::ostringstream text;
        status = m_program->exit(ended, text, text);
        out.Print(text.str());
        out.Json["text"] = text.str();
    } catch (const CLI::ParseError& error) {
        fail(InText(WrongUse, Explain(error)));
    } catch (...) {
        fail(CurrentEnding());
    }
    if (!out.Finish()) {
        problem += (problem.empty() ? "" : "\n") + std::string("standard output can't be written");
        status = status == Done ? Failed : status;
    }
    if (!problem.empty()) {
        PrintProblem(problem + out.Outcome);
    }
    return status;
}

// The words that it looks for are CLI11's, of versions 2.1 to 2.4; tests/tool/usage.txt shows if they change.
std::string CommandLine::Explain(const CLI::Error& error) const
{
    const auto chosen = m_program->get_subcommands();
    const auto extras = m_program->remaining(/*recurse=*/true);
    const std::string what = error.what();
    std::string text = what;
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ArgumentMismatch)) {
        const auto says = [&](const char* word) { return what.find(word) != std::string::npos; };
        const size_t start = what.find_first_not_of('-');
        text = "--" + what.substr(start, what.find_first_of(": ", start) - start) +
               (says("override")  ? " takes no value"
                : says("missing") ? " requires a value"
                                  : " may be given only once");
    } else if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExcludesError)) {
        text = what.substr(0, what.find(' ')) + " and " + what.substr(what.rfind(' ') + 1) +
               " exclude each other";
    } else if (!extras.empty()) {
        const std::string& word = extras.front();
        text = word.starts_with('-') ? "unknown option " + word.substr(0, word.find('='))
               : chosen.empty()      ? "unknown command " + word
                                     : "unexpected argument: " + word;
    } else if (chosen.empty()) {
        text = "a command is required";
    }
    return text + "; see acg " + (chosen.empty() ? "" : chosen.front()->get_name() + ' ') + "--help";
}

void AddKeyRingOptions(CommandOptions& command, KeyOptions& key)
{
    AddKeyOptions(
        command, key,
        "A file of keys, one per line, \"#\" begins a comment; all are tried in turn. If neither option is "
        "given: the variable ACG_KEY, or FFFFFFFFFFFF");
}

void AddLoginOptions(CommandOptions& command, KeyOptions& key)
{
    AddKeyOptions(
        command, key,
        "A file of keys, one per line, \"#\" begins a comment; the first is used. If neither option is "
        "given: the variable ACG_KEY");
    command.Flag("--as-b", key.AsB, "Log in with key B instead of key A");
}

void AddFromOption(CommandOptions& command, std::string& dump, std::initializer_list<const char*> others)
{
    command.Option("--from", "DUMP", dump, "Read a dump instead of the card", Need::Optional, others);
}

} // namespace acg::tool
