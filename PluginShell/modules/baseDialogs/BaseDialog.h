#pragma once

#include "UtilsDllGlobal.h"

#include <QDialog>
#include <QPoint>

namespace VEK_NAMESPACE {

/// Base of the product's dialogs: frameless on a translucent ground, dragged by any place of it,
/// centred on its parent's screen when it is first shown, and known to the script host.
///
/// On its first show a dialog with an object name becomes a global of the script under that name,
/// in every run, and 100 milliseconds later, from inside its own event loop, it is announced by
/// CScripting::resendSignal(). A dialog that is hidden and shown again stays where it is and is not
/// announced again. GUI thread.
class UTILSDLL_EXPORT CBaseDialog : public QDialog
{
    Q_OBJECT

public:
    /// A hidden dialog, of the size that its contents ask for when it is shown.
    explicit CBaseDialog(QWidget* parent = nullptr);
    ~CBaseDialog() override;

    /// Whether the dialog is announced to the script. One that isn't is still a global.
    virtual bool canUseInAATSignalService() const;

    /// The object name, for scripts.
    Q_INVOKABLE QString getObjectName();

public Q_SLOTS:
    /// Announces the dialog to the script.
    void sendNotification();

protected:
    /// Starts a drag with the left button, within #m_dragAreaHeight if that isn't 0.
    void mousePressEvent(QMouseEvent* event) override;
    /// Ends the drag.
    void mouseReleaseEvent(QMouseEvent* event) override;
    /// Moves the dialog with the mouse during a drag.
    void mouseMoveEvent(QMouseEvent* event) override;
    /// At the first show makes the dialog known to the script, centres it and announces it. Later
    /// ones do nothing, not even what QDialog does.
    void showEvent(QShowEvent* event) override;

private Q_SLOTS:
    void moveToScreenCenter();

private:
    bool m_firstShow = true;
    QPoint m_dragOffset;
    bool m_dragging = false;

protected:
    /// The height in pixels of the area that starts a drag: if not 0, only a press at a y of this
    /// value or less does.
    int m_dragAreaHeight = 0;
};

} // namespace VEK_NAMESPACE
