#include "UtilsDllGlobal.h"

#include "MessageCounter.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QtTest>

namespace {

/// All files below ":/", without the ":/".
QStringList allFiles()
{
    QStringList files;
    QDirIterator iterator(QStringLiteral(":/"), QDir::Files | QDir::Hidden,
                          QDirIterator::Subdirectories);
    while (iterator.hasNext())
        files << QDir::cleanPath(iterator.next()).mid(2);
    files.sort();
    return files;
}

/// The files of the tree's that lie in \a folder, and not further below, by their names.
QStringList filesIn(const QStringList& tree, const QString& folder)
{
    QStringList names;
    for (const QString& file : tree) {
        const QFileInfo info(file);
        if (info.path() == folder)
            names << info.fileName();
    }
    return names;
}

/// How many pixels of a picture can be seen, those of soft shadows among them.
int visiblePixels(const QImage& picture)
{
    constexpr int leastAlpha = 16;
    const QImage image = picture.convertToFormat(QImage::Format_ARGB32);
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) >= leastAlpha ? 1 : 0;
    }
    return count;
}

} // namespace

class tst_ResourceTree : public QObject
{
    Q_OBJECT

public:
    tst_ResourceTree();

private Q_SLOTS:
    void theTreesHaveTheirFiles();
    void theMainTreesFoldersAreKnown();
    void foldersHaveTheirNumberOfFiles_data();
    void foldersHaveTheirNumberOfFiles();
    void foldersHaveTheirFiles_data();
    void foldersHaveTheirFiles();
    void filesThatCodeOrSheetsNameAreThere_data();
    void filesThatCodeOrSheetsNameAreThere();
    void theToolsHaveTheirIconFolders();
    void iconsArePictures();
    void theSeparatorOfTheCrashReporterIsNotThere();
    void theTranslationsFolderIsMergedOfBothTrees();
    void noFileIsEmpty();

    void picturesCanBeSeen_data();
    void picturesCanBeSeen();
    void picturesHaveTheirSize_data();
    void picturesHaveTheirSize();

private:
    QStringList m_main;
    QStringList m_translations;
};

/// Lists each tree while the other one is away, without what Qt itself carries.
tst_ResourceTree::tst_ResourceTree()
{
    qCleanupResources_vek();
    const QStringList withoutMain = allFiles();
    qCleanupResources_translations();
    const QStringList others = allFiles();
    qInitResources_vek();
    const QStringList withoutTranslations = allFiles();
    qInitResources_translations();

    for (const QString& file : withoutTranslations) {
        if (!others.contains(file))
            m_main << file;
    }
    for (const QString& file : withoutMain) {
        if (!others.contains(file))
            m_translations << file;
    }
}

void tst_ResourceTree::theTreesHaveTheirFiles()
{
    QCOMPARE(m_main.size(), 375);
    QCOMPARE(m_translations,
             QStringList({"translations/qt_de.qm", "translations/qt_fr.qm", "translations/qt_ja.qm",
                          "translations/vek_de.qm", "translations/vek_en.qm",
                          "translations/vek_fr.qm", "translations/vek_ja.qm"}));
}

void tst_ResourceTree::theMainTreesFoldersAreKnown()
{
    QStringList folders;
    for (const QString& file : qAsConst(m_main))
        folders << file.section(QLatin1Char('/'), 0, 0);
    folders.removeDuplicates();
    QCOMPARE(folders, QStringList({"caf", "fonts", "icons", "other", "qss", "translations"}));
}

void tst_ResourceTree::foldersHaveTheirNumberOfFiles_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<int>("count");

    const auto row = [](const char* folder, int count) {
        QTest::newRow(folder) << QString::fromLatin1(folder) << count;
    };
    row("qss", 7);
    row("fonts", 7);
    row("icons/app_icon", 8);
    row("icons/cursors", 12);
    row("icons/messagebox", 7);
    row("icons/aboutDialog", 4);
    row("icons", 29);
    row("other", 1);
    row("translations", 1);
    row("caf", 3);
}

