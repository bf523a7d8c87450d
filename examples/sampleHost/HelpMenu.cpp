#include "HelpMenu.h"

#include "HostLog.h"
#include "Scripting.h"

#include <QDesktopServices>
#include <QEvent>
#include <QUrl>

namespace {

void openPage(CRedirectionLinks::vekLinkType link)
{
    const QString address = CRedirectionLinks::get(link, true);
    const bool scripted = Singleton<VEK_NAMESPACE::CScripting>::instance().isScriptingMode();
    if (scripted || !QDesktopServices::openUrl(QUrl(address)))
        logLine(QStringLiteral("Not opened: %1").arg(address));
}

} // namespace

HelpMenu::HelpMenu(QWidget* parent)
    : QMenu(parent)
{
    addPage(CRedirectionLinks::ltVersionHelp, "actionHelp", QT_TR_NOOP("&Help on the Web"));
    addPage(CRedirectionLinks::ltSupport, "actionSupport", QT_TR_NOOP("&Support"));
    addPage(CRedirectionLinks::ltAcademy, "actionAcademy", QT_TR_NOOP("A&cademy"));
    addPage(CRedirectionLinks::ltShop, "actionShop", QT_TR_NOOP("Sh&op"));
    addPage(CRedirectionLinks::ltHome, "actionHomePage", QT_TR_NOOP("Home &Page"));
    addSeparator();
    m_pages.first().action->setShortcut(QKeySequence::HelpContents);
    retranslate();
}

void HelpMenu::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QMenu::changeEvent(event);
}

void HelpMenu::addPage(CRedirectionLinks::vekLinkType link, const char* name, const char* text)
{
    QAction* action = addAction(QString());
    action->setObjectName(QLatin1String(name));
    action->setMenuRole(QAction::NoRole);
    connect(action, &QAction::triggered, this, [link] { openPage(link); });
    m_pages.append({link, action, text});
}

void HelpMenu::retranslate()
{
    for (const Page& page : qAsConst(m_pages))
        page.action->setText(tr(page.text));
}
