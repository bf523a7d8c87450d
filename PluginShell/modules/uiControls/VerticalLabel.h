#pragma once

#include "UtilsDllGlobal.h"

#include <QLabel>

/// A label whose text runs upwards, from the bottom edge on.
///
/// The baseline lies at the font's pixel size plus the top margin, counted from the left edge: give
/// the font a pixel size, one in points counts as -1. The text is drawn as it stands, in one line;
/// QLabel's frame, alignment, indent and text format have no effect. The size hints are QLabel's
/// with width and height exchanged. GUI thread.
class UTILSDLL_EXPORT CVerticalLabel : public QLabel
{
    Q_OBJECT

public:
    /// A label without a text.
    explicit CVerticalLabel(QWidget* parent = nullptr);
    /// A label with a text.
    explicit CVerticalLabel(const QString& text, QWidget* parent = nullptr);
    ~CVerticalLabel() override;

    /// Pixels that the text is moved up. A repaint is up to the caller.
    void setLeftMargin(int margin);

    /// Pixels that the text is moved to the right. A repaint is up to the caller.
    void setTopMargin(int margin);

    /// QLabel's, with width and height exchanged.
    QSize sizeHint() const override;
    /// QLabel's, with width and height exchanged.
    QSize minimumSizeHint() const override;

protected:
    /// Draws the text.
    void paintEvent(QPaintEvent* event) override;

private:
    int m_leftMargin = 0;
    int m_topMargin = 0;
};
