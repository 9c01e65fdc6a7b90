// The window of a form while it is open: what each window layer implements, in a source of its own.
#pragma once

#include "platform/Forms.h"

#include <memory>

namespace acg
{

class FormWindow
{
public:
    explicit FormWindow(Form& Shown);
    ~FormWindow();
    FormWindow(const FormWindow&) = delete;
    FormWindow& operator=(const FormWindow&) = delete;

    /// Runs until Close. False: no window can be shown. Owner: the window of another form, or null.
    bool RunModal(FormWindow* Owner);
    void Close();

    // The model has changed.
    void ShowText(const Control& Changed);
    void ShowEnabled(const Control& Changed);
    void ShowBackground(const Control& Changed);
    void ShowLines(const Control& Changed); ///< with the selected line
    void ShowSelectedLine(const Control& Changed);
    void ShowTimer(); ///< started or stopped
    void ShowCloseBox();

    void SetFocus(const Control& Focused);
    /// Repaints the control and lets pending events run once. A request to quit that is met is put back.
    void ShowNow(const Control& Shown);

private:
    struct System;
    std::unique_ptr<System> m_system;
};

} // namespace acg
