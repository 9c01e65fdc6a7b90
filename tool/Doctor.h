// acg doctor: checks an installation step by step, and says how to mend what fails. The steps before the
// reader depend on the system.
#pragma once

#include "acg/reader/ReaderDLL.h"
#include "tool/DoctorTexts.h"
#include "tool/Output.h"

#include <initializer_list>
#include <string>

namespace acg::tool
{

/// The steps, as lines and as the member "steps".
class DoctorReport
{
public:
    DoctorReport(Output& out, bool isFrench);

    /// The text in the report's language.
    [[nodiscard]] std::string In(const DoctorText& text) const;

    // The results of a step; detail: in the report's language.
    void Passed(const DoctorStep& step, const std::string& detail = "");
    void Failed(const DoctorStep& step, const std::string& detail, const std::string& remedy);
    void Failed(const DoctorStep& step, const std::string& detail, const DoctorText& remedy)
    {
        Failed(step, detail, In(remedy));
    }
    /// Because an earlier step failed, or there is nothing to check.
    void Unknown(std::initializer_list<DoctorStep> unknown, const std::string& detail = "");
    void NotSetUp(const DoctorStep& step, const DoctorText& detail);

    /// A line below the steps.
    void Remark(const std::string& text) const;

    [[nodiscard]] bool HasFailed() const { return m_hasFailed; }

private:
    void Add(const DoctorStep& step, const char* status, const std::string& mark, const std::string& detail,
             const std::string& remedy = "");

    Output& m_out;
    bool m_isFrench;
    bool m_hasFailed = false;
};

/// The reader library as hosts load it here.
struct DoctorLibrary {
    EntryPointLookUp LookUp = FindInLibrary;
    std::string FirstFolder;      ///< where it is searched first
    std::string Searched;         ///< all folders, in words
    std::string File;             ///< that is there; empty if it isn't known
    std::string Problem;          ///< why it can't be loaded; empty if it is loaded, or isn't there
    DoctorText Remedy = {"", ""}; ///< of the problem
};

/// Checks what the system knows of the component. host: a program that uses it, or the program's folder;
/// empty: none. Throws UsageError if there is no such host.
[[nodiscard]] DoctorLibrary CheckInstallation(DoctorReport& report, const std::string& host);

} // namespace acg::tool
