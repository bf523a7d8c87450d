#include "AboutDlg.h"

#include "BaseDialog.h"
#include "Files.h"
#include "MessageCounter.h"
#include "OrdinaryFileRights.h"
#include "SharedUtils.h"
#include "VerticalLabel.h"
#include "WindowProperties.h"
#include "customvekappstyle.h"

#include <QApplication>
#include <QBoxLayout>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QMetaMethod>
#include <QPointer>
#include <QProcess>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTranslator>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

static_assert(std::is_base_of<VEK_NAMESPACE::CBaseDialog, CAboutDlg>::value, "it is dragged");
static_assert(std::is_base_of<QThread, LicensesDownloadThread>::value, "it reads beside it");

#define STARS "<br>******************************************************<br>"

const char legalNotice[] =
    "Vek Marlowick and its logos are trademarks of Vek Labs. This program is protected by "
    "copyright law and by international treaties. It may be copied and passed on, as a whole or in "
    "part, only as its licence allows.<br><br>It contains software, fonts and data made by others, "
    "to which their own terms apply.<br><br>";

/// What a process outside of a bundle is asked for with this argument.
const char textsArgument[] = "--texts";

/// The file names and contents of a folder of notices.
using Notices = std::vector<std::pair<QByteArray, QByteArray>>;

QString contentsFolder()
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/.."));
}

QString noticePath(const QByteArray& name)
{
    return contentsFolder() + QStringLiteral("/Licenses/") + QString::fromUtf8(name);
}

bool writeInfo(const QString& contents)
{
    return writeFile(contents + QStringLiteral("/Info.plist"),
                     "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                     "<key>CFBundleIdentifier</key><string>com.vek.krnv3.standalone</string>"
                     "</dict></plist>\n");
}

bool writeNotices(const Notices& notices)
{
    bool written = true;
    for (const auto& notice : notices)
        written = writeFile(noticePath(notice.first), notice.second) && written;
    return written;
}

