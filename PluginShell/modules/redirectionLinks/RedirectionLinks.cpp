#include "RedirectionLinks.h"

#include "Assertions.h"
#include "CommonConstants.h"

#include <QLocale>
#include <QStringList>

namespace {

struct Link
{
    const char* product;
    const char* key;
};

constexpr Link links[] = {
    {"kr", "vek_home"}, {"kr", "improvement_program"},
    {"kr3", "support"}, {"kr", "academy"},
    {"kr", "shop"},     {"kr", "patents"},
    {"kr", "help"},     {"kr", "modules"},
    {"kr3", "help"},
};

constexpr Link unknownLink = {"kr", ""};

} // namespace

QString CRedirectionLinks::get(vekLinkType type, bool localized)
{
    QString language = QStringLiteral("intl");
    const QLocale locale;
    if (type != ltHome && localized && locale.language() != QLocale::English) {
        // The country decides, not the language; that is meant.
        language = locale.name().split(QLatin1Char('_')).constLast().toLower();
    }

    const bool known = type >= ltHome && type <= ltVersionHelp;
    ASSERT(known);
    const Link& link = known ? links[type] : unknownLink;
    return QStringLiteral("http://" VEK_REDIRECT_HOST "/%1/redirect/%2/")
               .arg(language, QLatin1String(link.product))
        + QLatin1String(link.key);
}
