#include "ToolPanel.h"

#include "IconViewer.h"
#include "Named.h"

#include <QCheckBox>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QSlider>
#include <QVBoxLayout>

namespace {

constexpr int greatestHorizon = 150;
constexpr int greatestAmount = 100;
constexpr QSize iconSize(16, 16);

QString signedNumber(double value, int decimals)
{
    const QString number = QLocale().toString(value, 'f', decimals);
    return value > 0.0 ? QLocale().positiveSign() + number : number;
}

} // namespace

ToolPanel::ToolPanel(QWidget* parent)
    : QFrame(parent)
{
    setObjectName(QStringLiteral("toolPanel"));
    setFixedWidth(288);

    m_titleEdit = named<QLineEdit>("titleEdit");
    connect(m_titleEdit, &QLineEdit::textChanged, this, &ToolPanel::titleChanged);

    m_resetButton = named<QPushButton>("resetButton");
    m_resetButton->setFlat(true);
    m_autoCropCheckBox = named<QCheckBox>("autoCropCheckBox");
    m_autoCropCheckBox->setChecked(true);
    connect(m_autoCropCheckBox, &QCheckBox::toggled, this, &ToolPanel::correctionsChanged);
    m_gridCheckBox = named<QCheckBox>("gridCheckBox");
    m_saveButton = named<QPushButton>("saveButton");
    m_exportButton = named<QPushButton>("exportButton");
    m_closeButton = named<QPushButton>("closeButton");

    m_titleLabel = named<QLabel>("sectionLabel");
    m_correctionsLabel = named<QLabel>("sectionLabel");

    auto* correctionsHead = new QHBoxLayout;
    correctionsHead->addWidget(m_correctionsLabel, 1);
    correctionsHead->addWidget(m_resetButton);

    auto* buttons = new QGridLayout;
    buttons->setSpacing(8);
    buttons->setColumnStretch(0, 1);
    buttons->setColumnStretch(1, 1);
    buttons->addWidget(m_saveButton, 0, 0, 1, 2);
    buttons->addWidget(m_exportButton, 1, 0);
    buttons->addWidget(m_closeButton, 1, 1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 24, 24, 24);
    layout->setSpacing(8);
    layout->addWidget(m_titleLabel);
    layout->addWidget(m_titleEdit);
    layout->addSpacing(20);
    layout->addLayout(correctionsHead);
    layout->addWidget(createSlider("horizonSlider", ":/icons/horizon/horizon_idle.svg",
                                   greatestHorizon, {0.1, 1, QString(QChar(0x00B0))}));
    layout->addWidget(createSlider("distortionSlider", ":/icons/distortion/distortion_idle.svg",
                                   greatestAmount, {1.0, 0, QString()}));
    layout->addWidget(createSlider("keystoneSlider", ":/icons/keystoning/keystoning_idle.svg",
                                   greatestAmount, {1.0, 0, QString()}));
    layout->addSpacing(8);
    layout->addWidget(m_autoCropCheckBox);
    layout->addWidget(m_gridCheckBox);
    layout->addStretch(1);
    layout->addLayout(buttons);
    retranslate();
}

QWidget* ToolPanel::createSlider(const char* name, const char* icon, int greatest,
                                 const Amount& amount)
{
    const size_t index = m_sliders.size();
    auto* slider = named<QSlider>(name, Qt::Horizontal);
    slider->setRange(-greatest, greatest);
    slider->setPageStep(10);
    auto* amountLabel = named<QLabel>("amountLabel");
    amountLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* viewer = named<CIconViewer>("sliderIcon");
    viewer->setMandatoryImageSize(iconSize);
    viewer->setFixedSize(iconSize);
    viewer->setIcon(QIcon(QLatin1String(icon)));
    auto* label = named<QLabel>("sliderLabel");

    connect(slider, &QSlider::valueChanged, this, [this, index] {
        showAmount(index);
        Q_EMIT correctionsChanged();
    });
    connect(slider, &QSlider::sliderReleased, this, [this] { Q_EMIT sliderMoved(true); });
    // Keys, the wheel and clicks beside the handle come here only, a drag here too.
    connect(slider, &QSlider::actionTriggered, this, [this, slider] {
        if (!slider->isSliderDown())
            Q_EMIT sliderMoved(false);
    });
    m_sliders.push_back(slider);
    m_sliderLabels.push_back(label);
    m_amountLabels.push_back(amountLabel);
    m_amounts.push_back(amount);

    auto* group = new QWidget;
    auto* layout = new QGridLayout(group);
    layout->setContentsMargins(0, 4, 0, 4);
    layout->setHorizontalSpacing(8);
    layout->setVerticalSpacing(2);
    layout->setColumnStretch(1, 1);
    layout->addWidget(viewer, 0, 0);
    layout->addWidget(label, 0, 1);
    layout->addWidget(amountLabel, 0, 2);
    layout->addWidget(slider, 1, 0, 1, 3);
    return group;
}

void ToolPanel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QFrame::changeEvent(event);
}

void ToolPanel::retranslate()
{
    m_titleLabel->setText(tr("Title"));
    m_titleEdit->setPlaceholderText(tr("Untitled"));
    m_titleEdit->setAccessibleName(tr("Title"));
    m_correctionsLabel->setText(tr("Corrections"));
    m_resetButton->setText(tr("Reset"));
    const QString names[] = {tr("Horizon"), tr("Distortion"), tr("Keystone")};
    for (size_t i = 0; i < m_sliders.size(); ++i) {
        m_sliderLabels[i]->setText(names[i]);
        m_sliders[i]->setAccessibleName(names[i]);
        showAmount(i); // languages write numbers differently
    }
    m_autoCropCheckBox->setText(tr("Crop empty corners"));
    m_gridCheckBox->setText(tr("Show grid"));
    m_saveButton->setText(tr("Save…"));
    m_exportButton->setText(tr("Export…"));
    m_closeButton->setText(tr("Close"));
}

void ToolPanel::showAmount(size_t index)
{
    const Amount& amount = m_amounts[index];
    m_amountLabels[index]->setText(
        signedNumber(m_sliders[index]->value() * amount.unit, amount.decimals) + amount.suffix);
}

QString ToolPanel::title() const
{
    return m_titleEdit->text();
}

void ToolPanel::setTitle(const QString& title)
{
    m_titleEdit->setText(title);
}

Corrections ToolPanel::corrections() const
{
    Corrections corrections;
    corrections.horizon = m_sliders[0]->value() / 10.0;
    corrections.distortion = m_sliders[1]->value() / 100.0;
    corrections.keystone = m_sliders[2]->value() / 100.0;
    corrections.autoCrop = m_autoCropCheckBox->isChecked();
    return corrections;
}

void ToolPanel::setCorrections(const Corrections& corrections)
{
    m_sliders[0]->setValue(qRound(corrections.horizon * 10.0));
    m_sliders[1]->setValue(qRound(corrections.distortion * 100.0));
    m_sliders[2]->setValue(qRound(corrections.keystone * 100.0));
    m_autoCropCheckBox->setChecked(corrections.autoCrop);
}
