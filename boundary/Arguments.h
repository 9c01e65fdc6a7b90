// Arguments and results on their way between a caller and the class.
#pragma once

#include "boundary/Results.h"
#include "cards/BlockText.h"
#include "platform/Secret.h"

#include <cstdint>
#include <oleauto.h>
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
Callers Outgoing(const Own& Result)
{
    if constexpr (std::is_same_v<Callers, BSTR>) {
        return NewText(Result);
    } else {
        return static_cast<Callers>(Result);
    }
}

/// A caller's variable of a number or an enum, while the class works on it. It changes by GiveBack alone, so
/// not in a call that breaks off.
template <class Own, class Callers>
class NumberVariable
{
public:
    explicit NumberVariable(Callers* Variable)
        : m_variable(Given(Variable)), m_value(static_cast<Own>(*Variable))
    {
    }
    operator Own&() { return m_value; }
    void GiveBack() { m_variable = static_cast<Callers>(m_value); }

private:
    Callers& m_variable;
    Own m_value;
};

template <class Own, class Callers>
NumberVariable<Own, Callers> Number(Callers* Variable)
{
    return NumberVariable<Own, Callers>(Variable);
}

/// A caller's text variable, while the class works on it. It may hold the keys of a sector.
class TextVariable
{
public:
    enum class Incoming {
        Read,
        Ignored, ///< not even copied: what is to come may be longer, and outgrow the copy's room
    };
    TextVariable(BSTR* Variable, Incoming Text);
    operator std::wstring&() { return m_text.InPlace(); }
    /// Frees the caller's text and puts the new one in its place. If there is no memory for that, the
    /// variable stays as it is, and so must come first among those that are given back.
    void GiveBack();

private:
    BSTR& m_variable;
    SecretText m_text;
};

/// A variant of our own. A text in it may be a key.
struct Variant : VARIANT {
    Variant() { VariantInit(this); }
    ~Variant();
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;

    /// Becomes what the system makes of a value as another type. False where it refuses.
    bool Convert(VARIANT& From, VARTYPE Type);
};

/// An argument in whose place the caller says that there is none.
bool IsLeftOut(const VARIANT& Value);

/// No byte has this value.
inline constexpr int32_t NoByte = -1;

/// What a caller gives as a byte, as the system converts it: nothing where it is left out, NoByte where the
/// system refuses. The caller's variable stays as it is.
std::optional<int32_t> ByteOf(VARIANT* Value);

} // namespace acg
