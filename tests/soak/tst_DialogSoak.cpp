// A thousand dialogs that are opened and closed: nothing of them stays.

#include "BaseDialog.h"
#include "Consumption.h"
#include "Files.h"
#include "MessageBox.h"
#include "NativeDialogs.h"
#include "Scripting.h"

#include <QApplication>
#include <QDialog>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

#include <functional>
#include <memory>
#include <vector>

using namespace VEK_NAMESPACE;

namespace {

constexpr int part = SOAKS_WITH_SANITIZER ? 5 : 1;

constexpr qint64 heapBound = 128 << 10;
constexpr qint64 residentBound = SOAKS_WITH_SANITIZER ? 1LL << 40 : 6 << 20;

/// A dialog of a host's, with a button that closes it.
class HostDialog : public CBaseDialog
{
public:
    explicit HostDialog(QWidget* parent = nullptr)
        : CBaseDialog(parent)
    {
        setObjectName(QStringLiteral("hostDialog"));
        auto* button = new QPushButton(QStringLiteral("Close"));
        button->setObjectName(QStringLiteral("closeButton"));
        connect(button, &QPushButton::clicked, this, &QDialog::accept);
        (new QVBoxLayout(this))->addWidget(button);
    }
};

/// Answers each modal dialog as soon as it is up.
class Answerer : public QObject
{
public:
    explicit Answerer(const std::function<void(QDialog&)>& answer)
        : m_answer(answer)
    {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (dialog && dialog->isVisible()) {
                ++answered;
                m_answer(*dialog);
            }
        });
        m_timer.start(0);
    }

    int answered = 0;

private:
    const std::function<void(QDialog&)> m_answer;
    QTimer m_timer;
};

void settle()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

} // namespace

/// What the script calls for a dialog.
class Opener : public QObject
{
    Q_OBJECT

public:
    int opened = 0;
    Consumption first;
    Consumption last;

public Q_SLOTS:
    void open()
    {
        HostDialog dialog;
        if (dialog.exec() == QDialog::Accepted)
            ++opened;
    }
    void mark()
    {
        settle();
        first = last;
        last = Consumption::now();
    }
};

class tst_DialogSoak : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothing_stays_of_dialogs_data();
    void nothing_stays_of_dialogs();
    void nothing_stays_of_dialogs_that_a_script_closes();
};

using Open = std::function<void(int number)>;
Q_DECLARE_METATYPE(Open)

void tst_DialogSoak::nothing_stays_of_dialogs_data()
{
    QTest::addColumn<Open>("open");
    QTest::addColumn<int>("count");

    QTest::newRow("message boxes of all kinds, answered") << Open([](int number) {
        Answerer answerer([](QDialog& dialog) {
            const auto buttons = dialog.findChildren<QPushButton*>();
            for (QPushButton* button : buttons) {
                if (button->isDefault())
                    button->click();
            }
        });
        const QString text = QStringLiteral("A text that takes more than one line of the box, so "
                                            "that it is broken %1")
                                 .arg(number);
        switch (number % 7) {
        case 0:
            QCOMPARE(CMessageBox::yesNoMessage(nullptr, text, 165), QMessageBox::Yes);
            break;
        case 1:
            QCOMPARE(CMessageBox::saveDiscardCancelMessage(nullptr, text, 165), QMessageBox::Save);
            break;
        case 2:
            QVERIFY(CMessageBox::rotateQuestion(nullptr, text, 165));
            break;
        case 3:
            QCOMPARE(CMessageBox::backgroundProcessingCancelMessage(nullptr, text),
                     QMessageBox::Discard);
            break;
        case 4:
            CMessageBox::information(nullptr, text, 165);
            break;
        case 5:
            CMessageBox::critical(nullptr, text, 165);
            break;
        default:
            CMessageBox::showSimpleMessageBox(nullptr, text, QIcon(), QStringLiteral("Go"), 165);
        }
        QCOMPARE(answerer.answered, 1);
    }) << 350;

    QTest::newRow("message boxes that are closed") << Open([](int number) {
        Answerer answerer([](QDialog& dialog) { dialog.reject(); });
        QCOMPARE(CMessageBox::yesNoMessage(nullptr, QString::number(number), 165), QMessageBox::No);
        QCOMPARE(answerer.answered, 1);
    }) << 150;

    QTest::newRow("the system's file dialogs") << Open([](int number) {
        Answerer answerer([](QDialog& dialog) { dialog.reject(); });
        auto& dialogs = Singleton<CNativeDialogs>::instance();
        switch (number % 5) {
        case 0:
            QCOMPARE(dialogs.getOpenFileName(nullptr), QString());
            break;
        case 1:
            QCOMPARE(dialogs.getOpenFileNames(nullptr), QStringList());
            break;
        case 2:
            QCOMPARE(dialogs.getSaveFileName(nullptr), QString());
            break;
        case 3:
            QCOMPARE(dialogs.getExistingDirectory(nullptr), QString());
            break;
        default:
            QCOMPARE(dialogs.getFileBrowserDirectory(nullptr), QString());
        }
        QCOMPARE(answerer.answered, 1);
    }) << 150;

    QTest::newRow("dialogs of a host's that delete themselves") << Open([](int) {
        auto* dialog = new HostDialog;
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->show();
        QCoreApplication::processEvents();
        dialog->close();
    }) << 100;

    QTest::newRow("dialogs of a host's over a window that goes with them") << Open([](int) {
        const auto window = std::make_unique<QWidget>();
        window->show();
        auto* dialog = new HostDialog(window.get());
        dialog->show();
        QCoreApplication::processEvents();
    }) << 100;
}

