#include "boundary/Registration.h"

#include "boundary/Results.h"
#include "boundary/TypeLibrary.h"

#include <ACG_MultiISO_TV.h>
#include <olectl.h>
#include <string>
#include <vector>
#include <wrl/client.h>

namespace acg
{

namespace
{

using Microsoft::WRL::ComPtr;

/// The system's category of Automation classes. It doesn't call them safe for scripts.
constexpr wchar_t ProgrammableCategory[] = L"{40FC6ED5-2438-11CF-A3DB-080036F12502}";

// The version and the language of the type library.
constexpr WORD MajorVersion = 2;
constexpr WORD MinorVersion = 1;
constexpr LCID Language = 0x409;

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

std::wstring TextOf(const GUID& id)
{
    wchar_t text[sizeof("{00000000-0000-0000-0000-000000000000}")];
    static_cast<void>(StringFromGUID2(id, text, static_cast<int>(std::size(text)))); // there is room
    return text;
}

std::wstring KeyOf(const Class& described)
{
    return L"CLSID\\" + TextOf(described.Id);
}

std::vector<Entry> EntriesOf(const Class& described)
{
    const std::wstring key = KeyOf(described);
    return {
        {key, nullptr, described.Name},
        {key + L"\\InprocServer32", nullptr, OwnPath()},
        {key + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
        {key + L"\\ProgID", nullptr, described.Name},
        {key + L"\\TypeLib", nullptr, TextOf(LIBID_ACG_MultiISO_TV)},
        {key + L"\\Programmable", nullptr, L""},
        {key + L"\\Implemented Categories\\" + ProgrammableCategory, nullptr, L""},
        {described.Name, nullptr, described.Name},
        {described.Name + L"\\CLSID", nullptr, TextOf(described.Id)},
    };
}

void CheckClass(LSTATUS status)
{
    Check(status == ERROR_SUCCESS ? S_OK : SELFREG_E_CLASS);
}

void CheckTypeLibrary(HRESULT result)
{
    Check(SUCCEEDED(result) ? S_OK : SELFREG_E_TYPELIB);
}

void RegisterAll()
{
    for (const Class& described : Classes()) {
        for (const auto& [key, name, value] : EntriesOf(described)) {
            CheckClass(RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), name, REG_SZ, value.c_str(),
                                       static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))));
        }
    }
    ComPtr<ITypeLib> library;
    CheckTypeLibrary(LoadTypeLibEx(OwnPath().c_str(), REGKIND_REGISTER, library.GetAddressOf()));
}

void DeleteKey(const std::wstring& key)
{
    const LSTATUS status = RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
    CheckClass(status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status);
}

/// The keys under which everything is registered; what stands below them is the component's alone.
std::vector<std::wstring> AllKeys()
{
    std::vector<std::wstring> keys = {L"Interface\\" + TextOf(__uuidof(_Encoder)),
                                      L"Interface\\" + TextOf(__uuidof(_CError)),
                                      L"TypeLib\\" + TextOf(LIBID_ACG_MultiISO_TV)};
    for (const Class& described : Classes()) {
        keys.push_back(KeyOf(described));
        keys.push_back(described.Name);
    }
    return keys;
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
    // The system does its own part where it can: not for a registration that is half done, or whose library
    // has moved. So the keys are deleted all the same, and that decides.
    static_cast<void>(
        UnRegisterTypeLib(LIBID_ACG_MultiISO_TV, MajorVersion, MinorVersion, Language, SYS_WIN32));
    HRESULT result = S_OK;
    const HRESULT listed = Guarded([&] {
        for (const std::wstring& key : AllKeys()) {
            const HRESULT deleted =
                Guarded([&] { DeleteKey(key); }); // one that fails doesn't keep the others
            result = FAILED(result) ? result : deleted;
        }
    });
    return FAILED(listed) ? listed : result;
}

} // namespace acg
