#include "acg/Output.h"

#include "acg/System.h"

#include <nlohmann/json.hpp>

#include <cstdio>

namespace acg::tool
{

Output::Output() : m_json(std::make_unique<JsonObject>(JsonObject::object())) {}
Output::~Output() = default;

void Output::Print(std::string_view Text) const
{
    if (!m_isJson) {
        std::fputs((std::string(Text) + (Text.ends_with('\n') ? "" : "\n")).c_str(), stdout);
    }
}

void Output::Problem(std::string_view Text)
{
    PrintProblem(Text);
    (*m_json)["problems"].push_back(Text);
}

void Output::Finish() const
{
    if (m_isJson) {
        // A text that isn't UTF-8 is shown as far as it is.
        std::puts(
            m_json->dump(/*indent=*/-1, ' ', /*ensure_ascii=*/false, JsonObject::error_handler_t::replace)
                .c_str());
    }
}

void PrintProblem(std::string_view Text)
{
    std::fflush(stdout);
    const bool isColoured = IsColourTerminal(stderr);
    const std::string name = isColoured ? "\033[31macg:\033[0m " : "acg: ";
    std::fputs((name + std::string(Text) + '\n').c_str(), stderr);
}

} // namespace acg::tool
