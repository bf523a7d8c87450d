#pragma once

#include "RunnableItem.h"

#include <QImage>
#include <QString>

/// The picture in a file, upright as its camera was held; null if it can't be read. Its title is
/// its text "Title".
QImage readPicture(const QString& path);

QString pictureTitle(const QImage& picture);

/// File dialog filters of what can be read and written.
QString readablePicturesFilter();
QString writablePicturesFilter();

/// Writes a picture with its title into a file, in the format of the file's suffix, or as PNG if it
/// has none. A file that is there is replaced only by a complete new one. Where the format knows no
/// transparency \a ground shows instead.
class PictureWriter : public CQRunnableItem
{
    Q_OBJECT

public:
    PictureWriter(const QImage& picture, const QString& title, const QString& path,
                  const QColor& ground);

protected:
    bool doRun() override;

private:
    const QImage m_picture;
    const QString m_title;
    const QString m_path;
    const QColor m_ground;
};
