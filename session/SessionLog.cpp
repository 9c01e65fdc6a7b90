#include "session/SessionLog.h"

#include "acg/platform/HexText.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

namespace session
{

namespace
{

constexpr char Masked = '*';

/// What a call has in the log: T is a text, N a number.
struct Shape {
    std::string_view Function;
    std::string_view Arguments;
    char Result;
};
constexpr Shape Shapes[] = {
    {"OpenComm", "TNNN", 'N'},     {"SetCommTimeout", "NN", 'N'},      {"SetCommProtocol", "NN", 'N'},
    {"GetCommProtocol", "N", 'N'}, {"GetCommBaudRate", "N", 'N'},      {"GetCommTimeout", "N", 'N'},
    {"DetectReader", "N", 'T'},    {"OpenReader", "NNN", 'N'},         {"GetReaderType", "N", 'T'},
    {"GetDeviceID", "N", 'T'},     {"SendCommandGetData", "NTT", 'T'}, {"CloseReader", "N", 'N'},
    {"CloseComm", "N", 'N'},
};
static_assert(std::ranges::equal(Shapes, acgreader::FunctionNames, {}, &Shape::Function));

bool IsSpecial(char character)
{
    return character == '"' || character == '\\' || character == Masked;
}

/// Between quotes. A backslash stands before each special character, and what can't be printed is a
/// backslash, x and two digits; so the mask is the only "*" without one.
std::string Quoted(std::string_view text, const Parts& shown = Everything)
{
    const auto isShown = [&](size_t at) {
        return std::ranges::any_of(shown,
                                   [at](const Part& part) { return at >= part.Begin && at < part.End; });
    };
    std::string quoted = "\"";
    for (size_t at = 0; at < text.size(); ++at) {
        const char character = text[at];
        if (!isShown(at)) {
            quoted += Masked;
        } else if (!IsPrintable(character)) {
            const auto byte = static_cast<uint8_t>(character);
            quoted += "\\x" + acg::ToHex({&byte, 1});
        } else {
            quoted += IsSpecial(character) ? std::string{'\\', character} : std::string{character};
        }
    }
    return quoted + '"';
}

constexpr int64_t MaxCount = 1'000'000'000'000; // thirty years, as a time

/// Takes the parts of a line from its front. IsGood is false once a part wasn't what was expected.
struct LineReader {
    std::string_view Rest;
    bool IsGood = true;

    void Skip(std::string_view expected)
    {
        IsGood = IsGood && Rest.starts_with(expected);
        Rest.remove_prefix(IsGood ? expected.size() : 0);
    }

    /// 0 if there is none from least to most.
    int64_t Number(int64_t least = INT64_MIN, int64_t most = INT64_MAX)
    {
        int64_t number = 0;
        const auto [end, error] = std::from_chars(Rest.data(), Rest.data() + Rest.size(), number);
        IsGood = IsGood && error == std::errc() && number >= least && number <= most;
        Rest.remove_prefix(static_cast<size_t>(end - Rest.data()));
        return IsGood ? number : 0;
    }

    std::chrono::microseconds Time()
    {
        const std::chrono::milliseconds whole(Number(0, MaxCount));
        Skip(".");
        return whole + std::chrono::microseconds(Number(0, 999));
    }

    /// The next character of a text between quotes; a masked one is a zero.
    char Character()
    {
        const size_t size = Rest.starts_with("\\x") ? 4 : Rest.starts_with('\\') ? 2 : 1;
        const std::string_view character = Rest.substr(0, size);
        Rest.remove_prefix(character.size());
        if (size == 4) {
            const auto byte = acg::FromHex(character.substr(2));
            IsGood = byte && character.size() == size;
            return IsGood ? static_cast<char>(byte->front()) : '\0';
        }
        const char last = character.empty() ? '\0' : character.back();
        IsGood = size == 2 ? IsSpecial(last) : IsPrintable(last);
        return size == 1 && last == Masked ? '0' : last;
    }

    std::string Text()
    {
        std::string text;
        Skip("\"");
        while (IsGood && !Rest.starts_with('"')) {
            text += Character();
        }
        Skip("\"");
        return text;
    }

