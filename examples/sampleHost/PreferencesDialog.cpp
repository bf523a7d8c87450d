#include "PreferencesDialog.h"

#include "CommonConstants.h"
#include "LanguageManager.h"
#include "Named.h"
#include "Settings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFormLayout>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace VEK_NAMESPACE;

namespace {

constexpr int unitCount = 4;

} // namespace

PreferencesDialog::PreferencesDialog(QWidget* parent)
    : CBaseDialog(parent)
{
    setObjectName(QStringLiteral("preferencesDialog"));

    CLanguageManager* languages = CLanguageManager::instance();
    m_formerNumber = languages->currentLanguageNumber();
    m_formerRow = languages->currentLanguageIndex();
    m_languageCombo = named<QComboBox>("languageCombo");
    m_languageCombo->setModel(languages->model());
    m_languageCombo->setCurrentIndex(m_formerRow);
    connect(m_languageCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), languages,
            &CLanguageManager::changeLanguage);

    m_unitsCombo = named<QComboBox>("unitsCombo");
    for (int i = 0; i < unitCount; ++i)
        m_unitsCombo->addItem(QString());
    m_showImageSizeCheckBox = named<QCheckBox>("showImageSizeCheckBox");

    const CSettings settings;
    m_unitsCombo->setCurrentIndex(
        qBound(0, settings.value(g_ImageSizeUnits, 0).toInt(), m_unitsCombo->count() - 1));
    m_showImageSizeCheckBox->setChecked(settings.value(g_showImageSize, true).toBool());

    m_titleLabel = named<QLabel>("dialogTitle");
    m_languageLabel = named<QLabel>("languageLabel");
    m_unitsLabel = named<QLabel>("unitsLabel");
    m_cancelButton = named<QPushButton>("cancelButton");
    m_okButton = named<QPushButton>("okButton");
    connect(m_cancelButton, &QPushButton::clicked, this, &PreferencesDialog::reject);
    connect(m_okButton, &QPushButton::clicked, this, &PreferencesDialog::accept);

    auto* form = new QFormLayout;
    form->setHorizontalSpacing(24);
    form->setVerticalSpacing(16);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(m_languageLabel, m_languageCombo);
    form->addRow(m_unitsLabel, m_unitsCombo);
    form->addRow(QString(), m_showImageSizeCheckBox);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(11);
    buttons->addStretch(1);
    buttons->addWidget(m_cancelButton);
    buttons->addWidget(m_okButton);

    auto* frame = named<QFrame>("preferencesFrame");
    auto* content = new QVBoxLayout(frame);
    content->setContentsMargins(28, 24, 28, 24);
    content->setSpacing(0);
    content->addWidget(m_titleLabel);
    content->addSpacing(20);
    content->addLayout(form);
    content->addSpacing(28);
    content->addLayout(buttons);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(frame);
    setMinimumWidth(420);

    // Only a button that is in its dialog can be the default one.
    m_cancelButton->setAutoDefault(false);
    m_okButton->setDefault(true);
    retranslate();
}

void PreferencesDialog::accept()
{
    CSettings settings;
    settings.setValue(g_ImageSizeUnits, m_unitsCombo->currentIndex());
    settings.setValue(g_showImageSize, m_showImageSizeCheckBox->isChecked());
    CBaseDialog::accept();
}

void PreferencesDialog::reject()
{
    CLanguageManager* languages = CLanguageManager::instance();
    if (m_formerRow >= 0)
        languages->changeLanguage(m_formerRow);
    else
        languages->setCurrentLanguageNumber(m_formerNumber);
    CBaseDialog::reject();
}

void PreferencesDialog::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    CBaseDialog::changeEvent(event);
}

void PreferencesDialog::retranslate()
{
    setWindowTitle(tr("Preferences"));
    m_titleLabel->setText(tr("Preferences"));
    m_languageLabel->setText(tr("Language"));
    m_languageCombo->setAccessibleName(tr("Language"));
    m_unitsLabel->setText(tr("Units"));
    m_unitsCombo->setAccessibleName(tr("Units"));
    // The order is that of the setting's values.
    const QString units[unitCount] = {tr("Pixels"), tr("Inches"), tr("Centimetres"),
                                      tr("Millimetres")};
    for (int i = 0; i < unitCount; ++i)
        m_unitsCombo->setItemText(i, units[i]);
    m_showImageSizeCheckBox->setText(tr("Show the image size"));
    m_cancelButton->setText(tr("Cancel"));
    m_okButton->setText(tr("OK"));
}
