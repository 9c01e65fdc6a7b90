// The operation that lets a user edit the settings.
#include "dialogs/frmConfigure.h"
#include "encoder/Encoder.h"

namespace acg
{

sceReturnCode Encoder::Configure(std::wstring_view Language)
{
    ResetLastError();
    frmConfigure& dialog = frmConfigure::OfThread();
    dialog.Language = Language;
    dialog.Device = m_sDevice;
    dialog.AutoDetect = m_bAutodetect;
    dialog.BaudRate = m_lBaudRate;
    dialog.Timeout = m_lTimeout;
    dialog.Show(m_oReaderDLL);
    if (dialog.OKPressed) {
        m_sDevice = dialog.Device;
        m_bAutodetect = dialog.AutoDetect;
        m_lBaudRate = dialog.BaudRate;
        m_lTimeout = dialog.Timeout;
    }
    ResetLastError(L"Configure");
    return dialog.OKPressed ? sceSuccess : sceCanceled;
}

} // namespace acg
