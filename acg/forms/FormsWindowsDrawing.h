// What the window layer of Windows draws with: pixels, fonts and colours.
#pragma once

#include "acg/forms/Forms.h"

#include <memory>
#include <type_traits>
#include <windows.h>

namespace acg
{

/// Edges are rounded, not sizes: areas that touch in twips touch in pixels.
[[nodiscard]] RECT Pixels(const Area& twips);

struct FontDeleter {
    void operator()(HFONT Font) const { DeleteObject(Font); }
};
using FontPointer = std::unique_ptr<std::remove_pointer_t<HFONT>, FontDeleter>;
[[nodiscard]] FontPointer MakeFont(double points);

void FillArea(HDC context, const RECT& area, const Colour& background);
/// Sets the colours of text on that background. Returns the brush of the background, which nobody has to
/// delete.
HBRUSH SetTextColours(HDC context, const Colour& background, bool enabled);

} // namespace acg
