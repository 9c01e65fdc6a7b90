// Shows one of the two dialogs: how a host calls the first, and what both look like.
//
//     example-dialogs [configure|test] [english|francais]
//
// The settings as they are when the dialog has been closed are written out.
#include "acg/dialogs/frmTest.h"
#include "acg/encoder/Encoder.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace
{

using namespace acg;

void ShowConfigure(const std::wstring& language)
{
    Encoder encoder;
    const sceReturnCode result = encoder.Configure(language);
    std::printf("%s\n%ls\n", result == sceSuccess ? "OK" : "Cancelled", encoder.Parameters().c_str());
}

/// The test dialog as the configuration dialog opens it, without that one around it.
void ShowTest(const std::wstring& language)
{
    frmTest& dialog = frmTest::OfThread();
    static_cast<DialogSettings&>(dialog) = {
        .Language = language, .Device = L"com1", .AutoDetect = 1, .BaudRate = 9600, .Timeout = 2200};
    dialog.Show(ReaderDLL());
}

} // namespace

int main(int argc, char* argv[])
{
    const std::string dialog = argc > 1 ? argv[1] : "configure";
    const std::string language = argc > 2 ? argv[2] : "english";
    if (dialog != "configure" && dialog != "test") {
        std::puts("example-dialogs [configure|test] [english|francais]");
        return EXIT_FAILURE;
    }
#ifndef _WIN32
    std::puts("This build has no windows: the dialog can't be shown.");
    return EXIT_FAILURE;
#endif
    const std::wstring wideLanguage(language.begin(), language.end());
    if (dialog == "test") {
        ShowTest(wideLanguage);
    } else {
        ShowConfigure(wideLanguage);
    }
    return EXIT_SUCCESS;
}
