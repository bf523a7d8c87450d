#pragma once

#include "Singleton.h"
#include "UtilsDllGlobal.h"

#include <QFile>
#include <QMutex>
#include <QObject>
#include <QPointer>
#include <QScriptEngine>
#include <QScriptValue>
#include <QString>
#include <QStringList>
#include <QTextStream>
#include <QVariant>

#include <functional>

class QImage;
class QWidget;
class QWindow;

// clazy:excludeall=const-signal-or-slot

namespace VEK_NAMESPACE {

/// The acceptance-test host inside the product: evaluates one ECMAScript file in the running
/// application and writes a report beside it.
///
/// A host calls setPathToScript(), setTimeOut() if the run shall be limited, makeObjectScriptable()
/// for what the script shall reach, and startScript(); the run starts 100 milliseconds later on the
/// event loop and ends with testFinished(). From a successful setPathToScript() on the process is
/// in scripting mode, in which message boxes and file dialogs show nothing and take the script's
/// answers.
///
/// The script finds this object as the global "scripting": it may call the slots and connect
/// functions to the signals. initializeTest(), startTest() and cleanupTest() are raised in this
/// order after the file itself has run, each only if something is connected, and exceptionInTest()
/// when an exception escapes.
///
/// The report's verdict, PASS or FAIL, tells whether an exception was pending or the file itself
/// had been aborted after startTest(). A failure that the engine has forgotten by then stands in
/// the report above a PASS; hasFailed() tells it.
///
/// One process runs one test: nothing resets a failure. GUI thread, but for log().
class UTILSDLL_EXPORT CScripting : public QObject, public Singleton<CScripting>
{
    Q_OBJECT

public:
    CScripting();
    ~CScripting() override;

    /// Loads the script, UTF-8 text up to the first NUL byte, and starts the report
    /// "<complete base name>Report.txt" in its folder. A script that can't be read changes nothing,
    /// one without text gives a report and no scripting mode; a report that can't be written is
    /// left out.
    void setPathToScript(const QString& path);

    /// The period in milliseconds after which the test fails; at the first period after its end the
    /// application quits. 0 or less means none. Read when the run starts.
    void setTimeOut(int msec);

    /// Starts the run 100 milliseconds later, from the event loop. Without a script that could be
    /// read it does nothing.
    void startScript();

    /// Whether setPathToScript() has read a script that isn't empty.
    bool isScriptingMode() const;

    /// Makes \a object a global of the script. It stays the caller's. The first object under a name
    /// keeps it, also when it has died.
    void makeObjectScriptable(const QString& name, QObject* object);

    /// Whether a failure was recorded, the verdict aside. Not visible to scripts.
    bool hasFailed() const;

    /// Calls \a observer once, at the first failure or at the exception that becomes it, while the
    /// windows still are as the script left them. It mustn't serve events. There is one: another
    /// takes its place, an empty function takes it away. Not visible to scripts.
    void setFailureObserver(std::function<void()> observer);

    /// The text of the pending script exception with its line, or a null string.
    QString lastExceptionMessage(const QScriptValue& exception) const;

public Q_SLOTS:
    /// \name The run
    /// @{

    /// The complete base name of the script file.
    QString testName();

    /// Runs the script. startScript() calls it; it isn't meant for scripts.
    void run();

    /// Does nothing. Scripts may call it.
    void test();

    /// Emits resendSignal(): a dialog tells the script that it has come up.
    void sendSignal(QObject* object);

    /// Writes one line into the report; an empty text writes none.
    void log(const QVariant& message);

    /// Serves events for \a msec milliseconds.
    void wait(int msec);

    /// Fails the test: records \a message, aborts the running script and closes a modal window.
    /// Only the first call counts.
    void fail(const QString& message = QString());

    /// @}

    /// \name Controls
    /// Controls are found by their object name below a window, at any depth; where there are
    /// buttons and actions, buttons come first. A control that isn't there is no failure: nothing
    /// happens, or the result is the neutral one (an empty text, `false`, 0, `null`).
    /// @{

    /// Sends one key click. \a modifier is a sum of Qt::KeyboardModifier values: Shift 33554432,
    /// Control 67108864, Alt 134217728, Meta 268435456.
    void shortcut(QWidget* object, const QChar& key, int modifier);

    /// Sets the text of a line edit.
    void setLineEditText(QWidget* pParentWindow, const QString& name, const QString& strText);

    /// The text of a line edit.
    QString getLineEditText(QWidget* pParentWindow, const QString& name) const;

    /// Clicks a button. Returns when what the click does has ended; a modal dialog blocks the
    /// script until it closes.
    void clickButton(QWidget* pParentWindow, const QString& name);

    /// Triggers an action, as if it was chosen in a menu.
    void triggerAction(QWidget* pParentWindow, const QString& name);

    /// Checks or unchecks a button or an action that can be checked.
    void setItemChecked(QWidget* pParentWindow, const QString& name, bool bChecked);

    /// Whether a button or an action is checked.
    bool isItemChecked(QWidget* pParentWindow, const QString& name) const;

    /// Whether a widget or an action is enabled.
    bool isItemEnabled(QWidget* pParentWindow, const QString& name) const;

    /// Whether a widget is shown, its window included, or an action is visible.
    bool isItemVisible(QWidget* pParentWindow, const QString& name) const;

