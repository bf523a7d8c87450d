#include "ApplicationParametersHandler.h"

#include "ArgumentsFile_p.h"
#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <QCoreApplication>
#include <QFile>
#include <QUuid>

using namespace VEK_NAMESPACE;

namespace {

/// Listens for one answer on behalf of \a handler, which owns it.
class ParametersNotificationController
{
public:
    explicit ParametersNotificationController(CApplicationParametersHandler_Abstract& handler)
        : m_handler(handler)
        , m_handlerUuid(QUuid::createUuid().toString().mid(1, 36).toUpper())
    {
        // Listening begins first, so that an immediate answer isn't lost.
        m_answer = Platform::observeNotification(QStringLiteral("CMD_LINE_ARGSkrnv3"),
                                                 [this](const QString& path) { onAnswer(path); });
        if (m_answer) {
            Platform::postNotification(QStringLiteral("APP_CAN_HANDLE_CMD_LINE_ARGSkrnv3"),
                                       m_handlerUuid);
        }
    }

    void stopListening()
    {
        if (m_answer)
            m_answer->stop();
    }

private:
    Q_DISABLE_COPY(ParametersNotificationController)

    /// Listening is good for one answer, whatever it holds.
    void onAnswer(const QString& path)
    {
        stopListening();
        if (path.isEmpty())
            return;

        const std::list<std::string> arguments = Private::readArgumentsFile(path);
        QFile::remove(path);
        if (!arguments.empty())
            m_handler.onApplicationCommandLineArgumentsReceived(arguments);
    }

    CApplicationParametersHandler_Abstract& m_handler;
    const QString m_handlerUuid; ///< tells a launcher this instance from others
    std::unique_ptr<Platform::Observer> m_answer;
};

} // namespace

struct Q_DECL_HIDDEN CApplicationParametersHandler_Abstract::Private
{
    std::unique_ptr<ParametersNotificationController> controller; ///< null when not in use
};

CApplicationParametersHandler_Abstract::CApplicationParametersHandler_Abstract(int argc,
                                                                               char** argv)
    : pimpl(new Private)
{
    Q_UNUSED(argv)
    if (argc == 1)
        pimpl->controller = std::make_unique<ParametersNotificationController>(*this);
}

CApplicationParametersHandler_Abstract::~CApplicationParametersHandler_Abstract() = default;

QStringList const& CApplicationParametersHandler_Abstract::receivedArguments() const
{
    return m_arguments;
}

void CApplicationParametersHandler_Abstract::onApplicationCommandLineArgumentsReceived(
    std::list<std::string> const& arguments)
{
    m_arguments.clear();
    m_arguments << QCoreApplication::applicationFilePath();
    for (const std::string& argument : arguments)
        m_arguments << QString::fromUtf8(argument.data(), int(argument.size()));
}

void CApplicationParametersHandler_Abstract::onArgumentsProcessed() const
{
    if (pimpl->controller)
        pimpl->controller->stopListening();
}
