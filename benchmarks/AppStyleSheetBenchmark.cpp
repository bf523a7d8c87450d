// Dressing the application costs at most 1.1 times one QApplication::setStyleSheet() of the same
// text, which is at hand. Each turn goes from no sheet to the
// product's, with a window of all kinds of controls open.

#include "Benchmarks.h"
#include "LanguageManager.h"
#include "SharedUtils.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QToolButton>

using VEK_NAMESPACE::CLanguageManager;
using VEK_NAMESPACE::setPredefinedAppStyleSheet;

namespace {

QString sheetText()
{
    QByteArray text;
    for (const char* name : {"custom", "slider", "settings", "message_box", "mac"}) {
        QFile file(QStringLiteral(":/qss/%1.qss").arg(QLatin1String(name)));
        if (file.open(QIODevice::ReadOnly))
            text += file.readAll();
    }
    return QString::fromUtf8(text);
}

/// Five rows of ten controls.
void addControls(QWidget* window)
{
    auto* grid = new QGridLayout(window);
    grid->setSizeConstraint(QLayout::SetNoConstraint); // the window keeps its size
    for (int row = 0; row < 5; ++row) {
        QWidget* const controls[] = {new QCheckBox(QStringLiteral("Check")),
                                     new QComboBox,
                                     new QGroupBox(QStringLiteral("Group")),
                                     new QLabel(QStringLiteral("Label")),
                                     new QLineEdit(QStringLiteral("Text")),
                                     new QPushButton(QStringLiteral("Push")),
                                     new QRadioButton(QStringLiteral("Radio")),
                                     new QSlider(Qt::Horizontal),
                                     new QSpinBox,
                                     new QToolButton};
        int column = 0;
        for (QWidget* control : controls)
            grid->addWidget(control, row, column++);
    }
}

template <typename SetSheet>
double secondsToSet(SetSheet setSheet)
{
    qApp->setStyleSheet(QString());
    QApplication::processEvents();
    const double seconds = cpuTimeOf(setSheet);
    QApplication::processEvents();
    return seconds;
}

PairedTimes dressApplication()
{
    CLanguageManager::instance()->loadLanguages();
    const QString text = sheetText();
    QWidget window;
    addControls(&window);
    window.show();

    const auto setProductsSheet = [] { setPredefinedAppStyleSheet(QString(), qApp); };
    setProductsSheet();
    require(!text.isEmpty() && qApp->styleSheet() == text, "the sheet is another one");
    const PairedTimes times = pairedTurns(
        101, [&] { return secondsToSet(setProductsSheet); },
        [&] { return secondsToSet([&] { qApp->setStyleSheet(text); }); });
    qApp->setStyleSheet(QString());
    return times;
}

} // namespace

void addAppStyleSheet(Benchmarks& benchmarks)
{
    benchmarks.figures.push_back({QStringLiteral("style: dress the application"),
                                  QStringLiteral("one setStyleSheet()"), atMostTimes(1.1),
                                  dressApplication});
}
