#include "acg/forms/FormsWindowsDrawing.h"

#include <cmath>

namespace acg
{

namespace
{

constexpr int TwipsPerInch = 1440;
constexpr int PointsPerInch = 72;

/// The process has one resolution for all screens.
int ScreenDpi()
{
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dpi;
}

struct ColourPair {
    COLORREF Background;
    COLORREF Text;
};

/// The system's pairs, in the order of Colour::Source: its text colours change with its backgrounds.
constexpr struct {
    int Background;
    int Text;
} SystemPairs[] = {{COLOR_BTNFACE, COLOR_BTNTEXT},
                   {COLOR_WINDOW, COLOR_WINDOWTEXT},
                   {COLOR_MENU, COLOR_MENUTEXT},
                   {COLOR_3DHIGHLIGHT, COLOR_BTNTEXT}};

ColourPair ColoursOf(const Colour& background)
{
    if (background.From == Colour::Source::Own) {
        return {RGB(background.Red, background.Green, background.Blue), RGB(0, 0, 0)};
    }
    const auto& pair = SystemPairs[static_cast<size_t>(background.From)];
    return {GetSysColor(pair.Background), GetSysColor(pair.Text)};
}

HBRUSH Brush(HDC context, COLORREF colour)
{
    SetDCBrushColor(context, colour);
    return static_cast<HBRUSH>(GetStockObject(DC_BRUSH));
}

} // namespace

RECT Pixels(const Area& twips)
{
    const auto pixels = [dpi = ScreenDpi()](int value) { return LONG{MulDiv(value, dpi, TwipsPerInch)}; };
    return {pixels(twips.Left), pixels(twips.Top), pixels(twips.Left + twips.Width),
            pixels(twips.Top + twips.Height)};
}

FontPointer MakeFont(double points)
{
    const auto height = static_cast<int>(std::lround(points * ScreenDpi() / PointsPerInch));
    return FontPointer(CreateFontW(-height, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                                   OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                                   DEFAULT_PITCH | FF_DONTCARE, L"Tahoma"));
}

void FillArea(HDC context, const RECT& area, const Colour& background)
{
    FillRect(context, &area, Brush(context, ColoursOf(background).Background));
}

HBRUSH SetTextColours(HDC context, const Colour& background, bool enabled)
{
    const ColourPair colours = ColoursOf(background);
    SetTextColor(context, enabled ? colours.Text : GetSysColor(COLOR_GRAYTEXT));
    SetBkColor(context, colours.Background);
    return Brush(context, colours.Background);
}

} // namespace acg
