#include "acg/boundary/Registration.h"

#include "acg/boundary/Results.h"
#include "acg/boundary/TypeLibrary.h"
#include "acg/platform/LibraryFile.h"

#include <ACG_MultiISO_TV.h>
#include <olectl.h>
#include <string>
#include <vector>

namespace acg
{

namespace
{

/// The system's category of Automation classes. It doesn't call them safe for scripts.
constexpr wchar_t ProgrammableCategory[] = L"{40FC6ED5-2438-11CF-A3DB-080036F12502}";

const struct {
    const CLSID& Id;
    const wchar_t* Name;
} Classes[] = {{__uuidof(::Encoder), EncoderName}, {__uuidof(::CError), ErrorName}};

struct Entry {
    std::wstring Key;
    const wchar_t* Name; ///< null for the key's own value
    std::wstring Value;
};

std::wstring IdText(const GUID& id)
{
    wchar_t text[sizeof("{00000000-0000-0000-0000-000000000000}")];
    static_cast<void>(StringFromGUID2(id, text, static_cast<int>(std::size(text)))); // there is room
    return text;
}

std::vector<Entry> EntriesOf(const CLSID& id, const std::wstring& name, const std::wstring& version)
{
    const std::wstring key = L"CLSID\\" + IdText(id);
    return {
        {key, nullptr, name},
        {key + L"\\InprocServer32", nullptr, OwnPath()},
        {key + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
        {key + L"\\ProgID", nullptr, name},
        {key + L"\\TypeLib", nullptr, IdText(LIBID_ACG_MultiISO_TV)},
        {key + L"\\Version", nullptr, version},
        {key + L"\\Programmable", nullptr, L""},
        {key + L"\\Implemented Categories\\" + ProgrammableCategory, nullptr, L""},
        {name, nullptr, name},
        {name + L"\\CLSID", nullptr, IdText(id)},
    };
}

/// The type library, its attributes, its version as text, and the key of this version.
struct TypeLibrary : TLIBATTR {
    Microsoft::WRL::ComPtr<ITypeLib> Library;
    std::wstring Version;
    std::wstring Key;
};

HRESULT Load(TypeLibrary& library)
{
    TLIBATTR* attributes = nullptr;
    HRESULT result = LoadOwnTypeLibrary(library.Library.GetAddressOf());
    if (SUCCEEDED(result)) {
        result = library.Library->GetLibAttr(&attributes);
    }
    if (SUCCEEDED(result)) {
        static_cast<TLIBATTR&>(library) = *attributes;
        library.Library->ReleaseTLibAttr(attributes);
        wchar_t version[sizeof("ffff.ffff")];
        wsprintfW(version, L"%x.%x", library.wMajorVerNum, library.wMinorVerNum);
        library.Version = version;
        library.Key = L"TypeLib\\" + IdText(library.guid) + L"\\" + version;
    }
    return result;
}

/// E_ACCESSDENIED if the system denies access; for any other failure the code of the part that failed.
HRESULT ResultOf(LSTATUS status, HRESULT failed)
{
    return status == ERROR_SUCCESS ? S_OK : status == ERROR_ACCESS_DENIED ? E_ACCESSDENIED : failed;
}

LSTATUS Write(const Entry& entry)
{
    return RegSetKeyValueW(HKEY_CLASSES_ROOT, entry.Key.c_str(), entry.Name, REG_SZ, entry.Value.c_str(),
                           static_cast<DWORD>((entry.Value.size() + 1) * sizeof(wchar_t)));
}

HRESULT RegisterAll()
{
    TypeLibrary library;
    if (FAILED(Load(library))) {
        return SELFREG_E_TYPELIB;
    }
    for (const auto& [id, name] : Classes) {
        for (const Entry& entry : EntriesOf(id, name, library.Version)) {
            if (const LSTATUS status = Write(entry); status != ERROR_SUCCESS) {
                return ResultOf(status, SELFREG_E_CLASS);
            }
        }
    }
    std::wstring path = OwnPath();
    if (FAILED(RegisterTypeLib(library.Library.Get(), path.data(), nullptr))) {
        return SELFREG_E_TYPELIB;
    }
    // The system has registered it under its language. The marshaller, which carries calls to another
    // apartment, looks for it under the neutral one.
    return ResultOf(Write({library.Key + L"\\0\\win32", nullptr, path}), SELFREG_E_TYPELIB);
}

/// One spelling for all names of a file; empty if there is no such file.
std::wstring LongPath(const std::wstring& path)
{
    wchar_t text[MAX_PATH];
    const DWORD length = GetLongPathNameW(path.c_str(), text, MAX_PATH);
    return {text, length < MAX_PATH ? length : 0};
}

/// Whether hosts load another file than this one, and can: an earlier path of this one leads nowhere.
bool AnotherIsRegistered()
{
    wchar_t path[MAX_PATH];
    DWORD size = sizeof(path);
    const std::wstring key = L"CLSID\\" + IdText(__uuidof(::Encoder)) + L"\\InprocServer32";
    if (RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, path, &size) !=
        ERROR_SUCCESS) {
        return false;
    }
    const std::wstring registered = LongPath(path);
    return !registered.empty() && lstrcmpiW(registered.c_str(), LongPath(OwnPath()).c_str()) != 0;
}

HRESULT UnregisterAll()
{
    if (AnotherIsRegistered()) {
        return S_OK;
    }
    TypeLibrary library;
    if (FAILED(Load(library))) {
        return SELFREG_E_TYPELIB;
    }
    // The system can't undo a registration that is incomplete or whose library has moved. So the keys are
    // deleted in any case, and the result of that counts.
    static_cast<void>(UnRegisterTypeLib(library.guid, library.wMajorVerNum, library.wMinorVerNum,
                                        library.lcid, library.syskind));
    std::vector<std::wstring> keys = {library.Key, L"Interface\\" + IdText(__uuidof(_Encoder)),
                                      L"Interface\\" + IdText(__uuidof(_CError))};
    for (const auto& [id, name] : Classes) {
        keys.push_back(L"CLSID\\" + IdText(id));
        keys.emplace_back(name);
    }
    HRESULT result = S_OK;
    for (const std::wstring& key : keys) { // a failure doesn't stop the others
        const LSTATUS status = RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
        if (status != ERROR_FILE_NOT_FOUND && SUCCEEDED(result)) {
            result = ResultOf(status, SELFREG_E_CLASS);
        }
    }
    // The key of all versions stays if it has another version.
    RegDeleteKeyW(HKEY_CLASSES_ROOT, (L"TypeLib\\" + IdText(library.guid)).c_str());
    return result;
}

} // namespace

HRESULT Register() noexcept
{
    const HRESULT result = Guarded(&RegisterAll);
    if (FAILED(result)) {
        static_cast<void>(Unregister()); // the result says why the registration failed
    }
    return result;
}

HRESULT Unregister() noexcept
{
    return Guarded(&UnregisterAll);
}

} // namespace acg
