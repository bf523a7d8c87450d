#include "BaseDialog.h"

#include "DelayedCall.h"
#include "MessageCounter.h"
#include "Scripting.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QMetaMethod>
#include <QMouseEvent>
#include <QMoveEvent>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>
#include <type_traits>

using VEK_NAMESPACE::CBaseDialog;
using VEK_NAMESPACE::CScripting;

namespace {

static_assert(std::is_base_of<QDialog, CBaseDialog>::value, "it is one");

/// As wide and high as the label in it, 200 by 100.
class Dialog : public CBaseDialog
{
public:
    explicit Dialog(const char* name = "", QWidget* parent = nullptr)
        : CBaseDialog(parent)
    {
        setObjectName(QString::fromLatin1(name));
        auto* label = new QLabel;
        label->setFixedSize(200, 100);
        auto* layout = new QHBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(label);
    }

    bool canUseInAATSignalService() const override { return announced; }
    void setDragAreaHeight(int height) { m_dragAreaHeight = height; }

    bool announced = true;
    std::function<void(QPoint)> onMove;

protected:
    void moveEvent(QMoveEvent* event) override
    {
        CBaseDialog::moveEvent(event);
        if (onMove)
            onMove(event->pos());
    }
};

bool isAnnouncementPending(CBaseDialog& dialog)
{
    return CDelayedCall::isActive(&dialog, "sendNotification");
}

/// Sends a mouse event at a place of the screen and tells whether it was taken.
bool sendMouse(QWidget& widget, QEvent::Type type, const QPoint& global, Qt::MouseButton button)
{
    QMouseEvent event(type, widget.mapFromGlobal(global), global, button,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : button, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
    return event.isAccepted();
}

/// The global "notes" of the script.
class Notes : public QObject
{
    Q_OBJECT

public:
    QStringList taken;

public Q_SLOTS:
    void add(const QString& note) { taken << note; }
};

} // namespace

Q_DECLARE_METATYPE(Qt::MouseButton)

class tst_BaseDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void metaObject();
    void windowFlags();
    void firstShow();
    void firstShowOverParent();
    void laterShows();
    void announcement();
    void announcementInsideExec();
    void announcementSwitchedOff();
    void deletedBeforeAnnouncement();
    void moveToScreenCenter();
    void drag_data();
    void drag();
    void release_data();
    void release();
    void mouseEventsGoOnToParent();
    void globals();

private:
    std::optional<MessageCounter> m_messages;
};

void tst_BaseDialog::initTestCase()
{
    QCOMPARE(QGuiApplication::primaryScreen()->geometry(), QRect(0, 0, 800, 600));
}

void tst_BaseDialog::init()
{
    // Which the offscreen platform says of every dialog.
    m_messages.emplace({"propagateSizeHints"});
}

void tst_BaseDialog::cleanup()
{
    const int messages = m_messages->count();
    m_messages.reset();
    QCOMPARE(messages, 0);
}

void tst_BaseDialog::metaObject()
{
    const QMetaObject& meta = CBaseDialog::staticMetaObject;
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        const bool isSlot = method.methodType() == QMetaMethod::Slot;
        methods << (method.access() == QMetaMethod::Public ? "public " : "private ")
                + QLatin1String(isSlot ? "slot " : "method ") + QLatin1String(method.typeName())
                + QLatin1Char(' ') + QString::fromLatin1(method.methodSignature());
    }
    QCOMPARE(methods,
             QStringList({QStringLiteral("public slot void sendNotification()"),
                          QStringLiteral("private slot void moveToScreenCenter()"),
                          QStringLiteral("public method QString getObjectName()")}));

    CBaseDialog dialog(nullptr);
    dialog.setObjectName(QStringLiteral("aboutDialog"));
    QString name;
    QVERIFY(QMetaObject::invokeMethod(&dialog, "getObjectName", Q_RETURN_ARG(QString, name)));
    QCOMPARE(name, QStringLiteral("aboutDialog"));
    QVERIFY(dialog.canUseInAATSignalService());
}

