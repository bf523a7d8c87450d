// Dressing the application costs at most 1.1 times one QApplication::setStyleSheet() of the same
// text, which is at hand: counter "ratio", of CPU time. Each turn goes from no sheet to the
// product's, with a window of all kinds of controls open.

#include "LanguageManager.h"
#include "PairedTimes.h"
#include "SharedUtils.h"

#include <benchmark/benchmark.h>

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

#include <ctime>

using VEK_NAMESPACE::CLanguageManager;
using VEK_NAMESPACE::setPredefinedAppStyleSheet;

namespace {

double cpuSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

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
    const double start = cpuSeconds();
    setSheet();
    const double seconds = cpuSeconds() - start;
    QApplication::processEvents();
    return seconds;
}

void setAppStyleSheetOfTheProduct(benchmark::State& state)
{
    CLanguageManager::instance()->loadLanguages();
    const QString text = sheetText();
    QWidget window;
    addControls(&window);
    window.show();

    secondsToSet([] { setPredefinedAppStyleSheet(QString(), qApp); });
    if (text.isEmpty() || qApp->styleSheet() != text) {
        state.SkipWithError("another sheet than the peer's");
        return;
    }

    PairedTimes times;
    for (auto _ : state) {
        state.SetIterationTime(times.measure(
            [] { return secondsToSet([] { setPredefinedAppStyleSheet(QString(), qApp); }); },
            [&] { return secondsToSet([&] { qApp->setStyleSheet(text); }); }));
    }
    qApp->setStyleSheet(QString());
    state.counters["library_ms"] = times.ours() * 1e3;
    state.counters["peer_ms"] = times.peer() * 1e3;
    state.counters["ratio"] = times.ratio();
}
BENCHMARK(setAppStyleSheetOfTheProduct)
    ->Iterations(200)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
