#include "PictureFile.h"

#include <QColor>
#include <QCoreApplication>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>
#include <QSaveFile>

namespace {

const char titleKey[] = "Title";
constexpr int jpegQuality = 95;

QString filterOf(const QList<QByteArray>& formats)
{
    QStringList patterns;
    for (const QByteArray& format : formats)
        patterns += QStringLiteral("*.") + QString::fromLatin1(format);
    return QStringLiteral("%1 (%2)").arg(QCoreApplication::translate("PictureFile", "Pictures"),
                                         patterns.join(QLatin1Char(' ')));
}

QByteArray formatOf(const QString& path)
{
    const QByteArray suffix = QFileInfo(path).suffix().toLower().toLatin1();
    return suffix.isEmpty() ? QByteArrayLiteral("png") : suffix;
}

bool knowsTransparency(const QByteArray& format)
{
    static const QList<QByteArray> opaque{"jpg", "jpeg", "bmp", "ppm", "pbm", "pgm"};
    return !opaque.contains(format);
}

QImage paintedOn(const QColor& ground, const QImage& picture)
{
    QImage result(picture.size(), QImage::Format_RGB32);
    result.setDotsPerMeterX(picture.dotsPerMeterX());
    result.setDotsPerMeterY(picture.dotsPerMeterY());
    result.fill(ground);
    QPainter painter(&result);
    painter.drawImage(QRect(QPoint(), picture.size()), picture);
    painter.end();
    const QStringList keys = picture.textKeys();
    for (const QString& key : keys)
        result.setText(key, picture.text(key));
    return result;
}

} // namespace

QImage readPicture(const QString& path)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    // What a file contains counts, not what it is called.
    reader.setDecideFormatFromContent(true);
    return reader.read();
}

QString pictureTitle(const QImage& picture)
{
    return picture.text(QLatin1String(titleKey));
}

QString readablePicturesFilter()
{
    return filterOf(QImageReader::supportedImageFormats());
}

QString writablePicturesFilter()
{
    return filterOf(QImageWriter::supportedImageFormats());
}

PictureWriter::PictureWriter(const QImage& picture, const QString& title, const QString& path,
                             const QColor& ground)
    : CQRunnableItem(true)
    , m_picture(picture)
    , m_title(title)
    , m_path(path)
    , m_ground(ground)
{}

bool PictureWriter::doRun()
{
    const QByteArray format = formatOf(m_path);
    QImage picture = m_picture.hasAlphaChannel() && !knowsTransparency(format)
        ? paintedOn(m_ground, m_picture)
        : m_picture;
    if (m_title != pictureTitle(picture))
        picture.setText(QLatin1String(titleKey), m_title);

    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QImageWriter writer(&file, format);
    if (format == "jpg" || format == "jpeg")
        writer.setQuality(jpegQuality);
    if (!writer.write(picture) || stopRequired())
        return false;
    return file.commit();
}