void tst_BaseDialog::windowFlags()
{
    QWidget parent;
    for (QWidget* const p : {static_cast<QWidget*>(nullptr), &parent}) {
        const CBaseDialog dialog(p);
        QCOMPARE(dialog.parentWidget(), p);
        QVERIFY(dialog.isWindow());
        QCOMPARE(dialog.windowType(), Qt::Dialog);
        const Qt::WindowFlags flags = dialog.windowFlags();
        QVERIFY(flags.testFlag(Qt::FramelessWindowHint));
        QVERIFY(!flags.testFlag(Qt::WindowMinimizeButtonHint));
        QVERIFY(!flags.testFlag(Qt::WindowMaximizeButtonHint));
        QVERIFY(!flags.testFlag(Qt::WindowContextHelpButtonHint));
        QVERIFY(dialog.testAttribute(Qt::WA_TranslucentBackground));
        QVERIFY(!dialog.isVisible());
    }
}

void tst_BaseDialog::firstShow()
{
    Dialog dialog;
    dialog.setGeometry(5, 6, 600, 500);
    dialog.show();
    QVERIFY(dialog.isVisible());
    QCOMPARE(dialog.geometry(), QRect(300, 250, 200, 100));
}

/// QDialog puts it over its parent; after that it goes to the centre of the parent's screen.
void tst_BaseDialog::firstShowOverParent()
{
    QWidget parent;
    parent.setWindowFlags(Qt::FramelessWindowHint);
    parent.setGeometry(20, 20, 300, 200);
    parent.show();
    Dialog dialog("", &parent);
    QList<QPoint> places;
    dialog.onMove = [&places](QPoint place) { places << place; };
    dialog.show();
    QCOMPARE(dialog.pos(), QPoint(300, 250));
    QVERIFY(places.size() >= 2);
    QCOMPARE(places.last(), QPoint(300, 250));
    QVERIFY(parent.geometry().contains(places.at(places.size() - 2)));
}

/// Nothing happens, and nothing of what QDialog does: without the attribute it would place itself.
void tst_BaseDialog::laterShows()
{
    Dialog dialog("later");
    QSignalSpy announced(&CScripting::instance(), &CScripting::resendSignal);
    dialog.show();
    QVERIFY(announced.wait());
    sendMouse(dialog, QEvent::MouseButtonPress, QPoint(310, 260), Qt::LeftButton);
    sendMouse(dialog, QEvent::MouseMove, QPoint(20, 30), Qt::LeftButton);
    sendMouse(dialog, QEvent::MouseButtonRelease, QPoint(20, 30), Qt::LeftButton);
    QCOMPARE(dialog.pos(), QPoint(10, 20));
    dialog.resize(250, 150);

    for (int i = 0; i < 2; ++i) {
        dialog.hide();
        dialog.setAttribute(Qt::WA_Moved, false);
        dialog.show();
        QVERIFY(dialog.isVisible());
        QVERIFY(!isAnnouncementPending(dialog));
        QCOMPARE(dialog.geometry(), QRect(10, 20, 250, 150));
    }
    QCOMPARE(announced.count(), 1);
}

void tst_BaseDialog::announcement()
{
    Dialog dialog("announced");
    QSignalSpy announced(&CScripting::instance(), &CScripting::resendSignal);
    QElapsedTimer timer;
    timer.start();
    dialog.show();
    QVERIFY(isAnnouncementPending(dialog));
    QCOMPARE(announced.count(), 0);
    QVERIFY(announced.wait());
    QVERIFY(timer.elapsed() >= 90); // a coarse timer
    QCOMPARE(announced.takeFirst().at(0).value<QObject*>(), &dialog);
    QVERIFY(!isAnnouncementPending(dialog));

    dialog.sendNotification();
    QCOMPARE(announced.takeFirst().at(0).value<QObject*>(), &dialog);
}

void tst_BaseDialog::announcementInsideExec()
{
    Dialog dialog("modal");
    QObject context;
    QWidget* modal = nullptr;
    connect(&CScripting::instance(), &CScripting::resendSignal, &context, [&](QObject* object) {
        modal = QApplication::activeModalWidget();
        if (object == &dialog)
            dialog.done(7);
    });
    QCOMPARE(dialog.exec(), 7);
    QCOMPARE(modal, &dialog);
}

