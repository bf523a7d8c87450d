#pragma once

#include "BaseDialog.h"

class QCheckBox;
class QComboBox;

/// Asks how the size of a picture is shown and stores the answer in the settings.
class PreferencesDialog : public VEK_NAMESPACE::CBaseDialog
{
    Q_OBJECT

public:
    explicit PreferencesDialog(QWidget* parent = nullptr);

public Q_SLOTS:
    void accept() override;

private:
    QComboBox* m_unitsCombo = nullptr;
    QCheckBox* m_showImageSizeCheckBox = nullptr;
};