void tst_ResourceTree::foldersHaveTheirNumberOfFiles()
{
    QFETCH(QString, folder);
    QFETCH(int, count);

    QCOMPARE(filesIn(m_main, folder).size(), count);
}

void tst_ResourceTree::foldersHaveTheirFiles_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QStringList>("names");

    const auto row = [](const char* folder, const QStringList& names) {
        QTest::newRow(folder) << QString::fromLatin1(folder) << names;
    };
    row("qss",
        {"crash_sender.qss", "custom.qss", "mac.qss", "message_box.qss", "settings.qss",
         "slider.qss", "win.qss"});
    row("fonts",
        {"MavenPro-Medium.ttf", "MavenProLight-300.otf", "OpenSans-Light.ttf", "Roboto-Bold.ttf",
         "Roboto-Light.ttf", "Roboto-Medium.ttf", "Roboto-Regular.ttf"});
    row("icons/app_icon",
        {"logo_1024.png", "logo_128.png", "logo_16.png", "logo_256.png", "logo_32.png",
         "logo_48.png", "logo_512.png", "logo_96.png"});
    row("icons/cursors",
        {"cusors_arrow_diagonal_left.svg", "cusors_arrow_diagonal_right.svg",
         "cusors_arrow_horizontal.svg", "cusors_arrow_square.svg", "cusors_arrow_vertical.svg",
         "cusors_rotation_bottom.svg", "cusors_rotation_top.svg", "draging.png", "hand.png",
         "mouse.png", "zoom-in.png", "zoom-out.png"});
    row("icons/aboutDialog", {"KR.png", "VEK.png", "line-left.png", "scroll.svg"});
    row("other", {"CorrectionsStateMachine.xml"});
    row("translations", {"countries.en.txt"});
    row("caf", {"C35830a_001.caf", "C36841a_000.caf", "CAFList1010.db"});
}

void tst_ResourceTree::foldersHaveTheirFiles()
{
    QFETCH(QString, folder);
    QFETCH(QStringList, names);

    QCOMPARE(filesIn(m_main, folder), names);
}

void tst_ResourceTree::filesThatCodeOrSheetsNameAreThere_data()
{
    QTest::addColumn<QString>("file");

    for (const char* file :
         {"icons/messagebox/alert_dark_icon.svg", "icons/messagebox/info_dark_icon.svg",
          "icons/messagebox/question_mark_dark_icon.svg", "icons/slider/black_handle_idle.svg",
          "icons/slider/black_handle_hover.svg", "icons/slider/black_handle_down.svg",
          "icons/logo.png", "icons/logo_kr3.svg", "icons/application_icon.png",
          "icons/checkmark.svg"})
        QTest::newRow(file) << QString::fromLatin1(file);
}

void tst_ResourceTree::filesThatCodeOrSheetsNameAreThere()
{
    QFETCH(QString, file);

    QVERIFY(m_main.contains(file));
}

void tst_ResourceTree::theToolsHaveTheirIconFolders()
{
    const QStringList ofTheLibrary = {"icons/aboutDialog", "icons/app_icon", "icons/cursors",
                                      "icons/messagebox"};
    QStringList folders;
    int count = 0;
    for (const QString& file : qAsConst(m_main)) {
        const QString folder = QFileInfo(file).path();
        if (!folder.startsWith("icons/") || ofTheLibrary.contains(folder))
            continue;
        folders << folder.mid(6);
        ++count;
    }
    folders.removeDuplicates();
    QCOMPARE(folders,
             QStringList({"additionalOptions", "anamorphose",   "buttons",    "cafDialog",
                          "checkBox",          "comboBox",      "confirm",    "correctionInfo",
                          "crashSender",       "crop",          "distortion", "groupBox",
                          "handTool",          "horizon",       "keystoning", "leftToolBar",
                          "loupeShadow",       "perspective",   "plugin_bar", "previewShadow",
                          "processing",        "radioButton",   "reset",      "scrollBar",
                          "secondary_windows", "settingsPanel", "shadow",     "slider",
                          "thumbnail",         "tiltshift",     "toolbar",    "winTitleBar"}));
    QCOMPARE(count, 296);
}

