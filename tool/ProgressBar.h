// A progress bar on the terminal.
#pragma once

#include <chrono>
#include <cstdio>

namespace acg::tool
{

/// One line on standard error, if that is a terminal; else nothing is shown.
class ProgressBar
{
public:
    explicit ProgressBar(int steps);
    ~ProgressBar() { Erase(); }
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void SetSteps(int steps) { m_steps = steps; }
    void Show(int stepsDone) const;
    /// Before anything else is printed.
    void Erase() const;

private:
    bool m_isShown;
    int m_steps;
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

} // namespace acg::tool
