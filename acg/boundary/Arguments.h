// Arguments and results on their way between a caller and the class.
#pragma once

#include "acg/boundary/Results.h"
#include "acg/encoder/Enums.h"
#include "acg/platform/Secret.h"

#include <ACG_MultiISO_TV.h>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace acg
{

/// The caller's own text, including what follows a NUL in it; null is empty text.
inline std::wstring_view TextOf(BSTR Text)
{
    return {Text, SysStringLen(Text)};
}

/// A text that the caller will own.
BSTR NewText(std::wstring_view Text);

/// A result in the caller's type.
template <class Callers, class Own>
Callers ForCaller(const Own& Result)
{
    if constexpr (std::is_same_v<Callers, BSTR>) {
        return NewText(Result);
    } else {
        return static_cast<Callers>(Result);
    }
}

/// The class's own type for a number or an enum of the type library.
template <class Callers>
using OwnType = std::conditional_t<
    std::is_same_v<Callers, ::SCBS_SecurityLevelEnum>, SCBS_SecurityLevelEnum,
    std::conditional_t<std::is_same_v<Callers, ::SCSS_SecurityLevelEnum>, SCSS_SecurityLevelEnum,
                       std::conditional_t<std::is_same_v<Callers, LONG>, int32_t, Callers>>>;

/// A copy of a caller's variable for the class to work on. Only GiveBack changes the variable, so an aborted
/// call leaves it unchanged.
template <class Callers>
class Variable
{
public:
    explicit Variable(Callers* OfCaller)
        : Copy(static_cast<OwnType<Callers>>(*OfCaller)), m_ofCaller(*OfCaller)
    {
    }
    void GiveBack() { m_ofCaller = static_cast<Callers>(Copy); }

    OwnType<Callers> Copy;

private:
    Callers& m_ofCaller;
};

/// The same for a text, which may hold the keys of a sector.
template <>
class Variable<BSTR>
{
public:
    explicit Variable(BSTR* OfCaller) : Copy(TextOf(*OfCaller)), m_ofCaller(*OfCaller) {}
    ~Variable() { Wipe(Copy); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    /// Frees the caller's text and puts the new one in its place. If there is no memory for that, the
    /// variable is unchanged; texts are therefore returned before other variables.
    void GiveBack();

    std::wstring Copy;

private:
    BSTR& m_ofCaller;
};

/// A variant of our own. A text in it may be a key.
struct OwnVariant : VARIANT {
    OwnVariant() { VariantInit(this); }
    ~OwnVariant();
    OwnVariant(const OwnVariant&) = delete;
    OwnVariant& operator=(const OwnVariant&) = delete;

    /// Becomes the value as the system converts it to that type, or is unchanged.
    HRESULT Convert(const VARIANT& From, VARTYPE Type, LCID Language);
};

/// An argument that the caller has marked as left out.
inline bool IsLeftOut(const VARIANT& Value)
{
    return V_VT(&Value) == VT_ERROR && V_ERROR(&Value) == DISP_E_PARAMNOTFOUND;
}

/// How a script passes a variable.
inline constexpr VARTYPE VariantReference = VT_BYREF | VT_VARIANT;

/// Follows a script's reference to its variable, and a second one where that is a parameter of its procedure.
/// The result may be a typed reference. E_POINTER: a reference is null.
HRESULT Follow(VARIANT*& Value);

/// No byte has this value.
inline constexpr int32_t NoByte = -1;

/// The caller's BX, as the system converts it: nothing where it is left out, NoByte where the system can't
/// convert it. The caller's variable is unchanged.
std::optional<int32_t> ConvertToByte(VARIANT* Value);

} // namespace acg
