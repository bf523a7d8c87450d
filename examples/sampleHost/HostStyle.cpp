#include "HostStyle.h"

#include <QApplication>
#include <QFile>
#include <QPalette>
#include <QStyleFactory>

namespace {

QPalette darkPalette()
{
    const QColor panel(0x33, 0x33, 0x33);
    const QColor text(0xab, 0xab, 0xab);
    const QColor disabledText(0x5a, 0x5a, 0x5a);
    const QColor highlight(0x8c, 0xbc, 0xda);

    QPalette palette(panel, hostGround());
    palette.setColor(QPalette::Base, hostGround());
    for (const QPalette::ColorRole role :
         {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, disabledText);
    }
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, hostGround());
    palette.setColor(QPalette::ToolTipBase, panel);
    palette.setColor(QPalette::ToolTipText, text);
    return palette;
}

const char styleSheet[] = R"(
QMenuBar { background-color: #222222; color: #ababab; border-bottom: 1px solid #1b1b1b; padding: 2px 20px; }
QMenuBar::item { background: transparent; padding: 5px 12px; border-radius: 4px; }
QMenuBar::item:selected { background-color: #444444; color: #e5e5e5; }
QMenu { background-color: #333333; color: #cccccc; border: 1px solid #444444; padding: 6px 0; }
QMenu::item { padding: 6px 40px 6px 28px; }
QMenu::item:selected { background-color: #688fa7; color: white; }
QMenu::item:disabled { color: #6a6a6a; background: transparent; }
QMenu::separator { height: 1px; background-color: #444444; margin: 6px 0; }
QMenu::indicator { width: 12px; height: 12px; left: 9px; }

#header { background-color: #222222; border: none; border-bottom: 1px solid #333333; }
#toolPanel { background-color: #222222; border: none; border-left: 1px solid #333333; }
#busyBar { background-color: #222222; border: none; border-top: 1px solid #333333; }
#fileNameLabel { color: #e5e5e5; font-weight: bold; }
#imageSizeLabel { font-size: 11px; }
#sectionLabel { color: #8cbcda; font-weight: bold; }
#dialogTitle { color: #e5e5e5; font-size: 17px; }
#sliderLabel { color: #cccccc; }

QLineEdit {
    background-color: #1b1b1b; border: 1px solid #444444; border-radius: 4px;
    min-height: 22px; padding: 3px 8px; selection-background-color: #688fa7;
    selection-color: white;
}
QLineEdit:focus { border-color: #8cbcda; }

QComboBox {
    background-color: #1b1b1b; color: #cccccc; border: 1px solid #444444; border-radius: 4px;
    min-height: 22px; padding: 3px 8px;
}
QComboBox:focus, QComboBox:on { border-color: #8cbcda; }
QComboBox QAbstractItemView {
    background-color: #333333; color: #cccccc; border: 1px solid #444444;
    selection-background-color: #688fa7; selection-color: white;
}

QCheckBox { color: #cccccc; spacing: 9px; min-height: 24px; }
QCheckBox:hover { color: #e5e5e5; }
QCheckBox:focus { color: #8cbcda; }

QSlider { min-height: 23px; }
QSlider::groove:horizontal { height: 2px; background-color: #444444; border-radius: 1px; }
QSlider::handle:horizontal {
    width: 8px; margin: -9px 0; border-radius: 4px; background-color: #ababab;
}
QSlider::handle:horizontal:hover { background-color: #cccccc; }
QSlider::handle:horizontal:focus { background-color: #8cbcda; }
QSlider::handle:horizontal:pressed { background-color: #8cbcda; }

QProgressBar { background-color: #444444; border: none; border-radius: 2px; max-height: 4px; }
QProgressBar::chunk { background-color: #8cbcda; border-radius: 2px; }

QPushButton {
    background-color: #cccccc; color: #222222; border: none; border-radius: 5px;
    min-height: 32px; padding: 0 19px;
}
QPushButton:hover, QPushButton:focus { background-color: #c0c0c0; }
QPushButton:pressed { background-color: #aeaeae; }
QPushButton:default, #saveButton { background-color: #688fa7; color: white; }
QPushButton:default:hover, QPushButton:default:focus, #saveButton:hover, #saveButton:focus {
    background-color: #5c8096;
}
QPushButton:default:pressed, #saveButton:pressed { background-color: #537184; }
#toolPanel QPushButton:disabled, #header QPushButton:disabled {
    background-color: #333333; color: #6a6a6a;
}

#preferencesButton, #aboutButton {
    background-color: transparent; color: #ababab; padding: 0 12px;
}
#preferencesButton:hover, #aboutButton:hover, #preferencesButton:focus, #aboutButton:focus {
    background-color: #333333; color: #e5e5e5;
}
#preferencesButton:pressed, #aboutButton:pressed { background-color: #444444; }
#toolPanel #resetButton {
    background-color: transparent; color: #ababab; padding: 0; min-height: 20px;
}
#toolPanel #resetButton:hover, #toolPanel #resetButton:focus { color: #e5e5e5; }
#toolPanel #resetButton:pressed { color: #8cbcda; }

#preferencesDialog #preferencesFrame {
    background-color: #333333; border: 1px solid #444444; border-radius: 8px;
}
#preferencesDialog QLabel { color: #cccccc; }
#preferencesDialog #dialogTitle { color: #e5e5e5; }
#preferencesDialog QPushButton { min-width: 42px; }
)";

QString readText(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

void applyHostStyle(QApplication& application)
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(darkPalette());
    application.setStyleSheet(QString::fromUtf8(styleSheet)
                              + readText(QStringLiteral(":/qss/message_box.qss")));
}

QColor hostGround()
{
    return {0x1b, 0x1b, 0x1b};
}
