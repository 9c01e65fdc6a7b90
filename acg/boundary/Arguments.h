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
inline std::wstring_view ViewOf(BSTR text)
{
    return {text, SysStringLen(text)};
}

/// A text that the caller will own.
BSTR NewText(std::wstring_view text);

/// A result in the caller's type.
template <class Callers, class Own>
Callers ForCaller(const Own& result)
{
    if constexpr (std::is_same_v<Callers, BSTR>) {
        return NewText(result);
    } else {
        return static_cast<Callers>(result);
    }
}

/// The class's own type for a number or an enum of the type library.
template <class Callers>
using OwnType = std::conditional_t<
    std::is_same_v<Callers, ::SCBS_SecurityLevelEnum>, SCBS_SecurityLevelEnum,
    std::conditional_t<std::is_same_v<Callers, ::SCSS_SecurityLevelEnum>, SCSS_SecurityLevelEnum,
                       std::conditional_t<std::is_same_v<Callers, LONG>, int32_t, Callers>>>;

/// A copy of a caller's variable for the class to work on. Only CopyBack changes the variable, so an aborted
/// call leaves it unchanged.
template <class Callers>
class InOut
{
public:
    explicit InOut(Callers* variable) : Copy(static_cast<OwnType<Callers>>(*variable)), m_variable(*variable)
    {
    }
    void CopyBack() { m_variable = static_cast<Callers>(Copy); }

    OwnType<Callers> Copy;

private:
    Callers& m_variable;
};

/// The same for a text, which may hold the keys of a sector.
template <>
class InOut<BSTR>
{
public:
    explicit InOut(BSTR* variable) : Copy(ViewOf(*variable)), m_variable(*variable) {}
    ~InOut() { Wipe(Copy); }
    InOut(const InOut&) = delete;
    InOut& operator=(const InOut&) = delete;
    /// Frees the caller's text and puts the new one in its place. If there is no memory for that, the
    /// variable is unchanged; a text is therefore copied back before other variables.
    void CopyBack();

    std::wstring Copy;

private:
    BSTR& m_variable;
};

/// A variant of our own. A text in it may be a key.
struct OwnVariant : VARIANT {
    OwnVariant() { VariantInit(this); }
    ~OwnVariant();
    OwnVariant(const OwnVariant&) = delete;
    OwnVariant& operator=(const OwnVariant&) = delete;

    /// Becomes the value as the system converts it to that type, or is unchanged.
    HRESULT Convert(const VARIANT& from, VARTYPE type, LCID language);
};

/// An argument that the caller has marked as left out.
inline bool IsLeftOut(const VARIANT& value)
{
    return V_VT(&value) == VT_ERROR && V_ERROR(&value) == DISP_E_PARAMNOTFOUND;
}

/// How a script passes a variable.
inline constexpr VARTYPE VariantReference = VT_BYREF | VT_VARIANT;

/// Follows a script's reference to its variable, and a second one if that is a parameter of its procedure.
/// The result may be a typed reference. E_POINTER: a reference is null.
HRESULT Dereference(VARIANT*& value);

/// No byte has this value.
inline constexpr int32_t NoByte = -1;

/// The caller's BX, as the system converts it: nothing if it is left out, NoByte if the system can't
/// convert it. The caller's variable is unchanged.
std::optional<int32_t> ConvertToByte(VARIANT* value);

} // namespace acg
