#include "RoomyStyle.h"

#include <QStyleOption>

namespace {

constexpr int TEXT_GAP = 8;
// What has to be added to the style's own gaps, on each side.
constexpr int LINE_GAP = TEXT_GAP - 2; // Qt's line edits have these in addition
constexpr int SPIN_BOX_GAP = 3;        // so much it keeps around its line edit, which has no frame
constexpr int HEADER_GAP = TEXT_GAP - 2;
constexpr int BUTTON_GAP = 4;
constexpr int CHOICE_GAP = 3;

int GetFurtherWidth(QStyle::ContentsType type)
{
    switch (type) {
    case QStyle::CT_LineEdit:
    case QStyle::CT_SpinBox: // which contains a line edit
        return 2 * LINE_GAP;
    case QStyle::CT_HeaderSection:
        return 2 * HEADER_GAP;
    case QStyle::CT_ToolButton:
        return 2 * BUTTON_GAP;
    case QStyle::CT_ComboBox:
        return CHOICE_GAP;
    default:
        return 0;
    }
}

} // namespace

int CRoomyStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    // Of a cell, where the style adds one pixel.
    return metric == PM_FocusFrameHMargin ? TEXT_GAP - 1 : QProxyStyle::pixelMetric(metric, option, widget);
}

QRect CRoomyStyle::subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget) const
{
    const QRect rect = QProxyStyle::subElementRect(element, option, widget);
    if (element == SE_HeaderLabel)
        return rect.adjusted(HEADER_GAP, 0, -HEADER_GAP, 0);
    if (element != SE_LineEditContents)
        return rect;
    const auto *frame = qstyleoption_cast<const QStyleOptionFrame *>(option);
    const int gap = frame && frame->lineWidth == 0 ? LINE_GAP - SPIN_BOX_GAP : LINE_GAP;
    return rect.adjusted(gap, 0, -gap, 0);
}

QRect CRoomyStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                                  const QWidget *widget) const
{
    const QRect rect = QProxyStyle::subControlRect(control, option, part, widget);
    if (control != CC_ComboBox || part != SC_ComboBoxEditField)
        return rect;
    const bool isLeft = option->direction == Qt::LeftToRight;
    return rect.adjusted(isLeft ? CHOICE_GAP : 0, 0, isLeft ? 0 : -CHOICE_GAP, 0);
}

QSize CRoomyStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                                    const QWidget *widget) const
{
    return QProxyStyle::sizeFromContents(type, option, size, widget) + QSize(GetFurtherWidth(type), 0);
}
