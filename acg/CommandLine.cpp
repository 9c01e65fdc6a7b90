#include "acg/CommandLine.h"

#include "acg/Commands.h"
#include "acg/Failures.h"
#include "acg/Json.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace acg::tool
{

CommandLine::CommandLine()
{
    m_program.name("acg");
    m_program.require_subcommand(1);
    m_program.option_defaults()->disable_flag_override(); // else its message holds --as-b=KEY
    m_program.set_version_flag("--version", ACG_VERSION);
    m_program
        .add_option("--reader", m_context.Parameters,
                    "The reader's settings, as in \"Device=com1;Baud rate=9600\"; where it isn't given, "
                    "those of the variable ACG_PARAMETERS")
        ->type_name("TEXT");
    m_program.footer("Exit status: 0 done, 1 failed or a difference found, 2 wrong use, 130 Ctrl-C.\n"
                     "acg COMMAND --help shows what a command takes, with an example.");
    for (const auto add : AllCommands) {
        add(*this);
    }
}

CLI::App& CommandLine::Add(const char* Name, const char* Description, const char* Example, Action Run)
{
    CLI::App* const added = m_program.add_subcommand(Name, Description);
    added->fallthrough(); // so that --reader may follow
    added->footer(std::string("Example:\n  ") + Example);
    added->add_flag_callback(
        "--json", [this] { m_context.Out.UseJson(); }, "Print JSON");
    added->callback([this, Run = std::move(Run)] { m_chosen = Run; });
    return *added;
}

int CommandLine::Run(std::vector<std::string> Arguments)
{
    Output& out = m_context.Out;
    if (std::ranges::count(Arguments, "--json") != 0) { // wrong use is JSON too
        out.UseJson();
    }
    int status = Done;
    std::string problem;
    const auto fail = [&](int exitStatus, std::string text, JsonObject failure = {}) {
        status = exitStatus;
        problem = std::move(text);
        out.Json()["failure"] = failure.is_null() ? JsonObject{{"description", problem}} : std::move(failure);
    };
    try {
        std::ranges::reverse(Arguments); // as the library takes them
        m_program.parse(std::move(Arguments));
        status = m_chosen(m_context);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
            return m_program.exit(error); // help
        }
        fail(WrongUse, Explain(error));
    } catch (const CardFailure& failure) {
        fail(Failed, InWords(failure.Record), ToJson(failure.Record));
    } catch (const OtherFailure& failure) {
        fail(Failed, failure.Text);
    } catch (const UsageError& error) {
        fail(WrongUse, error.Text);
    } catch (const Interruption&) {
        fail(Interrupted, "interrupted; the reader is closed");
    }
    out.Json().emplace("failure", nullptr);
    out.Finish();
    if (!problem.empty()) {
        PrintProblem(problem + out.Outcome());
    }
    return status;
}

std::string CommandLine::Explain(const CLI::ParseError& error) const
{
    const auto chosen = m_program.get_subcommands();
    const std::string name = chosen.empty() ? "acg" : "acg " + chosen.front()->get_name();
    std::string text = error.what();
    // What isn't an option's name, or is longer than any, may be a key.
    constexpr size_t LongestName = 12;
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError)) {
        const auto extras = m_program.remaining(/*recurse=*/true);
        const auto option = std::ranges::find_if(extras, [](const std::string& extra) {
            return extra.starts_with("--") && std::min(extra.find('='), extra.size()) <= LongestName;
        });
        text = option != extras.end() ? "no such option: " + option->substr(0, option->find('='))
                                      : "an argument too many, or an option that doesn't exist";
    }
    return text + "; " + name + " --help shows what there is";
}

void TakesKey(CLI::App& Command, KeyOptions& Key)
{
    CLI::Option* const text =
        Command.add_option("--key", Key.Text, "The key to log in with, 12 hexadecimal digits")
            ->type_name("KEY");
    Command
        .add_option("--key-file", Key.File,
                    "A file whose first key counts. Without both: the variable ACG_KEY")
        ->type_name("FILE")
        ->excludes(text);
    Command.add_flag("--as-b", Key.AsB, "It is key B, not key A");
}

} // namespace acg::tool
