#include "tool/ProgressBar.h"

#include "tool/System.h"

#include <string>

namespace acg::tool
{

namespace
{

constexpr int Width = 40;
constexpr int LineWidth = Width + 38; // within 80 columns

} // namespace

ProgressBar::ProgressBar(int steps) : m_isShown(IsTerminal(stderr)), m_steps(steps) {}

void ProgressBar::Show(int stepsDone) const
{
    if (!m_isShown) {
        return;
    }
    const int filled = Width * stepsDone / m_steps;
    const std::string bar =
        std::string(static_cast<size_t>(filled), '#') + std::string(static_cast<size_t>(Width - filled), '.');
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - m_start;
    std::fprintf(stderr, "\r[%s] %3d%%  %3d of %3d  %6.1f s", bar.c_str(), 100 * stepsDone / m_steps,
                 stepsDone, m_steps, elapsed.count());
    std::fflush(stderr);
}

void ProgressBar::Erase() const
{
    if (m_isShown) {
        std::fprintf(stderr, "\r%*s\r", LineWidth, "");
    }
}

} // namespace acg::tool
