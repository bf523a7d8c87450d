#pragma once

#include "BaseDialog.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;

/// Asks for the language, which changes at once and changes back when the dialog is cancelled, and
/// for how the size of a picture is shown, which is stored when the dialog is accepted.
class PreferencesDialog : public VEK_NAMESPACE::CBaseDialog
{
    Q_OBJECT

public:
    explicit PreferencesDialog(QWidget* parent = nullptr);

public Q_SLOTS:
    void accept() override;
    void reject() override;

protected:
    void changeEvent(QEvent* event) override;

private:
    void retranslate();

    /// Of the language when the dialog was opened. A number that no language has has no row.
    unsigned int m_formerNumber = 0;
    int m_formerRow = -1;
    QComboBox* m_languageCombo = nullptr;
    QComboBox* m_unitsCombo = nullptr;
    QCheckBox* m_showImageSizeCheckBox = nullptr;
    QLabel* m_titleLabel = nullptr;
    QLabel* m_languageLabel = nullptr;
    QLabel* m_unitsLabel = nullptr;
    QPushButton* m_cancelButton = nullptr;
    QPushButton* m_okButton = nullptr;
};
