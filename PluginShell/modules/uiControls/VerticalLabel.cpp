#include "VerticalLabel.h"

#include "CommonConstants.h"

#include <QPainter>

CVerticalLabel::CVerticalLabel(QWidget* parent)
    : QLabel(parent)
{}

CVerticalLabel::CVerticalLabel(const QString& text, QWidget* parent)
    : QLabel(text, parent)
{}

CVerticalLabel::~CVerticalLabel() = default;

void CVerticalLabel::setLeftMargin(int margin)
{
    m_leftMargin = margin;
}

void CVerticalLabel::setTopMargin(int margin)
{
    m_topMargin = margin;
}

QSize CVerticalLabel::sizeHint() const
{
    return QLabel::sizeHint().transposed();
}

QSize CVerticalLabel::minimumSizeHint() const
{
    return QLabel::minimumSizeHint().transposed();
}

void CVerticalLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.rotate(270.0);
    painter.drawText(QPointF(m_leftMargin - height(), m_topMargin + font().pixelSize()), text());
}
