// What the sample host tells of a picture: its file's name, how large picture and file are, and
// when the file was made.

#include "CommonConstants.h"
#include "Files.h"
#include "LanguageManager.h"
#include "PictureDescription.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QApplication>
#include <QLabel>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace VEK_NAMESPACE;

namespace {

enum Unit
{
    Pixels,
    Inches,
    Centimetres,
    Millimetres
};

/// What the system says of a file's birth, in a form of the "date" program's; empty if it doesn't
/// know it.
QString birth(const QString& file, const char* form)
{
    const auto output = [](const char* program, const QStringList& arguments) {
        QProcess process;
        process.start(QLatin1String(program), arguments);
        process.waitForFinished();
        return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    };
    const QString seconds = output("stat", {"--format=%W", file});
    return seconds == QLatin1String("0")
        ? QString()
        : output("date", {QStringLiteral("--date=@") + seconds, QLatin1String(form)});
}

} // namespace

class tst_PictureDescription : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void sizes_data();
    void sizes();
    void the_image_size_can_be_hidden();
    void a_new_language_counts_when_it_is_refreshed();
    void time_of_creation_data();
    void time_of_creation();
    void an_unknown_time_is_not_told();
    void without_a_picture_nothing_is_told();
    void a_long_name_leaves_room();

private:
    QString text(const char* label) const
    {
        const auto* found = m_description->findChild<QLabel*>(QLatin1String(label));
        return found && !found->isHidden() ? found->text() : QStringLiteral("(hidden)");
    }
    QString tip(const char* label) const
    {
        return m_description->findChild<QLabel*>(QLatin1String(label))->toolTip();
    }
    /// A file of that many bytes.
    QString file(const char* name, int bytes) const
    {
        const QString path = m_dir.filePath(QString::fromUtf8(name));
        return writeFile(path, QByteArray(bytes, 'x')) ? path : QString();
    }

    QTemporaryDir m_dir;
    std::unique_ptr<CTemporarySettings> m_settings;
    std::unique_ptr<PictureDescription> m_description;
};

void tst_PictureDescription::initTestCase()
{
    m_settings = std::make_unique<CTemporarySettings>(nullptr);
    CSettings::setTemporarySettings(*m_settings);
    CLanguageManager::instance()->loadLanguageForApp();
}

void tst_PictureDescription::init()
{
    CLanguageManager::instance()->changeLanguage(1);
    m_settings->clear();
    m_description = std::make_unique<PictureDescription>();
    m_description->show();
}

void tst_PictureDescription::cleanupTestCase()
{
    m_description.reset();
    CSettings::removeTemporarySettings();
}

void tst_PictureDescription::sizes_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("bytes");
    QTest::addColumn<QString>("imageSize"); ///< a pattern, the display's resolution is its own
    QTest::addColumn<QString>("fileSize");
    const auto addRow = [](const char* title, int language, Unit unit, int bytes,
                           const char* imageSize, const char* fileSize) {
        QTest::newRow(title) << language << int(unit) << bytes << QString::fromUtf8(imageSize)
                             << QString::fromUtf8(fileSize);
    };
    addRow("pixels", 1, Pixels, 5000, "600 x 400 px", "4.9KB");
    addRow("inches", 1, Inches, 1000, "\\d+\\.\\d\\d x \\d+\\.\\d\\d in", "1000B");
    addRow("centimetres", 1, Centimetres, 0, "\\d+\\.\\d\\d? x \\d+\\.\\d\\d? cm", "0B");
    addRow("millimetres", 1, Millimetres, 1572864, "\\d+(\\.\\d+)? x \\d+(\\.\\d+)? mm", "1.5MB");
    addRow("German", 0, Inches, 5000, "\\d+\\.\\d\\d x \\d+\\.\\d\\d Zoll", "4.9KB");
    addRow("French", 2, Inches, 5000, "\\d+\\.\\d\\d x \\d+\\.\\d\\d po", "4.9Ko");
    addRow("Japanese", 3, Inches, 5000, "\\d+\\.\\d\\d x \\d+\\.\\d\\d インチ", "4.9KB");
}

