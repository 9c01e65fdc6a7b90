#include "acg/forms/Forms.h"

#include <utility>

namespace acg
{

Control::Control(Form& parent, size_t position, const ControlLook& look)
    : Look(look), Index(position), m_form(parent)
{
    if (Look.Kind != ControlKind::Frame && Look.Kind != ControlKind::Label) {
        m_background = {Colour::Source::Window};
    }
}

void Control::SetText(std::wstring_view text)
{
    m_text = text;
    Show();
}

void Control::Enable(bool enabled)
{
    m_enabled = enabled;
    Show();
}

void Control::SetBackground(const Colour& background)
{
    m_background = background;
    Show();
}

void Control::SetLines(std::initializer_list<std::wstring_view> lines)
{
    m_lines.assign(lines.begin(), lines.end());
    m_selectedLine = NoLine;
}

void Control::Select(int line)
{
    if (line < 0 || std::cmp_greater_equal(line, m_lines.size())) {
        return;
    }
    m_text = m_lines[static_cast<size_t>(line)];
    m_selectedLine = line;
    Show();
    if (OnPick) {
        OnPick();
    }
}

void Control::Press() const
{
    if (m_enabled && OnPress) {
        OnPress();
    }
}

void Control::Pick(int line)
{
    if (m_enabled) {
        Select(line);
    }
}

void Control::Edit(std::wstring_view newText)
{
    if (m_enabled && newText != m_text) {
        m_text = newText;
        m_selectedLine = NoLine;
        if (OnEdit) {
            OnEdit();
        }
    }
}

void Form::StartTimer(int milliseconds)
{
    m_timerInterval = milliseconds;
    ShowTimer();
}

void Form::PressCloseBox()
{
    if (m_hasWorkingCloseBox) {
        Close();
    }
}

void Form::EnableCloseBox(bool enabled)
{
    m_hasWorkingCloseBox = enabled;
    ShowCloseBox();
}

} // namespace acg
