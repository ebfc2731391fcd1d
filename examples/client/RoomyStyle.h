#pragma once

#include <QProxyStyle>

/// The style of the desktop, with eight pixels between the frame of a field, a button or a cell, and its text. A
/// style sheet of a brand can't have this: the style draws cells by its own measures, without the sheet's.
class CRoomyStyle : public QProxyStyle
{
public:
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                         const QWidget *widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                           const QWidget *widget) const override;
};
