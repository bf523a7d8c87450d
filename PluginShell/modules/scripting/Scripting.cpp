#include "Scripting.h"

#include "CommonConstants.h"
#include "ProductVersion_p.h"
#include "Scripting_p.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <utility>

namespace VEK_NAMESPACE {

namespace {

/// What an aborted evaluation results in.
const QString g_auxFailVal =
    QStringLiteral("krnv3_script_fail"); // clazy:exclude=non-pod-global-static

struct ScriptSignal
{
    const char* signature; ///< as the SIGNAL macro writes it
    const char* name;
};

/// By CScripting::jsSignal.
const ScriptSignal scriptSignals[] = {
    {"2initializeTest()", "initializeTest"},
    {"2startTest()", "startTest"},
    {"2cleanupTest()", "cleanupTest"},
    {"2exceptionInTest()", "exceptionInTest"},
};

void serveEvents(int msec, int msecPerTurn)
{
    QElapsedTimer timer;
    timer.start();
    do {
        QCoreApplication::processEvents(QEventLoop::AllEvents, msecPerTurn);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QTest::qSleep(10);
    } while (timer.elapsed() < msec);
}

} // namespace

QString Private::qVariantToString(const QVariant& value)
{
    if (value.canConvert(QMetaType::QString))
        return value.toString();

    QString text;
    QDebug(&text) << value;
    return text;
}

CScripting::CScripting()
{
    connect(&m_engine, SIGNAL(signalHandlerException(QScriptValue)), this,
            SLOT(handleJScriptException(QScriptValue)));
}

CScripting::~CScripting() = default;

void CScripting::setPathToScript(const QString& path)
{
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly))
        return;
    m_script = QString::fromUtf8(file.readAll().constData());
    file.close();

    if (m_reportFile.isOpen()) {
        m_reportStream.setDevice(nullptr);
        m_reportFile.close();
        // A stream never takes back what it has connected to a device.
        disconnect(&m_reportFile, &QIODevice::aboutToClose, nullptr, nullptr);
        m_testName.clear();
    }
    m_testName = QFileInfo(path).completeBaseName();
    openReport(path);
}

void CScripting::openReport(const QString& scriptPath)
{
    const QString path = reportPath(scriptPath);
    QFile::remove(path);
    m_reportFile.setFileName(path);
    if (!m_reportFile.open(QIODevice::WriteOnly | QIODevice::Text))
        return;

    m_reportStream.setDevice(&m_reportFile);
    log(QString(QStringLiteral("Date and time: ")
                + QDateTime::currentDateTime().toString(Qt::ISODate)));
    log(QStringLiteral("Build number: " UTILSDLL_BUILD_STRING));
    log(QStringLiteral("Product name: " UTILSDLL_PRODUCT_NAME));
    m_startTimeMs = QDateTime::currentMSecsSinceEpoch();
}

QString CScripting::reportPath(const QString& scriptPath) const
{
    const QFileInfo script(scriptPath);
    return script.absolutePath() + QDir::separator() + script.completeBaseName()
        + QStringLiteral("Report.txt");
}

void CScripting::setTimeOut(int msec)
{
    m_timeOutMs = msec;
}

void CScripting::startScript()
{
    if (isScriptingMode())
        QTimer::singleShot(100, this, SLOT(run()));
}

bool CScripting::isScriptingMode() const
{
    return !m_script.isEmpty();
}

void CScripting::makeObjectScriptable(const QString& name, QObject* object)
{
    if (!object || name.isEmpty())
        return;

    QScriptValue globals = m_engine.globalObject();
    if (!globals.property(name).isValid())
        globals.setProperty(name, m_engine.newQObject(object, QScriptEngine::QtOwnership));
}

bool CScripting::hasFailed() const
{
    return m_failed;
}

void CScripting::setFailureObserver(std::function<void()> observer)
{
    m_failureObserver = std::move(observer);
}

void CScripting::tellFailureObserver()
{
    // Taken away first: what it does may fail, too.
    const std::function<void()> observer = std::exchange(m_failureObserver, nullptr);
    if (observer)
        observer();
}