void tst_BaseDialog::announcementSwitchedOff()
{
    Dialog quiet("quiet");
    quiet.announced = false;
    QSignalSpy announced(&CScripting::instance(), &CScripting::resendSignal);
    quiet.show();
    QVERIFY(isAnnouncementPending(quiet));
    QTRY_VERIFY(!isAnnouncementPending(quiet));
    quiet.sendNotification();
    QCOMPARE(announced.count(), 0);
}

void tst_BaseDialog::deletedBeforeAnnouncement()
{
    QSignalSpy announced(&CScripting::instance(), &CScripting::resendSignal);
    {
        Dialog brief("brief");
        brief.show();
    }
    Dialog next("next");
    next.show();
    QVERIFY(announced.wait());
    QCOMPARE(announced.count(), 1);
    QCOMPARE(announced.first().first().value<QObject*>(), &next);
}

void tst_BaseDialog::moveToScreenCenter()
{
    Dialog dialog;
    dialog.show();
    dialog.setGeometry(1, 2, 300, 300);
    QVERIFY(QMetaObject::invokeMethod(&dialog, "moveToScreenCenter"));
    QCOMPARE(dialog.geometry(), QRect(300, 250, 200, 100));
}

void tst_BaseDialog::drag_data()
{
    QTest::addColumn<int>("areaHeight");
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<QPoint>("press");
    QTest::addColumn<QPoint>("place");
    const QPoint start(300, 250);
    const QPoint dragged(220, 310); // by (-80, 60)

    QTest::newRow("whole dialog, at the top") << 0 << Qt::LeftButton << QPoint(0, 0) << dragged;
    QTest::newRow("whole dialog, at the bottom")
        << 0 << Qt::LeftButton << QPoint(199, 99) << dragged;
    QTest::newRow("area of 30, at 0") << 30 << Qt::LeftButton << QPoint(10, 0) << dragged;
    QTest::newRow("area of 30, at 30") << 30 << Qt::LeftButton << QPoint(10, 30) << dragged;
    QTest::newRow("area of 30, at 31") << 30 << Qt::LeftButton << QPoint(10, 31) << start;
    QTest::newRow("area of 30, at the bottom") << 30 << Qt::LeftButton << QPoint(10, 99) << start;
    QTest::newRow("right button") << 0 << Qt::RightButton << QPoint(10, 10) << start;
    QTest::newRow("middle button") << 0 << Qt::MiddleButton << QPoint(10, 10) << start;
}

void tst_BaseDialog::drag()
{
    QFETCH(int, areaHeight);
    QFETCH(Qt::MouseButton, button);
    QFETCH(QPoint, press);
    QFETCH(QPoint, place);

    Dialog dialog;
    dialog.setDragAreaHeight(areaHeight);
    dialog.show();
    const QPoint at = QPoint(300, 250) + press;
    sendMouse(dialog, QEvent::MouseMove, at, Qt::NoButton);
    QCOMPARE(dialog.pos(), QPoint(300, 250));
    sendMouse(dialog, QEvent::MouseButtonPress, at, button);
    QCOMPARE(dialog.pos(), QPoint(300, 250));
    sendMouse(dialog, QEvent::MouseMove, at + QPoint(7, 8), button);
    sendMouse(dialog, QEvent::MouseMove, at + QPoint(-80, 60), button);
    QCOMPARE(dialog.pos(), place);
    sendMouse(dialog, QEvent::MouseButtonRelease, at + QPoint(-80, 60), button);
    sendMouse(dialog, QEvent::MouseMove, at, Qt::NoButton);
    QCOMPARE(dialog.pos(), place);
}

void tst_BaseDialog::release_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("left") << Qt::LeftButton;
    QTest::newRow("right") << Qt::RightButton;
    QTest::newRow("middle") << Qt::MiddleButton;
}

