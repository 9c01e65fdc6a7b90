// The window layer of a build without windows: the model is all there is.
#include "acg/forms/HeadlessPlayer.h"

namespace acg
{

class FormWindow
{
};

std::function<void(Form&)>& HeadlessPlayer()
{
    thread_local std::function<void(Form&)> player;
    return player;
}

bool Form::ShowModal(const Form* /*Owner*/)
{
    if (!HeadlessPlayer()) {
        return false;
    }
    FormWindow window;
    m_window = &window;
    try {
        HeadlessPlayer()(*this);
    } catch (...) {
        m_window = nullptr;
        throw;
    }
    m_window = nullptr;
    return true;
}

void Form::Close()
{
    m_window = nullptr;
}

void Control::Show() const {}
void Form::SetFocus(const Control& /*Focused*/) {}
void Form::ShowNow(const Control& /*Shown*/) {}
void Form::ShowTimer() const {}
void Form::ShowCloseBox() const {}

} // namespace acg
