#include "boundary/Registration.h"

#include "boundary/Results.h"
#include "boundary/TypeLibrary.h"

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

struct Class {
    const CLSID& Id;
    std::wstring Name;
};

struct Entry {
    std::wstring Key;
    const wchar_t* Name; ///< null for the key's own value
    std::wstring Value;
};

std::vector<Class> Classes()
{
    return {{__uuidof(::Encoder), EncoderName}, {__uuidof(::CError), ErrorName}};
}

std::wstring IdText(const GUID& id)
{
    wchar_t text[sizeof("{00000000-0000-0000-0000-000000000000}")];
    static_cast<void>(StringFromGUID2(id, text, static_cast<int>(std::size(text)))); // there is room
    return text;
}

std::wstring KeyOf(const Class& described)
{
    return L"CLSID\\" + IdText(described.Id);
}

std::vector<Entry> EntriesOf(const Class& described)
{
    const std::wstring key = KeyOf(described);
    return {
        {key, nullptr, described.Name},
        {key + L"\\InprocServer32", nullptr, OwnPath()},
        {key + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
        {key + L"\\ProgID", nullptr, described.Name},
        {key + L"\\TypeLib", nullptr, IdText(LIBID_ACG_MultiISO_TV)},
        {key + L"\\Programmable", nullptr, L""},
        {key + L"\\Implemented Categories\\" + ProgrammableCategory, nullptr, L""},
        {described.Name, nullptr, described.Name},
        {described.Name + L"\\CLSID", nullptr, IdText(described.Id)},
    };
}

/// The type library as it is registered.
struct TypeLibrary {
    Microsoft::WRL::ComPtr<ITypeLib> Library;
    TLIBATTR Attributes;
    std::wstring Key;        ///< of all its versions
    std::wstring VersionKey; ///< of its own
};

HRESULT Load(TypeLibrary& library)
{
    TLIBATTR* attributes = nullptr;
    HRESULT result = LoadOwnTypeLibrary(library.Library.GetAddressOf());
    if (SUCCEEDED(result)) {
        result = library.Library->GetLibAttr(&attributes);
    }
    if (SUCCEEDED(result)) {
        library.Attributes = *attributes;
        library.Library->ReleaseTLibAttr(attributes);
        wchar_t version[sizeof("\\ffff.ffff")];
        wsprintfW(version, L"\\%x.%x", library.Attributes.wMajorVerNum, library.Attributes.wMinorVerNum);
        library.Key = L"TypeLib\\" + IdText(library.Attributes.guid);
        library.VersionKey = library.Key + version;
    }
    return result;
}

/// Where the system refuses, the reason goes before the part that failed.
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
    for (const Class& described : Classes()) {
        for (const Entry& entry : EntriesOf(described)) {
            if (const LSTATUS status = Write(entry); status != ERROR_SUCCESS) {
                return ResultOf(status, SELFREG_E_CLASS);
            }
        }
    }
    TypeLibrary library;
    std::wstring path = OwnPath();
    if (FAILED(Load(library)) || FAILED(RegisterTypeLib(library.Library.Get(), path.data(), nullptr))) {
        return SELFREG_E_TYPELIB;
    }
    // The system has registered it under its language. What carries calls to another apartment looks for it
    // under none.
    return ResultOf(Write({library.VersionKey + L"\\0\\win32", nullptr, path}), SELFREG_E_TYPELIB);
}

/// The keys under which everything is registered; what stands below them is this version's alone.
std::vector<std::wstring> AllKeys(const TypeLibrary& library)
{
    std::vector<std::wstring> keys = {L"Interface\\" + IdText(__uuidof(_Encoder)),
                                      L"Interface\\" + IdText(__uuidof(_CError)), library.VersionKey};
    for (const Class& described : Classes()) {
        keys.push_back(KeyOf(described));
        keys.push_back(described.Name);
    }
    return keys;
}

HRESULT UnregisterAll()
{
    TypeLibrary library;
    if (FAILED(Load(library))) {
        return SELFREG_E_TYPELIB;
    }
    // The system does its own part where it can: not for a registration that is half done, or whose library
    // has moved. So the keys are deleted all the same, and that decides.
    const TLIBATTR& attributes = library.Attributes;
    static_cast<void>(UnRegisterTypeLib(attributes.guid, attributes.wMajorVerNum, attributes.wMinorVerNum,
                                        attributes.lcid, attributes.syskind));
    HRESULT result = S_OK;
    for (const std::wstring& key : AllKeys(library)) { // one that fails doesn't keep the others
        const LSTATUS status = RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
        if (status != ERROR_FILE_NOT_FOUND && SUCCEEDED(result)) {
            result = ResultOf(status, SELFREG_E_CLASS);
        }
    }
    RegDeleteKeyW(HKEY_CLASSES_ROOT, library.Key.c_str()); // it stays where another version stands in it
    return result;
}

} // namespace

HRESULT Register() noexcept
{
    const HRESULT result = Guarded(&RegisterAll);
    if (FAILED(result)) {
        static_cast<void>(Unregister()); // why the registration failed is the answer
    }
    return result;
}

HRESULT Unregister() noexcept
{
    return Guarded(&UnregisterAll);
}

} // namespace acg
