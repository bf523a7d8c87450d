#include "ErrStrings.h"
#include "MacTest.h"

#include <QHash>
#include <QTranslator>

#include <optional>

using namespace VEK_NAMESPACE;

namespace {

/// What the library has to say, in words of this test. It is installed while it lives.
class Words : public QTranslator
{
public:
    explicit Words(const QHash<QByteArray, QString>& words)
        : m_words(words)
    {
        QCoreApplication::installTranslator(this);
    }
    ~Words() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }

    QString translate(const char* context, const char* source, const char*, int) const override
    {
        return qstrcmp(context, "QObject") == 0 ? m_words.value(source) : QString();
    }

private:
    QHash<QByteArray, QString> m_words;
};

QString alert(const QString& title, const QString& text)
{
    return QStringLiteral(
               "CFUserNotificationDisplayAlert 0 0 NULL NULL NULL [%1] [%2] NULL NULL NULL "
               "other")
        .arg(title, text);
}

/// The records of one set of strings.
QStringList made()
{
    return {
        QStringLiteral("CFStringCreateWithCharacters NULL Error"),
        QStringLiteral("CFStringCreateWithCharacters NULL Mac free space drive message"),
        QStringLiteral("CFStringCreateWithCharacters NULL Out of memory. Program will be closed."),
        QStringLiteral(
            "CFStringCreateWithCharacters NULL Vek Marlowick 3 has run out of memory. The "
            "application may now become unstable. Please close Vek Marlowick 3 and Photoshop, "
            "quit all other programs running, and try again."),
        QStringLiteral(
            "CFStringCreateWithCharacters NULL Unhandled exception. Program will be closed.")};
}

using Show = void (CErrStrings::*)() const;

} // namespace

Q_DECLARE_METATYPE(Show)

/// The strings of the platform and its alert.
class tst_MacErrStrings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { RecordingCocoa::instance().clear(); }
    void cleanup();

    void stringsAreMadeInOrder();
    void alerts_data();
    void alerts();
    void anyTextIsShownWhole_data();
    void anyTextIsShownWhole();
    void retranslateReleasesTheFirstSet();
    void clearDataSilences_data();
    void clearDataSilences();
    void clearDataTwice();
    void stringThatCouldNotBeMade_data();
    void stringThatCouldNotBeMade();
    void objectsAreIndependent();
    void nothingIsLeftBehind();

private:
    QStringList calls() { return RecordingCocoa::instance().takeCalls(); }
};

void tst_MacErrStrings::cleanup()
{
    QCOMPARE(liveCoreObjects(), 0);
}

void tst_MacErrStrings::stringsAreMadeInOrder()
{
    {
        const CErrStrings strings;
        QCOMPARE(calls(), made());
        QCOMPARE(liveCoreObjects(), 5);
    }
    QCOMPARE(calls(), QStringList());
}

void tst_MacErrStrings::alerts_data()
{
    QTest::addColumn<Show>("show");
    QTest::addColumn<QString>("message");

    const auto addRow = [](const char* title, Show show, const char* message) {
        QTest::newRow(title) << show << QString::fromLatin1(message);
    };
    addRow(
        "no free space", &CErrStrings::ShowSmallFreeSpaceDialog,
        "CFUserNotificationDisplayAlert 0 0 NULL NULL NULL [Error] [Mac free space drive message] "
        "NULL NULL NULL other");
    addRow(
        "no memory", &CErrStrings::ShowOutOfMemoryDialog,
        "CFUserNotificationDisplayAlert 0 0 NULL NULL NULL [Error] [Out of memory. Program will be "
        "closed.] NULL NULL NULL other");
    addRow(
        "no memory in the other product", &CErrStrings::ShowOutOfMemoryInPhotoshopDialog,
        "CFUserNotificationDisplayAlert 0 0 NULL NULL NULL [Error] [Vek Marlowick 3 has run out of "
        "memory. The application may now become unstable. Please close Vek Marlowick 3 and "
        "Photoshop, quit all other programs running, and try again.] NULL NULL NULL other");
    addRow(
        "an exception", &CErrStrings::ShowUnhandledExceptionDialog,
        "CFUserNotificationDisplayAlert 0 0 NULL NULL NULL [Error] [Unhandled exception. Program "
        "will be closed.] NULL NULL NULL other");
}

void tst_MacErrStrings::alerts()
{
    QFETCH(Show, show);
    QFETCH(QString, message);
    const CErrStrings strings;
    calls();

    (strings.*show)();
    QCOMPARE(calls(), QStringList(message));
    (strings.*show)();
    QCOMPARE(calls(), QStringList(message));
    QCOMPARE(liveCoreObjects(), 5);
}

