#include "platform/Forms.h"

#include "platform/FormWindow.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace acg
{

void Control::Changed(void (FormWindow::*show)(const Control&))
{
    if (m_form.m_window != nullptr) {
        (m_form.m_window->*show)(*this);
    }
}

void Control::SetText(std::wstring_view Text)
{
    m_text = Text;
    Changed(&FormWindow::ShowText);
}

void Control::Enable(bool Enabled)
{
    m_enabled = Enabled;
    Changed(&FormWindow::ShowEnabled);
}

void Control::SetBackground(const Colour& Background)
{
    m_background = Background;
    Changed(&FormWindow::ShowBackground);
}

void Control::SetLines(std::initializer_list<std::wstring_view> Lines)
{
    m_lines.assign(Lines.begin(), Lines.end());
    m_selectedLine = NoLine;
    Changed(&FormWindow::ShowLines);
}

void Control::AddLine(std::wstring_view Line)
{
    m_lines.emplace_back(Line);
    Changed(&FormWindow::ShowLines);
}

void Control::Select(int Line)
{
    if (Line < 0 || std::cmp_greater_equal(Line, m_lines.size())) {
        return;
    }
    m_selectedLine = Line;
    m_text = m_lines[static_cast<size_t>(Line)];
    Changed(&FormWindow::ShowSelectedLine);
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

Control& Form::Named(std::string_view Name)
{
    const auto found = std::ranges::find(
        m_controls, Name, [](const Control& control) { return std::string_view(control.Look.Name); });
    assert(found != m_controls.end());
    return *found;
}

void Form::StartTimer(int Milliseconds)
{
    m_timerInterval = Milliseconds;
    if (m_window != nullptr) {
        m_window->ShowTimer();
    }
}

void Form::StopTimer()
{
    StartTimer(0);
}

/// What is true of a form while its window runs.
struct Form::Opening {
    Form& Opened;

    Opening(Form& Shown, FormWindow& Window) : Opened(Shown)
    {
        Opened.m_window = &Window;
        Opened.m_isOpen = true;
    }
    ~Opening()
    {
        Opened.m_window = nullptr;
        Opened.m_isOpen = false;
    }
    Opening(const Opening&) = delete;
    Opening& operator=(const Opening&) = delete;
};

bool Form::ShowModal(Form* Owner)
{
    FormWindow window(*this);
    const Opening opening(*this, window);
    return window.RunModal(Owner != nullptr ? Owner->m_window : nullptr);
}

void Form::Close()
{
    m_isOpen = false;
    if (m_window != nullptr) {
        m_window->Close();
    }
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
    if (m_window != nullptr) {
        m_window->ShowCloseBox();
    }
}

void Form::SetFocus(const Control& Focused)
{
    if (m_window != nullptr) {
        m_window->SetFocus(Focused);
    }
}

void Form::ShowNow(const Control& Shown)
{
    if (m_window != nullptr) {
        m_window->ShowNow(Shown);
    }
}

} // namespace acg