void tst_DialogSoak::nothing_stays_of_dialogs()
{
    QFETCH(Open, open);
    QFETCH(int, count);
    count /= part;
    const int firstDialogs = count / 4;
    Consumption first;
    for (int number = 1; number <= count; ++number) {
        open(number);
        settle();
        if (QTest::currentTestFailed())
            return;
        if (number == firstDialogs)
            first = Consumption::now();
    }
    const Consumption last = Consumption::now();
    const QString more = last.since(first);
    QVERIFY2(last.heap - first.heap < heapBound, qPrintable(more));
    QVERIFY2(last.resident - first.resident < residentBound, qPrintable(more));
    QVERIFY2(last.widgets == first.widgets && last.windows == first.windows, qPrintable(more));
    QVERIFY2(last.files == first.files && last.threads == first.threads, qPrintable(more));
}

/// The announcement takes a tenth of a second for each.
void tst_DialogSoak::nothing_stays_of_dialogs_that_a_script_closes()
{
    constexpr int count = 150 / part;
    const QTemporaryDir folder;
    const QString script = folder.filePath(QStringLiteral("case.js"));
    QVERIFY(writeFile(script,
                      "scripting.resendSignal.connect(function (dialog) {\n"
                      "    scripting.clickButton(dialog, 'closeButton');\n"
                      "});\n"
                      "scripting.startTest.connect(function () {\n"
                      "    for (var n = 1; n <= "
                          + QByteArray::number(count)
                          + "; ++n) {\n"
                            "        opener.open();\n"
                            "        if (n === "
                          + QByteArray::number(count / 3) + ")\n"
                          + "            opener.mark();\n"
                            "    }\n"
                            "    opener.mark();\n"
                            "});\n"));
    Opener opener;
    CScripting& scripting = CScripting::instance();
    scripting.setPathToScript(script);
    scripting.setTimeOut(450000);
    scripting.makeObjectScriptable(QStringLiteral("opener"), &opener);
    QSignalSpy finished(&scripting, &CScripting::testFinished);
    scripting.startScript();
    QVERIFY(finished.wait(500000));

    const QByteArray report = readFile(folder.filePath(QStringLiteral("caseReport.txt")));
    QVERIFY2(report.endsWith("\nPASS\n") && !scripting.hasFailed(), report.constData());
    QCOMPARE(opener.opened, count);
    const QString more = opener.last.since(opener.first);
    QVERIFY2(opener.last.heap - opener.first.heap < heapBound, qPrintable(more));
    QVERIFY2(opener.last.resident - opener.first.resident < residentBound, qPrintable(more));
    QVERIFY2(opener.last.widgets == opener.first.widgets
                 && opener.last.windows == opener.first.windows
                 && opener.last.files == opener.first.files
                 && opener.last.threads == opener.first.threads,
             qPrintable(more));
}

QTEST_MAIN(tst_DialogSoak)

#include "tst_DialogSoak.moc"