/// An empty notice. Whoever opens it waits for letGo().
class NoticePipe
{
public:
    explicit NoticePipe(const QByteArray& name)
        : m_path(QFile::encodeName(contentsFolder() + QLatin1String("/pipe")))
    {
        // A pipe isn't listed, a link is.
        if (mkfifo(m_path.constData(), 0600) != 0
            || symlink(m_path.constData(), QFile::encodeName(noticePath(name)).constData()) != 0)
            qFatal("cannot make a pipe");
    }
    ~NoticePipe()
    {
        if (m_end == -1)
            m_end = open(m_path.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        unlink(m_path.constData());
        close(m_end);
    }

    /// False if nobody comes.
    bool letGo()
    {
        return QTest::qWaitFor(
            [this] {
                m_end = open(m_path.constData(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
                return m_end != -1;
            },
            20000);
    }

private:
    Q_DISABLE_COPY(NoticePipe)

    const QByteArray m_path;
    int m_end = -1;
};

QBoxLayout* noticeLayout(const CAboutDlg& dialog)
{
    return dialog.findChild<QBoxLayout*>(QStringLiteral("verticalLayout_21"));
}

/// The texts under one another in the scroll area.
QStringList noticeTexts(const CAboutDlg& dialog)
{
    QStringList texts;
    const QBoxLayout* layout = noticeLayout(dialog);
    for (int i = 0; layout && i < layout->count(); ++i) {
        const auto* label = qobject_cast<QLabel*>(layout->itemAt(i)->widget());
        texts << (label ? label->text() : QStringLiteral("no label"));
    }
    return texts;
}

QList<LicensesDownloadThread*> threads(const CAboutDlg& dialog)
{
    return dialog.findChildren<LicensesDownloadThread*>(QString(), Qt::FindDirectChildrenOnly);
}

/// Waits until all that the dialog's thread has read is shown.
bool waitForThread(const CAboutDlg& dialog)
{
    for (LicensesDownloadThread* thread : threads(dialog)) {
        if (!QTest::qWaitFor([thread] { return thread->isFinished(); }, 60000))
            return false;
    }
    QCoreApplication::sendPostedEvents();
    return true;
}

QString text(const CAboutDlg& dialog, const char* label)
{
    const auto* found = dialog.findChild<QLabel*>(QLatin1String(label));
    return found ? found->text() : QStringLiteral("no such label");
}

QString policyName(QSizePolicy::Policy policy)
{
    switch (policy) {
    case QSizePolicy::Fixed:
        return QStringLiteral("fixed");
    case QSizePolicy::Minimum:
        return QStringLiteral("minimum");
    case QSizePolicy::Preferred:
        return QStringLiteral("preferred");
    case QSizePolicy::Expanding:
        return QStringLiteral("expanding");
    default:
        return QStringLiteral("another");
    }
}

QString describe(const QSizePolicy& policy)
{
    return policyName(policy.horizontalPolicy()) + QLatin1Char(' ')
        + policyName(policy.verticalPolicy());
}

QString describe(const QSize& size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

/// A spacer as its size and its policies, anything else by its name.
QString describe(QLayoutItem* item)
{
    if (QSpacerItem* spacer = item->spacerItem())
        return describe(spacer->sizeHint()) + QLatin1Char(' ') + describe(spacer->sizePolicy());
    const QObject* object = item->widget();
    if (!object)
        object = item->layout();
    return object->objectName();
}

/// Keeps what is asked for in the dialog's contexts.
class RecordingTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* sourceText, const char*, int) const override
    {
        if (qstrcmp(context, "aboutDlg") == 0 || qstrcmp(context, "CAboutDlg") == 0) {
            asked << QString::fromLatin1(context) + QStringLiteral(": ")
                    + QString::fromUtf8(sourceText);
        }
        return {};
    }

    mutable QStringList asked;
};

/// The texts of one of the library's catalogues while it lives.
class Language
{
public:
    explicit Language(const QString& name)
    {
        if (!m_translator.load(QStringLiteral(":/translations/vek_%1.qm").arg(name)))
            qFatal("no catalogue");
        QCoreApplication::installTranslator(&m_translator);
    }
    ~Language() { QCoreApplication::removeTranslator(&m_translator); }

private:
    Q_DISABLE_COPY(Language)

    QTranslator m_translator;
};

/// The product's look while it lives.
class Look
{
public:
    Look()
    {
        QApplication::setStyle(new VEK_NAMESPACE::CustomVekAppStyle);
        VEK_NAMESPACE::loadFonts();
        VEK_NAMESPACE::setPredefinedAppStyleSheet(QString(), qApp);
    }
    ~Look()
    {
        qApp->setStyleSheet(QString());
        QApplication::setStyle(QStringLiteral("fusion"));
    }

private:
    Q_DISABLE_COPY(Look)
};

/// Calls back for the events of one object.
class EventWatcher : public QObject
{
public:
    EventWatcher(QObject& watched, std::function<void(QEvent&)> seen)
        : m_seen(std::move(seen))
    {
        watched.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        m_seen(*event);
        return false;
    }

private:
    const std::function<void(QEvent&)> m_seen;
};

/// Gives a window the focus as a click on it in the task bar does.
void activate(QWidget& window)
{
    if (QGuiApplication::platformName() == QLatin1String("xcb"))
        Taskbar().requestFocus(window.winId());
    else
        window.activateWindow();
}

bool waitForActive(const QWidget& window)
{
    return QTest::qWaitFor([&window] { return window.isActiveWindow(); }, 20000);
}

/// Lets what is to be deleted later be deleted.
void deleteDeferred()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

Q_DECLARE_METATYPE(Notices)

/// Runs in a bundle of the product, whose notices are each test's own.
class tst_AboutDlg : public QObject
{
    Q_OBJECT

public:
    explicit tst_AboutDlg(QString programOutsideOfABundle)
        : m_programOutsideOfABundle(std::move(programOutsideOfABundle))
    {}

private Q_SLOTS:
    void init();
    void cleanup();

    void metaObjects();
    void dialog();
    void widget_data();
    void widget();
    void picture_data();
    void picture();
    void label_data();
    void label();
    void layout_data();
    void layout();
    void scrollArea();
    void fonts();

    void askedTexts();
    void language_data();
    void language();
    void updateProductName_data();
    void updateProductName();

    void notices_data();
    void notices();
    void noThreadForTwoNotices();
    void unreadable_data();
    void unreadable();
    void links();
    void noFolder();
    void noBundle();
    void folderIsFoundOnce();
    void listIsMadeEachTime();
    void noticeLabel();
    void eachNoticeAsItIsRead();
    void eachNoticeInAnEventOfItsOwn();
    void closedWhileNoticesAreRead();

    void thread_data();
    void thread();
    void threadEmitsFromItself();
    void threadIsInterrupted();

    void centredByFirstShow();
    void deactivationDuringFirstShow();
    void deactivationBeforeFirstShow();
    void deactivation();
    void otherEvents_data();
    void otherEvents();
    void anotherWindow();
    void escape();

    void nothingIsCutOff_data();
    void nothingIsCutOff();
    void nothingShowsThrough();

private:
    const QString m_programOutsideOfABundle;
    std::optional<MessageCounter> m_messages;
};

void tst_AboutDlg::init()
{
    QDir folder(noticePath(QByteArray()));
    QVERIFY(folder.removeRecursively());
    QVERIFY(folder.mkpath(QStringLiteral(".")));
    QVERIFY(writeInfo(contentsFolder()));
    // Which the offscreen platform says of every dialog.
    m_messages.emplace({"propagateSizeHints"});
}

void tst_AboutDlg::cleanup()
{
    const int messages = m_messages->count();
    m_messages.reset();
    QCOMPARE(messages, 0);
}

void tst_AboutDlg::metaObjects()
{
    const QMetaObject& dialog = CAboutDlg::staticMetaObject;
    QCOMPARE(QByteArray(dialog.className()), QByteArray("CAboutDlg"));
    QCOMPARE(dialog.superClass(), &VEK_NAMESPACE::CBaseDialog::staticMetaObject);
    QCOMPARE(dialog.methodCount() - dialog.methodOffset(), 1);
    const QMetaMethod slot = dialog.method(dialog.methodOffset());
    QCOMPARE(slot.methodSignature(), QByteArray("addFileContents(QString)"));
    QCOMPARE(slot.parameterNames(), QList<QByteArray>({"contents"}));
    QCOMPARE(slot.methodType(), QMetaMethod::Slot);
    QCOMPARE(slot.access(), QMetaMethod::Private);

    const QMetaObject& thread = LicensesDownloadThread::staticMetaObject;
    QCOMPARE(QByteArray(thread.className()), QByteArray("LicensesDownloadThread"));
    QCOMPARE(thread.superClass(), &QThread::staticMetaObject);
    QCOMPARE(thread.methodCount() - thread.methodOffset(), 1);
    const QMetaMethod signal = thread.method(thread.methodOffset());
    QCOMPARE(signal.methodSignature(), QByteArray("fileRead(QString)"));
    QCOMPARE(signal.parameterNames(), QList<QByteArray>({"contents"}));
    QCOMPARE(signal.methodType(), QMetaMethod::Signal);
}

void tst_AboutDlg::dialog()
{
    QWidget parent;
    CAboutDlg dialog(&parent);
    QCOMPARE(dialog.parentWidget(), &parent);
    QVERIFY(dialog.isWindow());
    QVERIFY(dialog.windowFlags() & Qt::FramelessWindowHint);
    QCOMPARE(dialog.objectName(), QStringLiteral("aboutDlg"));
    QCOMPARE(dialog.getObjectName(), QStringLiteral("aboutDlg"));
    QCOMPARE(dialog.size(), QSize(540, 508));
    QCOMPARE(dialog.minimumSize(), QSize(540, 508));
    QCOMPARE(dialog.maximumSize(), QSize(540, 508));
    QCOMPARE(describe(dialog.sizePolicy()), QStringLiteral("fixed fixed"));
    QVERIFY(dialog.testAttribute(Qt::WA_DeleteOnClose));
    QVERIFY(!dialog.isModal());
    QCOMPARE(dialog.windowTitle(), QStringLiteral("About Vek Marlowick 3"));
    QCOMPARE(dialog.styleSheet(), QString());
}

void tst_AboutDlg::widget_data()
{
    QTest::addColumn<QByteArray>("className");
    QTest::addColumn<QString>("parent");
    QTest::addColumn<QString>("policy");
    QTest::addColumn<QSize>("minimum");
    QTest::addColumn<QSize>("maximum");
    QTest::addColumn<QString>("sheet");
    const auto row = [](const char* name, const char* className, const char* parent,
                        const char* policy, const char* sheet, const QSize& minimum = {0, 0},
                        const QSize& maximum = {16777215, 16777215}) {
        QTest::newRow(name) << QByteArray(className) << QString::fromLatin1(parent)
                            << QString::fromLatin1(policy) << minimum << maximum
                            << QString::fromLatin1(sheet);
    };
    const QSize narrow(44, 362);

    row("label", "QLabel", "aboutDlg", "fixed fixed", "");
    row("verticalWidget", "QWidget", "aboutDlg", "preferred preferred", "background:#262626");
    row("verticalLabel", "CVerticalLabel", "verticalWidget", "fixed fixed",
        "background:black;\ncolor: #4f779a;\nfont-size: 8px;", narrow, narrow);
    row("blackWidget", "QWidget", "aboutDlg", "preferred fixed", "background:black", {0, 362},
        {16777215, 362});
    row("label_2", "QLabel", "blackWidget", "preferred preferred", "");
    row("label_3", "QLabel", "blackWidget", "fixed fixed",
        "color: white;font-size: 23px;font-family: \"MavenProLight300\";");
    row("label_1", "QLabel", "blackWidget", "fixed fixed", "color: #747474;\nfont-size: 11px;");
    row("aboutLabel", "QLabel", "blackWidget", "fixed fixed", "color: #747474;\nfont-size: 10px;");
    row("lbVisitVekHomePage", "QLabel", "blackWidget", "fixed preferred",
        "QLabel{\ncolor: #747474;\nfont-size: 10px;\n}");
    row("label_6", "QLabel", "blackWidget", "fixed preferred", "");
    row("grayWidget", "QWidget", "aboutDlg", "preferred preferred", "background:#262626");
    row("scrollArea", "QScrollArea", "grayWidget", "expanding expanding", "");
    row("scrollAreaWidgetContents", "QWidget", "qt_scrollarea_viewport", "preferred preferred", "");
    row("lbVisitVekPatentsPage", "QLabel", "scrollAreaWidgetContents", "preferred preferred", "");
}

void tst_AboutDlg::widget()
{
    QFETCH(QByteArray, className);
    QFETCH(QString, parent);
    QFETCH(QString, policy);
    QFETCH(QSize, minimum);
    QFETCH(QSize, maximum);
    QFETCH(QString, sheet);
    CAboutDlg dialog(nullptr);
    const auto found = dialog.findChildren<QWidget*>(QLatin1String(QTest::currentDataTag()));
    QCOMPARE(found.count(), 1);
    const QWidget& widget = *found.first();
    QCOMPARE(QByteArray(widget.metaObject()->className()), className);
    QCOMPARE(widget.parentWidget()->objectName(), parent);
    QCOMPARE(describe(widget.sizePolicy()), policy);
    QCOMPARE(widget.minimumSize(), minimum);
    QCOMPARE(widget.maximumSize(), maximum);
    QCOMPARE(widget.styleSheet(), sheet);
}

void tst_AboutDlg::picture_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("label") << QStringLiteral(":/icons/aboutDialog/line-left.png");
    QTest::newRow("label_2") << QStringLiteral(":/icons/aboutDialog/VEK.png");
    QTest::newRow("label_6") << QStringLiteral(":/icons/aboutDialog/KR.png");
}

void tst_AboutDlg::picture()
{
    QFETCH(QString, file);
    const QImage expected(file);
    QVERIFY(!expected.isNull());
    CAboutDlg dialog(nullptr);
    const auto* label = dialog.findChild<QLabel*>(QLatin1String(QTest::currentDataTag()));
    QVERIFY(label && label->pixmap());
    QCOMPARE(label->pixmap()->toImage().convertToFormat(QImage::Format_ARGB32),
             expected.convertToFormat(QImage::Format_ARGB32));
    QCOMPARE(label->text(), QString());
    QVERIFY(!label->hasScaledContents());
}

void tst_AboutDlg::label_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("alignment");
    QTest::addColumn<bool>("wraps");
    QTest::addColumn<bool>("links");
    const int centred = Qt::AlignLeft | Qt::AlignVCenter;
    const int top = Qt::AlignLeft | Qt::AlignTop;
    QTest::newRow("verticalLabel")
        << QStringLiteral("\u2003\u2003Copyright \u00a9 Vek Labs. All rights reserved.") << centred
        << false << false;
    QTest::newRow("label_3") << QStringLiteral("Straight lines, true shapes") << centred << false
                             << false;
    QTest::newRow("label_1") << QStringLiteral("Vek Marlowick 3") << centred << false << false;
    QTest::newRow("aboutLabel") << QStringLiteral("Version 3.1.4 / Build 251 / 64 bit") << centred
                                << false << false;
    QTest::newRow("lbVisitVekHomePage")
        << QStringLiteral("<a href=\"http://www.vek.example/intl/redirect/kr/vek_home\">"
                          "<span style=\"text-decoration: underline; color:#747474;\">"
                          "Visit the Vek home page</span></a>")
        << top << false << true;
    QTest::newRow("lbVisitVekPatentsPage")
        << QString::fromLatin1(legalNotice) << top << true << true;
}