QString CScripting::lastExceptionMessage(const QScriptValue& exception) const
{
    if (!m_engine.hasUncaughtException())
        return QString();

    const QScriptValue thrown = exception.isNull() ? m_engine.uncaughtException() : exception;
    return QStringLiteral("uncaught exception at line %1 ( %2 )")
        .arg(QString::number(m_engine.uncaughtExceptionLineNumber()), thrown.toString());
}

QString CScripting::testName()
{
    return m_testName;
}

void CScripting::run()
{
    if (m_timeOutMs > 0)
        startTimer(m_timeOutMs, Qt::CoarseTimer);
    makeObjectScriptable(QStringLiteral("scripting"), this);

    const QScriptValue result = m_engine.evaluate(m_script, QString(), 1);
    // Running a handler makes the engine forget this exception, so it is kept for the verdict.
    const QString topLevelException = lastExceptionMessage(result);
    if (!topLevelException.isNull())
        tellFailureObserver();

    // Raised whether or not the file itself failed; that is meant.
    invokeSignalForScript(jsInitializeTest);
    invokeSignalForScript(jsStartTest);

    bool passed = false;
    if (!topLevelException.isNull())
        failByException(topLevelException);
    else if (m_engine.hasUncaughtException())
        handleJScriptException(result);
    else
        passed = !(result.isString() && result.toString() == g_auxFailVal);

    invokeSignalForScript(jsCleanupTest);
    serveEvents(3000, 3000);
    log(passed ? QStringLiteral("PASS") : QStringLiteral("FAIL"));
    Q_EMIT testFinished();
    m_finished = true;
}

void CScripting::test() {}

void CScripting::sendSignal(QObject* object)
{
    Q_EMIT resendSignal(object);
}

void CScripting::log(const QVariant& message)
{
    const QString text = Private::qVariantToString(message);
    if (text.isEmpty())
        return;

    const QMutexLocker locker(&m_reportMutex);
    if (m_reportStream.device()) {
        m_reportStream << text << '\n';
        m_reportStream.flush();
        // After a failure, as on a full disk, the stream would never write again.
        m_reportStream.resetStatus();
    }
}

void CScripting::wait(int msec)
{
    serveEvents(msec, msec);
}

void CScripting::fail(const QString& message)
{
    if (m_failed)
        return;

    m_failed = true;
    log(message);
    tellFailureObserver();
    m_engine.abortEvaluation(QScriptValue(g_auxFailVal));
    QWindow* window = QGuiApplication::modalWindow();
    if (window && !window->close())
        m_windowToClose = window;
}

void CScripting::timerEvent(QTimerEvent* event)
{
    Q_UNUSED(event)
    fail(QStringLiteral("running is timed out"));
    if (m_finished)
        QCoreApplication::quit();
}

void CScripting::handleJScriptException(const QScriptValue& exception)
{
    failByException(lastExceptionMessage(exception));
}

void CScripting::failByException(const QString& message)
{
    tellFailureObserver();
    disconnect(&m_engine, nullptr, this, nullptr);
    invokeSignalForScript(jsExceptionInTest);
    fail(message);
}

void CScripting::invokeSignalForScript(jsSignal s)
{
    const ScriptSignal& scriptSignal = scriptSignals[s];
    if (receivers(scriptSignal.signature) <= 0)
        return;

    const QString name = QString::fromLatin1(scriptSignal.name);
    log(QStringLiteral("[%1] start of execute").arg(name));
    QMetaObject::invokeMethod(this, scriptSignal.name, Qt::AutoConnection);
    log(QStringLiteral("[%1] finish of execute").arg(name));

    if (s == jsCleanupTest)
        log(QStringLiteral("Test time: %1").arg(elapsedSeconds(), 0, 'g', -1, QLatin1Char(' ')));
}

/// In the single precision that reports have always shown.
double CScripting::elapsedSeconds() const
{
    if (m_startTimeMs <= 0)
        return 0.0;
    const float elapsedMs = float(QDateTime::currentMSecsSinceEpoch() - m_startTimeMs);
    return double(elapsedMs / 1000.0F);
}

} // namespace VEK_NAMESPACE
