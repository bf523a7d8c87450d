#include "UtilsDllGlobal.h"

#include <QFile>
#include <QFontDatabase>
#include <QFontInfo>
#include <QImage>
#include <QMap>
#include <QPainter>
#include <QRawFont>
#include <QtEndian>
#include <QtTest>

#include <algorithm>

namespace {

/// The English entries of a font's name table that Windows reads, by their numbers.
QMap<int, QString> windowsNames(const QByteArray& table)
{
    const auto number = [&table](int offset) {
        return offset >= 0 && offset + 2 <= table.size()
            ? int(qFromBigEndian<quint16>(table.constData() + offset))
            : -1;
    };
    QMap<int, QString> names;
    for (int record = 0; record < number(2); ++record) {
        const int at = 6 + record * 12;
        if (number(at) != 3 || number(at + 2) != 1 || number(at + 4) != 0x409)
            continue;
        QString text;
        const int start = number(4) + number(at + 10);
        for (int offset = start; offset < start + number(at + 8); offset += 2)
            text += QChar(ushort(number(offset)));
        names.insert(number(at + 6), text);
    }
    return names;
}

/// How much of the picture is covered when the text is drawn, in black pixels.
double ink(const QFont& font, const QString& text)
{
    QImage image(1200, 120, QImage::Format_Grayscale8);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(font);
    painter.drawText(image.rect(), Qt::AlignCenter, text);
    painter.end();
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += 255 - qGray(image.pixel(x, y));
    }
    return sum / 255;
}

/// Loads a font for as long as it lives.
class LoadedFont
{
public:
    explicit LoadedFont(const QString& path)
        : m_id(QFontDatabase::addApplicationFont(path))
    {}
    ~LoadedFont()
    {
        if (m_id >= 0)
            QFontDatabase::removeApplicationFont(m_id);
    }
    Q_DISABLE_COPY(LoadedFont)

    bool isValid() const { return m_id >= 0; }
    QStringList families() const { return QFontDatabase::applicationFontFamilies(m_id); }
    QFont font() const
    {
        QFont font(families().value(0));
        font.setPixelSize(60);
        font.setStyleStrategy(QFont::NoFontMerging);
        return font;
    }

private:
    int m_id;
};

} // namespace

class tst_Fonts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aFileIsOneFamily_data();
    void aFileIsOneFamily();
    void aFontNamesItselfAfterItsFamilyOnly_data();
    void aFontNamesItselfAfterItsFamilyOnly();
    void aFontHasTheLettersOfTheProductsLanguages_data();
    void aFontHasTheLettersOfTheProductsLanguages();
    void textIsDrawnWithTheFont_data();
    void textIsDrawnWithTheFont();
    void theHeavierFamilyHasMoreInk_data();
    void theHeavierFamilyHasMoreInk();
    void allSevenStandSideBySide();

private:
    static void files();
};

void tst_Fonts::initTestCase()
{
    QVERIFY(qInitResources_vek() != 0);
}

void tst_Fonts::files()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("family");
    QTest::addColumn<QString>("notice");

    const QString apache = QStringLiteral("Licensed under the Apache License, Version 2.0");
    const QString ofl = QStringLiteral("http://scripts.sil.org/OFL");
    QTest::newRow("Maven Pro Light") << ":/fonts/MavenProLight-300.otf"
                                     << "MavenProLight300" << ofl;
    QTest::newRow("Maven Pro Medium") << ":/fonts/MavenPro-Medium.ttf"
                                      << "MavenPro-Medium" << ofl;
    QTest::newRow("Open Sans Light") << ":/fonts/OpenSans-Light.ttf"
                                     << "OpenSansLight" << apache;
    QTest::newRow("Roboto Bold") << ":/fonts/Roboto-Bold.ttf"
                                 << "RobotoBold" << apache;
    QTest::newRow("Roboto Light") << ":/fonts/Roboto-Light.ttf"
                                  << "RobotoLight" << apache;
    QTest::newRow("Roboto Regular") << ":/fonts/Roboto-Regular.ttf"
                                    << "RobotoRegular" << apache;
    QTest::newRow("Roboto Medium") << ":/fonts/Roboto-Medium.ttf"
                                   << "RobotoMedium" << apache;
}

void tst_Fonts::aFileIsOneFamily_data()
{
    files();
}

void tst_Fonts::aFileIsOneFamily()
{
    QFETCH(QString, file);
    QFETCH(QString, family);

    const LoadedFont loaded(file);
    QVERIFY(loaded.isValid());
    QCOMPARE(loaded.families(), QStringList(family));
    QCOMPARE(QFontDatabase().styles(family), QStringList("Regular"));
}

void tst_Fonts::aFontNamesItselfAfterItsFamilyOnly_data()
{
    files();
}

