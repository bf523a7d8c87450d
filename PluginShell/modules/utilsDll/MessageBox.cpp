#include "MessageBox.h"

#include "Assertions.h"
#include "CommonConstants.h"
#include "Scripting.h"
#include "SvgIcon_p.h"
#include "ui_MessageBox.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

using VEK_NAMESPACE::CScripting;

namespace {

constexpr int boxWidth = 520;
constexpr int backgroundProcessingBoxHeight = 165;

QIcon questionIcon()
{
    return VEK_NAMESPACE::Private::svgIcon(
        QStringLiteral("://icons/messagebox/question_mark_dark_icon.svg"));
}

QIcon alertIcon()
{
    return VEK_NAMESPACE::Private::svgIcon(
        QStringLiteral("://icons/messagebox/alert_dark_icon.svg"));
}

QIcon infoIcon()
{
    return VEK_NAMESPACE::Private::svgIcon(
        QStringLiteral("://icons/messagebox/info_dark_icon.svg"));
}

bool isScriptingMode()
{
    return Singleton<CScripting>::instance().isScriptingMode();
}

/// Takes the oldest answer; without one the test fails, and the caller goes on with \a fallback.
template <typename T>
T takeAnswer(QList<T>* answers, const char* entryPoint, T fallback)
{
    const bool hasAnswer = answers && !answers->isEmpty();
    ASSERT(hasAnswer);
    if (hasAnswer)
        return answers->takeFirst();

    Singleton<CScripting>::instance().fail(
        QStringLiteral("%1 have't got predefined value").arg(QLatin1String(entryPoint)));
    return fallback;
}

} // namespace

QScopedPointer<CMessageBox> CMessageBox::m_scriptingInstance; // clazy:exclude=non-pod-global-static

/// The row of buttons of one box, filled from left to right.
class CMessageBox::ButtonRow
{
public:
    ButtonRow(CMessageBox& box, QHBoxLayout* layout)
        : m_box(box)
        , m_layout(layout)
    {}

    void addStretch() { m_layout->addStretch(); }

    QPushButton* addButton(const QString& text, const char* objectName)
    {
        auto* button = new QPushButton(text);
        button->setMinimumSize(80, 36);
        connect(button, SIGNAL(clicked(bool)), &m_box, SLOT(onButtonClicked()));
        m_layout->addWidget(button);
        button->setObjectName(QLatin1String(objectName));
        return button;
    }

    QPushButton* addDefaultButton(const QString& text, const char* objectName)
    {
        QPushButton* button = addButton(text, objectName);
        button->setDefault(true);
        return button;
    }

private:
    CMessageBox& m_box;
    QHBoxLayout* m_layout;
};

CMessageBox::CMessageBox(QWidget* parent)
    : CBaseDialog(parent)
    , m_ui(new Ui_CMessageBox)
{
    m_ui->setupUi(this);
}

CMessageBox::~CMessageBox() = default;

QMessageBox::StandardButton CMessageBox::saveDiscardCancelMessage(QWidget* parent,
                                                                  const QString& text, int height)
{
    if (isScriptingMode()) {
        Singleton<CScripting>::instance().addShownMessageBox(text);
        return takeAnswer(m_scriptingInstance ? &m_scriptingInstance->m_saveDiscardCancelAnswers
                                              : nullptr,
                          "saveDiscardCancelMessage", QMessageBox::Save);
    }

    CMessageBox box(parent);
    box.prepareContentWidget(text);
    box.setIcon(questionIcon(), IconSize::Natural);
    ButtonRow buttons = box.createButtonLayout(true);
    const QPushButton* discardButton = buttons.addButton(tr("Don't save"), "discardButton");
    buttons.addStretch();
    buttons.addButton(tr("Cancel"), "cancelButton");
    const QPushButton* saveButton = buttons.addDefaultButton(tr("Save"), "saveButton");
    box.execWithHeight(height);

    if (box.m_clickedButton == saveButton)
        return QMessageBox::Save;
    return box.m_clickedButton == discardButton ? QMessageBox::Discard : QMessageBox::Cancel;
}

bool CMessageBox::rotateQuestion(QWidget* parent, const QString& text, int height)
{
    if (isScriptingMode()) {
        return takeAnswer(m_scriptingInstance ? &m_scriptingInstance->m_rotateAnswers : nullptr,
                          "rotateQuestion", true);
    }

    CMessageBox box(parent);
    box.prepareContentWidget(text);
    box.setIcon(questionIcon(), IconSize::Natural);
    ButtonRow buttons = box.createButtonLayout(true);
    buttons.addStretch();
    buttons.addButton(tr("Cancel"), "cancelButton");
    const QPushButton* rotateButton = buttons.addDefaultButton(tr("Rotate"), "rotateButton");
    box.execWithHeight(height);
    return box.m_clickedButton == rotateButton;
}

