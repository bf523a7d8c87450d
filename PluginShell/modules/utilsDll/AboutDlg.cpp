#include "AboutDlg.h"

#include "Assertions.h"
#include "CommonConstants.h"
#include "ProductVersion_p.h"
#include "RedirectionLinks.h"
#include "SystemInformation.h"
#include "ui_AboutDlg.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QScrollBar>
#include <QTextStream>

namespace {

// clazy:excludeall=non-pod-global-static
const QString licensesSeparator =
    QStringLiteral("<br>******************************************************<br>");

constexpr int filesReadAtOnce = 2;

QString noticeFolder()
{
    static const QString folder = MacOSGetBundlePath(QStringLiteral(UTILSDLL_BUNDLE_IDENTIFIER))
        + QDir::separator() + QStringLiteral("Contents/Licenses");
    return folder;
}

/// The absolute paths of the notices, by name.
QStringList noticeFiles()
{
    const QDir folder(noticeFolder());
    if (!folder.exists())
        return {};
    QStringList files = folder.entryList({QStringLiteral("*.txt")}, QDir::NoFilter, QDir::NoSort);
    for (QString& file : files)
        file.prepend(folder.absolutePath() + QDir::separator());
    return files;
}

bool openNotice(QFile& file)
{
    return file.open(QIODevice::ReadOnly | QIODevice::Text);
}

/// The text isn't escaped, so that notices may hold markup.
QString readLicenseFile(QFile* file)
{
    QString contents;
    ASSERT(file);
    if (!file)
        return contents;
    QTextStream stream(file);
    while (!stream.atEnd())
        contents += stream.readLine() + QLatin1String("<br>");
    return contents;
}

/// A label whose height follows from its width alone. QLabel would lay a long text out again and
/// again to find fine proportions, which the scroll area doesn't ask for.
class NoticeLabel : public QLabel
{
public:
    using QLabel::QLabel;

    QSize sizeHint() const override { return {0, 0}; }
    QSize minimumSizeHint() const override { return {0, 0}; }
};

QString versionLine()
{
    return CAboutDlg::tr("Version") + QStringLiteral(" " UTILSDLL_MARKETING_VERSION " / ")
        + CAboutDlg::tr("Build") + QStringLiteral(" " UTILSDLL_BUILD_NUMBER " / ")
        + CAboutDlg::tr("64 bit");
}

void fillPlaceholder(QLabel* label, const QString& text)
{
    label->setText(label->text().replace(QLatin1String("%1"), text));
}

} // namespace

struct CAboutDlg::Private : Ui_aboutDlg
{
    bool m_bFirstShow = true;
    LicensesDownloadThread* thread = nullptr; ///< a child of the dialog
};

CAboutDlg::CAboutDlg(QWidget* parent)
    : CBaseDialog(parent)
    , d(new Private)
{
    setAttribute(Qt::WA_DeleteOnClose);
    d->setupUi(this);
    d->scrollArea->verticalScrollBar()->setContextMenuPolicy(Qt::NoContextMenu);

    QStringList files = noticeFiles();
    QStringList texts;
    for (int i = 0; i < filesReadAtOnce && !files.isEmpty(); ++i) {
        QFile file(files.takeFirst());
        if (openNotice(file))
            texts << readLicenseFile(&file);
    }
    QString notices = texts.join(licensesSeparator + QLatin1String("<br>"));
    if (!files.isEmpty()) {
        d->thread = new LicensesDownloadThread(files, this);
        connect(d->thread, &LicensesDownloadThread::fileRead, this, &CAboutDlg::addFileContents);
        d->thread->start();
        notices += licensesSeparator;
    }

    d->label_1->setText(VEK_NAMESPACE::g_appTitle);
    d->aboutLabel->setText(versionLine());
    fillPlaceholder(d->lbVisitVekHomePage, CRedirectionLinks::get(CRedirectionLinks::ltHome, true));
    fillPlaceholder(d->lbVisitVekPatentsPage, QStringLiteral("Vek Marlowick"));
    d->lbVisitVekPatentsPage->setText(d->lbVisitVekPatentsPage->text() + notices);
    setWindowTitle(windowTitle().replace(QLatin1String("%1"), VEK_NAMESPACE::g_appTitle));
    d->label_3->setStyleSheet(d->label_3->styleSheet()
                              + QLatin1String("font-family: \"MavenProLight300\";"));
}

CAboutDlg::~CAboutDlg()
{
    if (d->thread) {
        d->thread->requestInterruption();
        d->thread->wait();
    }
}

void CAboutDlg::updateProductName(const QString& name)
{
    if (!name.isEmpty() && d->label_1)
        d->label_1->setText(d->label_1->text() + QLatin1Char(' ') + name);
}

bool CAboutDlg::event(QEvent* event)
{
    if (!d->m_bFirstShow && event->type() == QEvent::WindowDeactivate) {
        close();
        return true;
    }
    return CBaseDialog::event(event);
}

void CAboutDlg::showEvent(QShowEvent* event)
{
    if (d->m_bFirstShow) {
        // A deactivation that comes while the dialog comes up isn't meant for it.
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        d->m_bFirstShow = false;
    }
    CBaseDialog::showEvent(event);
}

void CAboutDlg::addFileContents(const QString& contents)
{
    auto* label = new NoticeLabel(this);
    label->setObjectName(QStringLiteral("lbVisitVekPatentsPage"));
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(label->sizePolicy().hasHeightForWidth());
    label->setSizePolicy(policy);
    label->setMinimumSize(0, 0);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setWordWrap(true);
    label->setOpenExternalLinks(true);
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse);
    label->setText(contents);
    d->verticalLayout_21->addWidget(label);
}

LicensesDownloadThread::LicensesDownloadThread(const QStringList& files, QObject* parent)
    : QThread(parent)
    , m_files(files)
{}

LicensesDownloadThread::~LicensesDownloadThread() = default;

void LicensesDownloadThread::run()
{
    const int last = m_files.count() - 1;
    for (int i = 0; i <= last && !isInterruptionRequested(); ++i) {
        QFile file(m_files.at(i));
        if (!openNotice(file))
            continue;
        QString contents = readLicenseFile(&file);
        if (i != last)
            contents += licensesSeparator;
        Q_EMIT fileRead(contents);
    }
}
