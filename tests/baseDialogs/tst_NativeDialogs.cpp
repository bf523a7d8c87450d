#include "NativeDialogs.h"

#include "MessageCounter.h"
#include "ScriptedRun.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMetaMethod>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>
#include <optional>
#include <type_traits>
#include <vector>

using VEK_NAMESPACE::CNativeDialogs;
using VEK_NAMESPACE::CScripting;

namespace {

static_assert(std::is_base_of<QObject, CNativeDialogs>::value, "scripts see it as an object");
static_assert(std::is_base_of<Singleton<CNativeDialogs>, CNativeDialogs>::value,
              "there is one for all");

CNativeDialogs& dialogs()
{
    return CNativeDialogs::instance();
}

/// Options of which none is a default one.
const QFileDialog::Options callersOptions =
    QFileDialog::DontResolveSymlinks | QFileDialog::HideNameFilterDetails;

/// The product in a scripted run: each slot asks for a file and reports what it was given.
class Product : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void getOpenFileName()
    {
        QString selected = QStringLiteral("kept");
        const QString name = dialogs().getOpenFileName(nullptr, caption(), QString(), filter(),
                                                       &selected, callersOptions);
        report("open", name, selected);
    }

    void getOpenFileNames()
    {
        QString selected = QStringLiteral("kept");
        const QStringList names = dialogs().getOpenFileNames(nullptr, caption(), QString(),
                                                             filter(), &selected, callersOptions);
        report("open many", names.join(QLatin1Char('|')), selected);
    }

    void getSaveFileName()
    {
        QString selected = QStringLiteral("kept");
        const QString name = dialogs().getSaveFileName(nullptr, caption(), QString(), filter(),
                                                       &selected, callersOptions);
        report("save", name, selected);
    }

    void getExistingDirectory()
    {
        report("directory",
               dialogs().getExistingDirectory(nullptr, caption(), QString(), callersOptions));
    }

    void getFileBrowserDirectory()
    {
        report("browser directory",
               dialogs().getFileBrowserDirectory(nullptr, caption(), QString(), filter(),
                                                 callersOptions));
    }

private:
    static QString caption() { return QStringLiteral("Caption"); }
    static QString filter() { return QStringLiteral("Pictures (*.png);;All (*)"); }

    static void report(const char* getter, const QString& result,
                       const QString& selectedFilter = QStringLiteral("kept"))
    {
        QString line = QStringLiteral("%1: [%2]").arg(QLatin1String(getter), result);
        if (selectedFilter != QLatin1String("kept"))
            line += QStringLiteral(" filter ") + selectedFilter;
        if (!QApplication::topLevelWidgets().isEmpty())
            line += QStringLiteral(" with a window");
        CScripting::instance().log(line);
    }
};

/// What a real dialog was when it stood open.
struct Seen
{
    QString caption;
    QString directory;
    QStringList filters;
    QFileDialog::Options options;
    QFileDialog::AcceptMode acceptMode = QFileDialog::AcceptOpen;
    QString choice;
    QWidget* parent = nullptr;
};

QString choiceOf(const QFileDialog& dialog)
{
    switch (dialog.fileMode()) {
    case QFileDialog::AnyFile:
        return QStringLiteral("any file");
    case QFileDialog::ExistingFile:
        return QStringLiteral("a file");
    case QFileDialog::ExistingFiles:
        return QStringLiteral("files");
    default: // there are two kinds, of which one is deprecated
        return QStringLiteral("a folder");
    }
}

/// Waits, from a timer inside its loop, for the dialog that the next getter opens, notes what it is
/// and lets \a answer finish it.
class DialogDriver : public QObject
{
public:
    explicit DialogDriver(const std::function<void(QFileDialog&)>& answer)
        : m_answer(answer)
    {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible())
                return;
            m_timer.stop();
            ++m_count;
            m_seen = {dialog->windowTitle(), dialog->directory().absolutePath(),
                      dialog->nameFilters(), dialog->options(),
                      dialog->acceptMode(),  choiceOf(*dialog),
                      dialog->parentWidget()};
            m_answer(*dialog);
            if (dialog->isVisible())
                dialog->reject();
        });
        m_timer.start(10);
    }

    const Seen& seen() const { return m_seen; }
    int count() const { return m_count; }

private:
    QTimer m_timer;
    std::function<void(QFileDialog&)> m_answer;
    Seen m_seen;
    int m_count = 0;
};