void tst_PictureDescription::sizes()
{
    QFETCH(int, language);
    QFETCH(int, unit);
    QFETCH(int, bytes);
    QFETCH(QString, imageSize);
    QFETCH(QString, fileSize);
    CLanguageManager::instance()->changeLanguage(language);
    CSettings().setValue(g_ImageSizeUnits, unit);

    m_description->setPicture(file("a.png", bytes), QSize(600, 400));

    QCOMPARE(text("fileNameLabel"), QStringLiteral("a.png"));
    const QRegularExpression pattern(QRegularExpression::anchoredPattern(imageSize));
    QVERIFY2(pattern.match(text("imageSizeLabel")).hasMatch(), qPrintable(text("imageSizeLabel")));
    QCOMPARE(text("fileSizeLabel"), fileSize);
}

void tst_PictureDescription::the_image_size_can_be_hidden()
{
    CSettings().setValue(g_showImageSize, false);
    m_description->setPicture(file("a.png", 1000), QSize(600, 400));
    QCOMPARE(text("imageSizeLabel"), QStringLiteral("(hidden)"));
    QCOMPARE(text("fileSizeLabel"), QStringLiteral("1000B"));

    CSettings().setValue(g_showImageSize, true);
    m_description->refresh();
    QCOMPARE(text("imageSizeLabel"), QStringLiteral("600 x 400 px"));
}

void tst_PictureDescription::a_new_language_counts_when_it_is_refreshed()
{
    m_description->setPicture(file("a.png", 5000), QSize(600, 400));
    QCOMPARE(text("fileSizeLabel"), QStringLiteral("4.9KB"));
    CLanguageManager::instance()->changeLanguage(2);
    m_description->refresh();
    QCOMPARE(text("fileSizeLabel"), QStringLiteral("4.9Ko"));
    QVERIFY(tip("fileSizeLabel").isEmpty()
            || tip("fileSizeLabel").startsWith(QString::fromUtf8("Créé le ")));
}

void tst_PictureDescription::time_of_creation_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("words");
    QTest::addColumn<QByteArray>("form");
    QTest::newRow("German") << 0 << "Erstellt: %1" << QByteArray("+%d.%m.%y %H:%M");
    QTest::newRow("English") << 1 << "Created %1" << QByteArray("+%-m/%-d/%y %-I:%M %p");
    QTest::newRow("French") << 2 << QString::fromUtf8("Créé le %1")
                            << QByteArray("+%d/%m/%Y %H:%M");
    QTest::newRow("Japanese") << 3 << QString::fromUtf8("作成日時: %1")
                              << QByteArray("+%Y/%m/%d %-H:%M");
}

void tst_PictureDescription::time_of_creation()
{
    QFETCH(int, language);
    QFETCH(QString, words);
    QFETCH(QByteArray, form);
    CLanguageManager::instance()->changeLanguage(language);
    const QString picture = file("a.png", 10);
    const QString time = birth(picture, form.constData());

    m_description->setPicture(picture, QSize(600, 400));

    QCOMPARE(tip("fileSizeLabel"), time.isEmpty() ? QString() : words.arg(time));
}

void tst_PictureDescription::an_unknown_time_is_not_told()
{
    m_description->setPicture(file("a.png", 10), QSize(600, 400));
    m_description->setPicture(QStringLiteral("/proc/self/stat"), QSize(600, 400));
    QCOMPARE(text("fileNameLabel"), QStringLiteral("stat"));
    QCOMPARE(tip("fileSizeLabel"), QString());
}

void tst_PictureDescription::without_a_picture_nothing_is_told()
{
    QCOMPARE(text("fileSizeLabel"), QStringLiteral("(hidden)"));
    m_description->setPicture(file("a.png", 10), QSize(600, 400));
    QCOMPARE(tip("fileNameLabel"), QStringLiteral("a.png"));

    m_description->clear();

    QCOMPARE(text("fileNameLabel"), QString());
    QCOMPARE(tip("fileNameLabel"), QString());
    QCOMPARE(text("imageSizeLabel"), QStringLiteral("(hidden)"));
    QCOMPARE(text("fileSizeLabel"), QStringLiteral("(hidden)"));
}

void tst_PictureDescription::a_long_name_leaves_room()
{
    const int width = m_description->minimumSizeHint().width();
    m_description->setPicture(file(QByteArray(200, 'n').constData(), 10), QSize(6, 4));
    QVERIFY(m_description->minimumSizeHint().width() < width + 200);
    QCOMPARE(text("fileNameLabel"), QString(200, QLatin1Char('n')));
}

QTEST_MAIN(tst_PictureDescription)

#include "tst_PictureDescription.moc"
