// The script's hands: controls are found by name and used as the program's own code would use them.

#include "CommonConstants.h"
#include "Scripting.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAction>
#include <QLineEdit>
#include <QTest>

#include <utility>

namespace VEK_NAMESPACE {

namespace {

template <typename T>
T* findControl(const QWidget* pParentWindow, const QString& name)
{
    return pParentWindow && !name.isEmpty() ? pParentWindow->findChild<T*>(name) : nullptr;
}

/// QTest::asciiToKey() ends the process for a code that it doesn't know; such a click has no key.
Qt::Key keyOfLatin1(uchar code)
{
    const bool isKnown = (code >= 0x20 && code < 0x7f) || (code >= 0xa0 && code < 0xe0)
        || QByteArrayLiteral("\b\t\v\r\x13\x15\x1b\xe5\xe6\xf7\xf8\xff").contains(char(code));
    return isKnown ? QTest::asciiToKey(char(code)) : Qt::Key(0);
}

/// The second half of a key click, in QtTest's order. QTest::sendKeyEvent() would go on with a
/// receiver that the key has deleted.
void releaseKeys(QWidget* object, Qt::Key key, const QString& text, Qt::KeyboardModifiers modifiers)
{
    const QPointer<QWidget> receiver(object);
    QTest::simulateEvent(receiver, false, key, modifiers, text, false);

    const std::pair<Qt::KeyboardModifier, Qt::Key> modifierKeys[] = {
        {Qt::MetaModifier, Qt::Key_Meta},
        {Qt::AltModifier, Qt::Key_Alt},
        {Qt::ControlModifier, Qt::Key_Control},
        {Qt::ShiftModifier, Qt::Key_Shift},
    };
    for (const auto& [modifier, modifierKey] : modifierKeys) {
        if (receiver && modifiers.testFlag(modifier))
            QTest::simulateEvent(receiver, false, modifierKey, modifiers, QString(), false);
        modifiers &= (Qt::AltModifier | Qt::ControlModifier | Qt::ShiftModifier) & ~modifier;
    }
}

} // namespace

void CScripting::shortcut(QWidget* object, const QChar& key, int modifier)
{
    if (!object)
        return;

    const auto code = uchar(key.toLatin1());
    const QString text = code ? QString(QChar(code)) : QString();
    const Qt::KeyboardModifiers modifiers{QFlag(modifier)};
    const QPointer<QWidget> receiver(object);
    QTest::sendKeyEvent(QTest::Press, object, keyOfLatin1(code), text, modifiers);
    if (receiver)
        releaseKeys(receiver, keyOfLatin1(code), text, modifiers);
}

void CScripting::setLineEditText(QWidget* pParentWindow, const QString& name,
                                 const QString& strText)
{
    if (auto* lineEdit = findControl<QLineEdit>(pParentWindow, name))
        lineEdit->setText(strText);
}

QString CScripting::getLineEditText(QWidget* pParentWindow, const QString& name) const
{
    const auto* lineEdit = findControl<QLineEdit>(pParentWindow, name);
    return lineEdit ? lineEdit->text() : QString();
}

void CScripting::clickButton(QWidget* pParentWindow, const QString& name)
{
    if (auto* button = findControl<QAbstractButton>(pParentWindow, name)) {
        const QPointer<QWidget> window(pParentWindow);
        button->click();
        if (window)
            window->repaint();
    }
}

void CScripting::triggerAction(QWidget* pParentWindow, const QString& name)
{
    if (auto* action = findControl<QAction>(pParentWindow, name))
        action->activate(QAction::Trigger);
}

void CScripting::setItemChecked(QWidget* pParentWindow, const QString& name, bool bChecked)
{
    if (auto* button = findControl<QAbstractButton>(pParentWindow, name))
        button->setChecked(bChecked);
    else if (auto* action = findControl<QAction>(pParentWindow, name))
        action->setChecked(bChecked);
}

bool CScripting::isItemChecked(QWidget* pParentWindow, const QString& name) const
{
    if (const auto* button = findControl<QAbstractButton>(pParentWindow, name))
        return button->isChecked();
    const auto* action = findControl<QAction>(pParentWindow, name);
    return action && action->isChecked();
}

bool CScripting::isItemEnabled(QWidget* pParentWindow, const QString& name) const
{
    if (const auto* widget = findControl<QWidget>(pParentWindow, name))
        return widget->isEnabled();
    const auto* action = findControl<QAction>(pParentWindow, name);
    return action && action->isEnabled();
}

bool CScripting::isItemVisible(QWidget* pParentWindow, const QString& name) const
{
    if (const auto* widget = findControl<QWidget>(pParentWindow, name))
        return widget->isVisible();
    const auto* action = findControl<QAction>(pParentWindow, name);
    return action && action->isVisible();
}

void CScripting::setSlider(QWidget* pParentWindow, const QString& name, int value)
{
    if (auto* slider = findControl<QAbstractSlider>(pParentWindow, name)) {
        slider->setValue(value);
        Q_EMIT createUndoCommandForSlider(name);
    }
}

int CScripting::getSliderValue(QWidget* pParentWindow, const QString& name) const
{
    const auto* slider = findControl<QAbstractSlider>(pParentWindow, name);
    return slider ? slider->value() : 0;
}

QObject* CScripting::getSubObject(QWidget* pParentWindow, const QString& name)
{
    // Unlike the others it takes an empty name; that is meant. Only a null one matches every child.
    return pParentWindow ? pParentWindow->findChild<QObject*>(name.isEmpty() ? QString() : name)
                         : nullptr;
}

} // namespace VEK_NAMESPACE