/// Accepts the dialog as somebody does who types \a text.
std::function<void(QFileDialog&)> typing(const QString& text)
{
    return [text](QFileDialog& dialog) {
        auto* edit = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        QVERIFY(edit);
        edit->setText(text);
        QTest::keyClick(edit, Qt::Key_Return);
    };
}

const char failLine[] = "getOpenFileName have't got predefined value";
const char assertLine[] = "E ASSERT in PluginShell/modules/baseDialogs/NativeDialogs.cpp N";

enum class Getter
{
    OpenFileName,
    OpenFileNames,
    SaveFileName,
    ExistingDirectory,
    FileBrowserDirectory
};

} // namespace

class tst_NativeDialogs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void invokables();
    void scriptedAnswers_data();
    void scriptedAnswers();
    void realDialog_data();
    void realDialog();
    void selectedFilter_data();
    void selectedFilter();
    void withoutArguments();
    void realAnswerLeavesPredefinedOnes();

private:
    QString path(const char* name) const { return m_folder->filePath(QString::fromLatin1(name)); }
    QStringList call(Getter getter, QWidget* parent, QString* selected,
                     QFileDialog::Options options) const;

    QScopedPointer<QTemporaryDir> m_folder;
    std::optional<MessageCounter> m_messages;
};

Q_DECLARE_METATYPE(Getter)
Q_DECLARE_METATYPE(QFileDialog::Options)
Q_DECLARE_METATYPE(QFileDialog::AcceptMode)

void tst_NativeDialogs::init()
{
    // Which the offscreen platform says of every dialog.
    m_messages.emplace({"propagateSizeHints"});
    m_folder.reset(new QTemporaryDir);
    for (const char* name : {"a.png", "b.png", "c.txt"}) {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("inner")));
}

void tst_NativeDialogs::cleanup()
{
    m_folder.reset();
    const int messages = m_messages->count();
    m_messages.reset();
    QCOMPARE(messages, 0);
}

/// The setters are all that a script reaches.
void tst_NativeDialogs::invokables()
{
    const QMetaObject& meta = CNativeDialogs::staticMetaObject;
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        signatures << QString::fromLatin1(meta.method(i).methodSignature());
    QCOMPARE(signatures,
             QStringList({QStringLiteral("setOpenFileName(QString)"),
                          QStringLiteral("setOpenFileNames(QVariantList)"),
                          QStringLiteral("setSaveFileName(QString)"),
                          QStringLiteral("setExistingDirectory(QString)")}));
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
}

