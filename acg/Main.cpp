// The command line: what each command takes, and how the program ends.
#include "acg/Commands.h"
#include "acg/Failures.h"
#include "acg/Json.h"
#include "acg/Output.h"
#include "acg/System.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

namespace
{

using namespace acg::tool;

class CommandLine
{
public:
    CommandLine();

    /// Throws CLI::ParseError for wrong use, and where help is asked for.
    void Parse(std::vector<std::string> arguments)
    {
        std::ranges::reverse(arguments); // as the library takes them
        m_program.parse(std::move(arguments));
    }

    int Run() { return m_chosen(m_options); }

    [[nodiscard]] bool WantsJson() const { return m_options.Json; }

    /// Prints the help that was asked for, or what is wrong; the exit status.
    [[nodiscard]] int Explain(const CLI::ParseError& error) const;

private:
    using Command = int (*)(const Options&);

    CLI::App* Add(Command command, const char* name, const char* description, const char* example);
    void TakesKey(CLI::App* command);
    void AddAccessCommands();
    void AddFileCommands();

    CLI::App m_program{"Reads and writes contactless cards through an ACG Multi-ISO reader."};
    Options m_options;
    Command m_chosen = nullptr;
};

CommandLine::CommandLine()
{
    m_program.name("acg");
    m_program.require_subcommand(1);
    m_program.option_defaults()->disable_flag_override(); // else its message holds --as-b=KEY
    m_program.set_version_flag("--version", ACG_VERSION);
    m_program
        .add_option("--reader", m_options.Parameters,
                    "The reader's settings, as in \"Device=com1;Baud rate=9600\"; where it isn't given, "
                    "those of the variable ACG_PARAMETERS")
        ->type_name("TEXT");
    m_program.footer("Exit status: 0 done, 1 failed or a difference found, 2 wrong use, 130 Ctrl-C.\n"
                     "acg COMMAND --help shows what a command takes, with an example.");

    CLI::App* const info =
        Add(Info, "info", "Shows the reader, its type and state, and the card's serial number",
            "acg info --reader \"Device=com3;Baud rate=19200\"");
    info->add_flag("--json", m_options.Json, "Print JSON");

    CLI::App* const read =
        Add(Read, "read", "Shows blocks in hexadecimal and as characters", "acg read 4-6 --key FFFFFFFFFFFF");
    read->add_option("BLOCK", m_options.Blocks, "A block, or the first and the last one: BLOCK-BLOCK")
        ->required();
    TakesKey(read);
    read->add_flag("--json", m_options.Json, "Print JSON");

    CLI::App* const write = Add(Write, "write", "Writes a data block, reads it back, and compares",
                                "acg write 4 54617276656C6C6F2073617973206869 --key FFFFFFFFFFFF");
    write->add_option("BLOCK", m_options.Blocks, "The block")->required();
    write->add_option("HEX", m_options.Contents, "Its 16 bytes, in 32 hexadecimal digits")->required();
    TakesKey(write);

    CLI::App* const value = Add(Value, "value", "Checks a value block, or writes one and checks it",
                                "acg value 5 1000 --key FFFFFFFFFFFF");
    value->add_option("BLOCK", m_options.Blocks, "The block")->required();
    value->add_option("NUMBER", m_options.Number, "The value to write, from -2147483648 to 2147483647");
    TakesKey(value);

    AddAccessCommands();
    AddFileCommands();
}

void CommandLine::AddAccessCommands()
{
    AccessOptions& access = m_options.Access;
    const auto takesSector = [&](CLI::App* command) {
        command->add_option("SECTOR", access.Sector, "The sector, 0 to 15, on a 4K card to 39")->required();
        TakesKey(command);
    };
    const auto takesLevels = [&](CLI::App* command) {
        command
            ->add_option("--levels", access.Levels,
                         "The levels of the three data blocks and of the trailer, as in 13,13,13,12")
            ->type_name("L0,L1,L2,LT")
            ->required();
        return command->add_option("--keys", access.KeysToUse, "1 for key A alone, 2 for both keys")
            ->type_name("1|2");
    };

    CLI::App* const trailer =
        Add(Trailer, "trailer", "Shows what each key of a sector may do", "acg trailer 1 --key FFFFFFFFFFFF");
    takesSector(trailer);
    trailer->add_flag("--json", m_options.Json, "Print JSON");

    CLI::App* const preview = Add(Preview, "preview", "Shows what levels let each key do, without a card",
                                  "acg preview --levels 13,13,13,12 --keys 2 --value 0");
    takesLevels(preview)->required();
    preview->add_option("--value", access.ValueBlocks, "Which of the blocks 0, 1, 2 are value blocks")
        ->type_name("0,1,2");
    preview->add_flag("--json", m_options.Json, "Print JSON");

    CLI::App* const protect =
        Add(Protect, "protect", "Writes new keys and levels for a sector, and says first what that means",
            "acg protect 1 --key-file old.txt --new-keys new.txt --levels 13,13,13,12 --keys 2 --dry-run");
    takesSector(protect);
    takesLevels(protect)->description("1 for key A alone, 2 for both keys; else as on the card");
    protect->add_option("--new-a", access.NewA, "The new key A; else the variable ACG_NEW_A")
        ->type_name("KEY");
    protect->add_option("--new-b", access.NewB, "The new key B; else the variable ACG_NEW_B")
        ->type_name("KEY");
    protect->add_option("--new-keys", access.NewKeysFile, "A file with the new key A, then the new key B")
        ->type_name("FILE")
        ->excludes("--new-a")
        ->excludes("--new-b");
    protect->add_option("--bx", access.BX, "Byte 9 of the trailer, 0 to 255; else as on the card")
        ->type_name("N");
    protect->add_flag("--dry-run", access.IsDryRun, "Only show what would happen");
    protect->add_flag("--yes", access.IsAgreedTo, "Don't ask");
    protect->add_flag("--for-good", access.IsForGood, "Allow what can never be changed again");
}

void CommandLine::AddFileCommands()
{
    CLI::App* const dump =
        Add(DumpCard, "dump", "Reads the whole card into a file", "acg dump card.txt --keys keys.txt");
    dump->add_option(
            "FILE", m_options.Files,
            "Raw bytes, or, where the name ends in .txt, 32 digits a line. Keys that the card doesn't "
            "show are written from those that open it")
        ->required()
        ->expected(1);
    TakesKey(dump);
    dump->add_option(
            "--keys", m_options.KeysFile,
            "A file of keys, one a line, tried in order for each sector; without it the one key that is "
            "given, else FFFFFFFFFFFF")
        ->type_name("FILE")
        ->excludes("--key")
        ->excludes("--key-file");

    CLI::App* const compare =
        Add(Compare, "compare", "Shows where two dumps differ; exit status 1 if they do",
            "acg compare before.bin after.txt");
    compare->add_option("FILE", m_options.Files, "Two dumps, raw bytes or text")->required()->expected(2);
}

CLI::App* CommandLine::Add(Command command, const char* name, const char* description, const char* example)
{
    CLI::App* const added = m_program.add_subcommand(name, description);
    added->fallthrough(); // so that --reader may follow
    added->footer(std::string("Example:\n  ") + example);
    added->callback([this, command] { m_chosen = command; });
    return added;
}

void CommandLine::TakesKey(CLI::App* command)
{
    KeyOptions& key = m_options.Key;
    CLI::Option* const text =
        command->add_option("--key", key.Text, "The key to log in with, 12 hexadecimal digits")
            ->type_name("KEY");
    command
        ->add_option("--key-file", key.File,
                     "A file whose first key counts. Without both: the variable ACG_KEY")
        ->type_name("FILE")
        ->excludes(text);
    command->add_flag("--as-b", key.AsB, "It is key B, not key A");
}

int CommandLine::Explain(const CLI::ParseError& error) const
{
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
        return m_program.exit(error);
    }
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
    PrintProblem(text + "; " + name + " --help shows what there is");
    return WrongUse;
}

int Run(CommandLine& commandLine, const std::vector<std::string>& arguments)
{
    try {
        commandLine.Parse(arguments);
        return commandLine.Run();
    } catch (const CLI::ParseError& error) {
        return commandLine.Explain(error);
    } catch (const CardFailure& failure) {
        if (commandLine.WantsJson()) {
            std::fputs(Json(failure.Record).c_str(), stdout);
        }
        PrintProblem(InWords(failure.Record));
        return Failed;
    } catch (const OtherFailure& failure) {
        PrintProblem(failure.Text);
        return Failed;
    } catch (const UsageError& error) {
        PrintProblem(error.Text);
        return WrongUse;
    } catch (const Interruption&) {
        PrintProblem("interrupted; the reader is closed");
        return Interrupted;
    }
}

} // namespace

int main(int count, char* values[])
{
    try {
        PrepareConsole();
        CommandLine commandLine;
        const int status = Run(commandLine, Arguments(count, values));
        if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
            PrintProblem("standard output can't be written");
            return status == Done ? Failed : status;
        }
        return status;
    } catch (const std::exception& error) { // text that isn't UTF-8, no memory
        PrintProblem(error.what());
        return Failed;
    }
}
