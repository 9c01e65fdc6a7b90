#include "encoder/NumberReading.h"

#include "reader/HexText.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace acg
{

namespace
{

constexpr int Decimal = 10;
/// Beyond it a double is infinite or 0 whatever the digits before it.
constexpr int LargestExponent = 10000;

/// A number above it doesn't change by another digit.
constexpr double LargestHeld = 1e17;

/// Goes through a text, blind to the characters that don't count.
class Reading
{
public:
    explicit Reading(std::wstring_view Text) : m_rest(Text) { SkipBlanks(); }

    /// Steps over the next character if it is one of those.
    bool Take(std::wstring_view OneOf)
    {
        if (m_rest.empty() || OneOf.find(m_rest.front()) == std::wstring_view::npos) {
            return false;
        }
        Step();
        return true;
    }

    /// Steps over the next character if it is a digit to that base.
    std::optional<int> TakeDigit(int Base)
    {
        if (m_rest.empty()) {
            return std::nullopt;
        }
        const std::optional<int> digit = HexDigit(m_rest.front());
        if (!digit || *digit >= Base) {
            return std::nullopt;
        }
        Step();
        return digit;
    }

private:
    void Step()
    {
        m_rest.remove_prefix(1);
        SkipBlanks();
    }

    void SkipBlanks() { m_rest.remove_prefix(std::min(m_rest.find_first_not_of(L" \t\n"), m_rest.size())); }

    std::wstring_view m_rest;
};

double ReadWhole(Reading& reading, int base)
{
    double number = 0;
    while (const std::optional<int> digit = reading.TakeDigit(base)) {
        number = number * base + *digit;
    }
    return number;
}

/// The exponent behind its letter; 0 if no digit follows.
int ReadExponent(Reading& reading)
{
    const bool negative = reading.Take(L"-");
    if (!negative) {
        reading.Take(L"+");
    }
    int exponent = 0;
    while (const std::optional<int> digit = reading.TakeDigit(Decimal)) {
        exponent = std::min(exponent * Decimal + *digit, LargestExponent);
    }
    return negative ? -exponent : exponent;
}

double ReadDecimal(Reading& reading)
{
    const bool negative = reading.Take(L"-");
    if (!negative) {
        reading.Take(L"+");
    }
    // The digits as one whole number, and the power of ten to divide it by: exact for the 15 digits that a
    // double holds, as neither of the two is then rounded. Of a digit that it can't hold only the place
    // counts.
    double number = 0;
    int behindPoint = 0;
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
        if (number < LargestHeld) {
            number = number * Decimal + *digit;
            behindPoint += pointSeen ? 1 : 0;
        } else {
            behindPoint -= pointSeen ? 0 : 1;
        }
    }
    if (number != 0) {
        const int exponent = (reading.Take(L"EeDd") ? ReadExponent(reading) : 0) - behindPoint;
        number = exponent < 0 ? number / std::pow(Decimal, -exponent) : number * std::pow(Decimal, exponent);
    }
    return negative ? -number : number;
}

} // namespace

double ReadNumber(std::wstring_view Text)
{
    Reading reading(Text);
    if (reading.Take(L"&")) {
        if (reading.Take(L"Hh")) {
            return ReadWhole(reading, /*base=*/16);
        }
        return reading.Take(L"Oo") ? ReadWhole(reading, /*base=*/8) : 0;
    }
    return ReadDecimal(reading);
}

std::optional<int32_t> ToWholeNumber(double Number, int32_t Lowest, int32_t Highest)
{
    double whole = std::floor(Number);
    const double fraction = Number - whole;
    const bool odd = std::fmod(whole, 2) != 0;
    if (fraction > 0.5 || (fraction == 0.5 && odd)) {
        whole += 1;
    }
    // Infinity fails the test, and so does what infinity divided by infinity gives.
    if (!(whole >= Lowest && whole <= Highest)) {
        return std::nullopt;
    }
    return static_cast<int32_t>(whole);
}

} // namespace acg