void tst_NativeDialogs::scriptedAnswers_data()
{
    struct Row
    {
        const char* name;
        QByteArray script;
        QStringList lines;
    };
    const auto failing = [](const QStringList& before, const char* result) {
        return before
            + QStringList{QLatin1String(assertLine), QLatin1String(failLine), QLatin1String(result),
                          QStringLiteral("failed")};
    };
    const auto passing = [](QStringList lines) { return lines << QStringLiteral("not failed"); };
    const QString openA = QStringLiteral("open: [a.png]");
    const QString saveS = QStringLiteral("save: [s.png]");

    const std::vector<Row> rows = {
        {"open: nothing set", "product.getOpenFileName();", failing({}, "open: []")},
        {"open: set", "dialogs.setOpenFileName('a.png'); product.getOpenFileName();",
         passing({openA})},
        {"open: asked twice after one answer",
         "dialogs.setOpenFileName('a.png'); product.getOpenFileName(); product.getOpenFileName();",
         failing({openA}, "open: []")},
        {"open: a second answer replaces the first",
         "dialogs.setOpenFileName('b.png'); dialogs.setOpenFileName('a.png');"
         "product.getOpenFileName(); product.getOpenFileName();",
         failing({openA}, "open: []")},
        {"open: an empty answer is none",
         "dialogs.setOpenFileName('a.png'); dialogs.setOpenFileName('');"
         "product.getOpenFileName();",
         failing({}, "open: []")},
        {"open: only the other values set",
         "dialogs.setOpenFileNames(['a.png']); dialogs.setSaveFileName('s.png');"
         "dialogs.setExistingDirectory('/d'); product.getOpenFileName();",
         failing({}, "open: []")},

        {"open many: nothing set", "product.getOpenFileNames();", failing({}, "open many: []")},
        {"open many: list without single name",
         "dialogs.setOpenFileNames(['a.png', 'b.png']); product.getOpenFileNames();",
         failing({}, "open many: []")},
        {"open many: single name without list",
         "dialogs.setOpenFileName('a.png'); product.getOpenFileNames();",
         passing({QStringLiteral("open many: []")})},
        {"open many: both, asked twice",
         "dialogs.setOpenFileName('a.png'); dialogs.setOpenFileNames(['x.png', 'y.png']);"
         "product.getOpenFileNames(); product.getOpenFileNames();",
         passing({QStringLiteral("open many: [x.png|y.png]"), QStringLiteral("open many: []")})},
        {"open many: the single name stays",
         "dialogs.setOpenFileName('a.png'); dialogs.setOpenFileNames(['x.png']);"
         "product.getOpenFileNames(); product.getOpenFileName();",
         passing({QStringLiteral("open many: [x.png]"), openA})},
        {"open many: the list outlives a missing single name",
         "dialogs.setOpenFileNames(['x.png']); dialogs.setOpenFileName('a.png');"
         "product.getOpenFileName(); dialogs.setOpenFileName('a.png');"
         "product.getOpenFileNames();",
         passing({openA, QStringLiteral("open many: [x.png]")})},
        {"open many: a second list replaces the first",
         "dialogs.setOpenFileName('a.png'); dialogs.setOpenFileNames(['x.png', 'y.png']);"
         "dialogs.setOpenFileNames(['z.png']); product.getOpenFileNames();",
         passing({QStringLiteral("open many: [z.png]")})},
        {"open many: an empty list clears",
         "dialogs.setOpenFileName('a.png'); dialogs.setOpenFileNames(['x.png']);"
         "dialogs.setOpenFileNames([]); product.getOpenFileNames();",
         passing({QStringLiteral("open many: []")})},
        {"open many: elements as text, in order",
         "dialogs.setOpenFileName('a.png'); dialogs.setOpenFileNames(['b', 12, true, 'a']);"
         "product.getOpenFileNames();",
         passing({QStringLiteral("open many: [b|12|true|a]")})},

        {"save: nothing set", "product.getSaveFileName();", failing({}, "save: []")},
        {"save: set", "dialogs.setSaveFileName('s.png'); product.getSaveFileName();",
         passing({saveS})},
        {"save: asked twice after one answer",
         "dialogs.setSaveFileName('s.png'); product.getSaveFileName(); product.getSaveFileName();",
         failing({saveS}, "save: []")},
        {"save: only the other values set",
         "dialogs.setOpenFileName('a.png'); dialogs.setOpenFileNames(['a.png']);"
         "dialogs.setExistingDirectory('/d'); product.getSaveFileName();",
         failing({}, "save: []")},
        {"save: found after a directory",
         "dialogs.setSaveFileName('s.png'); dialogs.setExistingDirectory('/d');"
         "product.getExistingDirectory(); product.getSaveFileName();",
         passing({QStringLiteral("directory: [/d]"), saveS})},

        {"directory: nothing set", "product.getExistingDirectory();", failing({}, "directory: []")},
        {"directory: directory without save name",
         "dialogs.setExistingDirectory('/d'); product.getExistingDirectory();",
         failing({}, "directory: []")},
        {"directory: save name without directory",
         "dialogs.setSaveFileName('s.png'); product.getExistingDirectory();",
         passing({QStringLiteral("directory: []")})},
        {"directory: both, asked twice",
         "dialogs.setSaveFileName('s.png'); dialogs.setExistingDirectory('/d');"
         "product.getExistingDirectory(); product.getExistingDirectory();",
         passing({QStringLiteral("directory: [/d]"), QStringLiteral("directory: []")})},
        {"directory: a second answer replaces the first",
         "dialogs.setSaveFileName('s.png'); dialogs.setExistingDirectory('/c');"
         "dialogs.setExistingDirectory('/d'); product.getExistingDirectory();",
         passing({QStringLiteral("directory: [/d]")})},

        {"browser directory: nothing set", "product.getFileBrowserDirectory();",
         failing({}, "browser directory: []")},
        {"browser directory: directory without save name",
         "dialogs.setExistingDirectory('/d'); product.getFileBrowserDirectory();",
         failing({}, "browser directory: []")},
        {"browser directory: both, then the save name",
         "dialogs.setSaveFileName('s.png'); dialogs.setExistingDirectory('/d');"
         "product.getFileBrowserDirectory(); product.getFileBrowserDirectory();"
         "product.getSaveFileName();",
         passing({QStringLiteral("browser directory: [/d]"),
                  QStringLiteral("browser directory: []"), saveS})},
    };

    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QStringList>("lines");
    for (const Row& row : rows)
        QTest::newRow(row.name) << row.script << row.lines;
}

