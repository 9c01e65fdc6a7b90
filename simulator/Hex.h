// Hexadecimal text, as the reader's commands, its replies and the device text write bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace simulator
{

/// Upper-case digits, two a byte.
[[nodiscard]] std::string ToHex(std::span<const uint8_t> Bytes);

/// Accepts digits of either case. Returns nothing if the text isn't whole bytes in hexadecimal digits.
[[nodiscard]] std::optional<std::vector<uint8_t>> FromHex(std::string_view Text);

} // namespace simulator
