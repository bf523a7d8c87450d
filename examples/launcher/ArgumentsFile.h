#pragma once

#include <QByteArrayList>
#include <QString>
#include <QTemporaryFile>

/// The file that carries a command line to another process: UTF-8, one argument a line, in the
/// temporary folder, under a name of its own and readable by its user only. The other process
/// deletes it once it has read it; what it leaves goes with this object.
class ArgumentsFile
{
public:
    ArgumentsFile();

    /// Why \a argument can't stand in such a file; empty if it can.
    static QString objection(const QByteArray& argument);

    /// False with errorMessage() if not all of it could be written.
    bool write(const QByteArrayList& arguments);
    QString errorMessage() const;

    QString path() const;

    /// Waits until the other process has deleted the file; false if it hasn't in time.
    bool waitUntilTaken(int timeoutMs) const;

private:
    QTemporaryFile m_file;
    QString m_errorMessage;
};
