#include "ArgumentsFile.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTextCodec>
#include <QThread>

namespace {

const char separator = '\n';

bool isUtf8(const QByteArray& bytes)
{
    QTextCodec::ConverterState state;
    QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

} // namespace

ArgumentsFile::ArgumentsFile()
    : m_file(QDir(QDir::tempPath()).absoluteFilePath(QStringLiteral("arguments-XXXXXX")))
{}

QString ArgumentsFile::objection(const QByteArray& argument)
{
    if (argument.isEmpty())
        return QStringLiteral("it is empty");
    if (argument.contains(separator))
        return QStringLiteral("it has a line feed in it");
    if (!isUtf8(argument))
        return QStringLiteral("it isn't UTF-8");
    return QString();
}

bool ArgumentsFile::write(const QByteArrayList& arguments)
{
    // Qt's name for a temporary folder that doesn't exist; a file would land in the current one.
    if (QDir::tempPath().isEmpty()) {
        m_errorMessage = QStringLiteral("there is no temporary folder");
        return false;
    }

    const QByteArray content = arguments.join(separator) + separator;
    if (m_file.open() && m_file.write(content) == content.size() && m_file.flush())
        return true;
    m_errorMessage = m_file.errorString();
    return false;
}

QString ArgumentsFile::errorMessage() const
{
    return m_errorMessage;
}

QString ArgumentsFile::path() const
{
    return m_file.fileName();
}

bool ArgumentsFile::waitUntilTaken(int timeoutMs) const
{
    // Asked for again and again: a file system's notifications don't come from everywhere, a
    // network drive for one.
    const unsigned long intervalMs = 20;
    QElapsedTimer timer;
    timer.start();
    while (QFileInfo::exists(path())) {
        if (timer.hasExpired(timeoutMs))
            return false;
        QThread::msleep(intervalMs);
    }
    return true;
}