void tst_AboutDlg::label()
{
    QFETCH(QString, text);
    QFETCH(int, alignment);
    QFETCH(bool, wraps);
    QFETCH(bool, links);
    CAboutDlg dialog(nullptr);
    const auto* label = dialog.findChild<QLabel*>(QLatin1String(QTest::currentDataTag()));
    QVERIFY(label);
    QCOMPARE(label->text(), text);
    QCOMPARE(int(label->alignment()), alignment);
    QCOMPARE(label->wordWrap(), wraps);
    QCOMPARE(label->openExternalLinks(), links);
    QCOMPARE(label->textInteractionFlags(), Qt::TextInteractionFlags(Qt::LinksAccessibleByMouse));
    QCOMPARE(label->textFormat(), Qt::AutoText);
    QCOMPARE(label->frameShape(), QFrame::NoFrame);
}

void tst_AboutDlg::layout_data()
{
    QTest::addColumn<QByteArray>("className");
    QTest::addColumn<QString>("widget");
    QTest::addColumn<QList<int>>("margins");
    QTest::addColumn<QStringList>("items");
    const auto row = [](const char* name, const char* className, const char* widget,
                        const QList<int>& margins, std::initializer_list<const char*> items) {
        QStringList list;
        for (const char* item : items)
            list << QLatin1String(item);
        QTest::newRow(name) << QByteArray(className) << QString::fromLatin1(widget) << margins
                            << list;
    };
    const QList<int> none = {0, 0, 0, 0};
    row("horizontalLayout", "QHBoxLayout", "aboutDlg", none,
        {"label", "verticalWidget", "verticalLayout"});
    row("verticalLayout_4", "QVBoxLayout", "verticalWidget", none,
        {"verticalLabel", "20x40 minimum expanding"});
    row("verticalLayout", "QVBoxLayout", "", none, {"blackWidget", "grayWidget"});
    row("verticalLayout_2", "QVBoxLayout", "blackWidget", {0, 48, 24, 22},
        {"label_2", "0x16 minimum fixed", "label_3", "0x32 minimum fixed", "label_1", "aboutLabel",
         "horizontalLayout_2"});
    row("horizontalLayout_2", "QHBoxLayout", "", none,
        {"lbVisitVekHomePage", "40x20 expanding minimum", "label_6"});
    row("verticalLayout_3", "QVBoxLayout", "grayWidget", {0, 0, 5, 10},
        {"20x15 minimum fixed", "scrollArea"});
    row("verticalLayout_21", "QVBoxLayout", "scrollAreaWidgetContents", none,
        {"lbVisitVekPatentsPage"});
}

