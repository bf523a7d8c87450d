#pragma once

#include "UtilsDllGlobal.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QSizeF>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class CApplicationParametersHandler_Abstract;
class CWindowFullScreenModeSwitchHandler_Abstract;
class QMenu;
class QWidget;

/// The seam: everything that the library needs from an operating system. Each backend folder
/// implements all of it; an operation is a thin call and decides nothing. Nothing here throws, logs
/// or prints. GUI thread, unless an operation says more.
namespace VEK_NAMESPACE {
namespace Platform {

/// Something that is told of events until it is destroyed, which may not be while it is being told.
class Watch
{
public:
    Watch() = default;
    virtual ~Watch() = default;

private:
    Q_DISABLE_COPY(Watch)
};

/// One that may be stopped before it is destroyed, also while it is being told.
class Observer : public Watch
{
public:
    virtual void stop() = 0;
};

/// \name Folders and users
/// Any thread.
/// @{

/// The folder of the product's settings, with a separator at its end. It need not exist.
QString systemFolder();

/// The home folder in the real user's password entry; nothing if there is no entry.
std::optional<QString> homeFolder();

/// The home folder of the user whose login session this process belongs to, empty if that user has
/// none; nothing outside a session.
std::optional<QString> sessionUserHomeFolder();

/// @}

/// \name Windows
/// By the value of QWidget::winId(). An unknown window is left alone, and so is every window where
/// the platform has no such thing; the results are then false or nothing.
/// @{

using WindowId = unsigned long long;

bool isWindow(WindowId id);

void minimizeWindow(WindowId id);
void restoreMinimizedWindow(WindowId id);

bool isFullScreen(WindowId id);
void toggleFullScreen(WindowId id);
/// Gives a window what a user needs to switch it to full screen.
void allowFullScreen(WindowId id);
/// Tells \a handler when the window has entered and left full screen. Null for an unknown window.
std::unique_ptr<Observer> observeFullScreen(WindowId id,
                                            CWindowFullScreenModeSwitchHandler_Abstract* handler);

enum class WindowLevel
{
    Normal,
    Floating,
    ModalPanel
};

/// A window stays in front of all windows of a lower level, also when it is hidden and shown again.
void setWindowLevel(WindowId id, WindowLevel level);
/// In front of, or behind, all windows of its level.
void orderWindowFront(WindowId id);
void orderWindowBack(WindowId id);

/// Enables or disables the close button of a window's title bar.
void setCloseButtonEnabled(WindowId id, bool enable);
/// Whether a window comes up with the system's animation.
void setWindowAnimationEnabled(WindowId id, bool enable);
/// Lets the overview of all windows manage this one.
void setManagedInExpose(WindowId id);

/// The number of the display that a window is on; nothing for a window that isn't on any.
std::optional<unsigned> displayNumber(WindowId id);

/// @}

/// \name The application among others
/// @{

bool isApplicationActive();
/// Makes this process the active application, for the sake of \a window.
void activateApplication(const QWidget& window);

/// Calls TopLevelWindowDeactivator::deactivateAllTopLevelWidgets() when the application is no
/// longer active and when one of its windows is minimised.
std::unique_ptr<Watch> observeResign();

/// Keeps a window at the floating level while the application is active, and at the normal one
/// otherwise, from the next change on.
class FloatingWhileActive : public Watch
{
public:
    virtual void setWindow(WindowId id) = 0;
};
std::unique_ptr<FloatingWhileActive> floatWhileActive(WindowId id);

void setMenuBarEnabled(bool enable);
/// Leaves the system's own entries out of the Edit menu.
void removeSpecialEditMenuItems();
void cancelMenuTracking(QMenu& menu);
void endModalSession();
/// Each hiding wants a showing of its own.
void showCursor(bool show);

/// Starts a program without arguments and doesn't wait for it. \a path is UTF-8.
void launch(const char* path);

/// @}

/// \name The hand-over of a command line
/// @{

/// Listens for "CMD_LINE_ARGSkrnv3" from any process of the logged-in user, and then announces this
/// one with "APP_CAN_HANDLE_CMD_LINE_ARGSkrnv3" and an identity of its own, a UUID in upper case.
/// Calls Private::receiveArguments() from the event loop with the path in the first answer, and
/// then stops. Null without a channel between processes; none is started.
std::unique_ptr<Observer> observeParameters(CApplicationParametersHandler_Abstract& handler);

/// The content of a file of UTF-8 text; nothing if it can't be read or isn't UTF-8 from end to end.
/// Any thread.
std::optional<QByteArray> readUtf8File(const QString& path);

/// Any thread.
bool removeFile(const QString& path);

/// @}

/// \name Bundles, processes, screens
/// Empty results mean that there is no such thing. Any thread, but for the screen.
/// @{

/// The path of the bundle with that identifier, and of its resources.
QString bundlePath(const QString& identifier);
QString bundleResourcePath(const QString& identifier);

/// The version of the operating system as it tells it to people.
QString systemVersionText();

/// The three numbers at the beginning of a version text; -1 for each that isn't there.
std::array<long, 3> versionNumbers(const QString& version);

QString processName();
qint64 currentProcess();
/// The first running application of that display name.
std::optional<qint64> findApplication(const QString& displayName);
QString executablePath(qint64 process);

/// The text of one entry at the top of a property list; empty if it isn't a text.
QString propertyListText(const QString& file, const QString& key);

struct Screen
{
    QSizeF points;
    QSizeF millimetres; ///< 0 where the screen doesn't tell
};
std::optional<Screen> mainScreen();

/// @}

/// \name Files
/// @{

struct FolderEntry
{
    QString name;
    bool isFolder; ///< and no link to one
};
/// What is in a folder, in no order; nothing if it can't be read. Any thread.
std::vector<FolderEntry> folderEntries(const QString& folder);

/// Deletes files of a folder, or links and not what they lead to, one after the other and up to the
/// first failure. Any thread.
bool removeFiles(const QString& folder, const QStringList& names);

/// Makes a symbolic link; the target is taken as it stands. Any thread.
bool makeLink(const QString& target, const QString& link);

/// Whether there is a trash that \a file could be moved to.
bool hasTrash(const QString& file);
bool moveToTrash(const QString& file);

/// Opens the file manager on \a files, which are selected in it.
void showInFileManager(const QList<QUrl>& files);

/// In local time and whole seconds; null where the file system doesn't know it.
QDateTime creationTime(const QString& file);

/// @}

/// \name Fatal alerts
/// An alert is shown when the program can't go on: the texts are made ready beforehand, and showing
/// them allocates nothing and calls nothing of Qt. showAlert() returns when the user has seen it.
/// @{

struct AlertText;
struct AlertTextDeleter
{
    void operator()(AlertText* text) const;
};
using AlertTextPointer = std::unique_ptr<AlertText, AlertTextDeleter>;

AlertTextPointer makeAlertText(const QString& text);
void showAlert(const AlertText& title, const AlertText& text);

/// @}

} // namespace Platform
} // namespace VEK_NAMESPACE
