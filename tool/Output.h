// Where a command's result goes, and what is to be said beside it.
#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>

namespace acg::tool
{

using JsonObject = nlohmann::ordered_json;

/// For a person: lines on standard output as they come. With --json: one JSON object at the program's end, or
/// several, if the command prints them by Finish itself.
struct Output {
    bool IsJson = false;                    ///< --json
    JsonObject Json = JsonObject::object(); ///< not printed without --json

    /// What became of what the command writes, said after the failure that ends it: lines that begin with
    /// "\n".
    std::string Outcome;

    /// A line, or several; the end of the last one may be left out. Control characters are escaped. Nothing
    /// with --json.
    void Print(std::string_view text) const;

    /// What isn't a result: "acg: " and the text on standard error, after what standard output has so far.
    /// With --json it is also in the list "problems".
    void Problem(std::string_view text);

    /// Prints the object at once, and begins the next one; an empty one after another isn't printed. False:
    /// standard output couldn't be written.
    [[nodiscard]] bool Finish();

    bool HasFinished = false; ///< once at least
};

/// "acg: " and the text on standard error; the first line of it fits a terminal of 80 columns.
void PrintProblem(std::string_view text);

} // namespace acg::tool