    /// A text or a number, as it is in the log.
    std::string_view Value(char kind)
    {
        const std::string_view value = Rest;
        if (kind == 'T') {
            Text();
        } else {
            Number();
        }
        return value.substr(0, value.size() - Rest.size());
    }
};

constexpr std::string_view GapText = "# calls missing here: ";
constexpr std::string_view RepeatedText = "repeated: calls ";
constexpr std::string_view TimesText = ", times ";

/// The rest of a line after its start.
Repetition ReadRepetition(LineReader& line, std::chrono::microseconds start)
{
    Repetition read{.Start = start};
    line.Skip(RepeatedText);
    read.Calls = static_cast<size_t>(line.Number(1, LongestRound));
    line.Skip(TimesText);
    read.Times = line.Number(1, MaxCount);
    line.Skip(" ");
    read.Duration = line.Time();
    return read;
}

/// The rest of a line after its start.
LoggedCall ReadCall(LineReader& line, std::chrono::microseconds start)
{
    const std::string_view call = line.Rest;
    const auto* const shape = std::ranges::find(Shapes, call.substr(0, call.find(' ')), &Shape::Function);
    if (shape == std::end(Shapes)) {
        line.IsGood = false;
        return {};
    }
    line.Skip(shape->Function);
    for (const char kind : shape->Arguments) {
        line.Skip(" ");
        line.Value(kind);
    }
    LoggedCall read{.Call = std::string(call.substr(0, call.size() - line.Rest.size())), .Start = start};
    line.Skip(" = ");
    read.Result = line.Value(shape->Result);
    line.Skip(" ");
    read.Duration = line.Time();
    return read;
}

/// Milliseconds, with three decimals.
std::string TimeText(std::chrono::microseconds time)
{
    constexpr int64_t Thousand = 1000;
    std::string decimals = std::to_string(Thousand + time.count() % Thousand);
    decimals.front() = '.';
    return std::to_string(time.count() / Thousand) + decimals;
}

/// A run of masked characters is the same as any other characters between the same quotes.
bool IsSameText(std::string_view masked, std::string_view text)
{
    const auto isMask = [&](size_t at) {
        return masked[at] == Masked && (at == 0 || masked[at - 1] != '\\');
    };
    size_t next = 0;
    size_t afterMask = std::string_view::npos;
    size_t resume = 0; // where the text continues after the last mask, if it ends there
    for (size_t at = 0; at < text.size();) {
        if (next < masked.size() && isMask(next)) {
            afterMask = ++next;
            resume = at;
        } else if (next < masked.size() && masked[next] == text[at]) {
            ++next;
            ++at;
        } else if (afterMask != std::string_view::npos && text[resume] != '"') {
            next = afterMask;
            at = ++resume;
        } else {
            return false;
        }
    }
    while (next < masked.size() && isMask(next)) {
        ++next;
    }
    return next == masked.size();
}

} // namespace

ArgumentText::ArgumentText(int64_t number) : std::string(' ' + std::to_string(number)) {}

ArgumentText::ArgumentText(const acgreader::CommSettings& settings)
    : std::string(ArgumentText(settings.BaudRate) + ArgumentText(settings.Protocol))
{
}

ArgumentText::ArgumentText(std::string_view text, const Parts& shown) : std::string(' ' + Quoted(text, shown))
{
}

std::string CallText(acgreader::Function function, std::initializer_list<ArgumentText> arguments)
{
    std::string call = NameOf(function);
    for (const ArgumentText& argument : arguments) {
        call += argument;
    }
    return call;
}

std::string CommandText(acgreader::Handle reader, std::string_view command, std::string_view data)
{
    return CallText(acgreader::Function::SendCommandGetData,
                    {reader, {command, ShownOfCommand(command)}, {data, ShownOfData(command, data)}});
}

std::string ResultText(int64_t result)
{
    return std::to_string(result);
}

std::string ResultText(std::string_view result)
{
    return Quoted(result, {UpToNul(result)});
}

std::string ReplyText(std::string_view command, std::string_view data, std::string_view reply)
{
    return Quoted(reply, ShownOfReply(command, data, reply));
}

std::string LogLine(const LoggedCall& logged)
{
    return TimeText(logged.Start) + ' ' + logged.Call + " = " + logged.Result + ' ' +
           TimeText(logged.Duration) + '\n';
}

std::string LogLine(const Repetition& logged)
{
    return TimeText(logged.Start) + ' ' + std::string(RepeatedText) + std::to_string(logged.Calls) +
           std::string(TimesText) + std::to_string(logged.Times) + ' ' + TimeText(logged.Duration) + '\n';
}

std::string LogLine(const Gap& logged, std::string_view reason)
{
    return NoteLine(std::string(GapText.substr(2)) + std::to_string(logged.Calls) + ", " +
                    std::string(reason));
}

std::string NoteLine(std::string_view note)
{
    std::string line = "# ";
    line += note;
    std::ranges::replace_if(
        line, [](char character) { return character >= '\0' && character < ' '; }, '?');
    return line + '\n';
}

std::optional<LoggedLine> ParseLine(std::string_view line)
{
    constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF"; // of an editor
    line.remove_prefix(line.starts_with(Utf8Mark) ? Utf8Mark.size() : 0);
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    if (line.starts_with(GapText)) {
        return Gap{LineReader{line.substr(GapText.size())}.Number(0, MaxCount)};
    }
    if (line.empty() || line.starts_with('#')) {
        return LoggedLine();
    }
    LineReader reader{line};
    const auto start = reader.Time();
    reader.Skip(" ");
    LoggedLine read;
    if (reader.Rest.starts_with(RepeatedText)) {
        read = ReadRepetition(reader, start);
    } else {
        read = ReadCall(reader, start);
    }
    return reader.IsGood && reader.Rest.empty() ? std::optional(std::move(read)) : std::nullopt;
}

bool IsSameCall(std::string_view call, std::string_view other)
{
    const auto afterDevice = [](std::string_view text) {
        return text.starts_with("OpenComm ") ? text.substr(std::min(text.rfind('"'), text.size())) : text;
    };
    return IsSameText(afterDevice(call), afterDevice(other));
}

int64_t ParseNumber(const std::string& result)
{
    return LineReader{result}.Number();
}

std::string ParseText(const std::string& result)
{
    return LineReader{result}.Text();
}

} // namespace session
