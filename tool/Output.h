// Where a command's result goes, and what is to be said beside it.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <memory>
#include <string>
#include <string_view>

namespace acg::tool
{

using JsonObject = nlohmann::ordered_json;

/// For a person: lines on standard output as they come. With --json: one JSON object at the program's end.
class Output
{
public:
    Output();
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void UseJson() { m_isJson = true; }
    [[nodiscard]] bool IsJson() const { return m_isJson; }

    /// The object's members; not printed without --json.
    [[nodiscard]] JsonObject& Json() { return *m_json; }

    /// A line, or several; the end of the last one may be left out. Control characters are escaped. Nothing
    /// with --json.
    void Print(std::string_view text) const;

    /// What isn't a result: "acg: " and the text on standard error, after what standard output has so far.
    /// With --json it is also in the list "problems".
    void Problem(std::string_view text);

    /// What became of what the command writes, said after the failure that ends it: lines that begin with
    /// "\n".
    void SetOutcome(std::string_view lines) { m_outcome = lines; }
    [[nodiscard]] const std::string& Outcome() const { return m_outcome; }

    /// Prints the object. False: standard output couldn't be written.
    [[nodiscard]] bool Finish() const;

private:
    bool m_isJson = false;
    std::unique_ptr<JsonObject> m_json;
    std::string m_outcome;
};

/// "acg: " and the text on standard error; the first line of it fits a terminal of 80 columns.
void PrintProblem(std::string_view text);

} // namespace acg::tool
