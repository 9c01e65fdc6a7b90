// Forms: the windows, and just the controls, that the dialogs use.
//
// A form is a model: the state of its controls, and the handlers. It runs on the window layer that the build
// has. On Windows the layer makes real controls of the system; elsewhere it is headless, and a player acts in
// place of a person (acg/forms/HeadlessPlayer.h). What is declared as the layer's is defined in its source.
// Sizes are in twips, a twentieth of a point each.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace acg
{

class Form;
class FormWindow; ///< of a form that is open; the layer's

struct Area {
    int Left = 0;
    int Top = 0;
    int Width = 0;
    int Height = 0;
};

/// A colour of the system, or one of its own.
struct Colour {
    enum class Source {
        Form, ///< the background of a form
        Window,
        Menu,
        Highlight3D,
        Own, ///< a light one: text on it is black
    };
    Source From = Source::Form;
    uint8_t Red = 0;
    uint8_t Green = 0;
    uint8_t Blue = 0;
};

enum class ControlKind {
    Frame,        ///< a group frame; the controls in it lie on top of it, but aren't its children
    Label,        ///< names the control that follows it
    EditCombo,    ///< a line is picked, or any text typed
    DropDownList, ///< a line is picked
    TextField,
    Log, ///< several lines, read-only, scrolled to its end, no tab stop
    Button,
};

/// The properties of a control that never change.
struct ControlLook {
    const char* Name;
    ControlKind Kind;
    Area Bounds;
    double FontPoints = 0; ///< 0 for the form's
};

/// One control of a form. In its text the character after "&" is the access key.
class Control
{
public:
    Control(Form& parent, size_t position, const ControlLook& look);

    const ControlLook Look;
    const size_t Index; ///< in the tab order

    [[nodiscard]] const std::wstring& Text() const { return m_text; }
    void SetText(std::wstring_view text);

    [[nodiscard]] bool IsEnabled() const { return m_enabled; }
    void Enable(bool enabled);

    [[nodiscard]] const Colour& Background() const { return m_background; }
    void SetBackground(const Colour& background);

    // Of a list: its lines, counted from 0, which don't change while the form is open, and the selected
    // one.
    static constexpr int NoLine = -1;
    [[nodiscard]] const std::vector<std::wstring>& Lines() const { return m_lines; }
    void SetLines(std::initializer_list<std::wstring_view> lines); ///< with none selected
    void AddLine(std::wstring_view line) { m_lines.emplace_back(line); }
    [[nodiscard]] int SelectedLine() const { return m_selectedLine; }
    /// Selects as a person would, OnPick included; nothing happens if there is no such line.
    void Select(int line);

    std::function<void()> OnPress;                    ///< of a button
    std::function<void()> OnPick;                     ///< of a list, when a line is selected
    std::function<void()> OnEdit;                     ///< of a list or a text field, when its text was typed
    bool (*AcceptsTyped)(wchar_t) noexcept = nullptr; ///< of a text field: false swallows the character

    // What a person does, as the window layer reports it. On a disabled control nothing happens.
    void Press() const;
    void Pick(int line);
    void Edit(std::wstring_view newText);

private:
    void Show() const; ///< updates the screen, if there is one; the layer's

    Form& m_form;
    std::wstring m_text;
    std::vector<std::wstring> m_lines;
    int m_selectedLine = NoLine;
    bool m_enabled = true;
    Colour m_background;
};

/// A filled rectangle under the controls; a line is one without height.
struct Shape {
    Area Bounds;
    Colour Fill;
};

/// The properties of a form that never change. The size is that of the client area.
struct FormLook {
    int Width;
    int Height;
    double FontPoints;
};

/// A window of fixed size, without minimise and maximise button and without an entry in the task bar. It
/// opens centred on its owner, the form on top of which it is shown, or on the screen. Its font is Tahoma.
class Form
{
public:
    explicit Form(const FormLook& look) : Look(look) {}
    ~Form() = default;
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    /// Controls are added in tab order.
    Control& Add(const ControlLook& look) { return m_controls.emplace_back(*this, m_controls.size(), look); }
    [[nodiscard]] std::deque<Control>& Controls() { return m_controls; }

    const FormLook Look;
    std::wstring Caption;
    std::vector<Shape> Shapes;
    Control* DefaultButton = nullptr; ///< pressed by Enter
    Control* CancelButton = nullptr;  ///< pressed by Escape; none: Escape does nothing

    std::function<void()> OnTimer;
    void StartTimer(int milliseconds);
    void StopTimer() { StartTimer(0); }
    [[nodiscard]] int TimerInterval() const { return m_timerInterval; } ///< 0: stopped

    /// What the close box does. No handler runs.
    void PressCloseBox();
    void EnableCloseBox(bool enabled);
    [[nodiscard]] bool HasWorkingCloseBox() const { return m_hasWorkingCloseBox; }

    // The layer's.
    /// Shows the form and returns when it has been closed. False: it can't be shown.
    bool ShowModal(const Form* owner = nullptr);
    /// Closes the form. No handler runs.
    void Close();
    /// Moves the input focus to a control.
    void SetFocus(const Control& control);
    /// Shows the state of a control at once, then lets pending events of all windows run once. A request to
    /// quit that is found is posted again.
    void ShowNow(const Control& control);
    [[nodiscard]] bool IsOpen() const { return m_window != nullptr; }

private:
    friend class Control;
    friend class FormWindow;
    void ShowTimer() const;    ///< started or stopped; the layer's
    void ShowCloseBox() const; ///< the layer's

    std::deque<Control> m_controls; // a deque, as its elements never move
    int m_timerInterval = 0;
    bool m_hasWorkingCloseBox = true;
    FormWindow* m_window = nullptr; ///< while the form is open
};

} // namespace acg
