#include "acg/forms/Forms.h"

#include <utility>

namespace acg
{

Control::Control(Form& Parent, size_t Position, const ControlLook& Fixed)
    : Look(Fixed), Index(Position), m_form(Parent)
{
    if (Look.Kind != ControlKind::Frame && Look.Kind != ControlKind::Label) {
        m_background = {Colour::Source::Window};
    }
}

void Control::SetText(std::wstring_view Text)
{
    m_text = Text;
    Show();
}

void Control::Enable(bool Enabled)
{
    m_enabled = Enabled;
    Show();
}

void Control::SetBackground(const Colour& Background)
{
    m_background = Background;
    Show();
}

void Control::SetLines(std::initializer_list<std::wstring_view> Lines)
{
    m_lines.assign(Lines.begin(), Lines.end());
    m_selectedLine = NoLine;
}

void Control::Select(int Line)
{
    if (Line < 0 || std::cmp_greater_equal(Line, m_lines.size())) {
        return;
    }
    m_text = m_lines[static_cast<size_t>(Line)];
    m_selectedLine = Line;
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

void Control::Pick(int Line)
{
    if (m_enabled) {
        Select(Line);
    }
}

void Control::Edit(std::wstring_view NewText)
{
    if (m_enabled && NewText != m_text) {
        m_text = NewText;
        m_selectedLine = NoLine;
        if (OnEdit) {
            OnEdit();
        }
    }
}

void Form::StartTimer(int Milliseconds)
{
    m_timerInterval = Milliseconds;
    ShowTimer();
}

void Form::PressCloseBox()
{
    if (m_hasWorkingCloseBox) {
        Close();
    }
}

void Form::EnableCloseBox(bool Enabled)
{
    m_hasWorkingCloseBox = Enabled;
    ShowCloseBox();
}

} // namespace acg
