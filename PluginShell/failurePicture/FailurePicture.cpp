#include "FailurePicture.h"

#include "Scripting.h"

#include <QApplication>
#include <QPainter>
#include <QPixmap>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include <algorithm>

namespace {

/// Widgets' windows that a user sees, the lowest first as far as that is known.
QList<QWidget*> visibleWindows()
{
    QList<QWidget*> windows;
    const QList<QWidget*> all = QApplication::topLevelWidgets();
    for (QWidget* window : all) {
        if (window->isVisible() && !window->isMinimized() && window->windowHandle())
            windows << window;
    }
    const auto rank = [](const QWidget* window) {
        if (window->windowType() == Qt::Popup || window->windowType() == Qt::ToolTip)
            return 3;
        if (window->isActiveWindow())
            return 2;
        return window->isModal() ? 1 : 0;
    };
    std::stable_sort(windows.begin(), windows.end(),
                     [rank](const QWidget* a, const QWidget* b) { return rank(a) < rank(b); });
    return windows;
}

} // namespace

FailurePicture::FailurePicture(const QString& path)
    : m_path(path)
{
    // The application is still being made; the library wants it whole.
    QTimer::singleShot(0, this, &FailurePicture::observe);
}

void FailurePicture::observe()
{
    const QPointer<FailurePicture> self(this);
    Singleton<VEK_NAMESPACE::CScripting>::instance().setFailureObserver([self] {
        if (self && qobject_cast<QApplication*>(QCoreApplication::instance()))
            ofAllScreens().save(self->m_path, "PNG");
    });
}

QImage FailurePicture::ofAllScreens()
{
    const QList<QWidget*> windows = visibleWindows();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    for (QWidget* window : windows)
        window->repaint();

    const QRect area = QGuiApplication::primaryScreen()->virtualGeometry();
    const qreal scale = qApp->devicePixelRatio();
    QImage picture(area.size() * scale, QImage::Format_RGB32);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::darkGray);

    QPainter painter(&picture);
    painter.translate(-area.topLeft());
    bool allScreensSeen = true;
    const QList<QScreen*> screens = QGuiApplication::screens();
    for (QScreen* screen : screens) {
        const QPixmap shown = screen->grabWindow(0);
        if (shown.isNull())
            allScreensSeen = false;
        else
            painter.drawPixmap(screen->geometry(), shown);
    }
    for (QWidget* window : windows) {
        if (!allScreensSeen || !window->windowHandle()->isExposed())
            painter.drawPixmap(window->geometry(), window->grab());
    }
    return picture;
}