void tst_NativeDialogs::scriptedAnswers()
{
    QFETCH(QByteArray, script);
    QFETCH(QStringList, lines);
    QCOMPARE(ScriptedRun::transcript(script), lines);
}

QStringList tst_NativeDialogs::call(Getter getter, QWidget* parent, QString* selected,
                                    QFileDialog::Options options) const
{
    const QString caption = QStringLiteral("Choose");
    const QString folder = m_folder->path();
    const QString filter = QStringLiteral("Pictures (*.png);;All (*)");
    switch (getter) {
    case Getter::OpenFileName:
        return {dialogs().getOpenFileName(parent, caption, folder, filter, selected, options)};
    case Getter::OpenFileNames:
        return dialogs().getOpenFileNames(parent, caption, folder, filter, selected, options);
    case Getter::SaveFileName:
        return {dialogs().getSaveFileName(parent, caption, folder, filter, selected, options)};
    case Getter::ExistingDirectory:
        return {dialogs().getExistingDirectory(parent, caption, folder, options)};
    case Getter::FileBrowserDirectory:
        return {dialogs().getFileBrowserDirectory(parent, caption, folder, filter, options)};
    }
    return {};
}

void tst_NativeDialogs::realDialog_data()
{
    const QFileDialog::Options none;
    const QFileDialog::Options dirsOnly = QFileDialog::ShowDirsOnly;

    QTest::addColumn<Getter>("getter");
    QTest::addColumn<QFileDialog::Options>("options");
    QTest::addColumn<QFileDialog::AcceptMode>("acceptMode");
    QTest::addColumn<QString>("choice");
    QTest::addColumn<bool>("filtered");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("open ignores the options")
        << Getter::OpenFileName << none << QFileDialog::AcceptOpen << "a file" << true << "a.png"
        << QStringList{QStringLiteral("/a.png")};
    QTest::newRow("open many ignores the options")
        << Getter::OpenFileNames << none << QFileDialog::AcceptOpen << "files" << true
        << "\"a.png\" \"b.png\"" << QStringList{QStringLiteral("/a.png"), QStringLiteral("/b.png")};
    QTest::newRow("save ignores the options")
        << Getter::SaveFileName << none << QFileDialog::AcceptSave << "any file" << true
        << "new.png" << QStringList{QStringLiteral("/new.png")};
    QTest::newRow("directory shows directories only")
        << Getter::ExistingDirectory << dirsOnly << QFileDialog::AcceptOpen << "a folder" << false
        << "inner" << QStringList{QStringLiteral("/inner")};
    QTest::newRow("browser directory honours the options and ignores the filter")
        << Getter::FileBrowserDirectory << callersOptions << QFileDialog::AcceptOpen << "a folder"
        << false << "inner" << QStringList{QStringLiteral("/inner")};
}

void tst_NativeDialogs::realDialog()
{
    QFETCH(Getter, getter);
    QFETCH(QFileDialog::Options, options);
    QFETCH(QFileDialog::AcceptMode, acceptMode);
    QFETCH(QString, choice);
    QFETCH(bool, filtered);
    QFETCH(QString, typed);
    QFETCH(QStringList, names);
    for (QString& name : names)
        name.prepend(m_folder->path());

    QWidget parent;
    {
        const DialogDriver driver(typing(typed));
        QCOMPARE(call(getter, &parent, nullptr, callersOptions), names);
        QCOMPARE(driver.count(), 1);
        const Seen& seen = driver.seen();
        QCOMPARE(seen.caption, QStringLiteral("Choose"));
        QCOMPARE(seen.directory, m_folder->path());
        QCOMPARE(seen.options, options);
        QCOMPARE(seen.acceptMode, acceptMode);
        QCOMPARE(seen.choice, choice);
        QCOMPARE(seen.parent, &parent);
        const QStringList given = {QStringLiteral("Pictures (*.png)"), QStringLiteral("All (*)")};
        if (filtered)
            QCOMPARE(seen.filters, given);
        else
            QVERIFY(!seen.filters.contains(given.first()));
    }

    const DialogDriver cancelling([](QFileDialog& dialog) { dialog.reject(); });
    const QStringList cancelled = call(getter, nullptr, nullptr, callersOptions);
    QCOMPARE(cancelling.count(), 1);
    QCOMPARE(cancelling.seen().parent, nullptr);
    QCOMPARE(cancelled.join(QString()), QString());
}

