// The window layer of a build without windows.
#include "platform/FormWindow.h"
#include "platform/HeadlessPlayer.h"

namespace acg
{

std::function<void(Form&)>& HeadlessPlayer()
{
    thread_local std::function<void(Form&)> player;
    return player;
}

struct FormWindow::System {
    Form& Shown;
};

FormWindow::FormWindow(Form& Shown) : m_system(new System{Shown}) {}

FormWindow::~FormWindow() = default;

bool FormWindow::RunModal(FormWindow* /*Owner*/)
{
    if (!HeadlessPlayer()) {
        return false;
    }
    HeadlessPlayer()(m_system->Shown);
    return true;
}

// The model is all there is.
void FormWindow::Close() {}
void FormWindow::ShowText(const Control& /*Changed*/) {}
void FormWindow::ShowEnabled(const Control& /*Changed*/) {}
void FormWindow::ShowBackground(const Control& /*Changed*/) {}
void FormWindow::ShowLines(const Control& /*Changed*/) {}
void FormWindow::ShowSelectedLine(const Control& /*Changed*/) {}
void FormWindow::ShowTimer() {}
void FormWindow::ShowCloseBox() {}
void FormWindow::SetFocus(const Control& /*Focused*/) {}
void FormWindow::ShowNow(const Control& /*Shown*/) {}

} // namespace acg
