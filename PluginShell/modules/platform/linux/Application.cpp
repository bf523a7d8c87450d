#include "ApplicationActivation.h"
#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <KWindowSystem>
#include <KX11Extras>

#include <QApplication>
#include <QDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QProcess>
#include <QSysInfo>
#include <QWindow>
#include <QWindowStateChangeEvent>

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

class ResignObserver : public QObject, public Watch
{
public:
    ResignObserver()
    {
        connect(qGuiApp, &QGuiApplication::applicationStateChanged, this,
                [](Qt::ApplicationState state) {
                    if (state != Qt::ApplicationActive)
                        TopLevelWindowDeactivator::deactivateAllTopLevelWidgets();
                });
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::WindowStateChange
            && isMinimized(watched, static_cast<const QWindowStateChangeEvent*>(event))) {
            TopLevelWindowDeactivator::deactivateAllTopLevelWidgets();
        }
        return false;
    }

private:
    static bool isMinimized(const QObject* watched, const QWindowStateChangeEvent* event)
    {
        if (event->oldState() & Qt::WindowMinimized)
            return false;
        if (watched->isWidgetType()) {
            const auto* window = static_cast<const QWidget*>(watched);
            return window->isWindow() && window->isMinimized();
        }
        // Windows of widgets have been asked as widgets.
        return watched->isWindowType() && !watched->inherits("QWidgetWindow")
            && static_cast<const QWindow*>(watched)->windowState() == Qt::WindowMinimized;
    }
};

class WindowFloatingWhileActive : public QObject, public FloatingWhileActive
{
public:
    explicit WindowFloatingWhileActive(WindowId id)
        : m_window(id)
    {
        connect(qGuiApp, &QGuiApplication::applicationStateChanged, this,
                [this](Qt::ApplicationState state) {
                    setWindowLevel(m_window,
                                   state == Qt::ApplicationActive ? WindowLevel::Floating
                                                                  : WindowLevel::Normal);
                });
    }

    void setWindow(WindowId id) override { m_window = id; }

private:
    WindowId m_window;
};

} // namespace

bool isApplicationActive()
{
    return QGuiApplication::applicationState() == Qt::ApplicationActive;
}

void activateApplication(const QWidget& window)
{
    const QWindow* handle = window.window()->windowHandle();
    if (handle && KWindowSystem::isPlatformX11())
        KX11Extras::forceActiveWindow(handle->winId());
}

std::unique_ptr<Watch> observeResign()
{
    if (!qApp)
        return nullptr;
    return std::make_unique<ResignObserver>();
}

std::unique_ptr<FloatingWhileActive> floatWhileActive(WindowId id)
{
    return std::make_unique<WindowFloatingWhileActive>(id);
}

void setMenuBarEnabled(bool enable)
{
    // Whoever watches an entry may delete another one.
    QList<QPointer<QAction>> entries;
    const QWidgetList widgets = QApplication::allWidgets();
    for (const QWidget* widget : widgets) {
        if (const auto* menuBar = qobject_cast<const QMenuBar*>(widget)) {
            const auto actions = menuBar->actions();
            for (QAction* action : actions)
                entries << action;
        }
    }
    for (const QPointer<QAction>& entry : qAsConst(entries)) {
        if (entry)
            entry->setEnabled(enable);
    }
}

void removeSpecialEditMenuItems()
{
    // No system adds entries to an application's menu here.
}

void cancelMenuTracking(QMenu& menu)
{
    menu.close();
}

void endModalSession()
{
    if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
        dialog->reject();
}

void showCursor(bool show)
{
    static int hidden = 0;
    if (!show) {
        ++hidden;
        QGuiApplication::setOverrideCursor(Qt::BlankCursor);
    } else if (hidden > 0) {
        --hidden;
        QGuiApplication::restoreOverrideCursor();
    }
}

void launch(const char* path)
{
    if (*path)
        QProcess::startDetached(QFileInfo(QString::fromUtf8(path)).absoluteFilePath(), {});
}

QString systemVersionText()
{
    return QSysInfo::prettyProductName();
}

} // namespace Platform
} // namespace VEK_NAMESPACE
