#include "BaseDialog.h"

#include "CommonConstants.h"
#include "DelayedCall.h"
#include "GuiUtils.h"
#include "PlatformServices_p.h"
#include "Scripting.h"

#include <QMouseEvent>

namespace VEK_NAMESPACE {

CBaseDialog::CBaseDialog(QWidget* parent)
    : QDialog(parent, Qt::WindowFlags())
{
    setWindowFlags(windowFlags() | Qt::FramelessWindowHint);
    setAttribute(Qt::WA_TranslucentBackground, true);
    setWindowFlags(windowFlags()
                   & ~(Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint
                       | Qt::WindowContextHelpButtonHint));
}

CBaseDialog::~CBaseDialog() = default;

bool CBaseDialog::canUseInAATSignalService() const
{
    return true;
}

QString CBaseDialog::getObjectName()
{
    return objectName();
}

void CBaseDialog::sendNotification()
{
    if (canUseInAATSignalService())
        Singleton<CScripting>::instance().sendSignal(this);
}

void CBaseDialog::showEvent(QShowEvent* event)
{
    // Later shows do nothing at all, not even what QDialog does; that is meant.
    if (!m_firstShow)
        return;

    Singleton<CScripting>::instance().makeObjectScriptable(objectName(), this);
    m_firstShow = false;
    Platform::setWindowAnimationEnabled(winId(), false);
    QDialog::showEvent(event);
    moveToScreenCenter();
    CDelayedCall::invoke(100, this, "sendNotification", true);
}

void CBaseDialog::moveToScreenCenter()
{
    adjustSize();
    moveWindowToScreenCenter(this, parentWidget());
}

void CBaseDialog::mousePressEvent(QMouseEvent* event)
{
    QWidget::mousePressEvent(event);
    if (event->button() != Qt::LeftButton)
        return;
    if (m_dragAreaHeight != 0 && m_dragAreaHeight < event->y())
        return;
    m_dragging = true;
    m_dragOffset = event->globalPos() - pos();
}

void CBaseDialog::mouseMoveEvent(QMouseEvent* event)
{
    if (m_dragging)
        move(event->globalPos() - m_dragOffset);
    QWidget::mouseMoveEvent(event);
}

void CBaseDialog::mouseReleaseEvent(QMouseEvent* event)
{
    m_dragging = false;
    QWidget::mouseReleaseEvent(event);
}

} // namespace VEK_NAMESPACE
