#include "ArgumentsFile_p.h"

#include "CommonConstants.h"
#include "CurrentFolder.h"
#include "OrdinaryFileRights.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using VEK_NAMESPACE::Private::readArgumentsFile;

namespace {

using Arguments = QList<QByteArray>;

Arguments argumentsIn(const QString& path)
{
    Arguments arguments;
    for (const std::string& argument : readArgumentsFile(path))
        arguments << QByteArray::fromStdString(argument);
    return arguments;
}

} // namespace

class tst_ArgumentsFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void eachLineIsAnArgument_data();
    void eachLineIsAnArgument();
    void textThatIsNotUtf8GivesNothing_data();
    void textThatIsNotUtf8GivesNothing();
    void manyLines();
    void longLine();
    void sizeHasALimit_data();
    void sizeHasALimit();
    void theFileStays();
    void whatIsNoReadableFileGivesNothing_data();
    void whatIsNoReadableFileGivesNothing();
    void fileIsFoundByAnyPath_data();
    void fileIsFoundByAnyPath();

private:
    QString path(const char* name) const { return m_folder->filePath(QString::fromUtf8(name)); }
    bool write(const char* name, const QByteArray& content) const
    {
        QFile file(path(name));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    }

    QScopedPointer<QTemporaryDir> m_folder;
};

void tst_ArgumentsFile::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
}

void tst_ArgumentsFile::eachLineIsAnArgument_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<Arguments>("arguments");

    const auto addRow = [](const char* title, const QByteArray& content,
                           const Arguments& arguments) {
        QTest::newRow(title) << content << arguments;
    };
    addRow("one line", "picture.png\n", {"picture.png"});
    addRow("the last line feed may be missing", "a\nb", {"a", "b"});
    addRow("an empty line is dropped", "a\n\nb\n", {"a", "b"});
    addRow("empty lines at both ends are dropped", "\n\na\n\n\n", {"a"});
    addRow("the same line twice", "b\na\nb\n", {"b", "a", "b"});
    addRow("nothing at all", "", {});
    addRow("one empty line", "\n", {});
    addRow("only empty lines", "\n\n\n", {});
    addRow("a carriage return is part of its argument", "a\r\nb\r\n", {"a\r", "b\r"});
    addRow("a line that is a carriage return isn't empty", "\r\n\n", {"\r"});
    addRow("a carriage return doesn't end a line", "a\rb\n", {"a\rb"});
    addRow("a vertical tab, a form feed and a tab don't either", "a\vb\fc\td\n", {"a\vb\fc\td"});
    addRow("Unicode's line separator doesn't either",
           "a\xE2\x80\xA8"
           "b\n",
           {"a\xE2\x80\xA8"
            "b"});
    addRow("spaces stay", "  a b  \n \n", {"  a b  ", " "});
    addRow("quotes and backslashes stay", "\"a\"\n'b'\n\\n\n", {"\"a\"", "'b'", "\\n"});
    addRow("characters of two, three and four bytes", "\xC3\xA4\n\xE6\x97\xA5\n\xF0\x9F\x93\xB7\n",
           {"\xC3\xA4", "\xE6\x97\xA5", "\xF0\x9F\x93\xB7"});
    addRow("the first and last characters of each length",
           "\x01\x7F\n\xC2\x80\xDF\xBF\n\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF\n"
           "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF\n",
           {"\x01\x7F", "\xC2\x80\xDF\xBF", "\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF",
            "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"});
    addRow("an argument ends at a zero byte", QByteArray("a\0b\nc\n", 6), {"a", "c"});
    addRow("a zero byte doesn't make a line empty", QByteArray("\0\nc\n", 4), {"", "c"});
}

void tst_ArgumentsFile::eachLineIsAnArgument()
{
    QFETCH(QByteArray, content);
    QFETCH(Arguments, arguments);
    QVERIFY(write("file", content));

    QCOMPARE(argumentsIn(path("file")), arguments);
}

void tst_ArgumentsFile::textThatIsNotUtf8GivesNothing_data()
{
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("a character of two bytes without its second") << QByteArray("\xC3");
    QTest::newRow("a character of three bytes without its third") << QByteArray("\xE6\x97");
    QTest::newRow("a character of four bytes without its fourth") << QByteArray("\xF0\x9F\x93");
    QTest::newRow("a character cut off by a letter") << QByteArray("\xE6\x97"
                                                                   "a");
    QTest::newRow("a second byte by itself") << QByteArray("\x80");
    QTest::newRow("one second byte too many") << QByteArray("\xC3\xA4\xA4");
    QTest::newRow("a zero byte in two bytes") << QByteArray("\xC0\x80");
    QTest::newRow("a slash in two bytes") << QByteArray("\xC1\xAF");
    QTest::newRow("a slash in three bytes") << QByteArray("\xE0\x80\xAF");
    QTest::newRow("a slash in four bytes") << QByteArray("\xF0\x80\x80\xAF");
    QTest::newRow("the first half of a surrogate pair") << QByteArray("\xED\xA0\x80");
    QTest::newRow("the second half of a surrogate pair") << QByteArray("\xED\xBF\xBF");
    QTest::newRow("a surrogate pair") << QByteArray("\xED\xA0\xBD\xED\xB3\xB7");
    QTest::newRow("a code point above the last") << QByteArray("\xF4\x90\x80\x80");
    QTest::newRow("a character of five bytes") << QByteArray("\xF8\x88\x80\x80\x80");
    QTest::newRow("a byte that never occurs") << QByteArray("\xFF");
    QTest::newRow("Latin 1") << QByteArray("\xE4\xF6\xFC");
    QTest::newRow("UTF-16") << QByteArray("\xFF\xFE"
                                          "a\0b",
                                          6);
}

