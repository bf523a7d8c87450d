#pragma once

#include "Archives.h"
#include "Corrections.h"
#include "RunnableItem.h"

#include <QImage>
#include <QString>

QString archivesFilter();

/// Packs a picture, as PNG, with what was done to it, as JSON, into a ZIP archive. A file that is
/// there is replaced only by a complete new one.
class ArchiveExport : public CQRunnableItem
{
    Q_OBJECT

public:
    /// \a baseName is what the packed files are called after.
    ArchiveExport(const QImage& corrected, const QString& title, const Corrections& corrections,
                  const QString& baseName, const QString& path);

protected:
    bool doRun() override;

private:
    const QImage m_picture;
    const QString m_title;
    const Corrections m_corrections;
    const QString m_baseName;
    const QString m_path;
};

/// Unpacks an archive that somebody sent into a new folder beside it, which is named after it and
/// goes again if that fails or brings no picture.
class ArchiveImport : public CQRunnableItem
{
    Q_OBJECT

public:
    explicit ArchiveImport(const QString& path);

    /// Once it has ended, however it did.
    const VEK_NAMESPACE::ArchiveResult& result() const;
    /// The first picture by name that came out; empty if none did.
    QString picture() const;

Q_SIGNALS:
    void progressChanged(int percent);

protected:
    bool doRun() override;

private:
    const QString m_path;
    VEK_NAMESPACE::ArchiveResult m_result;
    QString m_picture;
};