void tst_AboutDlg::layout()
{
    QFETCH(QByteArray, className);
    QFETCH(QString, widget);
    QFETCH(QList<int>, margins);
    QFETCH(QStringList, items);
    CAboutDlg dialog(nullptr);
    const auto* layout = dialog.findChild<QLayout*>(QLatin1String(QTest::currentDataTag()));
    QVERIFY(layout);
    QCOMPARE(QByteArray(layout->metaObject()->className()), className);
    if (!widget.isEmpty()) {
        QCOMPARE(layout->parentWidget()->objectName(), widget);
        QCOMPARE(layout->parentWidget()->layout(), layout);
    }
    QCOMPARE(layout->spacing(), 0);
    const QMargins m = layout->contentsMargins();
    QCOMPARE(QList<int>({m.left(), m.top(), m.right(), m.bottom()}), margins);
    QStringList found;
    for (int i = 0; i < layout->count(); ++i)
        found << describe(layout->itemAt(i));
    QCOMPARE(found, items);
}

void tst_AboutDlg::scrollArea()
{
    CAboutDlg dialog(nullptr);
    const auto* area = dialog.findChild<QScrollArea*>();
    QVERIFY(area);
    QCOMPARE(area->frameShape(), QFrame::NoFrame);
    QCOMPARE(area->verticalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    QCOMPARE(area->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QVERIFY(area->widgetResizable());
    QCOMPARE(area->widget()->objectName(), QStringLiteral("scrollAreaWidgetContents"));
    QCOMPARE(area->verticalScrollBar()->contextMenuPolicy(), Qt::NoContextMenu);
    QCOMPARE(area->horizontalScrollBar()->contextMenuPolicy(), Qt::DefaultContextMenu);
}

void tst_AboutDlg::fonts()
{
    CAboutDlg dialog(nullptr);
    QCOMPARE(dialog.findChild<QLabel*>(QStringLiteral("lbVisitVekPatentsPage"))->font().family(),
             QStringLiteral("RobotoMedium"));
    for (const char* name : {"label_1", "aboutLabel"}) {
        QCOMPARE(dialog.findChild<QLabel*>(QLatin1String(name))->font().family(),
                 QApplication::font().family());
    }
}

void tst_AboutDlg::askedTexts()
{
    RecordingTranslator translator;
    QCoreApplication::installTranslator(&translator);
    const CAboutDlg dialog(nullptr);
    QCoreApplication::removeTranslator(&translator);
    translator.asked.removeDuplicates();
    translator.asked.sort();
    QStringList expected = {
        QStringLiteral("aboutDlg: About %1"),
        QStringLiteral("aboutDlg: \u2003\u2003Copyright \u00a9 Vek Labs. All rights reserved."),
        QStringLiteral("aboutDlg: Straight lines, true shapes"),
        QStringLiteral("aboutDlg: Vek Marlowick 3"),
        QStringLiteral("aboutDlg: <a href=\"%1\"><span style=\"text-decoration: underline; "
                       "color:#747474;\">Visit the Vek home page</span></a>"),
        QStringLiteral("aboutDlg: ")
            + QString::fromLatin1(legalNotice)
                  .replace(QStringLiteral("Vek Marlowick"), QStringLiteral("%1")),
        QStringLiteral("CAboutDlg: Version"),
        QStringLiteral("CAboutDlg: Build"),
        QStringLiteral("CAboutDlg: 64 bit"),
    };
    expected.sort();
    QCOMPARE(translator.asked, expected);
}

void tst_AboutDlg::language_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("copyright");
    QTest::addColumn<QString>("slogan");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("link");
    QTest::addColumn<QString>("firstWords");
    QTest::newRow("en") << "About Vek Marlowick 3"
                        << "\u2003\u2003Copyright © Vek Labs. All rights reserved."
                        << "Straight lines, true shapes"
                        << "Version 3.1.4 / Build 251 / 64 bit"
                        << "Visit the Vek home page"
                        << "Vek Marlowick and its logos are trademarks";
    QTest::newRow("de") << "Über Vek Marlowick 3"
                        << "\u2003\u2003Copyright © Vek Labs. Alle Rechte vorbehalten."
                        << "Gerade Linien, wahre Formen"
                        << "Version 3.1.4 / Build 251 / 64 Bit"
                        << "Vek im Internet"
                        << "Vek Marlowick und die zugehörigen Logos sind Marken";
    QTest::newRow("fr") << "À propos de Vek Marlowick 3"
                        << "\u2003\u2003Copyright © Vek Labs. Tous droits réservés."
                        << "Lignes droites, formes justes"
                        << "Version 3.1.4 / Build 251 / 64 bits"
                        << "Visiter le site de Vek"
                        << "Vek Marlowick et ses logos sont des marques";
    QTest::newRow("ja") << "Vek Marlowick 3 について"
                        << "\u2003\u2003Copyright © Vek Labs. 無断複写・転載を禁じます。"
                        << "まっすぐな線、正しい形"
                        << "バージョン 3.1.4 / ビルド 251 / 64 ビット"
                        << "Vek のホームページへ"
                        << "Vek Marlowick とそのロゴは";
}

void tst_AboutDlg::language()
{
    QFETCH(QString, title);
    QFETCH(QString, copyright);
    QFETCH(QString, slogan);
    QFETCH(QString, version);
    QFETCH(QString, link);
    QFETCH(QString, firstWords);
    const Language language{QLatin1String(QTest::currentDataTag())};
    const CAboutDlg dialog(nullptr);
    QCOMPARE(dialog.windowTitle(), title);
    QCOMPARE(text(dialog, "verticalLabel"), copyright);
    QCOMPARE(text(dialog, "label_3"), slogan);
    QCOMPARE(text(dialog, "label_1"), QStringLiteral("Vek Marlowick 3"));
    QCOMPARE(text(dialog, "aboutLabel"), version);
    QCOMPARE(text(dialog, "lbVisitVekHomePage"),
             QStringLiteral("<a href=\"http://www.vek.example/intl/redirect/kr/vek_home\">"
                            "<span style=\"text-decoration: underline; color:#747474;\">")
                 + link + QStringLiteral("</span></a>"));
    const QString notice = text(dialog, "lbVisitVekPatentsPage");
    QCOMPARE(notice.left(firstWords.size()), firstWords);
    QCOMPARE(notice.right(8), QStringLiteral("<br><br>"));
    QVERIFY(!notice.contains(QLatin1Char('%')));
}

void tst_AboutDlg::updateProductName_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("text");
    QTest::newRow("x") << QStringList("x") << "Vek Marlowick 3 x";
    QTest::newRow("of two words") << QStringList("for all") << "Vek Marlowick 3 for all";
    QTest::newRow("empty") << QStringList("") << "Vek Marlowick 3";
    QTest::newRow("null") << QStringList(QString()) << "Vek Marlowick 3";
    QTest::newRow("a blank is a name") << QStringList(" ") << "Vek Marlowick 3  ";
    QTest::newRow("twice") << QStringList({"x", "y"}) << "Vek Marlowick 3 x y";
}

