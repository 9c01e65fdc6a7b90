#include "acg/encoder/NumberReading.h"

#include "acg/platform/HexText.h"

#include <algorithm>
#include <string>
#include <utility>

namespace acg
{

namespace
{

constexpr int Decimal = 10;
/// Beyond every field: a number above this need not grow further.
constexpr int64_t Beyond = 1'000'000'000'000;

/// Reads a text, skipping the characters that don't count.
class Reading
{
public:
    explicit Reading(std::wstring_view text) : m_rest(text) { SkipBlanks(); }

    /// Steps over the next character if it is one of those.
    bool Take(std::wstring_view characters)
    {
        if (m_rest.empty() || characters.find(m_rest.front()) == std::wstring_view::npos) {
            return false;
        }
        Step();
        return true;
    }

    /// Steps over the next character if it is a digit to that base.
    std::optional<int> TakeDigit(int base)
    {
        const std::optional<int> digit = m_rest.empty() ? std::nullopt : HexDigit(m_rest.front());
        if (!digit || *digit >= base) {
            return std::nullopt;
        }
        Step();
        m_hasDigits = true;
        return digit;
    }

    /// True if digits were read, and nothing is left.
    [[nodiscard]] bool IsComplete() const { return m_hasDigits && m_rest.empty(); }

private:
    void Step()
    {
        m_rest.remove_prefix(1);
        SkipBlanks();
    }

    void SkipBlanks() { m_rest.remove_prefix(std::min(m_rest.find_first_not_of(L" \t\n"), m_rest.size())); }

    std::wstring_view m_rest;
    bool m_hasDigits = false;
};

int64_t Grow(int64_t number, int base, int digit)
{
    return number < Beyond ? number * base + digit : number;
}

int64_t ReadDigits(Reading& reading, int base)
{
    int64_t number = 0;
    while (const std::optional<int> digit = reading.TakeDigit(base)) {
        number = Grow(number, base, *digit);
    }
    return number;
}

/// True for a minus.
bool TakeSign(Reading& reading)
{
    return !reading.Take(L"+") && reading.Take(L"-");
}

/// The digits as written, without zeros at either end, and the position of the point: the number of digits
/// before it. It may also lie left of all digits, or right of them.
struct Written {
    std::string Digits;
    int64_t BeforePoint = 0;
};

Written ReadWritten(Reading& reading)
{
    Written number;
    bool pointSeen = false;
    while (true) {
        if (!pointSeen && reading.Take(L".")) {
            pointSeen = true;
            continue;
        }
        const std::optional<int> digit = reading.TakeDigit(Decimal);
        if (!digit) {
            break;
        }
        const bool counts = *digit != 0 || !number.Digits.empty();
        if (counts) {
            number.Digits += static_cast<char>(*digit);
        }
        // A leading zero after the point moves it to the left of the digits to come.
        if (counts && !pointSeen) {
            ++number.BeforePoint;
        } else if (!counts && pointSeen) {
            --number.BeforePoint;
        }
    }
    number.Digits.erase(number.Digits.find_last_not_of('\0') + 1);
    if (reading.Take(L"EeDd")) {
        const bool negative = TakeSign(reading);
        const int64_t exponent = ReadDigits(reading, Decimal);
        number.BeforePoint += negative ? -exponent : exponent;
    }
    return number;
}

int64_t Round(const Written& number)
{
    const auto digitAt = [&number](int64_t place) -> int {
        const bool written = place >= 0 && std::cmp_less(place, number.Digits.size());
        return written ? number.Digits[static_cast<size_t>(place)] : 0;
    };
    int64_t whole = 0;
    for (int64_t place = 0; place < number.BeforePoint && whole < Beyond && !number.Digits.empty(); ++place) {
        whole = Grow(whole, Decimal, digitAt(place));
    }
    constexpr int Half = 5;
    const int firstDropped = digitAt(number.BeforePoint);
    const bool moreDropped = std::cmp_greater(number.Digits.size(), number.BeforePoint + 1);
    const bool isOdd = whole % 2 != 0;
    return firstDropped > Half || (firstDropped == Half && (moreDropped || isOdd)) ? whole + 1 : whole;
}

int64_t ReadWhole(Reading& reading)
{
    if (reading.Take(L"&")) {
        if (reading.Take(L"Hh")) {
            return ReadDigits(reading, /*base=*/16);
        }
        return reading.Take(L"Oo") ? ReadDigits(reading, /*base=*/8) : 0;
    }
    const bool negative = TakeSign(reading);
    const int64_t number = Round(ReadWritten(reading));
    return negative ? -number : number;
}

} // namespace

NumberRead ReadNumber(std::wstring_view text)
{
    Reading reading(text);
    const int64_t number = ReadWhole(reading);
    return {number, reading.IsComplete()};
}

std::wstring DecimalText(int32_t number)
{
    const std::string digits = std::to_string(number); // std::to_wstring would link the printf family
    return {digits.begin(), digits.end()};
}

} // namespace acg
