// A host that does one thing for the tests, most of all write settings, and reports each step on
// its standard output.

#include "ApplicationParametersHandler.h"
#include "MessageBox.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QApplication>
#include <QTimer>

#include <cstdio>

using VEK_NAMESPACE::CSettings;
using VEK_NAMESPACE::CTemporarySettings;

namespace {

void report(const QString& line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

/// Goes on from what a run before has stored, two keys at a time, for ever.
[[noreturn]] void countPersistently()
{
    const QString count = QStringLiteral("host/count");
    const QString twin = QStringLiteral("another/twin");
    for (int n = CSettings().value(count, 0).toInt() + 1;; ++n) {
        {
            CSettings settings;
            settings.setValue(count, n);
            settings.setValue(twin, n);
            settings.sync();
        }
        report(QString::number(n));
    }
}

/// Counts in an overlay, where each write is synced by itself.
[[noreturn]] void countInAnOverlay(const char* location)
{
    CTemporarySettings overlay(location);
    CSettings::setTemporarySettings(overlay);
    report(overlay.tempSettingsPath());
    for (int n = 1;; ++n) {
        CSettings settings;
        settings.setValue(QStringLiteral("count"), n);
        settings.setValue(QStringLiteral("twin"), n);
        report(QString::number(n));
    }
}

/// Writes keys of its own, each synced, and then one that others write as well.
void writeKeys(const QString& name, int count)
{
    report(QStringLiteral("ready"));
    std::getchar(); // so that several begin at once
    for (int n = 0; n < count; ++n) {
        CSettings settings;
        settings.setValue(QStringLiteral("%1/%2").arg(name).arg(n), n);
        settings.setValue(QStringLiteral("shared"), name);
        settings.sync();
    }
    report(QStringLiteral("done"));
}

/// Changes settings on request, with \a change, and tells afterwards what a fresh object reads.
void changeOnRequest(void (*change)(CSettings& settings, int n))
{
    for (int n = 0;; ++n) {
        report(QStringLiteral("ready"));
        if (std::getchar() == EOF)
            return;
        {
            CSettings settings;
            change(settings, n);
            settings.sync();
        }
        const CSettings settings;
        const QString large = settings.value(QStringLiteral("group%1/large").arg(n)).toString();
        report(
            QStringLiteral("%1 %2 %3")
                .arg(settings.value(QStringLiteral("first")).toString())
                .arg(large.size())
                .arg(settings.value(QStringLiteral("none"), QStringLiteral("default")).toString()));
    }
}

void writeLargeValue(CSettings& settings, int n)
{
    settings.setValue(QStringLiteral("group%1/large").arg(n), QString(4096, QLatin1Char('x')));
}

void writeArray(CSettings& settings, int n)
{
    settings.beginWriteArray(QStringLiteral("array%1").arg(n), -1);
    for (int i = 0; i < 2; ++i) {
        settings.setArrayIndex(i);
        settings.setValue(QStringLiteral("entry"), i);
    }
    settings.endArray();
}

void removeValue(CSettings& settings, int)
{
    settings.remove(QStringLiteral("victim"));
}

} // namespace

int main(int argc, char** argv)
{
    const QByteArray command(argc > 1 ? argv[1] : "");
    if (command == "box") {
        const QApplication application(argc, argv);
        QTimer::singleShot(0, qApp, [] { report(QStringLiteral("box")); });
        CMessageBox::yesNoMessage(nullptr, QStringLiteral("A question?"), 165);
        report(QStringLiteral("answered"));
        return 0;
    }

    const QCoreApplication application(argc, argv);
    if (command == "count" && argc == 2)
        countPersistently();
    if (command == "overlay" && argc == 3)
        countInAnOverlay(argv[2]);
    if (command == "keys" && argc == 4) {
        writeKeys(QString::fromUtf8(argv[2]), QByteArray(argv[3]).toInt());
    } else if (command == "large") {
        changeOnRequest(writeLargeValue);
    } else if (command == "array") {
        changeOnRequest(writeArray);
    } else if (command == "remove") {
        changeOnRequest(removeValue);
    } else if (command == "hand-over") {
        report(QStringLiteral("begins"));
        const CApplicationParametersHandler_Abstract handler(1, argv);
        report(QStringLiteral("goes on"));
    } else {
        return 2;
    }
    return 0;
}