void tst_MacErrStrings::anyTextIsShownWhole_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");

    QTest::newRow("two lines") << "Fehler"
                               << "Kein Platz.\nBitte aufräumen.";
    QTest::newRow("Japanese") << "エラー"
                              << "メモリが不足しています。";
    QTest::newRow("characters of two units") << "😀"
                                             << "写真 😀𠮷";
    QTest::newRow("an empty text") << "Error"
                                   << "";
    QTest::newRow("an empty title") << ""
                                    << "No space.";
}

void tst_MacErrStrings::anyTextIsShownWhole()
{
    QFETCH(QString, title);
    QFETCH(QString, text);
    const Words words({{"Error", title}, {"Mac free space drive message", text}});
    const CErrStrings strings;
    QCOMPARE(liveCoreObjects(), 5);
    calls();

    strings.ShowSmallFreeSpaceDialog();
    QCOMPARE(calls(), QStringList(alert(title, text)));
}

void tst_MacErrStrings::retranslateReleasesTheFirstSet()
{
    CErrStrings strings;
    strings.Retranslate();
    strings.Retranslate();
    QCOMPARE(calls(), made() + made() + made());
    QCOMPARE(liveCoreObjects(), 5);

    const Words words({{"Error", "Fehler"}, {"Mac free space drive message", "Kein Platz."}});
    strings.ShowSmallFreeSpaceDialog();
    QCOMPARE(calls(),
             QStringList(
                 alert(QStringLiteral("Error"), QStringLiteral("Mac free space drive message"))));
    strings.Retranslate();
    calls();
    strings.ShowSmallFreeSpaceDialog();
    QCOMPARE(calls(), QStringList(alert(QStringLiteral("Fehler"), QStringLiteral("Kein Platz."))));
    QCOMPARE(liveCoreObjects(), 5);
}

void tst_MacErrStrings::clearDataSilences_data()
{
    alerts_data();
}

void tst_MacErrStrings::clearDataSilences()
{
    QFETCH(Show, show);
    QFETCH(QString, message);
    CErrStrings strings;
    calls();

    strings.ClearData();
    QCOMPARE(liveCoreObjects(), 0);
    (strings.*show)();
    QCOMPARE(calls(), QStringList());

    strings.Retranslate();
    QCOMPARE(calls(), made());
    (strings.*show)();
    QCOMPARE(calls(), QStringList(message));
}

void tst_MacErrStrings::clearDataTwice()
{
    {
        CErrStrings strings;
        calls();
        strings.ClearData();
        strings.ClearData();
    }
    QCOMPARE(calls(), QStringList());
}

void tst_MacErrStrings::stringThatCouldNotBeMade_data()
{
    QTest::addColumn<QString>("string");
    QTest::addColumn<int>("live");
    QTest::addColumn<QStringList>("messages");

    QTest::newRow("the title, without which there is no alert") << "Error" << 4 << QStringList();
    QTest::newRow("a text") << "Mac free space drive message" << 4
                            << QStringList(alert(QStringLiteral("Error"),
                                                 QStringLiteral("Unhandled exception. Program will "
                                                                "be closed.")));
}

void tst_MacErrStrings::stringThatCouldNotBeMade()
{
    QFETCH(QString, string);
    QFETCH(int, live);
    QFETCH(QStringList, messages);
    RecordingCocoa::instance().uncreatableString = string;
    {
        const CErrStrings strings;
        QCOMPARE(liveCoreObjects(), live);
        QCOMPARE(calls(), made());
        strings.ShowSmallFreeSpaceDialog();
        strings.ShowUnhandledExceptionDialog();
        QCOMPARE(calls(), messages);
    }
    QCOMPARE(calls(), QStringList());
}

void tst_MacErrStrings::objectsAreIndependent()
{
    std::optional<CErrStrings> first(std::in_place);
    CErrStrings second;
    QCOMPARE(liveCoreObjects(), 10);
    calls();

    second.ClearData();
    QCOMPARE(liveCoreObjects(), 5);
    first->ShowOutOfMemoryDialog();
    QCOMPARE(calls(),
             QStringList(alert(QStringLiteral("Error"),
                               QStringLiteral("Out of memory. Program will be closed."))));
    second.Retranslate();
    first.reset();
    QCOMPARE(liveCoreObjects(), 5);
    calls();
    second.ShowOutOfMemoryDialog();
    QCOMPARE(calls(),
             QStringList(alert(QStringLiteral("Error"),
                               QStringLiteral("Out of memory. Program will be closed."))));
}

/// Neither for good nor in the pool of the caller.
void tst_MacErrStrings::nothingIsLeftBehind()
{
    const auto use = [] {
        CErrStrings strings;
        strings.Retranslate();
        strings.ShowSmallFreeSpaceDialog();
        strings.ShowUnhandledExceptionDialog();
        strings.ClearData();
    };
    use();
    const int before = liveObjects();
    for (int i = 0; i < 20; ++i)
        use();
    QCOMPARE(liveObjects(), before);
}

int main(int argc, char** argv)
{
    return runMacTest<tst_MacErrStrings>(argc, argv);
}

#include "tst_MacErrStrings.moc"