QMessageBox::StandardButton CMessageBox::yesNoMessage(QWidget* parent, const QString& text,
                                                      int height)
{
    if (isScriptingMode()) {
        return takeAnswer(m_scriptingInstance ? &m_scriptingInstance->m_yesNoAnswers : nullptr,
                          "yesNoMessage", QMessageBox::Yes);
    }

    CMessageBox box(parent);
    box.prepareContentWidget(text);
    box.setIcon(questionIcon(), IconSize::Small);
    ButtonRow buttons = box.createButtonLayout(true);
    buttons.addStretch();
    buttons.addButton(tr("No"), "noButton");
    const QPushButton* yesButton = buttons.addDefaultButton(tr("Yes"), "yesButton");
    box.execWithHeight(height);
    return box.m_clickedButton == yesButton ? QMessageBox::Yes : QMessageBox::No;
}

QMessageBox::StandardButton CMessageBox::backgroundProcessingCancelMessage(QWidget* parent,
                                                                           const QString& text)
{
    ASSERT_X_RETURN_VALUE(!isScriptingMode(), QStringLiteral("Cannot be used in scripting mode!!!"),
                          QMessageBox::Cancel);

    CMessageBox box(parent);
    box.prepareContentWidget(text);
    box.setIcon(alertIcon(), IconSize::Small);
    ButtonRow buttons = box.createButtonLayout(true);
    buttons.addStretch();
    const QPushButton* quitButton =
        buttons.addDefaultButton(tr("Quit without saving"), "quitWithoutSavingButton");
    buttons.addButton(tr("Don't quit"), "dontQuitButton");
    box.execWithHeight(backgroundProcessingBoxHeight);
    return box.m_clickedButton == quitButton ? QMessageBox::Discard : QMessageBox::Cancel;
}

void CMessageBox::information(QWidget* parent, const QString& text, int height)
{
    showSimpleMessageBox(parent, text, infoIcon(), tr("OK"), height);
}

void CMessageBox::critical(QWidget* parent, const QString& text, int height)
{
    showSimpleMessageBox(parent, text, alertIcon(), tr("Close"), height);
}

void CMessageBox::warning(QWidget* parent, const QString& text, int height)
{
    // The same box as a critical one; that is meant.
    critical(parent, text, height);
}

void CMessageBox::showSimpleMessageBox(QWidget* parent, const QString& text, const QIcon& icon,
                                       const QString& buttonText, int height)
{
    if (isScriptingMode()) {
        Singleton<CScripting>::instance().addShownMessageBox(text);
        return;
    }

    CMessageBox box(parent);
    box.prepareContentWidget(text);
    box.setIcon(icon, IconSize::Small);
    ButtonRow buttons = box.createButtonLayout(false);
    buttons.addStretch();
    buttons.addDefaultButton(buttonText, "mbSipleButton");
    buttons.addStretch();
    box.execWithHeight(height);
}

void CMessageBox::initializeScripting()
{
    m_scriptingInstance.reset(new CMessageBox(nullptr));
    Singleton<CScripting>::instance().makeObjectScriptable(QStringLiteral("messageBoxes"),
                                                           m_scriptingInstance.data());
}

void CMessageBox::setRotateQuestion(bool predefinedValue)
{
    m_rotateAnswers << predefinedValue;
}

void CMessageBox::setYesNoMessage(bool predefinedButtonPressed)
{
    m_yesNoAnswers << (predefinedButtonPressed ? QMessageBox::Yes : QMessageBox::No);
}

void CMessageBox::setYesNoMessageWithCheckBox(bool predefinedButtonPressed, bool predefinedCheckBox)
{
    Q_UNUSED(predefinedButtonPressed)
    Q_UNUSED(predefinedCheckBox)
}

void CMessageBox::setSaveDiscardCancelMessage(int predefinedValue)
{
    const bool isAnswer = predefinedValue == QMessageBox::Save
        || predefinedValue == QMessageBox::Discard || predefinedValue == QMessageBox::Cancel;
    ASSERT(isAnswer);
    if (isAnswer) {
        m_saveDiscardCancelAnswers << QMessageBox::StandardButton(predefinedValue);
    } else {
        Singleton<CScripting>::instance().fail(
            QStringLiteral("setSaveDiscardCancelMessage wrong predefined value"));
    }
}

void CMessageBox::onButtonClicked()
{
    m_clickedButton = qobject_cast<QPushButton*>(sender());
    done(0);
}

void CMessageBox::prepareContentWidget(const QString& text)
{
    auto* label = new QLabel(text);
    label->setObjectName(QStringLiteral("textLabel"));
    label->setWordWrap(true);
    m_ui->contentLayout->addWidget(label);
}

void CMessageBox::setIcon(const QIcon& icon, IconSize size)
{
    if (size == IconSize::Small)
        m_ui->iconWidget->setMandatoryImageSize(QSize(34, 34));
    m_ui->iconWidget->setIcon(icon);
}

CMessageBox::ButtonRow CMessageBox::createButtonLayout(bool besideIcon)
{
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setSpacing(11);
    layout->setContentsMargins(0, 0, 0, 0);
    if (besideIcon)
        m_ui->gridLayout->addWidget(row, 2, 1);
    else
        m_ui->gridLayout->addWidget(row, 2, 0, 2, -1);
    return ButtonRow(*this, layout);
}

void CMessageBox::execWithHeight(int height)
{
    setFixedSize(boxWidth, height);
    exec();
}
