#include "PreferencesDialog.h"

#include "CommonConstants.h"
#include "Named.h"
#include "Settings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace VEK_NAMESPACE;

PreferencesDialog::PreferencesDialog(QWidget* parent)
    : CBaseDialog(parent)
{
    setObjectName(QStringLiteral("preferencesDialog"));
    setWindowTitle(tr("Preferences"));

    // The order is that of the setting's values.
    m_unitsCombo = named<QComboBox>("unitsCombo");
    m_unitsCombo->addItems({tr("Pixels"), tr("Inches"), tr("Centimetres"), tr("Millimetres")});
    m_showImageSizeCheckBox = named<QCheckBox>("showImageSizeCheckBox", tr("Show the image size"));

    const CSettings settings;
    m_unitsCombo->setCurrentIndex(
        qBound(0, settings.value(g_ImageSizeUnits, 0).toInt(), m_unitsCombo->count() - 1));
    m_showImageSizeCheckBox->setChecked(settings.value(g_showImageSize, true).toBool());

    auto* cancelButton = named<QPushButton>("cancelButton", tr("Cancel"));
    auto* okButton = named<QPushButton>("okButton", tr("OK"));
    connect(cancelButton, &QPushButton::clicked, this, &PreferencesDialog::reject);
    connect(okButton, &QPushButton::clicked, this, &PreferencesDialog::accept);

    auto* form = new QFormLayout;
    form->setHorizontalSpacing(24);
    form->setVerticalSpacing(16);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(m_showImageSizeCheckBox);
    form->addRow(tr("Units"), m_unitsCombo);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(11);
    buttons->addStretch(1);
    buttons->addWidget(cancelButton);
    buttons->addWidget(okButton);

    auto* frame = named<QFrame>("preferencesFrame");
    auto* content = new QVBoxLayout(frame);
    content->setContentsMargins(28, 24, 28, 24);
    content->setSpacing(0);
    content->addWidget(named<QLabel>("dialogTitle", windowTitle()));
    content->addSpacing(20);
    content->addLayout(form);
    content->addSpacing(28);
    content->addLayout(buttons);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(frame);
    setMinimumWidth(420);

    // Only a button that is in its dialog can be the default one.
    cancelButton->setAutoDefault(false);
    okButton->setDefault(true);
}

void PreferencesDialog::accept()
{
    CSettings settings;
    settings.setValue(g_ImageSizeUnits, m_unitsCombo->currentIndex());
    settings.setValue(g_showImageSize, m_showImageSizeCheckBox->isChecked());
    CBaseDialog::accept();
}