void tst_AboutDlg::updateProductName()
{
    QFETCH(QStringList, names);
    QFETCH(QString, text);
    CAboutDlg dialog(nullptr);
    for (const QString& name : names)
        dialog.updateProductName(name);
    QCOMPARE(::text(dialog, "label_1"), text);
    QCOMPARE(dialog.windowTitle(), QStringLiteral("About Vek Marlowick 3"));
}

void tst_AboutDlg::notices_data()
{
    QTest::addColumn<Notices>("files");
    QTest::addColumn<QString>("atOnce"); // behind the legal notice
    QTest::addColumn<QStringList>("later");
    const auto row = [](const char* name, const Notices& files, const char* atOnce,
                        const QStringList& later = QStringList()) {
        QTest::newRow(name) << files << QString::fromUtf8(atOnce) << later;
    };
    const Notices one = {{"a.txt", "one\n"}};
    Notices two = one;
    two.emplace_back("b.txt", "two\n");
    Notices three = two;
    three.emplace_back("c.txt", "three\n");
    Notices five = three;
    five.emplace_back("d.txt", "four\n");
    five.emplace_back("e.txt", "five\n");

    row("no file", {}, "");
    row("one file: no star line", one, "one<br>");
    row("two files: a star line and one more break between them", two,
        "one<br>" STARS "<br>two<br>");
    row("three files", three, "one<br>" STARS "<br>two<br>" STARS, {"three<br>"});
    row("five files", five, "one<br>" STARS "<br>two<br>" STARS,
        {"three<br>" STARS, "four<br>" STARS, "five<br>"});

    row("by name, whatever the case",
        {{"D.txt", "4\n"}, {"b.txt", "2\n"}, {"C.txt", "3\n"}, {"a.txt", "1\n"}, {"E.TXT", "5\n"}},
        "1<br>" STARS "<br>2<br>" STARS, {"3<br>" STARS, "4<br>" STARS, "5<br>"});
    row("only notices count",
        {{"a.md", "1\n"},
         {"b", "2\n"},
         {"txt", "3\n"},
         {"c.txt.bak", "4\n"},
         {".d.txt", "5\n"},
         {"e.txt", "6\n"}},
        "6<br>");
    row("sub-folders aren't looked into", {{"a.txt", "1\n"}, {"more/b.txt", "2\n"}}, "1<br>");
    row("a folder with a notice's name takes the place of one",
        {{"a.txt", "1\n"}, {"b.txt/b.txt", "2\n"}, {"c.txt", "3\n"}}, "1<br>" STARS, {"3<br>"});
    row("of two folders with notices' names nothing comes",
        {{"a.txt/a.txt", "1\n"}, {"b.txt/b.txt", "2\n"}, {"c.txt", "3\n"}}, STARS, {"3<br>"});

    row("an empty file", {{"a.txt", ""}}, "");
    row("an empty file before another", {{"a.txt", ""}, {"b.txt", "2\n"}}, STARS "<br>2<br>");
    row("empty files", {{"a.txt", ""}, {"b.txt", ""}, {"c.txt", ""}, {"d.txt", ""}},
        STARS "<br>" STARS, {STARS, ""});
    row("carriage returns", {{"a.txt", "1\r\n\r\n2\r\n"}}, "1<br><br>2<br>");
    row("carriage returns within a line", {{"a.txt", "1\r2\n"}, {"b.txt", ""}, {"c.txt", "3\r4\n"}},
        "12<br>" STARS "<br>" STARS, {"34<br>"});
    row("a last line without an end", {{"a.txt", "1\n2"}}, "1<br>2<br>");
    row("blank lines", {{"a.txt", "\n\n1\n \n"}}, "<br><br>1<br> <br>");
    row("markup", {{"a.txt", "a <b>b</b> & c < d &amp; %1\n"}}, "a <b>b</b> & c < d &amp; %1<br>");
    row("markup of a later file", {{"a.txt", ""}, {"b.txt", ""}, {"c.txt", "<i>& %1\n"}},
        STARS "<br>" STARS, {"<i>& %1<br>"});
    row("text of the system's encoding", {{"a.txt", "Größe 形\n"}}, "Größe 形<br>");
    row("a path with blanks and signs", {{"a b (1) é.txt", "1\n"}}, "1<br>");
}

void tst_AboutDlg::notices()
{
    QFETCH(Notices, files);
    QFETCH(QString, atOnce);
    QFETCH(QStringList, later);
    QVERIFY(writeNotices(files));

    const CAboutDlg dialog(nullptr);
    const QStringList first = {QString::fromLatin1(legalNotice) + atOnce};
    QCOMPARE(noticeTexts(dialog), first);
    QCOMPARE(threads(dialog).count(), later.isEmpty() ? 0 : 1);
    QVERIFY(waitForThread(dialog));
    QCOMPARE(noticeTexts(dialog), first + later);
}

void tst_AboutDlg::noThreadForTwoNotices()
{
    QVERIFY(writeNotices({{"a.txt", "1\n"}, {"b.txt", "2\n"}}));
    const CAboutDlg dialog(nullptr);
    QCOMPARE(dialog.findChildren<QThread*>().count(), 0);
}