void tst_ResourceTree::iconsArePictures()
{
    for (const QString& file : qAsConst(m_main)) {
        const QString folder = QFileInfo(file).path();
        const QString extension = QFileInfo(file).suffix();
        if (folder == "icons/app_icon")
            QVERIFY2(extension == "png", qPrintable(file));
        else if (folder == "icons/messagebox")
            QVERIFY2(extension == "svg", qPrintable(file));
        else if (file.startsWith("icons/"))
            QVERIFY2(extension == "svg" || extension == "png", qPrintable(file));
    }
}

void tst_ResourceTree::theSeparatorOfTheCrashReporterIsNotThere()
{
    QVERIFY(!QFileInfo::exists(":/icons/separator/separator_horizontal.png"));
    QVERIFY(!QFileInfo::exists(":/icons/separator"));
}

void tst_ResourceTree::theTranslationsFolderIsMergedOfBothTrees()
{
    QCOMPARE(QDir(":/translations/").entryList(),
             QStringList({"countries.en.txt", "qt_de.qm", "qt_fr.qm", "qt_ja.qm", "vek_de.qm",
                          "vek_en.qm", "vek_fr.qm", "vek_ja.qm"}));
}

void tst_ResourceTree::noFileIsEmpty()
{
    const QStringList all = m_main + m_translations;
    for (const QString& file : all)
        QVERIFY2(QFileInfo(":/" + file).size() > 0, qPrintable(file));
}

void tst_ResourceTree::picturesCanBeSeen_data()
{
    QTest::addColumn<QString>("file");

    for (const QString& file : qAsConst(m_main)) {
        if (file.startsWith("icons/"))
            QTest::newRow(qUtf8Printable(file)) << ":/" + file;
    }
}

void tst_ResourceTree::picturesCanBeSeen()
{
    QFETCH(QString, file);

    MessageCounter messages;
    QImageReader reader(file);
    QCOMPARE(QString::fromLatin1(reader.format()), QFileInfo(file).suffix());
    const QImage picture = reader.read();
    QVERIFY2(!picture.isNull(), qPrintable(reader.errorString()));
    const int count = visiblePixels(picture);
    QVERIFY2(count >= 8, qPrintable(QStringLiteral("%1 pixels").arg(count)));
    QCOMPARE(messages.count(), 0);
}

void tst_ResourceTree::picturesHaveTheirSize_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QSize>("size");

    const auto row = [](const char* file, int width, int height) {
        QTest::newRow(file) << QString::fromLatin1(file) << QSize(width, height);
    };
    row("app_icon/logo_16.png", 16, 16);
    row("app_icon/logo_32.png", 32, 32);
    row("app_icon/logo_48.png", 48, 48);
    row("app_icon/logo_96.png", 96, 96);
    row("app_icon/logo_128.png", 128, 128);
    row("app_icon/logo_256.png", 256, 256);
    row("app_icon/logo_512.png", 512, 512);
    row("app_icon/logo_1024.png", 1024, 1024);
    row("cursors/cusors_arrow_diagonal_left.svg", 23, 24);
    row("cursors/cusors_arrow_diagonal_right.svg", 23, 24);
    row("cursors/cusors_arrow_horizontal.svg", 23, 24);
    row("cursors/cusors_arrow_square.svg", 23, 24);
    row("cursors/cusors_arrow_vertical.svg", 23, 24);
    row("cursors/cusors_rotation_top.svg", 23, 24);
    row("cursors/cusors_rotation_bottom.svg", 23, 24);
}

void tst_ResourceTree::picturesHaveTheirSize()
{
    QFETCH(QString, file);
    QFETCH(QSize, size);

    QCOMPARE(QImage(":/icons/" + file).size(), size);
}

QTEST_MAIN(tst_ResourceTree)

#include "tst_ResourceTree.moc"
