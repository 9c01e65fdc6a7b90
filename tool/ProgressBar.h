// A progress bar on the terminal.
#pragma once

#include "tool/System.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>

namespace acg::tool
{

/// One line on standard error, if that is a terminal; else nothing is shown.
class ProgressBar
{
public:
    explicit ProgressBar(int steps) : m_steps(steps) {}
    ~ProgressBar() { Erase(); }
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void SetSteps(int steps) { m_steps = steps; }

    void Show(int stepsDone) const
    {
        if (!m_isShown) {
            return;
        }
        std::string bar(Width, '.');
        std::fill_n(bar.begin(), Width * stepsDone / m_steps, '#');
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - m_start;
        std::fprintf(stderr, "\r[%s] %3d%%  %3d of %3d  %6.1f s", bar.c_str(), 100 * stepsDone / m_steps,
                     stepsDone, m_steps, elapsed.count());
        std::fflush(stderr);
    }

    /// Before anything else is printed.
    void Erase() const
    {
        if (m_isShown) {
            std::fprintf(stderr, "\r%*s\r", LineWidth, "");
        }
    }

private:
    static constexpr int Width = 40;
    static constexpr int LineWidth = Width + 38; // within 80 columns

    bool m_isShown = IsTerminal(stderr);
    int m_steps;
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

} // namespace acg::tool
