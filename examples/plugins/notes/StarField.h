#pragma once

#include <QAbstractSlider>

/// A field for 0 to 5 stars. Arrows, digits and clicks change them, and a click on the last one that shines takes all
/// away. What a slider is to a screen reader, with a name and a value, the field is too.
class CStarField : public QAbstractSlider
{
    Q_OBJECT

public:
    explicit CStarField(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    QRect GetPlace(int star) const; // from 1 on
};
