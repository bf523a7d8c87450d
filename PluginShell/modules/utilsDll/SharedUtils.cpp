#include "SharedUtils.h"

#include "Assertions.h"
#include "CommonConstants.h"
#include "LanguageManager.h"

#include <QApplication>
#include <QFile>
#include <QFontDatabase>
#include <QIcon>

namespace VEK_NAMESPACE {

QStringList setAppStyleSheet(QStringList const& files, QApplication* application)
{
    if (!application || files.isEmpty()) {
        ASSERT(false);
        return {};
    }

    QString sheet;
    QStringList loaded;
    for (const QString& name : files) {
        QFile file(name);
        if (name.isEmpty() || !file.open(QIODevice::ReadOnly))
            continue;
        sheet += QString::fromUtf8(file.readAll().constData()); // up to a zero byte
        loaded.append(name);
    }
    application->setStyleSheet(sheet);
    return loaded;
}

void setPredefinedAppStyleSheet(QString const& mainSheet, QApplication* application)
{
    // One platform's sheet is that of all. The last one is there for languages that need it.
    setAppStyleSheet({mainSheet.isEmpty() ? QStringLiteral(":/qss/custom.qss") : mainSheet,
                      QStringLiteral(":/qss/slider.qss"), QStringLiteral(":/qss/settings.qss"),
                      QStringLiteral(":/qss/message_box.qss"), QStringLiteral(":/qss/mac.qss"),
                      QStringLiteral(":/qss/extra-mac-%1.qss")
                          .arg(CLanguageManager::instance()->currentLanguageAbbrv())},
                     application);
}

bool loadAppLogoIcon()
{
    QIcon logo;
    for (const int size : {16, 32, 48, 96, 128, 256, 512, 1024})
        logo.addFile(QStringLiteral(":/icons/app_icon/logo_%1.png").arg(size));
    if (logo.availableSizes().isEmpty())
        return false;
    QApplication::setWindowIcon(logo);
    return true;
}

void loadFonts()
{
    for (const char* name :
         {"MavenProLight-300.otf", "MavenPro-Medium.ttf", "OpenSans-Light.ttf", "Roboto-Bold.ttf",
          "Roboto-Light.ttf", "Roboto-Regular.ttf", "Roboto-Medium.ttf"})
        QFontDatabase::addApplicationFont(QStringLiteral(":/fonts/") + QLatin1String(name));
}

} // namespace VEK_NAMESPACE
