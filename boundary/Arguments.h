// Arguments and results on their way between a caller and the class.
#pragma once

#include "boundary/Results.h"
#include "encoder/Enums.h"
#include "platform/Secret.h"

#include <ACG_MultiISO_TV.h>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace acg
{

/// The caller's own text, with what stands behind a NUL in it; null is empty text.
inline std::wstring_view TextOf(BSTR Text)
{
    return {Text, SysStringLen(Text)};
}

/// A text that the caller will own.
BSTR NewText(std::wstring_view Text);

/// A result as the caller gets it.
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

/// A copy of a caller's variable, for the class to work on. The variable changes by GiveBack alone, so not in
/// a call that breaks off.
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

/// The same of a text, which may hold the keys of a sector.
template <>
class Variable<BSTR>
{
public:
    explicit Variable(BSTR* OfCaller) : Copy(TextOf(*OfCaller)), m_ofCaller(*OfCaller) {}
    ~Variable() { Wipe(Copy); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    /// Frees the caller's text and puts the new one in its place. If there is no memory for that, the
    /// variable stays as it is, and so must come first among those that are given back.
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

    /// Becomes what the system makes of a value as another type, or stays as it is.
    HRESULT Convert(const VARIANT& From, VARTYPE Type, LCID Language);
};

/// An argument in whose place the caller says that there is none.
inline bool IsLeftOut(const VARIANT& Value)
{
    return V_VT(&Value) == VT_ERROR && V_ERROR(&Value) == DISP_E_PARAMNOTFOUND;
}

/// How a script gives a variable.
inline constexpr VARTYPE VariantReference = VT_BYREF | VT_VARIANT;

/// Follows a script's reference to its variable, and a second one where that is a parameter of its procedure.
/// What is left may be a reference with a type. E_POINTER: one leads nowhere.
HRESULT Follow(VARIANT*& Value);

/// No byte has this value.
inline constexpr int32_t NoByte = -1;

/// What a caller means by BX, as the system converts it: nothing where it is left out, NoByte where the
/// system refuses. The caller's variable stays as it is.
std::optional<int32_t> ConvertToByte(VARIANT* Value);

} // namespace acg
