#include "tool/DoctorWindows.h"

#include "acg/boundary/Registration.h"
#include "acg/platform/LibraryFile.h"
#include "tool/Text.h"

#include <ACG_MultiISO_TV.h>
#include <cwchar>
#include <optional>
#include <system_error>
#include <utility>

namespace acg::tool
{

namespace
{

namespace fs = std::filesystem;

/// A text of a key of classes; empty if there is none. view: KEY_WOW64_32KEY or KEY_WOW64_64KEY. name: null
/// for the key's own value.
std::wstring Registered(const std::wstring& key, REGSAM view = KEY_WOW64_32KEY, const wchar_t* name = nullptr)
{
    HKEY opened = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, KEY_QUERY_VALUE | view, &opened) != ERROR_SUCCESS) {
        return {};
    }
    constexpr DWORD LongestPath = 32767;
    std::wstring value(LongestPath, L'\0');
    DWORD size = LongestPath * sizeof(wchar_t);
    const LSTATUS status = RegGetValueW(opened, nullptr, name, RRF_RT_REG_SZ, nullptr, value.data(), &size);
    RegCloseKey(opened);
    value.resize(status == ERROR_SUCCESS ? std::wcslen(value.c_str()) : 0);
    return value;
}

/// The key of the class, or what is below it.
std::wstring ClassKey(const wchar_t* below = L"")
{
    wchar_t id[sizeof("{00000000-0000-0000-0000-000000000000}")];
    static_cast<void>(
        StringFromGUID2(__uuidof(::Encoder), id, static_cast<int>(std::size(id)))); // there is room
    return L"CLSID\\" + std::wstring(id) + below;
}

/// The registered file, if it is there.
fs::path CheckClass(DoctorReport& report, bool hasManifest)
{
    const fs::path file = Registered(ClassKey(L"\\InprocServer32"));
    std::error_code error;
    if (!file.empty() && !Registered(EncoderName + std::wstring(L"\\CLSID")).empty()) {
        report.Passed(steps::Class, Utf8Of(file));
        if (fs::is_regular_file(file, error)) {
            report.Passed(steps::File);
            return file;
        }
        report.Failed(steps::File, "", texts::Unpack);
        return {};
    }
    if (hasManifest) {
        report.NotSetUp(steps::Class, texts::NotSetUp1);
    } else {
        report.Failed(steps::Class, "", texts::Register);
    }
    report.Unknown({steps::File});
    return {};
}

void CheckTypeLibrary(DoctorReport& report, const fs::path& component)
{
    const std::wstring key =
        L"TypeLib\\" + Registered(ClassKey(L"\\TypeLib")) + L'\\' + Registered(ClassKey(L"\\Version"));
    // In its own language, and in the neutral one, by which calls are carried to another apartment.
    for (const wchar_t* const language : {L"\\409\\win32", L"\\0\\win32"}) {
        const std::wstring path = Registered(key + language);
        std::error_code error;
        if (!fs::equivalent(path, component, error)) { // it may be spelt otherwise
            report.Failed(steps::TypeLibrary,
                          path.empty() ? report.In(texts::Missing) + ToUtf8(key + language) : ToUtf8(path),
                          texts::Register);
            return;
        }
    }
    report.Passed(steps::TypeLibrary);
}

bool CheckCreation(DoctorReport& report)
{
    const Creation creation = CreateEncoder(CLSCTX_INPROC_SERVER);
    if (FAILED(creation.Result)) {
        report.Failed(steps::Component, SystemText(creation.Result), texts::Damaged);
    } else {
        report.Passed(steps::Component, creation.Component.Description + ' ' + creation.Component.Version);
    }
    return SUCCEEDED(creation.Result);
}

/// By the surrogate, as a 64-bit program does.
void Check64BitPrograms(DoctorReport& report)
{
    BOOL is64 = FALSE;
    if (IsWow64Process(GetCurrentProcess(), &is64) == FALSE || is64 == FALSE) {
        report.NotSetUp(steps::Hosts64, texts::No64);
        return;
    }
    const std::wstring stray = Registered(ClassKey(L"\\InprocServer32"), KEY_WOW64_64KEY);
    const bool isIn64 = !Registered(ClassKey(), KEY_WOW64_64KEY, L"AppID").empty();
    const bool isIn32 = !Registered(ClassKey(), KEY_WOW64_32KEY, L"AppID").empty();
    if (!stray.empty()) {
        report.Failed(steps::Hosts64, ToUtf8(ClassKey(L"\\InprocServer32: ") + stray), texts::DeleteKey);
    } else if (!isIn64 && !isIn32) {
        report.NotSetUp(steps::Hosts64, texts::NotSetUp5);
    } else if (!isIn64 || !isIn32) {
        report.Failed(steps::Hosts64,
                      report.In(isIn32 ? texts::Missing64 : texts::Missing32) + ToUtf8(ClassKey(L"\\AppID")),
                      texts::Import);
    } else if (const std::optional<HRESULT> result = CreateInSurrogate(); !result) {
        report.Failed(steps::Hosts64, report.In(texts::NoAnswer), texts::EndSurrogate);
    } else if (FAILED(*result)) {
        report.Failed(steps::Hosts64, SystemText(*result), texts::Import);
    } else {
        report.Passed(steps::Hosts64);
    }
}

void ReportManifest(DoctorReport& report, const HostManifest& manifest)
{
    if (manifest.HostIs64) {
        report.NotSetUp(steps::Manifest, texts::HostIs64);
    } else if (!manifest.Problem.empty()) {
        report.Failed(steps::Manifest,
                      manifest.Problem + (manifest.MissingFile.empty()
                                              ? ""
                                              : report.In(texts::NoFile) + manifest.MissingFile),
                      texts::PutManifest);
    } else if (!manifest.File.empty()) {
        report.Passed(steps::Manifest, Utf8Of(manifest.File));
    } else {
        report.NotSetUp(steps::Manifest, texts::NotSetUp7);
    }
}

} // namespace

DoctorLibrary CheckInstallation(DoctorReport& report, const std::string& host)
{
    const Apartment apartment(COINIT_APARTMENTTHREADED);
    const fs::path hostPath = host.empty() ? fs::path(OwnFolder()) : fs::absolute(ToPath(host));
    const HostManifest manifest = ReadManifest(hostPath);
    const bool isServed = !host.empty() && !manifest.File.empty();

    const fs::path component = CheckClass(report, isServed);
    bool isLoaded = false;
    if (component.empty()) {
        report.Unknown({steps::TypeLibrary, steps::Component});
    } else {
        CheckTypeLibrary(report, component);
        isLoaded = CheckCreation(report);
    }
    if (isLoaded) {
        Check64BitPrograms(report);
    } else {
        report.Unknown({steps::Hosts64});
    }
    ReportManifest(report, manifest);

    std::vector<fs::path> folders = {isServed            ? manifest.File.parent_path()
                                     : component.empty() ? fs::path(OwnFolder()).parent_path()
                                                         : component.parent_path()};
    std::error_code error;
    const fs::path hostFolder = fs::is_directory(hostPath, error) ? hostPath : hostPath.parent_path();
    if (!host.empty() && hostFolder != folders.front()) {
        folders.push_back(hostFolder);
    }
    return FindReaderLibrary(report, std::move(folders));
}

} // namespace acg::tool
