#pragma once

class QApplication;

/// Gives the sample host the product's dark ground and quiet text.
void applyHostStyle(QApplication& application);
