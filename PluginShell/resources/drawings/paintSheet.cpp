/// Paints what contactSheet.py has laid out:
///
///     paintSheet LAYOUT PICTURE SCALE
///
/// LAYOUT holds one step a line, fields apart by tabs; the first is the sheet's size:
///
///     size   WIDTH HEIGHT COLOUR
///     box    X Y WIDTH HEIGHT COLOUR
///     image  X Y WIDTH HEIGHT FILE
///     text   X Y WIDTH HEIGHT COLOUR PIXELS TEXT
///
/// A text is cut with dots where it doesn't fit. SCALE multiplies everything.

#include <QColor>
#include <QFile>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QStringList>
#include <QSvgRenderer>

#include <cstdio>

namespace {

bool paintImage(QPainter& painter, const QRect& area, const QString& file)
{
    if (file.endsWith(QLatin1String(".svg"))) {
        QSvgRenderer renderer(file);
        renderer.render(&painter, area);
        return renderer.isValid();
    }
    // A painter alone leaves out pixels where it shrinks a picture to less than half.
    const QImage image(file);
    const QSize size = painter.deviceTransform().mapRect(area).size();
    painter.drawImage(area, image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    return !image.isNull();
}

void paintText(QPainter& painter, const QRect& area, const QStringList& fields)
{
    QFont font(QStringLiteral("Roboto"));
    font.setPixelSize(fields.at(6).toInt());
    painter.setFont(font);
    painter.setPen(QColor(fields.at(5)));
    const QString text = QFontMetrics(font).elidedText(fields.at(7), Qt::ElideMiddle, area.width());
    painter.drawText(area, Qt::AlignLeft | Qt::AlignVCenter, text);
}

bool paintStep(QPainter& painter, const QStringList& fields)
{
    if (fields.size() < 6)
        return false;
    const QRect area(fields.at(1).toInt(), fields.at(2).toInt(), fields.at(3).toInt(),
                     fields.at(4).toInt());
    if (fields.at(0) == QLatin1String("box"))
        painter.fillRect(area, QColor(fields.at(5)));
    else if (fields.at(0) == QLatin1String("image"))
        return paintImage(painter, area, fields.at(5));
    else if (fields.at(0) == QLatin1String("text") && fields.size() == 8)
        paintText(painter, area, fields);
    else
        return false;
    return true;
}

} // namespace

int main(int argc, char* argv[])
{
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int scale = arguments.size() == 4 ? arguments.at(3).toInt() : 0;
    if (scale < 1) {
        std::fputs("usage: paintSheet LAYOUT PICTURE SCALE\n", stderr);
        return 2;
    }
    QFile layout(arguments.at(1));
    if (!layout.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "paintSheet: %s: %s\n", qPrintable(arguments.at(1)),
                     qPrintable(layout.errorString()));
        return 2;
    }
    QStringList lines = QString::fromUtf8(layout.readAll()).split(QLatin1Char('\n'));
    while (!lines.isEmpty() && lines.constLast().isEmpty())
        lines.removeLast();
    const QStringList size =
        lines.isEmpty() ? QStringList() : lines.takeFirst().split(QLatin1Char('\t'));
    if (size.size() != 4 || size.at(0) != QLatin1String("size")) {
        std::fputs("paintSheet: the layout doesn't begin with a size\n", stderr);
        return 2;
    }

    QImage sheet(QSize(size.at(1).toInt(), size.at(2).toInt()) * scale, QImage::Format_RGB32);
    sheet.fill(QColor(size.at(3)));
    QPainter painter(&sheet);
    painter.scale(scale, scale);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    bool complete = true;
    for (const QString& line : lines) {
        if (!paintStep(painter, line.split(QLatin1Char('\t')))) {
            complete = false;
            std::fprintf(stderr, "paintSheet: can't do: %s\n", qPrintable(line));
        }
    }
    painter.end();
    const int smallestFile = 0;
    if (!sheet.save(arguments.at(2), "png", smallestFile)) {
        std::fprintf(stderr, "paintSheet: %s can't be written\n", qPrintable(arguments.at(2)));
        return 2;
    }
    return complete ? 0 : 1;
}
