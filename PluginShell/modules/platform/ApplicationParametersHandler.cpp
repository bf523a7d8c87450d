#include "ApplicationParametersHandler.h"

#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <QCoreApplication>

using namespace VEK_NAMESPACE;

struct Q_DECL_HIDDEN CApplicationParametersHandler_Abstract::Private
{
    std::unique_ptr<Platform::Observer> controller; ///< null when not in use
};

CApplicationParametersHandler_Abstract::CApplicationParametersHandler_Abstract(int argc,
                                                                               char** argv)
    : pimpl(new Private)
{
    Q_UNUSED(argv)
    if (argc == 1)
        pimpl->controller = Platform::observeParameters(*this);
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
        pimpl->controller->stop();
}