void tst_AboutDlg::unreadable_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArrayList>("unreadable");
    QTest::addColumn<QString>("atOnce");
    QTest::addColumn<QStringList>("later");
    const QStringList none;
    QTest::newRow("the only one") << 1 << QByteArrayList{"1.txt"} << "" << none;
    QTest::newRow("the first of two") << 2 << QByteArrayList{"1.txt"} << "2<br>" << none;
    QTest::newRow("the second of two") << 2 << QByteArrayList{"2.txt"} << "1<br>" << none;
    QTest::newRow("both of two") << 2 << QByteArrayList{"1.txt", "2.txt"} << "" << none;
    QTest::newRow("the first of three: the third doesn't move up")
        << 3 << QByteArrayList{"1.txt"} << "2<br>" STARS << QStringList("3<br>");
    QTest::newRow("the first two of three")
        << 3 << QByteArrayList{"1.txt", "2.txt"} << STARS << QStringList("3<br>");
    QTest::newRow("the last of three")
        << 3 << QByteArrayList{"3.txt"} << "1<br>" STARS "<br>2<br>" STARS << none;
    QTest::newRow("the third of five")
        << 5 << QByteArrayList{"3.txt"} << "1<br>" STARS "<br>2<br>" STARS
        << QStringList({"4<br>" STARS, "5<br>"});
    QTest::newRow("the last of five leaves a star line")
        << 5 << QByteArrayList{"5.txt"} << "1<br>" STARS "<br>2<br>" STARS
        << QStringList({"3<br>" STARS, "4<br>" STARS});
    QTest::newRow("all") << 5 << QByteArrayList{"1.txt", "2.txt", "3.txt", "4.txt", "5.txt"}
                         << STARS << none;
}

void tst_AboutDlg::unreadable()
{
    QFETCH(int, count);
    QFETCH(QByteArrayList, unreadable);
    QFETCH(QString, atOnce);
    QFETCH(QStringList, later);
    for (int i = 1; i <= count; ++i) {
        const QByteArray number = QByteArray::number(i);
        const QByteArray name = number + ".txt";
        QVERIFY(writeNotices({{name, number + '\n'}}));
        if (unreadable.contains(name))
            QVERIFY(QFile::setPermissions(noticePath(name), QFileDevice::WriteOwner));
    }

    const CAboutDlg dialog(nullptr);
    const QStringList first = {QString::fromLatin1(legalNotice) + atOnce};
    QCOMPARE(noticeTexts(dialog), first);
    QVERIFY(waitForThread(dialog));
    QCOMPARE(noticeTexts(dialog), first + later);
}

void tst_AboutDlg::links()
{
    const QString elsewhere = contentsFolder() + QStringLiteral("/notice.md");
    QVERIFY(writeFile(elsewhere, "linked\n"));
    QVERIFY(QFile::link(elsewhere, noticePath("a.txt")));
    QVERIFY(QFile::link(elsewhere + QStringLiteral(".none"), noticePath("b.txt")));
    QCOMPARE(mkfifo(QFile::encodeName(noticePath("c.txt")).constData(), 0600), 0);
    const CAboutDlg dialog(nullptr);
    QCOMPARE(noticeTexts(dialog), QStringList(QLatin1String(legalNotice) + "linked<br>"));
    QVERIFY(threads(dialog).isEmpty());
}

void tst_AboutDlg::noFolder()
{
    QVERIFY(QDir(noticePath(QByteArray())).removeRecursively());
    QVERIFY(writeFile(contentsFolder() + QStringLiteral("/a.txt"), "1\n"));
    const CAboutDlg dialog(nullptr);
    QCOMPARE(noticeTexts(dialog), QStringList(QLatin1String(legalNotice)));
    QVERIFY(threads(dialog).isEmpty());
}

void tst_AboutDlg::noBundle()
{
    QProcess process;
    process.start(m_programOutsideOfABundle, {QString::fromLatin1(textsArgument)});
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(process.readAllStandardOutput(), QByteArray(legalNotice) + '\n');
    QCOMPARE(process.readAllStandardError(), QByteArray());
}

void tst_AboutDlg::folderIsFoundOnce()
{
    QVERIFY(writeNotices({{"a.txt", "1\n"}}));
    const QStringList texts(QLatin1String(legalNotice) + "1<br>");
    QCOMPARE(noticeTexts(CAboutDlg(nullptr)), texts);
    QVERIFY(QFile::remove(contentsFolder() + QStringLiteral("/Info.plist")));
    QCOMPARE(noticeTexts(CAboutDlg(nullptr)), texts);
}

void tst_AboutDlg::listIsMadeEachTime()
{
    QVERIFY(writeNotices({{"a.txt", "1\n"}}));
    QCOMPARE(noticeTexts(CAboutDlg(nullptr)), QStringList(QLatin1String(legalNotice) + "1<br>"));
    QVERIFY(QFile::remove(noticePath("a.txt")));
    QVERIFY(writeNotices({{"b.txt", "2\n"}}));
    QCOMPARE(noticeTexts(CAboutDlg(nullptr)), QStringList(QLatin1String(legalNotice) + "2<br>"));
}

void tst_AboutDlg::noticeLabel()
{
    CAboutDlg dialog(nullptr);
    QVERIFY(QMetaObject::invokeMethod(&dialog, "addFileContents", Qt::DirectConnection,
                                      Q_ARG(QString, QStringLiteral("a <b>text</b>"))));
    QVERIFY(QMetaObject::invokeMethod(&dialog, "addFileContents", Qt::DirectConnection,
                                      Q_ARG(QString, QString())));
    const QBoxLayout* layout = noticeLayout(dialog);
    QCOMPARE(layout->count(), 3);
    for (int i : {1, 2}) {
        const auto* label = qobject_cast<QLabel*>(layout->itemAt(i)->widget());
        QVERIFY(label);
        QCOMPARE(label->parentWidget()->objectName(), QStringLiteral("scrollAreaWidgetContents"));
        QCOMPARE(label->objectName(), QStringLiteral("lbVisitVekPatentsPage"));
        QCOMPARE(label->text(), i == 1 ? QStringLiteral("a <b>text</b>") : QString());
        QCOMPARE(describe(label->sizePolicy()), QStringLiteral("preferred preferred"));
        QCOMPARE(label->sizePolicy().hasHeightForWidth(), i == 1); // Qt's, for a text
        QCOMPARE(label->minimumSize(), QSize(0, 0));
        QCOMPARE(label->alignment(), Qt::AlignLeft | Qt::AlignTop);
        QVERIFY(label->wordWrap());
        QVERIFY(label->openExternalLinks());
        QCOMPARE(label->textInteractionFlags(),
                 Qt::TextInteractionFlags(Qt::LinksAccessibleByMouse));
    }
}

