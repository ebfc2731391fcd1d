#include "TextColor.h"

namespace {

constexpr int BLACK_FROM_BRIGHTNESS = 151;

} // namespace

QColor Globals::GetIdealTextColor(const QColor &background)
{
    // The brightness as the eye perceives it.
    const int brightness =
        static_cast<int>(0.299 * background.red() + 0.587 * background.green() + 0.114 * background.blue());
    return brightness >= BLACK_FROM_BRIGHTNESS ? Qt::black : Qt::white;
}
