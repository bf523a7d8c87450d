#pragma once

#include "ApplicationParametersHandler.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

/// The command line of a process that a launcher started without one.
class HandedOverCommandLine : public QObject, public CApplicationParametersHandler_Abstract
{
    Q_OBJECT

public:
    HandedOverCommandLine(int argc, char** argv, QObject* parent = nullptr);

Q_SIGNALS:
    /// At most once, in the first minute; the program's name comes first.
    void arrived(const QStringList& arguments);

private:
    void look();

    QTimer m_looking;
    int m_looks = 0;
};
