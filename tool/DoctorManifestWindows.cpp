#include "tool/DoctorWindows.h"

#include "acg/platform/SystemPath.h"
#include "tool/Failures.h"
#include "tool/Text.h"

#include <ACG_MultiISO_TV.h>
#include <system_error>

namespace acg::tool
{

namespace
{

namespace fs = std::filesystem;

bool IsManifest(const fs::path& file)
{
    return lstrcmpiW(file.extension().c_str(), L".manifest") == 0;
}

/// A manifest as Windows reads it, in force in this thread.
class ActivationContext
{
public:
    /// source: a manifest, or a program that has one.
    explicit ActivationContext(const fs::path& source)
    {
        const std::wstring folder = source.parent_path().wstring();
        ACTCTXW settings = {.cbSize = sizeof settings,
                            .dwFlags = ACTCTX_FLAG_ASSEMBLY_DIRECTORY_VALID,
                            .lpSource = source.c_str(),
                            .lpAssemblyDirectory = folder.c_str()};
        if (!IsManifest(source)) {
            settings.dwFlags |= ACTCTX_FLAG_RESOURCE_NAME_VALID;
            settings.lpResourceName = MAKEINTRESOURCEW(1); // of a program
        }
        m_context = CreateActCtxW(&settings);
        if (m_context == INVALID_HANDLE_VALUE || ActivateActCtx(m_context, &m_cookie) == FALSE) {
            m_error = GetLastError();
        }
    }
    ~ActivationContext()
    {
        if (m_error == ERROR_SUCCESS) {
            DeactivateActCtx(0, m_cookie);
        }
        if (m_context != INVALID_HANDLE_VALUE) {
            ReleaseActCtx(m_context);
        }
    }
    ActivationContext(const ActivationContext&) = delete;
    ActivationContext& operator=(const ActivationContext&) = delete;

    [[nodiscard]] DWORD Error() const { return m_error; }

private:
    HANDLE m_context = INVALID_HANDLE_VALUE;
    ULONG_PTR m_cookie = 0;
    DWORD m_error = ERROR_SUCCESS;
};

/// False: there is no manifest.
bool Read(const fs::path& source, HostManifest& manifest)
{
    const ActivationContext context(source);
    switch (context.Error()) {
    case ERROR_SUCCESS:
        break;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_RESOURCE_DATA_NOT_FOUND:
    case ERROR_RESOURCE_TYPE_NOT_FOUND:
    case ERROR_RESOURCE_NAME_NOT_FOUND:
        return false;
    default:
        manifest.Problem = Utf8Of(source) + ", " + SystemText(static_cast<HRESULT>(context.Error()));
        return true;
    }
    ACTCTX_SECTION_KEYED_DATA data = {.cbSize = sizeof data};
    if (FindActCtxSectionGuid(0, nullptr, ACTIVATION_CONTEXT_SECTION_COM_SERVER_REDIRECTION,
                              &__uuidof(::Encoder), &data) != FALSE) {
        const Creation creation = CreateEncoder(CLSCTX_INPROC_SERVER);
        if (FAILED(creation.Result)) {
            const fs::path component = source.parent_path() / L"ACG_MultiISO_TV.dll";
            std::error_code error;
            manifest.Problem = Utf8Of(source) + ", " + SystemText(creation.Result);
            manifest.MissingFile = fs::exists(component, error) ? "" : Utf8Of(component);
        } else {
            manifest.File = ToPath(creation.Component.Path);
        }
    }
    return true;
}

} // namespace

HostManifest ReadManifest(const fs::path& host)
{
    HostManifest manifest;
    std::error_code error;
    if (fs::is_directory(host, error)) {
        for (const fs::directory_entry& entry : fs::directory_iterator(host, error)) {
            if (IsManifest(entry.path())) {
                Read(entry.path(), manifest);
            }
        }
        return manifest;
    }
    if (!fs::exists(host, error)) {
        throw UsageError{"there is no program or folder " + Utf8Of(host)};
    }
    DWORD type = 0;
    manifest.HostIs64 = GetBinaryTypeW(host.c_str(), &type) != FALSE && type == SCS_64BIT_BINARY;
    if (!manifest.HostIs64 && !Read(host, manifest)) {
        Read(host.wstring() + L".manifest", manifest);
    }
    return manifest;
}

} // namespace acg::tool
