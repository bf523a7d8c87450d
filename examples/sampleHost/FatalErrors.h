#pragma once

#include "ErrStrings.h"

#include <QObject>

/// Tells the user, by the system's own alert, why the program can't go on: no memory, an unhandled
/// exception, or too little space on the disk. There is one such object, for the life of the
/// program.
class FatalErrors : public QObject
{
    Q_OBJECT

public:
    FatalErrors();
    ~FatalErrors() override;

    /// Whether there is room for the program's own files in \a folder; if not, the user has been
    /// told.
    bool hasFreeSpace(const QString& folder, qint64 bytes = 16 << 20) const;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    Q_DISABLE_COPY(FatalErrors)

    VEK_NAMESPACE::CErrStrings m_messages;
};