void tst_AboutDlg::eachNoticeAsItIsRead()
{
    QVERIFY(writeNotices({{"a.txt", ""}, {"b.txt", ""}, {"c.txt", "3\n"}, {"e.txt", "5\n"}}));
    std::unique_ptr<CAboutDlg> dialog;
    NoticePipe fourth("d.txt");
    dialog = std::make_unique<CAboutDlg>(nullptr);
    QTRY_COMPARE(noticeTexts(*dialog).mid(1), QStringList("3<br>" STARS));
    QVERIFY(threads(*dialog).first()->isRunning());
    QVERIFY(fourth.letGo());
    QVERIFY(waitForThread(*dialog));
    QCOMPARE(noticeTexts(*dialog).mid(1), QStringList({"3<br>" STARS, STARS, "5<br>"}));
}

/// So that what else happens has its turn in between.
void tst_AboutDlg::eachNoticeInAnEventOfItsOwn()
{
    constexpr int count = 500;
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(1000 + i);
        QVERIFY(writeNotices({{number + ".txt", number + '\n'}}));
    }
    CAboutDlg dialog(nullptr);
    int calls = 0;
    QList<int> callsAtArrivals;
    const EventWatcher caller(
        dialog, [&calls](QEvent& event) { calls += int(event.type() == QEvent::MetaCall); });
    const EventWatcher arrivals(*noticeLayout(dialog)->parentWidget(),
                                [&calls, &callsAtArrivals](QEvent& event) {
                                    if (event.type() == QEvent::ChildAdded)
                                        callsAtArrivals << calls;
                                });
    QVERIFY(waitForThread(dialog));

    const QStringList texts = noticeTexts(dialog);
    QCOMPARE(texts.count(), count - 1);
    for (int i = 1; i < count - 1; ++i) {
        const QString stars = i < count - 2 ? QStringLiteral(STARS) : QString();
        QCOMPARE(texts.at(i), QStringLiteral("%1<br>").arg(1001 + i) + stars);
    }
    QCOMPARE(callsAtArrivals.count(), count - 2);
    for (int i = 0; i < count - 2; ++i)
        QCOMPARE(callsAtArrivals.at(i), i + 1);
}

void tst_AboutDlg::closedWhileNoticesAreRead()
{
    QVERIFY(writeNotices({{"a.txt", ""}, {"b.txt", ""}, {"d.txt", ""}, {"e.txt", ""}}));
    std::unique_ptr<CAboutDlg> dialog;
    NoticePipe third("c.txt");
    dialog = std::make_unique<CAboutDlg>(nullptr);
    LicensesDownloadThread* thread = threads(*dialog).first();

    // The thread goes on only when the dialog's end has reached it.
    int read = 0;
    bool interrupted = false;
    connect(
        thread, &LicensesDownloadThread::fileRead, thread,
        [&read, &interrupted, thread] {
            ++read;
            for (int i = 0; i < 20000 && !thread->isInterruptionRequested(); ++i)
                QThread::msleep(1);
            interrupted = thread->isInterruptionRequested();
        },
        Qt::DirectConnection);
    QVERIFY(thread->isRunning());
    QVERIFY(third.letGo());
    dialog.reset();
    QCOMPARE(read, 1);
    QVERIFY(interrupted);
}

void tst_AboutDlg::thread_data()
{
    QTest::addColumn<QByteArrayList>("files");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("none") << QByteArrayList() << QStringList();
    QTest::newRow("one") << QByteArrayList{"a"} << QStringList("a<br>");
    QTest::newRow("in the list's order")
        << QByteArrayList{"c", "a", "b"} << QStringList({"c<br>" STARS, "a<br>" STARS, "b<br>"});
    QTest::newRow("without the first")
        << QByteArrayList{"none", "a", "b"} << QStringList({"a<br>" STARS, "b<br>"});
    QTest::newRow("without the last")
        << QByteArrayList{"a", "b", "none"} << QStringList({"a<br>" STARS, "b<br>" STARS});
    QTest::newRow("without any") << QByteArrayList{"none", "none"} << QStringList();
    QTest::newRow("the last one's place counts, not its path")
        << QByteArrayList{"a", "b", "a"} << QStringList({"a<br>" STARS, "b<br>" STARS, "a<br>"});
}

void tst_AboutDlg::thread()
{
    QFETCH(QByteArrayList, files);
    QFETCH(QStringList, texts);
    QVERIFY(writeNotices({{"a", "a\n"}, {"b", "b"}, {"c", "c\r\n"}}));
    QStringList paths;
    for (const QByteArray& file : files)
        paths << noticePath(file);

    LicensesDownloadThread thread(paths);
    QStringList read;
    connect(&thread, &LicensesDownloadThread::fileRead, this,
            [&read](const QString& contents) { read << contents; });
    thread.start();
    QVERIFY(thread.wait(60000));
    QCOMPARE(read, QStringList());
    QCoreApplication::sendPostedEvents();
    QCOMPARE(read, texts);
}

void tst_AboutDlg::threadEmitsFromItself()
{
    QVERIFY(writeNotices({{"a", "a\n"}}));
    LicensesDownloadThread thread({noticePath("a")});
    QThread* emitter = nullptr;
    connect(
        &thread, &LicensesDownloadThread::fileRead, this,
        [&emitter] { emitter = QThread::currentThread(); }, Qt::DirectConnection);
    thread.start();
    QVERIFY(thread.wait(60000));
    QCOMPARE(emitter, &thread);
}

void tst_AboutDlg::threadIsInterrupted()
{
    QVERIFY(writeNotices({{"a", "a\n"}, {"b", "b\n"}, {"c", "c\n"}}));
    LicensesDownloadThread thread({noticePath("a"), noticePath("b"), noticePath("c")});
    QStringList read;
    connect(
        &thread, &LicensesDownloadThread::fileRead, this,
        [&read, &thread](const QString& contents) {
            read << contents;
            if (read.count() == 2)
                thread.requestInterruption();
        },
        Qt::DirectConnection);
    thread.start();
    QVERIFY(thread.wait(60000));
    QCOMPARE(read, QStringList({"a<br>" STARS, "b<br>" STARS}));
}

/// As all dialogs of the product are.
void tst_AboutDlg::centredByFirstShow()
{
    CAboutDlg dialog(nullptr);
    dialog.move(5, 5);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    const QPoint centre = QGuiApplication::primaryScreen()->availableGeometry().center();
    QTRY_VERIFY((dialog.geometry().center() - centre).manhattanLength() <= 2);
}

/// Such as comes when the window that had the focus gives it back.
void tst_AboutDlg::deactivationDuringFirstShow()
{
    const QPointer<CAboutDlg> dialog = new CAboutDlg(nullptr);
    int deactivations = 0;
    const EventWatcher watcher(*dialog, [&deactivations](QEvent& event) {
        deactivations += int(event.type() == QEvent::WindowDeactivate);
    });
    QCoreApplication::postEvent(dialog, new QEvent(QEvent::WindowDeactivate));
    dialog->show();
    QCOMPARE(deactivations, 1);
    deleteDeferred();
    QVERIFY(dialog);
    QVERIFY(dialog->isVisible());
    QVERIFY(QTest::qWaitForWindowActive(dialog));
    QVERIFY(dialog->isVisible());
    delete dialog;
}