/// The release of any button ends a drag.
void tst_BaseDialog::release()
{
    QFETCH(Qt::MouseButton, button);
    Dialog dialog;
    dialog.show();
    sendMouse(dialog, QEvent::MouseButtonPress, QPoint(310, 260), Qt::LeftButton);
    sendMouse(dialog, QEvent::MouseButtonPress, QPoint(310, 260), Qt::RightButton);
    sendMouse(dialog, QEvent::MouseMove, QPoint(320, 280), Qt::LeftButton);
    QCOMPARE(dialog.pos(), QPoint(310, 270));
    sendMouse(dialog, QEvent::MouseButtonRelease, QPoint(320, 280), button);
    sendMouse(dialog, QEvent::MouseMove, QPoint(500, 500), Qt::LeftButton);
    QCOMPARE(dialog.pos(), QPoint(310, 270));
}

/// The dialog leaves them as QWidget does, not taken.
void tst_BaseDialog::mouseEventsGoOnToParent()
{
    Dialog dialog;
    dialog.show();
    QVERIFY(!sendMouse(dialog, QEvent::MouseButtonPress, QPoint(310, 260), Qt::LeftButton));
    QVERIFY(!sendMouse(dialog, QEvent::MouseMove, QPoint(320, 280), Qt::LeftButton));
    QVERIFY(!sendMouse(dialog, QEvent::MouseButtonRelease, QPoint(320, 280), Qt::LeftButton));
}

/// What a script finds, also of dialogs that came up in a run without a script. This process has
/// one from here on.
void tst_BaseDialog::globals()
{
    CScripting& scripting = CScripting::instance();
    QVERIFY(!scripting.isScriptingMode());
    Dialog first("twins");
    first.setWindowTitle(QStringLiteral("first"));
    Dialog second("twins");
    second.setWindowTitle(QStringLiteral("second"));
    Dialog quiet("quietDialog");
    quiet.setWindowTitle(QStringLiteral("quiet"));
    quiet.announced = false;
    Dialog nameless;
    Dialog hidden("hidden");
    for (Dialog* dialog : {&first, &second, &quiet, &nameless})
        dialog->show();

    Notes notes;
    scripting.makeObjectScriptable(QStringLiteral("notes"), &notes);
    const QTemporaryDir folder;
    QFile script(folder.filePath(QStringLiteral("test.js")));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("var all = this;\n"
                 "function tell(name) {\n"
                 "    notes.add(name + ': ' + (all[name] ? all[name].windowTitle : 'unknown'));\n"
                 "}\n"
                 "notes.add(twins.getObjectName());\n"
                 "tell('twins'); tell('quietDialog'); tell(''); tell('hidden');\n"
                 "scripting.resendSignal.connect(function(dialog) {\n"
                 "    tell(dialog.objectName);\n"
                 "});\n");
    script.close();
    scripting.setPathToScript(script.fileName());
    scripting.run();
    QVERIFY(!scripting.hasFailed());
    // The announcements come while the run ends; both twins are told by the first one's title.
    QCOMPARE(notes.taken,
             QStringList({QStringLiteral("twins"), QStringLiteral("twins: first"),
                          QStringLiteral("quietDialog: quiet"), QStringLiteral(": unknown"),
                          QStringLiteral("hidden: unknown"), QStringLiteral("twins: first"),
                          QStringLiteral("twins: first"), QStringLiteral(": unknown")}));
    notes.taken.clear();

    // It is known when QDialog moves it, which is the first that happens in the show event.
    Dialog early("early");
    early.setWindowTitle(QStringLiteral("known"));
    early.onMove = [&](QPoint) {
        if (early.isVisible())
            scripting.sendSignal(&early);
    };
    scripting.sendSignal(&early);
    early.show();
    QVERIFY(notes.taken.size() >= 2);
    QCOMPARE(notes.taken.at(0), QStringLiteral("early: unknown"));
    QCOMPARE(notes.taken.at(1), QStringLiteral("early: known"));
}

QTEST_MAIN(tst_BaseDialog)

#include "tst_BaseDialog.moc"
