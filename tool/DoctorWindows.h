// What the doctor's sources for Windows share.
#pragma once

#include "tool/Doctor.h"
#include "tool/System.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>
#include <windows.h>

#include <objbase.h>

namespace acg::tool
{

/// COM in this thread.
class Apartment
{
public:
    explicit Apartment(DWORD kind) : m_result(CoInitializeEx(nullptr, kind)) {}
    ~Apartment()
    {
        if (SUCCEEDED(m_result)) {
            CoUninitialize();
        }
    }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;

private:
    HRESULT m_result;
};

/// An object of the class that was created, used by name and released.
struct Creation {
    HRESULT Result;
    LoadedLibrary Component; ///< empty for CLSCTX_LOCAL_SERVER, and after a failure
};
/// context: CLSCTX_INPROC_SERVER or CLSCTX_LOCAL_SERVER.
[[nodiscard]] Creation CreateEncoder(DWORD context);

/// The result of creating an object in the system's surrogate process; nothing after 20 seconds. Throws
/// Interruption.
[[nodiscard]] std::optional<HRESULT> CreateInSurrogate();

/// A code of the system, and its words for it.
[[nodiscard]] std::string SystemText(HRESULT code);

/// What the manifests of a host make of the class. Without problem and file: it isn't named in them.
struct HostManifest {
    std::string Problem;
    std::string MissingFile;    ///< that may be the reason; empty if it is there
    std::filesystem::path File; ///< the component's, as it was loaded by the manifest
    bool HostIs64 = false;
};
/// host: a program, or a folder, all of whose manifests count. Throws UsageError if there is no such host.
[[nodiscard]] HostManifest ReadManifest(const std::filesystem::path& host);

/// The reader library as a host finds it that searches these folders in this order, and then the system's:
/// the first file that loads, else the first one that is there.
[[nodiscard]] DoctorLibrary FindReaderLibrary(const DoctorReport& report,
                                              std::vector<std::filesystem::path> folders);

} // namespace acg::tool
