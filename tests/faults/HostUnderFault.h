#pragma once

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QProcessEnvironment>
#include <QSettings>
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

/// The settings that a file holds, as a reader sees them that has never seen it before. A file that
/// can't be parsed has the one key "damaged".
inline QMap<QString, QString> settingsIn(const QString& file)
{
    // Settings of one path are parsed once as long as the file looks unchanged.
    static int number = 0;
    const QString copy = QDir::temp().filePath(QStringLiteral("settings%1.ini").arg(++number));
    if (!QFile::copy(file, copy))
        return {{QStringLiteral("damaged"), QStringLiteral("not there")}};
    QMap<QString, QString> values;
    {
        const QSettings settings(copy, QSettings::IniFormat);
        const QStringList keys = settings.allKeys();
        if (settings.status() != QSettings::NoError)
            values.insert(QStringLiteral("damaged"), QString::number(settings.status()));
        for (const QString& key : keys)
            values.insert(key, settings.value(key).toString());
    }
    QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
    QFile::remove(copy);
    return values;
}

/// Where the hosts that run in this process's surroundings have their settings.
inline QString settingsFolder()
{
    return QFile::decodeName(qgetenv("XDG_CONFIG_HOME")) + QStringLiteral("/Vek Labs/krnv3");
}

inline QString settingsFile()
{
    return settingsFolder() + QStringLiteral("/Data.plist");
}
