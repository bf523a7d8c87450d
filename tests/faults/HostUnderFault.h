#pragma once

#include "SettingsFiles.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTest>

/// A host in a process of its own, to which something happens. It doesn't outlive this object.
class HostUnderFault
{
public:
    /// What exitCode() tells of a host that came to no end of its own.
    enum : int
    {
        Crashed = -1,
        Hangs = -2
    };

    HostUnderFault(
        const QString& program, const QStringList& arguments,
        const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment())
    {
        m_process.setProcessEnvironment(environment);
        m_process.start(program, arguments);
    }
    ~HostUnderFault() { kill(); }

    /// The next whole line that it prints, or a null text if none comes any more.
    QString nextLine(int limitMs = 60000)
    {
        QElapsedTimer timer;
        timer.start();
        while (!m_process.canReadLine()) {
            const int left = limitMs - int(timer.elapsed());
            if (left <= 0 || !m_process.waitForReadyRead(left))
                break;
        }
        if (!m_process.canReadLine())
            return {};
        return QString::fromUtf8(m_process.readLine()).chopped(1);
    }

    /// The whole lines that it has printed until now and nobody has read.
    QStringList takeLines()
    {
        m_process.waitForReadyRead(0);
        QStringList lines;
        while (m_process.canReadLine())
            lines << QString::fromUtf8(m_process.readLine()).chopped(1);
        return lines;
    }

    /// Waits until it ends.
    int exitCode(int limitMs = 60000)
    {
        if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(limitMs))
            return Hangs;
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : int(Crashed);
    }

    /// Lets a host go on that waits for its input.
    void goOn()
    {
        m_process.write("\n");
        m_process.waitForBytesWritten();
    }

    /// Lets a host end that waits for its input. Whether it does, and well.
    bool end()
    {
        m_process.closeWriteChannel();
        return exitCode() == 0;
    }

    bool isRunning()
    {
        m_process.waitForFinished(0);
        return m_process.state() == QProcess::Running;
    }

    /// What it has complained about, without what Qt tells of a platform that shows nothing.
    QString errors()
    {
        QString text = QString::fromUtf8(m_process.readAllStandardError());
        return text.remove(QStringLiteral("This plugin does not support propagateSizeHints()\n"));
    }
    qint64 processId() const { return m_process.processId(); }

    void kill()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    Q_DISABLE_COPY(HostUnderFault)

    QProcess m_process;
};