void tst_NativeDialogs::selectedFilter_data()
{
    QTest::addColumn<Getter>("getter");
    QTest::addColumn<QString>("typed");
    QTest::newRow("open") << Getter::OpenFileName << "c.txt";
    QTest::newRow("open many") << Getter::OpenFileNames << "c.txt";
    QTest::newRow("save") << Getter::SaveFileName << "d.txt";
}

/// Goes in and comes out.
void tst_NativeDialogs::selectedFilter()
{
    QFETCH(Getter, getter);
    QFETCH(QString, typed);

    QString first;
    QString selected = QStringLiteral("All (*)");
    const DialogDriver driver([&](QFileDialog& dialog) {
        first = dialog.selectedNameFilter();
        dialog.selectNameFilter(QStringLiteral("Pictures (*.png)"));
        typing(typed)(dialog);
    });
    call(getter, nullptr, &selected, {});
    QCOMPARE(driver.count(), 1);
    QCOMPARE(first, QStringLiteral("All (*)"));
    QCOMPARE(selected, QStringLiteral("Pictures (*.png)"));
}

/// Every parameter may be left out, as with QFileDialog.
void tst_NativeDialogs::withoutArguments()
{
    const DialogDriver driver([](QFileDialog& dialog) { dialog.reject(); });
    QCOMPARE(dialogs().getFileBrowserDirectory(), QString());
    QCOMPARE(driver.count(), 1);
    QCOMPARE(driver.seen().options, QFileDialog::Options(QFileDialog::ShowDirsOnly));
}

/// The predefined values are neither read nor changed: once there is a script they are all there.
/// This process has it from here on.
void tst_NativeDialogs::realAnswerLeavesPredefinedOnes()
{
    QVERIFY(!CScripting::instance().isScriptingMode());
    dialogs().setOpenFileName(QStringLiteral("pre-open"));
    dialogs().setOpenFileNames({QStringLiteral("pre-1"), QStringLiteral("pre-2")});
    dialogs().setSaveFileName(QStringLiteral("pre-save"));
    dialogs().setExistingDirectory(QStringLiteral("pre-directory"));
    const std::vector<std::pair<Getter, QString>> real = {
        {Getter::OpenFileName, QStringLiteral("a.png")},
        {Getter::OpenFileNames, QStringLiteral("a.png")},
        {Getter::SaveFileName, QStringLiteral("new.png")},
        {Getter::ExistingDirectory, QStringLiteral("inner")},
        {Getter::FileBrowserDirectory, QStringLiteral("inner")},
    };
    for (const auto& [getter, typed] : real) {
        const DialogDriver driver(typing(typed));
        const QString inFolder = m_folder->path() + QLatin1Char('/') + typed;
        QCOMPARE(call(getter, nullptr, nullptr, {}), QStringList{inFolder});
    }

    QFile script(path("test.js"));
    QVERIFY(script.open(QIODevice::WriteOnly) && script.write("1;") == 2);
    script.close();
    CScripting::instance().setPathToScript(script.fileName());
    QVERIFY(CScripting::instance().isScriptingMode());
    QCOMPARE(dialogs().getOpenFileNames(),
             QStringList({QStringLiteral("pre-1"), QStringLiteral("pre-2")}));
    QCOMPARE(dialogs().getOpenFileName(), QStringLiteral("pre-open"));
    QCOMPARE(dialogs().getExistingDirectory(), QStringLiteral("pre-directory"));
    QCOMPARE(dialogs().getSaveFileName(), QStringLiteral("pre-save"));
    QVERIFY(!CScripting::instance().hasFailed());
}

int main(int argc, char* argv[])
{
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication app(argc, argv);
    if (ScriptedRun::isRequested(argc, argv)) {
        Product product;
        CScripting::instance().makeObjectScriptable(QStringLiteral("dialogs"), &dialogs());
        return ScriptedRun::execute(argv[2], product);
    }
    tst_NativeDialogs test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_NativeDialogs.moc"
