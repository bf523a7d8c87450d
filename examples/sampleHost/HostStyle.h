#pragma once

#include <QColor>
#include <QString>

class QApplication;

/// Gives the application the product's style, fonts, logo, language and style sheet. The sheet
/// follows the language.
void applyHostStyle(QApplication& application);

/// What the host's own widgets need beside the product's sheet.
QString hostStyleSheet();

/// What pictures lie on.
QColor hostGround();