void tst_Fonts::aFontNamesItselfAfterItsFamilyOnly()
{
    QFETCH(QString, file);
    QFETCH(QString, family);
    QFETCH(QString, notice);

    const QRawFont font(file, 20);
    QVERIFY(font.isValid());
    QMap<int, QString> names = windowsNames(font.fontTable("name"));
    QCOMPARE(names.take(1), family);
    QCOMPARE(names.take(2), QStringLiteral("Regular"));
    QCOMPARE(names.take(3), family + ";Regular");
    QCOMPARE(names.take(4), family);
    QCOMPARE(names.take(6), family);

    // Nothing else gives it a name; the notices that go with the licence are there.
    const QList<int> naming = {16, 17, 18, 20, 21, 22, 25};
    for (int number : naming)
        QVERIFY2(!names.contains(number), qPrintable(QString::number(number)));
    QVERIFY2(names.value(0).contains("opyright"), qPrintable(names.value(0)));
    QVERIFY(std::find(names.cbegin(), names.cend(), notice) != names.cend());
}

void tst_Fonts::aFontHasTheLettersOfTheProductsLanguages_data()
{
    files();
}

void tst_Fonts::aFontHasTheLettersOfTheProductsLanguages()
{
    QFETCH(QString, file);

    const QRawFont font(file, 20);
    const QString letters = QString::fromUtf8("ABCabc0123456789 .,:;!?()%&+-/'\"©®™…–—“”„«»"
                                              "ÄÖÜäöüß ÀÂÆÇÉÈÊËÎÏÔŒÙÛàâæçéèêëîïôœùûÿ");
    for (const QChar& letter : letters)
        QVERIFY2(font.supportsCharacter(letter), qPrintable(QString(letter)));
}

void tst_Fonts::textIsDrawnWithTheFont_data()
{
    files();
}

void tst_Fonts::textIsDrawnWithTheFont()
{
    QFETCH(QString, file);
    QFETCH(QString, family);

    const LoadedFont loaded(file);
    const QFont font = loaded.font();
    QCOMPARE(QFontInfo(font).family(), family);
    QVERIFY(QFontInfo(font).exactMatch());
    QCOMPARE(ink(font, QStringLiteral(" ")), 0.0);
    const double covered = ink(font, QString::fromUtf8("Größe, façade, 3.5°"));
    QVERIFY2(covered > 2000 && covered < 16000, qPrintable(QString::number(covered)));
}

void tst_Fonts::theHeavierFamilyHasMoreInk_data()
{
    QTest::addColumn<QString>("lighter");
    QTest::addColumn<QString>("heavier");

    QTest::newRow("Roboto Light, Regular") << ":/fonts/Roboto-Light.ttf"
                                           << ":/fonts/Roboto-Regular.ttf";
    QTest::newRow("Roboto Regular, Medium") << ":/fonts/Roboto-Regular.ttf"
                                            << ":/fonts/Roboto-Medium.ttf";
    QTest::newRow("Roboto Medium, Bold") << ":/fonts/Roboto-Medium.ttf"
                                         << ":/fonts/Roboto-Bold.ttf";
    QTest::newRow("Maven Pro Light, Medium") << ":/fonts/MavenProLight-300.otf"
                                             << ":/fonts/MavenPro-Medium.ttf";
}

void tst_Fonts::theHeavierFamilyHasMoreInk()
{
    QFETCH(QString, lighter);
    QFETCH(QString, heavier);

    const LoadedFont light(lighter);
    const LoadedFont heavy(heavier);
    const QString text = QStringLiteral("Horizon and perspective");
    const double lightInk = ink(light.font(), text);
    const double heavyInk = ink(heavy.font(), text);
    QVERIFY2(heavyInk > 1.05 * lightInk,
             qPrintable(QStringLiteral("%1 against %2").arg(heavyInk).arg(lightInk)));
}

void tst_Fonts::allSevenStandSideBySide()
{
    const QStringList files = QDir(":/fonts").entryList(QDir::Files, QDir::Name);
    QCOMPARE(files.size(), 7);

    QStringList families;
    QList<int> ids;
    for (const QString& file : files) {
        ids += QFontDatabase::addApplicationFont(":/fonts/" + file);
        families += QFontDatabase::applicationFontFamilies(ids.last());
    }
    QCOMPARE(families,
             QStringList({"MavenPro-Medium", "MavenProLight300", "OpenSansLight", "RobotoBold",
                          "RobotoLight", "RobotoMedium", "RobotoRegular"}));
    for (const QString& family : qAsConst(families))
        QCOMPARE(QFontInfo(QFont(family)).family(), family);
    for (int id : qAsConst(ids))
        QFontDatabase::removeApplicationFont(id);
}

QTEST_MAIN(tst_Fonts)
#include "tst_Fonts.moc"
