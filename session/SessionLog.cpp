#include "session/SessionLog.h"

#include "acg/platform/HexText.h"
#include <algorithm>
#include <charconv>
#include <type_traits>

namespace session
{

namespace
{

constexpr char Masked = '*';

// A call's shape, one letter for each value in the log: T is a text, N a number.
constexpr std::string_view ShapeOf(std::type_identity<const char*>)
{
    return "T";
}
constexpr std::string_view ShapeOf(std::type_identity<char*>)
{
    return "";
} // a buffer
constexpr std::string_view ShapeOf(std::type_identity<acgreader::CommSettings*>)
{
    return "NN";
}
template <class Number>
constexpr std::string_view ShapeOf(std::type_identity<Number>)
{
    return "N";
}

/// The arguments of a function and its result.
struct Shape {
    std::string_view Function;
    std::string Arguments;
    char Result;
};
template <class Result, class... Arguments>
Shape ShapeOf(const char* name, Result(ACG_READER_CALL* /*function*/)(Arguments...))
{
    std::string arguments;
    (arguments.append(ShapeOf(std::type_identity<Arguments>())), ...);
    return {name, arguments, std::is_pointer_v<Result> ? 'T' : 'N'};
}

/// Null if there is no such function.
const Shape* FindShape(std::string_view function)
{
#define ACG_SHAPE(name) ShapeOf(#name, decltype(&::name){}),
    static const Shape shapes[] = {ACG_READER_FUNCTIONS(ACG_SHAPE)};
#undef ACG_SHAPE
    const auto* const found = std::ranges::find(shapes, function, &Shape::Function);
    return found != std::end(shapes) ? found : nullptr;
}

bool IsPrintable(char character)
{
    return character >= ' ' && character <= '~';
}

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
            quoted += {'\\', 'x', acg::HexDigits[byte >> 4U], acg::HexDigits[byte & 0x0FU]};
        } else {
            quoted += IsSpecial(character) ? std::string{'\\', character} : std::string{character};
        }
    }
    return quoted + '"';
}

/// Takes the next character of a text between quotes off the rest; nothing if it isn't one.
std::optional<char> TakeCharacter(std::string_view& rest)
{
    const auto take = [&rest](size_t count, char character) {
        rest.remove_prefix(count);
        return std::optional(character);
    };
    if (rest.empty() || !IsPrintable(rest[0]) || rest[0] == '"') {
        return std::nullopt;
    }
    if (rest[0] == Masked) {
        return take(1, '0');
    }
    if (rest[0] != '\\') {
        return take(1, rest[0]);
    }
    if (rest.size() > 1 && IsSpecial(rest[1])) {
        return take(2, rest[1]);
    }
    constexpr size_t Escape = 4; // as in \x0D
    const auto byte = acg::FromHex(rest.substr(std::min<size_t>(2, rest.size()), 2));
    if (rest.size() < Escape || rest[1] != 'x' || !byte) {
        return std::nullopt;
    }
    return take(Escape, static_cast<char>(byte->front()));
}

bool Take(std::string_view expected, std::string_view& rest)
{
    const bool isThere = rest.starts_with(expected);
    rest.remove_prefix(isThere ? expected.size() : 0);
    return isThere;
}

std::optional<std::string> TakeText(std::string_view& rest)
{
    std::string text;
    if (!Take("\"", rest)) {
        return std::nullopt;
    }
    while (const std::optional<char> character = TakeCharacter(rest)) {
        text += *character;
    }
    return Take("\"", rest) ? std::optional(text) : std::nullopt;
}

std::optional<int64_t> TakeNumber(std::string_view& rest)
{
    int64_t number = 0;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
    if (error != std::errc()) {
        return std::nullopt;
    }
    rest.remove_prefix(static_cast<size_t>(end - rest.data()));
    return number;
}

bool TakeValue(char kind, std::string_view& rest)
{
    return kind == 'T' ? TakeText(rest).has_value() : TakeNumber(rest).has_value();
}

/// From least to most.
std::optional<int64_t> TakeNumber(std::string_view& rest, int64_t least, int64_t most)
{
    const std::optional<int64_t> number = TakeNumber(rest);
    return number && *number >= least && *number <= most ? number : std::nullopt;
}

constexpr int64_t MaxCount = 1'000'000'000'000; // thirty years, as a time

std::optional<std::chrono::microseconds> TakeTime(std::string_view& rest)
{
    const auto milliseconds = TakeNumber(rest, 0, MaxCount);
    const auto decimals = Take(".", rest) ? TakeNumber(rest, 0, 999) : std::nullopt;
    if (!milliseconds || !decimals) {
        return std::nullopt;
    }
    return std::chrono::milliseconds(*milliseconds) + std::chrono::microseconds(*decimals);
}

constexpr std::string_view GapText = "# calls missing here: ";
constexpr std::string_view RepeatedText = "repeated: calls ";
constexpr std::string_view TimesText = ", times ";

/// The rest of a line after its start.
std::optional<Repetition> ParseRepetition(std::string_view rest, std::chrono::microseconds start)
{
    const auto calls = Take(RepeatedText, rest) ? TakeNumber(rest, 1, LongestRound) : std::nullopt;
    const auto times = Take(TimesText, rest) ? TakeNumber(rest, 1, MaxCount) : std::nullopt;
    const auto duration = Take(" ", rest) ? TakeTime(rest) : std::nullopt;
    if (!calls || !times || !duration || !rest.empty()) {
        return std::nullopt;
    }
    return Repetition{static_cast<size_t>(*calls), *times, start, *duration};
}

/// The rest of a line after its start.
std::optional<LoggedCall> ParseCall(std::string_view rest, std::chrono::microseconds start)
{
    const std::string_view call = rest;
    const Shape* const shape = FindShape(call.substr(0, call.find(' ')));
    if (shape == nullptr) {
        return std::nullopt;
    }
    rest.remove_prefix(shape->Function.size());
    for (const char kind : shape->Arguments) {
        if (!Take(" ", rest) || !TakeValue(kind, rest)) {
            return std::nullopt;
        }
    }
    LoggedCall logged{.Call = std::string(call.substr(0, call.size() - rest.size())), .Start = start};
    if (!Take(" = ", rest)) {
        return std::nullopt;
    }
    const std::string_view result = rest;
    if (!TakeValue(shape->Result, rest)) {
        return std::nullopt;
    }
    logged.Result = result.substr(0, result.size() - rest.size());
    const auto duration = Take(" ", rest) ? TakeTime(rest) : std::nullopt;
    if (!duration || !rest.empty()) {
        return std::nullopt;
    }
    logged.Duration = *duration;
    return logged;
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
    Take("\xEF\xBB\xBF", line); // an editor's mark of UTF-8
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    if (Take(GapText, line)) {
        return Gap{TakeNumber(line, 0, MaxCount).value_or(0)};
    }
    if (line.empty() || line.starts_with('#')) {
        return LoggedLine();
    }
    const auto start = TakeTime(line);
    if (!start || !Take(" ", line)) {
        return std::nullopt;
    }
    if (line.starts_with(RepeatedText)) {
        return ParseRepetition(line, *start);
    }
    return ParseCall(line, *start);
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
    std::string_view rest = result;
    return TakeNumber(rest).value_or(0);
}

std::string ParseText(const std::string& result)
{
    std::string_view rest = result;
    return TakeText(rest).value_or("");
}

} // namespace session