    /// Sets a slider and emits createUndoCommandForSlider(), which records an undo step.
    void setSlider(QWidget* pParentWindow, const QString& name, int value);

    /// The value of a slider.
    int getSliderValue(QWidget* pParentWindow, const QString& name) const;

    /// Any object below the window; an empty name gives the first child.
    QObject* getSubObject(QWidget* pParentWindow, const QString& name);

    /// @}

    /// \name Checks
    /// Only compare() fails the test by itself; of the others look at the result. File names are
    /// relative to the folder that the program was started in.
    /// @{

    /// Whether the difference of two pictures is below \a diff. It is logged, and so is why
    /// pictures can't be compared.
    ///
    /// \sa compareImages()
    bool isEqualImages(const QString& pathToImage1, const QString& pathToImage2, double diff = 0.5);

    /// Whether neither side of two pictures differs by more than \a tolerance pixels. If not, by
    /// how much is logged.
    bool isEqualImagesBySize(const QString& pathToImage1, const QString& pathToImage2,
                             int tolerance = 2);

    /// Whether the values are equal as QVariants are. If not, the test fails, or with the last
    /// argument `false` the mismatch is logged.
    bool compare(const QVariant& actual, const QVariant& expected,
                 bool bAbortTestIfCompareFailed = true);

    /// How many readable files, or entries of any kind, a folder has; hidden ones don't count. 0
    /// if it can't be read.
    unsigned int dirContentCount(const QString& pathToDir, bool bFilesOnly = true) const;

    /// Removes the plain files of a folder, but hidden ones.
    void clearDir(const QString& pathToDir);

    /// Removes a file; whether that was done.
    bool removeFile(const QString& pathToFile);

    /// Whether there is a file or a folder of that name.
    bool isFileExist(const QString& pathToFile);

    /// Copies a file, never over another one; whether that was done.
    bool copyFile(const QString& pathToSrcFile, const QString& pathToDestFile);

    /// Whether two files have the same bytes.
    bool isEqualFiles(const QString& pathToFile1, const QString& pathToFile2);

    /// Whether \a str ends with \a endsWithStr, upper and lower case told apart.
    bool stringEndsWith(const QString& str, const QString& endsWithStr) const;

    /// Records a message box and serves events for a second, without the user's input. An empty
    /// text fails the test.
    void addShownMessageBox(const QString& message);

    /// Whether a box with that text was recorded, or with a number from 0 whether that box had it.
    bool isMessageBoxShown(const QString& message, int messageBoxNumber = -1);

    /// Always "mac_os_x".
    QString platformName();

    /// @}

    /// \name Settings
    /// The settings that the product sees, the overlay included.
    /// @{

    /// The value of a setting, as its store gives it; an invalid one, to scripts `undefined`, if
    /// there is none.
    QVariant getSettingValue(const QString& strKey) const;

    /// Whether a setting has a value.
    bool hasSettingKey(const QString& strKey) const;

    /// Gives a setting a value.
    void setSettingValue(const QString& strKey, const QVariant& val);

    /// Takes a setting away, and all below it.
    void removeSettingKey(const QString& strKey);

    /// @}

Q_SIGNALS:
    /// \name Signals
    /// @{

    /// First phase: prepare what the test needs.
    void initializeTest();

    /// Last phase: put things back. The verdict is already fixed.
    void cleanupTest();

    /// Second phase: the test itself. The verdict is fixed after it.
    void startTest();

    /// An exception has escaped from the script. Only the first one is told.
    void exceptionInTest();

    /// The verdict stands in the report.
    void testFinished();

    /// A dialog has come up. The call that opened it may still be blocked.
    void resendSignal(QObject* object);

    /// setSlider() has moved the slider of that name: the product records an undo step.
    void createUndoCommandForSlider(const QString& slidername);

    /// @}

protected:
    /// The period of setTimeOut() is over.
    void timerEvent(QTimerEvent* event) override;

private Q_SLOTS:
    void handleJScriptException(const QScriptValue& exception);

private:
    /// The signals that are raised for the script. The values index a table and are fixed.
    enum jsSignal
    {
        jsInitializeTest = 0,
        jsStartTest = 1,
        jsCleanupTest = 2,
        jsExceptionInTest = 3
    };

    void openReport(const QString& scriptPath);
    QString reportPath(const QString& scriptPath) const;
    void invokeSignalForScript(jsSignal s);
    void failByException(const QString& message);
    void tellFailureObserver();
    double elapsedSeconds() const;
    bool loadImages(const QString& path1, const QString& path2, QImage& image1, QImage& image2);

    QFile m_reportFile;
    QTextStream m_reportStream;
    QScriptEngine m_engine;
    QString m_testName;
    QString m_script; ///< not empty means scripting mode
    QStringList m_shownMessageBoxes;
    qint64 m_startTimeMs = 0;
    qint32 m_timeOutMs = -1;
    bool m_finished = false;
    bool m_failed = false;
    std::function<void()> m_failureObserver;
    QMutex m_reportMutex; ///< guards writing to m_reportStream
    QPointer<QWindow> m_windowToClose; ///< of fail(), which can't while user input is shut out
};

} // namespace VEK_NAMESPACE
