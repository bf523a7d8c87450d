#pragma once

#include "TemporarySettings.h"

#include <QObject>
#include <QString>

#include <memory>

class QWidget;
class Watchdog;

/// One acceptance test in this process: settings that go with the run, the script, its report and
/// what the process tells about it.
class AcceptanceRun : public QObject
{
    Q_OBJECT

public:
    enum ExitStatus
    {
        Passed = 0,
        Failed = 1,
        NotRun = 2, ///< no readable script, or no report
        Hung = 3 ///< the script never gave control back
    };

    struct Options
    {
        QString script;
        QString reportDir; ///< empty: the report lies beside the script
        int timeOutMs = -1;
    };

    /// From here on settings are temporary, so make it before anything reads them. A file
    /// "DefaultTemporarySettins.ini" beside the script gives their first values.
    explicit AcceptanceRun(const Options& options);
    ~AcceptanceRun() override;

    /// Loads the script and opens the report. False with errorMessage() if the test can't be run.
    bool load();
    QString errorMessage() const;

    /// Gives the script its globals and lets it start once the event loop runs; the application
    /// quits when the test has ended.
    void start(QWidget* mainWindow);

    /// How the test went; to be asked when the event loop has ended.
    ExitStatus exitStatus() const;

private:
    bool copyScriptToReportDir();
    QString reportPath() const;
    QString lastReportLine() const;

    Options m_options;
    QString m_errorMessage;
    VEK_NAMESPACE::CTemporarySettings m_settings;
    std::unique_ptr<Watchdog> m_watchdog;
};
