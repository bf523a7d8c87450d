#pragma once

#include <QColor>

class QApplication;

/// Gives the sample host the product's dark ground and quiet text.
void applyHostStyle(QApplication& application);

/// What pictures lie on.
QColor hostGround();
