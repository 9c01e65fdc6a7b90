#include "tool/Doctor.h"
#include "tool/System.h"
#include "tool/Text.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace acg::tool
{

namespace
{

/// With blanks that don't break before the signs that have one in French, and before "bits".
std::string InFrenchType(std::string text)
{
    constexpr std::string_view Unbroken = "\u00A0";
    for (const std::string_view next : {":", ";", "?", "!", "bits"}) {
        const std::string broken = ' ' + std::string(next);
        for (size_t at = text.find(broken); at != std::string::npos; at = text.find(broken)) {
            text.replace(at, 1, Unbroken);
        }
    }
    return text;
}

constexpr size_t Margin = 8; ///< before the steps' titles

/// A line with a mark before the margin; on a terminal within 80 columns.
std::string Line(const std::string& mark, const std::string& text)
{
    const auto isFurther = [](char byte) { return (byte & 0xC0) == 0x80; }; // of one character in UTF-8
    const auto characters = mark.size() - static_cast<size_t>(std::ranges::count_if(mark, isFurther));
    return mark + std::string(Margin - characters, ' ') + (IsTerminal(stdout) ? Wrap(text, Margin) : text);
}

} // namespace

DoctorReport::DoctorReport(Output& out, bool isFrench) : m_out(out), m_isFrench(isFrench)
{
    m_out.Json["version"] = ACG_VERSION;
    m_out.Json["ok"] = false; // until the end
    m_out.Json["steps"] = JsonObject::array();
}

std::string DoctorReport::In(const DoctorText& text) const
{
    return m_isFrench ? InFrenchType(text.French) : text.English;
}

void DoctorReport::Passed(const DoctorStep& step, const std::string& detail)
{
    Add(step, "ok", In(texts::Ok), detail);
}

void DoctorReport::Failed(const DoctorStep& step, const std::string& detail, const std::string& remedy)
{
    m_hasFailed = true;
    Add(step, "failed", In(texts::Failed), detail, remedy);
    Remark(In(texts::Remedy) + remedy);
}

void DoctorReport::Unknown(std::initializer_list<DoctorStep> unknown, const std::string& detail)
{
    for (const DoctorStep& step : unknown) {
        Add(step, "unknown", "-", detail);
    }
}

void DoctorReport::NotSetUp(const DoctorStep& step, const DoctorText& detail)
{
    Add(step, "not set up", In(texts::No), In(detail));
}

void DoctorReport::Remark(const std::string& text) const
{
    m_out.Print(Line("", text));
}

void DoctorReport::Add(const DoctorStep& step, const char* status, const std::string& mark,
                       const std::string& detail, const std::string& remedy)
{
    m_out.Print(Line(mark, In(step.Title) + (detail.empty() ? "" : In(texts::Colon) + detail)));
    const auto orNull = [](const std::string& text) {
        return text.empty() ? JsonObject() : JsonObject(text);
    };
    m_out.Json["steps"].push_back(
        {{"name", step.Name}, {"status", status}, {"detail", orNull(detail)}, {"remedy", orNull(remedy)}});
}

} // namespace acg::tool
