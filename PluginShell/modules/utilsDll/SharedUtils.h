#pragma once

#include "Archives.h"
#include "FileHelpers.h"
#include "LoggerBootstrap.h"
#include "UtilsDllGlobal.h"

#include <QString>
#include <QStringList>

class QApplication;
class QSize;

/// \file
/// State and identity of the installation, the product's look, and numbers for people. It brings
/// the logger's start, file chores and archives along.

namespace VEK_NAMESPACE {

/// \name State and identity of the installation
/// Small facts about the installation and its runs, read from and written to the settings at each
/// call; a mode is one of the constants of CommonConstants.h, or any text. A live overlay of the
/// settings is followed unless told otherwise. No failure is reported. Any thread; two threads that
/// count at the same time may lose a count.
/// @{

/// Whether the product starts for the first time: true until setNotFirstLaunch() was called once.
UTILSDLL_EXPORT bool isFirstLaunch();
/// Stores that there was a launch, for good.
UTILSDLL_EXPORT void setNotFirstLaunch();

/// The mode that was told last, empty before the first setLastLaunchMode().
UTILSDLL_EXPORT QString getLastLaunchMode();
/// Tells the mode of this run, which crashes are counted for.
UTILSDLL_EXPORT void setLastLaunchMode(const QString& mode);

/// Counts a crash of the last launch mode.
UTILSDLL_EXPORT void incrementCrashCounter();
/// How many crashes of \a mode were counted; 0 for one that is unknown.
UTILSDLL_EXPORT int crashCounterForPlugin(const QString& mode);
/// Sets the count of \a mode to 0.
UTILSDLL_EXPORT void crashCounterReset(const QString& mode);
/// Runs the program "CrashSender", which is looked for as the system does, and waits for its end.
UTILSDLL_EXPORT void startCrashSender();

/// The identifier of this user, a UUID without braces, which is kept in a file of its own and made
/// when that holds none. If the file can't be written, each call makes another one.
UTILSDLL_EXPORT QString getUserID();

/// Who sold this copy: "vek" unless something else was stored.
UTILSDLL_EXPORT QString getResellerID();
/// Stores who sold this copy.
UTILSDLL_EXPORT void setResellerID(const QString& reseller);

/// The setting "UseActionSave": true unless the persistent settings hold "0"; a stored false gives
/// true, too. An overlay is ignored.
UTILSDLL_EXPORT bool useActionSave();

/// Whether the user lets statistics be sent: true unless it was switched off.
UTILSDLL_EXPORT bool isStatisticSent();
/// Stores the user's choice.
UTILSDLL_EXPORT void setStatisticSent(bool send);
/// Whether the user lets crash reports be sent: true unless it was switched off.
UTILSDLL_EXPORT bool crashReportSendingAllowed();
/// Stores the user's choice.
UTILSDLL_EXPORT void allowCrashReportSending(bool allow);

/// @}

/// \name The product's look
/// They need an application object. A missing file is passed over in silence. GUI thread.
/// @{

/// Sets the texts of \a files, joined in their order, as the application's style sheet, and returns
/// the files that could be read. Without an application or files an assertion fails and nothing
/// changes.
UTILSDLL_EXPORT QStringList setAppStyleSheet(QStringList const& files, QApplication* application);

/// Sets the product's style sheet: \a mainSheet, or ":/qss/custom.qss" if that is empty, and after
/// it the sheets for sliders, the settings panel, message boxes, the platform and the language.
UTILSDLL_EXPORT void setPredefinedAppStyleSheet(QString const& mainSheet,
                                                QApplication* application);

/// Makes the product's logo the icon of all windows. False if there is none.
UTILSDLL_EXPORT bool loadAppLogoIcon();

/// Registers the fonts that the style sheets name.
UTILSDLL_EXPORT void loadFonts();

/// @}

/// \name Numbers for people
/// Unit words in the user's language.
/// @{

/// An image size given in pixels, such as "1024 x 768 px", in the unit of the setting
/// g_ImageSizeUnits: 0 pixels, 1 inches, 2 centimetres, 3 millimetres, as large as the image is on
/// the main screen at its natural size. Pixels, too, if that screen doesn't tell how large it is.
/// An unknown unit logs two assertions and gives the pixels without a word. GUI thread.
UTILSDLL_EXPORT QString sizeToString(QSize const& size);

/// A file size such as "1.5MB": bytes up to 1024, kilobytes up to 1048576, then megabytes. Any
/// thread.
UTILSDLL_EXPORT QString fileSizeToString(long long bytes);

/// @}

} // namespace VEK_NAMESPACE

/// \a value rounded to \a precision decimal places, by way of its product with a power of ten; a
/// tie goes up, also below zero. A value that has no more places comes back bit for bit. A negative
/// precision counts as 0. Any thread.
UTILSDLL_EXPORT double roundWithPrecision(double value, int precision);
