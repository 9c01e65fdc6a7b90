// The operation that lets a user edit the settings.
#include "acg/dialogs/frmConfigure.h"
#include "acg/encoder/Encoder.h"

#include <utility>

namespace acg
{

sceReturnCode Encoder::Configure(std::wstring Language)
{
    ResetLastError();
    frmConfigure& dialog = frmConfigure::OfThread();
    // If the dialog of another encoder is open on this thread, it is left alone.
    if (!dialog.IsOpen()) {
        dialog.Language = std::move(Language);
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
    }
    ResetLastError(L"Configure");
    return dialog.OKPressed ? sceSuccess : sceCanceled;
}

} // namespace acg
