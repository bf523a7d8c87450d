#include "HostStyle.h"

#include <QApplication>
#include <QPalette>
#include <QStyleFactory>

namespace {

QPalette darkPalette()
{
    const QColor ground(0x1b, 0x1b, 0x1b);
    const QColor panel(0x33, 0x33, 0x33);
    const QColor text(0xab, 0xab, 0xab);
    const QColor disabledText(0x5a, 0x5a, 0x5a);
    const QColor highlight(0x8c, 0xbc, 0xda);

    QPalette palette(panel, ground);
    palette.setColor(QPalette::Base, ground);
    for (const QPalette::ColorRole role :
         {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, disabledText);
    }
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, ground);
    return palette;
}

const char styleSheet[] = R"(
#toolPanel { background-color: #222222; border: none; border-left: 1px solid #333333; }
#fileNameLabel { color: #e5e5e5; font-weight: bold; }
#horizonTitle { color: #8cbcda; }
QSlider { min-height: 21px; }
QSlider::groove:horizontal { height: 2px; background-color: #444444; }
QSlider::handle:horizontal {
    width: 7px; margin: -9px 0; border-radius: 3px; background-color: #ababab;
}
QSlider::handle:horizontal:hover { background-color: #cbcbcb; }
QSlider::handle:horizontal:pressed { background-color: #8cbcda; }
#toolPanel QPushButton {
    background-color: #688fa7; color: white; border: none; border-radius: 5px;
    min-height: 30px; padding: 0 19px;
}
#toolPanel QPushButton:hover { background-color: #5c8096; }
#toolPanel QPushButton:pressed { background-color: #537184; }
)";

} // namespace

void applyHostStyle(QApplication& application)
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(darkPalette());
    application.setStyleSheet(QString::fromUtf8(styleSheet));
}
