// What the sample host reads from picture files and writes into them.

#include "PictureFile.h"

#include <QBuffer>
#include <QColor>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

class tst_PictureFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void a_written_picture_reads_as_it_was_data();
    void a_written_picture_reads_as_it_was();
    void titles_come_back_data();
    void titles_come_back();
    void a_picture_stands_as_its_camera_was_held();
    void the_content_counts_not_the_suffix();
    void what_cannot_be_read_is_null_data();
    void what_cannot_be_read_is_null();
    void what_cannot_be_written_leaves_the_old_file_data();
    void what_cannot_be_written_leaves_the_old_file();
    void a_writer_that_is_stopped_leaves_the_old_file();
    void the_ground_shows_where_a_format_knows_no_transparency();
    void the_filters_name_the_usual_formats();

private:
    QString path(const QString& name) const { return m_dir->filePath(name); }
    bool write(const QImage& picture, const QString& title, const QString& name) const;

    QScopedPointer<QTemporaryDir> m_dir;
};

namespace {

QImage halves(QImage::Format format = QImage::Format_RGB32)
{
    QImage picture(40, 20, format);
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 40; ++x)
            picture.setPixel(x, y, x < 20 ? qRgb(220, 30, 30) : qRgb(30, 30, 220));
    }
    return picture;
}

void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

QByteArray readBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

void tst_PictureFile::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
}

bool tst_PictureFile::write(const QImage& picture, const QString& title, const QString& name) const
{
    PictureWriter writer(picture, title, path(name), QColor(10, 20, 30));
    QSignalSpy finished(&writer, &CQRunnableItem::finished);
    writer.run();
    return finished.size() == 1 && finished.at(0).at(0).toBool();
}

void tst_PictureFile::a_written_picture_reads_as_it_was_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("PNG") << "picture.png";
    QTest::newRow("a suffix in capitals") << "picture.PNG";
    QTest::newRow("no suffix, which is PNG") << "picture";
    QTest::newRow("BMP") << "picture.bmp";
    QTest::newRow("a name beyond ASCII") << QString::fromUtf8("Gebäude 写真.png");
}

void tst_PictureFile::a_written_picture_reads_as_it_was()
{
    QFETCH(QString, name);

    QVERIFY(write(halves(), QString(), name));

    const QImage read = readPicture(path(name));
    QCOMPARE(read.convertToFormat(QImage::Format_RGB32), halves());
    QCOMPARE(pictureTitle(read), QString());
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList(name));
}

void tst_PictureFile::titles_come_back_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("title");
    for (const char* name : {"picture.png", "picture.jpg", "picture.jpeg"}) {
        QTest::addRow("a plain title in %s", name) << QString::fromLatin1(name) << "Two dogs";
        QTest::addRow("a title beyond Latin in %s", name)
            << QString::fromLatin1(name) << QString::fromUtf8("Zwei Hünde – 犬");
    }
}

void tst_PictureFile::titles_come_back()
{
    QFETCH(QString, name);
    QFETCH(QString, title);
    QImage picture = halves();
    picture.setText(QStringLiteral("Title"), QStringLiteral("The old one"));

    QVERIFY(write(picture, title, name));

    QCOMPARE(pictureTitle(readPicture(path(name))), title);
}

void tst_PictureFile::a_picture_stands_as_its_camera_was_held()
{
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    QVERIFY(halves().save(&buffer, "JPG", 95));
    // An EXIF block with one entry, orientation 6: the camera was turned, the right side is below.
    const QByteArray exif = QByteArray::fromHex("ffe1 0022 457869660000 4d4d002a00000008 0001"
                                                "0112 0003 00000001 00060000 00000000");
    jpeg.insert(2, exif);
    writeBytes(path(QStringLiteral("turned.jpg")), jpeg);

    const QImage read = readPicture(path(QStringLiteral("turned.jpg")));

    QCOMPARE(read.size(), QSize(20, 40));
    QVERIFY(qRed(read.pixel(10, 5)) > 150);
    QVERIFY(qBlue(read.pixel(10, 35)) > 150);
}

void tst_PictureFile::the_content_counts_not_the_suffix()
{
    QVERIFY(halves().save(path(QStringLiteral("a.jpg")), "PNG"));
    QCOMPARE(readPicture(path(QStringLiteral("a.jpg"))).convertToFormat(QImage::Format_RGB32),
             halves());
}

