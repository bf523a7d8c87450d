#include "ToolPanel.h"

#include "Named.h"

#include <QCheckBox>
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
    m_titleEdit->setPlaceholderText(tr("Untitled"));
    connect(m_titleEdit, &QLineEdit::textChanged, this, &ToolPanel::titleChanged);

    m_resetButton = named<QPushButton>("resetButton", tr("Reset"));
    m_autoCropCheckBox = named<QCheckBox>("autoCropCheckBox", tr("Crop empty corners"));
    m_autoCropCheckBox->setChecked(true);
    connect(m_autoCropCheckBox, &QCheckBox::toggled, this, &ToolPanel::correctionsChanged);
    m_gridCheckBox = named<QCheckBox>("gridCheckBox", tr("Show grid"));
    m_saveButton = named<QPushButton>("saveButton", tr("Save…"));
    m_exportButton = named<QPushButton>("exportButton", tr("Export…"));
    m_closeButton = named<QPushButton>("closeButton", tr("Close"));

    auto* correctionsHead = new QHBoxLayout;
    correctionsHead->addWidget(named<QLabel>("sectionLabel", tr("Corrections")), 1);
    correctionsHead->addWidget(m_resetButton);

    auto* buttons = new QGridLayout;
    buttons->setSpacing(8);
    buttons->addWidget(m_saveButton, 0, 0, 1, 2);
    buttons->addWidget(m_exportButton, 1, 0);
    buttons->addWidget(m_closeButton, 1, 1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 24, 24, 24);
    layout->setSpacing(8);
    layout->addWidget(named<QLabel>("sectionLabel", tr("Title")));
    layout->addWidget(m_titleEdit);
    layout->addSpacing(20);
    layout->addLayout(correctionsHead);
    layout->addWidget(createSlider("horizonSlider", tr("Horizon"), greatestHorizon, 0.1, 1,
                                   QString(QChar(0x00B0))));
    layout->addWidget(
        createSlider("distortionSlider", tr("Distortion"), greatestAmount, 1.0, 0, QString()));
    layout->addWidget(
        createSlider("keystoneSlider", tr("Keystone"), greatestAmount, 1.0, 0, QString()));
    layout->addSpacing(8);
    layout->addWidget(m_autoCropCheckBox);
    layout->addWidget(m_gridCheckBox);
    layout->addStretch(1);
    layout->addLayout(buttons);
}

QWidget* ToolPanel::createSlider(const char* name, const QString& title, int greatest, double unit,
                                 int decimals, const QString& suffix)
{
    auto* slider = named<QSlider>(name, Qt::Horizontal);
    slider->setRange(-greatest, greatest);
    slider->setPageStep(10);
    slider->setAccessibleName(title);
    auto* amount = named<QLabel>("amountLabel");
    amount->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    const auto showAmount = [=] {
        amount->setText(signedNumber(slider->value() * unit, decimals) + suffix);
    };
    showAmount();

    connect(slider, &QSlider::valueChanged, this, [this, showAmount] {
        showAmount();
        Q_EMIT correctionsChanged();
    });
    connect(slider, &QSlider::sliderReleased, this, [this] { Q_EMIT sliderMoved(true); });
    // Keys, the wheel and clicks beside the handle come here only, a drag here too.
    connect(slider, &QSlider::actionTriggered, this, [this, slider] {
        if (!slider->isSliderDown())
            Q_EMIT sliderMoved(false);
    });
    m_sliders.push_back(slider);

    auto* group = new QWidget;
    auto* layout = new QGridLayout(group);
    layout->setContentsMargins(0, 4, 0, 4);
    layout->setSpacing(2);
    layout->addWidget(named<QLabel>("sliderLabel", title), 0, 0);
    layout->addWidget(amount, 0, 1);
    layout->addWidget(slider, 1, 0, 1, 2);
    return group;
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