void tst_AboutDlg::deactivationBeforeFirstShow()
{
    const QPointer<CAboutDlg> dialog = new CAboutDlg(nullptr);
    QEvent deactivate(QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(dialog, &deactivate);
    deleteDeferred();
    QVERIFY(dialog);
    delete dialog;
}

void tst_AboutDlg::deactivation()
{
    QPointer<CAboutDlg> dialog = new CAboutDlg(nullptr);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog));
    QEvent deactivate(QEvent::WindowDeactivate);
    QVERIFY(QCoreApplication::sendEvent(dialog, &deactivate));
    QVERIFY(!dialog->isVisible());
    deleteDeferred();
    QVERIFY(!dialog);
}

void tst_AboutDlg::otherEvents_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("activation") << int(QEvent::WindowActivate);
    QTest::newRow("activation changed") << int(QEvent::ActivationChange);
    QTest::newRow("focus lost") << int(QEvent::FocusOut);
    QTest::newRow("pointer gone") << int(QEvent::Leave);
    QTest::newRow("application deactivated") << int(QEvent::ApplicationDeactivate);
}

void tst_AboutDlg::otherEvents()
{
    QFETCH(int, type);
    CAboutDlg dialog(nullptr);
    dialog.setAttribute(Qt::WA_DeleteOnClose, false);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    if (type == QEvent::FocusOut) {
        QFocusEvent lost(QEvent::FocusOut, Qt::OtherFocusReason);
        QCoreApplication::sendEvent(&dialog, &lost);
    } else {
        QEvent event{QEvent::Type(type)};
        QCoreApplication::sendEvent(&dialog, &event);
    }
    QVERIFY(dialog.isVisible());
}

void tst_AboutDlg::anotherWindow()
{
    QWidget window;
    window.setGeometry(50, 50, 200, 100);
    window.show();
    activate(window);
    QVERIFY(waitForActive(window));

    QPointer<CAboutDlg> dialog = new CAboutDlg(nullptr);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog));
    QCOMPARE(dialog->size(), QSize(540, 508));

    activate(window);
    QTRY_VERIFY(!dialog);
    QVERIFY(window.isVisible());
    QVERIFY(waitForActive(window));
}

void tst_AboutDlg::escape()
{
    QPointer<CAboutDlg> dialog = new CAboutDlg(nullptr);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog));
    QTest::keyClick(dialog, Qt::Key_Escape);
    QTRY_VERIFY(!dialog);
}

void tst_AboutDlg::nothingIsCutOff_data()
{
    QTest::addColumn<QString>("language");
    for (const char* language : {"en", "de", "fr", "ja"})
        QTest::newRow(language) << QString::fromLatin1(language);
}

void tst_AboutDlg::nothingIsCutOff()
{
    QFETCH(QString, language);
    const Language texts(language);
    const Look look;
    QVERIFY(writeNotices({{"a.txt", QByteArray("A line of a notice\n").repeated(100)}}));
    CAboutDlg dialog(nullptr);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QCOMPARE(dialog.size(), QSize(540, 508));

    for (const char* name :
         {"label_2", "label_3", "label_1", "aboutLabel", "lbVisitVekHomePage", "label_6"}) {
        const auto* label = dialog.findChild<QLabel*>(QLatin1String(name));
        const QRect place = label->geometry();
        QVERIFY2(place.width() >= label->sizeHint().width(), name);
        QVERIFY2(place.height() >= label->sizeHint().height(), name);
        QVERIFY2(QRect(0, 48, 492 - 24, 362 - 48 - 22).contains(place), name);
    }
    const auto* vertical = dialog.findChild<CVerticalLabel*>();
    QVERIFY(vertical->fontMetrics().boundingRect(vertical->text()).right() < 362);

    const auto* area = dialog.findChild<QScrollArea*>();
    QVERIFY(area->verticalScrollBar()->isVisible());
    QCOMPARE(area->verticalScrollBar()->width(), 11);
    QVERIFY(area->widget()->width() <= area->viewport()->width());
}

/// The window's own ground is clear.
void tst_AboutDlg::nothingShowsThrough()
{
    const Look look;
    CAboutDlg dialog(nullptr);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QImage picture(540, 508, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    dialog.render(&picture, QPoint(), QRegion(),
                  QWidget::DrawWindowBackground | QWidget::DrawChildren);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (qAlpha(picture.pixel(x, y)) != 255)
                QFAIL(qPrintable(QStringLiteral("at %1, %2").arg(x).arg(y)));
        }
    }
}

namespace {

/// Runs the program once more, in a bundle that is there as long as it runs.
int executeInBundle(const QStringList& arguments)
{
    const QTemporaryDir folder;
    const QString contents = folder.filePath(QStringLiteral("Product.app/Contents"));
    const QString program = contents + QStringLiteral("/MacOS/test");
    if (!writeInfo(contents) || !QDir().mkpath(contents + QStringLiteral("/MacOS"))
        || !QFile::copy(QCoreApplication::applicationFilePath(), program))
        qFatal("cannot make a bundle");
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(program, arguments);
    process.waitForFinished(-1);
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

} // namespace

int main(int argc, char* argv[])
{
    const char bundleArgument[] = "--in-bundle-of";
    const bool inBundle = argc > 2 && qstrcmp(argv[1], bundleArgument) == 0;
    if (inBundle) {
        if (!takeOrdinaryFileRights())
            return -1;
        const QString program = QString::fromLocal8Bit(argv[2]);
        argv[2] = argv[0];
        int count = argc - 2;
        QApplication app(count, argv + 2);
        tst_AboutDlg test(program);
        return QTest::qExec(&test, count, argv + 2);
    }
    if (argc == 2 && qstrcmp(argv[1], textsArgument) == 0) {
        const QApplication app(argc, argv);
        const CAboutDlg dialog(nullptr);
        for (const QString& shown : noticeTexts(dialog))
            std::printf("%s\n", qPrintable(shown));
        return threads(dialog).count();
    }
    const QCoreApplication app(argc, argv);
    const QStringList own = {QString::fromLatin1(bundleArgument),
                             QCoreApplication::applicationFilePath()};
    return executeInBundle(own + QCoreApplication::arguments().mid(1));
}

#include "tst_AboutDlg.moc"
