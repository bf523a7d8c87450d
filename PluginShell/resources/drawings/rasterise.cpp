/// Draws SVG files as PNG files while the library is built:
///
///     rasterise LIST
///
/// LIST holds one picture a line, fields apart by tabs: the SVG file, the PNG file, width and
/// height in pixels. Relative names are taken from the folder of LIST. The picture fills the whole
/// size; what a drawing leaves open stays transparent. No display is needed. The exit status is 1
/// if any line of the list can't be drawn, after one line of text for each.

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageWriter>
#include <QPainter>
#include <QStringList>
#include <QSvgRenderer>

#include <cstdio>

namespace {

const int largestSide = 4096;

QtMessageHandler previousHandler = nullptr;
bool messageSeen = false;

/// Qt's reader only prints what it doesn't understand; a drawing has to be free of it.
void noteMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    messageSeen = true;
    previousHandler(type, context, text);
}

/// What is wrong, or an empty text.
QString rasterise(const QString& source, const QString& target, const QSize& size)
{
    messageSeen = false;
    QSvgRenderer renderer(source);
    if (!renderer.isValid() || messageSeen)
        return QStringLiteral("isn't a drawing that can be read");

    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    renderer.render(&painter, QRectF(QPointF(), QSizeF(size)));
    painter.end();
    if (messageSeen)
        return QStringLiteral("can't be drawn without a warning");

    QImageWriter writer(target, "png");
    if (!writer.write(image.convertToFormat(QImage::Format_ARGB32)))
        return QStringLiteral("can't be written: ") + writer.errorString();
    return {};
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        std::fputs("usage: rasterise LIST\n", stderr);
        return 2;
    }
    QFile list(arguments.at(1));
    if (!list.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "rasterise: %s: %s\n", qPrintable(arguments.at(1)),
                     qPrintable(list.errorString()));
        return 2;
    }
    previousHandler = qInstallMessageHandler(noteMessage);

    const QDir folder = QFileInfo(list).absoluteDir();
    int lineNumber = 0;
    int failures = 0;
    while (!list.atEnd()) {
        const QString line = QString::fromUtf8(list.readLine()).trimmed();
        ++lineNumber;
        if (line.isEmpty())
            continue;
        const QStringList fields = line.split(QLatin1Char('\t'));
        QSize size;
        if (fields.size() == 4)
            size = QSize(fields.at(2).toInt(), fields.at(3).toInt());
        QString error;
        if (size.isEmpty() || size.width() > largestSide || size.height() > largestSide)
            error = QStringLiteral("isn't a drawing, a picture, a width and a height");
        else
            error = rasterise(folder.filePath(fields.at(0)), folder.filePath(fields.at(1)), size);
        if (!error.isEmpty()) {
            ++failures;
            std::fprintf(stderr, "rasterise: %s, line %d: %s %s\n", qPrintable(arguments.at(1)),
                         lineNumber, qPrintable(fields.at(0)), qPrintable(error));
        }
    }
    return failures == 0 ? 0 : 1;
}
