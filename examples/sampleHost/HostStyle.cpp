#include "HostStyle.h"

#include "CommonConstants.h"
#include "LanguageManager.h"
#include "SharedUtils.h"
#include "customvekappstyle.h"

#include <QApplication>
#include <QFile>
#include <QFont>
#include <QPalette>

using namespace VEK_NAMESPACE;

// The host's parts are in a static library, whose resources nobody else registers.
static void registerResources()
{
    Q_INIT_RESOURCE(host);
}

namespace {

/// For what no style sheet reaches.
QPalette darkPalette()
{
    const QColor panel(0x33, 0x33, 0x33);
    const QColor text(0xab, 0xab, 0xab);
    const QColor disabledText(0x5a, 0x5a, 0x5a);
    const QColor highlight(0x8c, 0xbc, 0xda);

    QPalette palette(panel, hostGround());
    palette.setColor(QPalette::Base, hostGround());
    for (const QPalette::ColorRole role :
         {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, disabledText);
    }
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, hostGround());
    palette.setColor(QPalette::Link, highlight);
    return palette;
}

} // namespace

void applyHostStyle(QApplication& application)
{
    QApplication::setStyle(new CustomVekAppStyle);
    QApplication::setPalette(darkPalette());
    loadFonts();
    loadAppLogoIcon();
    // The sheets name fonts that not every system has; the product's own stands for them.
    for (const char* family : {"Lucida Grande", "Lucida Sans Unicode", "ArialRegular"})
        QFont::insertSubstitution(QLatin1String(family), QStringLiteral("RobotoRegular"));

    CLanguageManager* languages = CLanguageManager::instance();
    languages->loadLanguageForApp();
    setPredefinedAppStyleSheet(QString(), &application);
    QObject::connect(languages, &CLanguageManager::languageChanged, &application,
                     [&application] { setPredefinedAppStyleSheet(QString(), &application); });
}

QString hostStyleSheet()
{
    registerResources();
    QFile file(QStringLiteral(":/host/host.qss"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QColor hostGround()
{
    return {0x1b, 0x1b, 0x1b};
}