void tst_ArgumentsFile::textThatIsNotUtf8GivesNothing()
{
    QFETCH(QByteArray, bytes);

    for (const QByteArray& content :
         {bytes, bytes + '\n', bytes + "\na\n", "a\n" + bytes, "a\nb" + bytes + "c\nd\n",
          "a\n\n" + bytes + "\n\n", "a" + QByteArray(1, '\0') + bytes}) {
        QVERIFY(write("file", content));
        QVERIFY2(argumentsIn(path("file")).isEmpty(), content.toPercentEncoding().constData());
    }
}

void tst_ArgumentsFile::manyLines()
{
    QByteArray content;
    for (int i = 0; i < 100000; ++i)
        content += "argument " + QByteArray::number(i) + '\n';
    QVERIFY(write("file", content));

    const Arguments arguments = argumentsIn(path("file"));

    QCOMPARE(arguments.size(), 100000);
    QCOMPARE(arguments.first(), QByteArray("argument 0"));
    QCOMPARE(arguments.at(54321), QByteArray("argument 54321"));
    QCOMPARE(arguments.last(), QByteArray("argument 99999"));
}

void tst_ArgumentsFile::longLine()
{
    // The last character lies across any power of two that a reader may take at a time.
    const QByteArray line = QByteArray((1 << 20) - 1, 'x') + "\xC3\xA4";
    QVERIFY(write("file", line + '\n' + line));

    QVERIFY(argumentsIn(path("file")) == Arguments({line, line}));
}

void tst_ArgumentsFile::sizeHasALimit_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<Arguments>("arguments");

    const Arguments all = {QByteArray(8 * 1024 * 1024 - 5, 'x'), "end"};
    QTest::newRow("8 MiB are read") << 8 * 1024 * 1024 << all;
    QTest::newRow("a byte more isn't") << 8 * 1024 * 1024 + 1 << Arguments();
}

void tst_ArgumentsFile::sizeHasALimit()
{
    QFETCH(int, size);
    QFETCH(Arguments, arguments);
    QVERIFY(write("file", QByteArray(size - 5, 'x') + "\nend\n"));
    QCOMPARE(QFileInfo(path("file")).size(), qint64(size));

    QVERIFY(argumentsIn(path("file")) == arguments);
}

void tst_ArgumentsFile::theFileStays()
{
    QVERIFY(write("file", "a\n"));

    QCOMPARE(argumentsIn(path("file")), Arguments({"a"}));
    QCOMPARE(argumentsIn(path("file")), Arguments({"a"}));
}

void tst_ArgumentsFile::whatIsNoReadableFileGivesNothing_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("no name") << "";
    QTest::newRow("a missing file") << "missing";
    QTest::newRow("a file in a missing folder") << "missing/file";
    QTest::newRow("a file below a file") << "file/file";
    QTest::newRow("a folder") << "folder";
    QTest::newRow("a pipe that nobody writes to") << "pipe";
    QTest::newRow("a file that mustn't be read") << "unreadable";
    QTest::newRow("a link to nothing") << "dangling";
    QTest::newRow("a link to itself") << "loop";
    QTest::newRow("a file larger than the memory for one text") << "huge";
    QTest::newRow("a file with another case") << "FILE";
    QTest::newRow("a resource's name") << ":/file";
    QTest::newRow("an address") << "file:file";
}

void tst_ArgumentsFile::whatIsNoReadableFileGivesNothing()
{
    QFETCH(QString, name);
    QVERIFY(write("file", "a\n"));
    QVERIFY(write("unreadable", "a\n"));
    QVERIFY(QFile::setPermissions(path("unreadable"), QFile::WriteOwner));
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("folder")));
    QCOMPARE(mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    QVERIFY(QFile::link(QStringLiteral("nothing"), path("dangling")));
    QVERIFY(QFile::link(QStringLiteral("loop"), path("loop")));
    QVERIFY(write("huge", QByteArray()));
    QVERIFY(QFile::resize(path("huge"), qint64(3) << 30)); // of which the disk holds nothing
    const CurrentFolder current(m_folder->path());
    QCOMPARE(argumentsIn(QStringLiteral("file")), Arguments({"a"}));

    QCOMPARE(argumentsIn(name), Arguments());
}

void tst_ArgumentsFile::fileIsFoundByAnyPath_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("path");

    QTest::newRow("a full path") << "file"
                                 << "%1/file";
    QTest::newRow("a path from the current folder") << "file"
                                                    << "./file";
    QTest::newRow("a link") << "file"
                            << "%1/link";
    QTest::newRow("a path with spaces and signs") << " a #%20?*;\"' "
                                                  << "%1/ a #%20?*;\"' ";
    QTest::newRow("a path beyond ASCII")
        << QString::fromUtf8("日本 ä") << QString::fromUtf8("%1/日本 ä");
}

void tst_ArgumentsFile::fileIsFoundByAnyPath()
{
    QFETCH(QString, file);
    QFETCH(QString, path);
    const CurrentFolder current(m_folder->path());
    QVERIFY(write(file.toUtf8().constData(), "a\nb\n"));
    QVERIFY(QFile::link(file, this->path("link")));

    QCOMPARE(argumentsIn(path.replace(QStringLiteral("%1"), m_folder->path())),
             Arguments({"a", "b"}));
}

int main(int argc, char* argv[])
{
    if (!takeOrdinaryFileRights())
        qFatal("the permissions of files don't hold for this process");
    QCoreApplication application(argc, argv);
    tst_ArgumentsFile test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ArgumentsFile.moc"
