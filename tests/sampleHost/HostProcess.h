#pragma once

#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTest>

/// One run of the sample host in a process of its own.
class HostProcess
{
public:
    explicit HostProcess(const QStringList& arguments, const QString& workingDirectory = QString())
    {
        m_process.setWorkingDirectory(workingDirectory);
        m_process.start(QStringLiteral(SAMPLE_HOST), arguments);
    }

    /// -1 if it crashed or never ended.
    int exitCode()
    {
        return hasEnded() && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode()
                                                                            : -1;
    }

    /// Without what Qt tells of X11 now and then, when a window goes while its place is being asked
    /// for.
    QStringList errorLines()
    {
        hasEnded();
        m_errors += m_process.readAllStandardError();
        QStringList lines =
            QString::fromUtf8(m_errors).split(QLatin1Char('\n'), QString::SkipEmptyParts);
        const QStringList errorsOfX11 = lines.filter(QStringLiteral("qt.qpa.xcb: "));
        for (const QString& line : errorsOfX11)
            lines.removeAll(line);
        return lines;
    }

private:
    bool hasEnded()
    {
        return m_process.state() == QProcess::NotRunning || m_process.waitForFinished(60000);
    }

    QByteArray m_errors;
    QProcess m_process;
};

/// Verifies that \a host ends well and without a word, or shows all that it said.
#define VERIFY_SUCCESS(host)                                                                       \
    do {                                                                                           \
        HostProcess& process = host;                                                               \
        const QString said = process.errorLines().join(QLatin1Char('\n'));                         \
        QVERIFY2(said.isEmpty(), qPrintable(said));                                                \
        QCOMPARE(process.exitCode(), 0);                                                           \
    } while (false)

inline void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    QCOMPARE(file.write(content), qint64(content.size()));
}

inline QStringList readLines(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), QString::SkipEmptyParts);
}