void tst_PictureFile::what_cannot_be_read_is_null_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a file that isn't there") << "none.png";
    QTest::newRow("a file that is no picture") << "text.png";
    QTest::newRow("an empty file") << "empty.png";
    QTest::newRow("a folder") << ".";
}

void tst_PictureFile::what_cannot_be_read_is_null()
{
    QFETCH(QString, name);
    writeBytes(path(QStringLiteral("text.png")), "not a picture");
    writeBytes(path(QStringLiteral("empty.png")), QByteArray());

    QVERIFY(readPicture(path(name)).isNull());
}

void tst_PictureFile::what_cannot_be_written_leaves_the_old_file_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<QString>("name");
    QTest::newRow("a format that nobody writes") << halves() << "old.strange";
    QTest::newRow("no picture") << QImage() << "old.png";
    QTest::newRow("a folder that isn't there") << halves() << "none/old.png";
}

void tst_PictureFile::what_cannot_be_written_leaves_the_old_file()
{
    QFETCH(QImage, picture);
    QFETCH(QString, name);
    const QStringList files{QStringLiteral("old.png"), QStringLiteral("old.strange")};
    for (const QString& file : files)
        writeBytes(path(file), "old");

    QVERIFY(!write(picture, QString(), name));

    for (const QString& file : files)
        QCOMPARE(readBytes(path(file)), QByteArray("old"));
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden, QDir::Name), files);
}

void tst_PictureFile::a_writer_that_is_stopped_leaves_the_old_file()
{
    const QString file = path(QStringLiteral("old.png"));
    writeBytes(file, "old");
    PictureWriter writer(halves(), QString(), file, Qt::black);
    connect(&writer, &CQRunnableItem::started, &writer, &CQRunnableItem::stop);
    QSignalSpy finished(&writer, &CQRunnableItem::finished);

    writer.run();

    QCOMPARE(finished.value(0), QVariantList({false, true}));
    QCOMPARE(readBytes(file), QByteArray("old"));
}

void tst_PictureFile::the_ground_shows_where_a_format_knows_no_transparency()
{
    QImage clear(40, 20, QImage::Format_ARGB32_Premultiplied);
    clear.fill(Qt::transparent);
    clear.setDotsPerMeterX(11811);
    clear.setDotsPerMeterY(11811);
    clear.setText(QStringLiteral("Author"), QStringLiteral("somebody"));

    QVERIFY(write(clear, QStringLiteral("Nothing"), QStringLiteral("a.jpg")));
    QVERIFY(write(clear, QStringLiteral("Nothing"), QStringLiteral("a.bmp")));
    QVERIFY(write(clear, QStringLiteral("Nothing"), QStringLiteral("a.png")));

    const QImage jpeg = readPicture(path(QStringLiteral("a.jpg")));
    QVERIFY(qAbs(qBlue(jpeg.pixel(20, 10)) - 30) < 4);
    QCOMPARE(jpeg.dotsPerMeterX(), 11811);
    QCOMPARE(jpeg.text(QStringLiteral("Author")), QStringLiteral("somebody"));
    QCOMPARE(readPicture(path(QStringLiteral("a.bmp"))).pixel(20, 10), qRgb(10, 20, 30));
    QCOMPARE(qAlpha(readPicture(path(QStringLiteral("a.png"))).pixel(20, 10)), 0);
}

void tst_PictureFile::the_filters_name_the_usual_formats()
{
    for (const QString& filter : {readablePicturesFilter(), writablePicturesFilter()}) {
        QVERIFY2(filter.startsWith(QLatin1String("Pictures (")), qPrintable(filter));
        QVERIFY2(filter.contains(QLatin1String("*.jpg ")), qPrintable(filter));
        QVERIFY2(filter.contains(QLatin1String("*.png ")), qPrintable(filter));
    }
    QVERIFY(readablePicturesFilter().contains(QLatin1String("*.gif")));
    QVERIFY(!writablePicturesFilter().contains(QLatin1String("*.gif")));
}

QTEST_GUILESS_MAIN(tst_PictureFile)

#include "tst_PictureFile.moc"
