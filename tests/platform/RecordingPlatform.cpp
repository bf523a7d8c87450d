#include "RecordingPlatform.h"

namespace {

using VEK_NAMESPACE::Platform::FloatingWhileActive;
using VEK_NAMESPACE::Platform::Observer;
using VEK_NAMESPACE::Platform::Watch;
using VEK_NAMESPACE::Platform::WindowId;
using VEK_NAMESPACE::Platform::WindowLevel;

void record(const QString& call)
{
    RecordingPlatform::instance().calls << call;
}

void record(const char* name, WindowId id)
{
    record(QStringLiteral("%1 %2").arg(QLatin1String(name)).arg(id));
}

void record(const char* name, bool value)
{
    record(QStringLiteral("%1 %2").arg(QLatin1String(name),
                                       value ? QLatin1String("true") : QLatin1String("false")));
}

void record(const char* name, WindowId id, bool value)
{
    record(QStringLiteral("%1 %2 %3")
               .arg(QLatin1String(name))
               .arg(id)
               .arg(value ? QLatin1String("true") : QLatin1String("false")));
}

void recordQuestion(const char* name, WindowId id)
{
    if (id == 0)
        record(name, id);
}

template <typename Interface>
class Recording : public Interface
{
public:
    Recording()
        : m_name(QStringLiteral("observer %1").arg(++RecordingPlatform::instance().observers))
    {}
    ~Recording() override { recordOwn(QStringLiteral("is released")); }

protected:
    void recordOwn(const QString& doing) const { record(m_name + QLatin1Char(' ') + doing); }

private:
    const QString m_name;
};

class RecordingObserver : public Recording<Observer>
{
public:
    void stop() override { recordOwn(QStringLiteral("stops")); }
};

class RecordingFloatingWhileActive : public Recording<FloatingWhileActive>
{
public:
    void setWindow(WindowId id) override { recordOwn(QStringLiteral("gets window %1").arg(id)); }
};

} // namespace

RecordingPlatform& RecordingPlatform::instance()
{
    // Never destroyed: the code under test keeps observers to the end of the process.
    static auto* platform = new RecordingPlatform;
    return *platform;
}

QStringList RecordingPlatform::takeCalls()
{
    QStringList taken;
    taken.swap(calls);
    return taken;
}

namespace VEK_NAMESPACE {
namespace Platform {

bool isWindow(WindowId id)
{
    recordQuestion("isWindow", id);
    return RecordingPlatform::instance().windows.count(id) > 0;
}

void minimizeWindow(WindowId id)
{
    record("minimizeWindow", id);
}

void restoreMinimizedWindow(WindowId id)
{
    record("restoreMinimizedWindow", id);
}

bool isFullScreen(WindowId id)
{
    recordQuestion("isFullScreen", id);
    return RecordingPlatform::instance().fullScreen;
}

void toggleFullScreen(WindowId id)
{
    record("toggleFullScreen", id);
}

void allowFullScreen(WindowId id)
{
    record("allowFullScreen", id);
}

std::unique_ptr<Observer> observeFullScreen(WindowId id,
                                            CWindowFullScreenModeSwitchHandler_Abstract* handler)
{
    record("observeFullScreen", id);
    RecordingPlatform::instance().handler = handler;
    return std::make_unique<RecordingObserver>();
}

void setWindowLevel(WindowId id, WindowLevel level)
{
    const char* const names[] = {"Normal", "Floating", "ModalPanel"};
    record(QStringLiteral("setWindowLevel %1 %2").arg(id).arg(QLatin1String(names[int(level)])));
}

void orderWindowFront(WindowId id)
{
    record("orderWindowFront", id);
}

void orderWindowBack(WindowId id)
{
    record("orderWindowBack", id);
}

void setCloseButtonEnabled(WindowId id, bool enable)
{
    record("setCloseButtonEnabled", id, enable);
}

void setWindowAnimationEnabled(WindowId id, bool enable)
{
    record("setWindowAnimationEnabled", id, enable);
}

void setManagedInExpose(WindowId id)
{
    record("setManagedInExpose", id);
}

std::optional<unsigned> displayNumber(WindowId id)
{
    recordQuestion("displayNumber", id);
    return RecordingPlatform::instance().display;
}

bool isApplicationActive()
{
    return RecordingPlatform::instance().applicationActive;
}

void activateApplication(const QWidget& window)
{
    RecordingPlatform& platform = RecordingPlatform::instance();
    platform.activatedWidget = &window;
    record(QStringLiteral("activateApplication"));
    if (platform.onActivation)
        platform.onActivation();
}

std::unique_ptr<Watch> observeResign()
{
    record(QStringLiteral("observeResign"));
    return std::make_unique<Recording<Watch>>();
}

std::unique_ptr<FloatingWhileActive> floatWhileActive(WindowId id)
{
    record("floatWhileActive", id);
    return std::make_unique<RecordingFloatingWhileActive>();
}

void setMenuBarEnabled(bool enable)
{
    record("setMenuBarEnabled", enable);
}

void removeSpecialEditMenuItems()
{
    record(QStringLiteral("removeSpecialEditMenuItems"));
}

void cancelMenuTracking(QMenu& menu)
{
    RecordingPlatform::instance().cancelledMenu = &menu;
    record(QStringLiteral("cancelMenuTracking"));
}

void endModalSession()
{
    record(QStringLiteral("endModalSession"));
}

void showCursor(bool show)
{
    record("showCursor", show);
}

void launch(const char* path)
{
    record(QStringLiteral("launch %1").arg(QString::fromUtf8(path)));
}

QString systemVersionText()
{
    return RecordingPlatform::instance().systemVersion;
}

} // namespace Platform
} // namespace VEK_NAMESPACE
