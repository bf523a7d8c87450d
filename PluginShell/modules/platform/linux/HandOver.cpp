#include "ArgumentsFile_p.h"
#include "CommonConstants.h"
#include "Notifications_p.h"

#include <QUuid>

namespace VEK_NAMESPACE {
namespace Platform {

std::unique_ptr<Observer> observeParameters(CApplicationParametersHandler_Abstract& handler)
{
    class ParametersObserver : public Observer
    {
    public:
        explicit ParametersObserver(CApplicationParametersHandler_Abstract& handler)
            : m_answer(observeNotification(QStringLiteral("CMD_LINE_ARGSkrnv3"),
                                           [this, &handler](const QString& path) {
                                               Private::receiveArguments(path, handler);
                                               stop();
                                           }))
        {}

        bool isListening() const { return m_answer != nullptr; }
        void stop() override { m_answer->stop(); }

    private:
        const std::unique_ptr<Observer> m_answer;
    };

    // Listening begins first, so that an immediate answer isn't lost.
    auto observer = std::make_unique<ParametersObserver>(handler);
    if (!observer->isListening())
        return nullptr;
    postNotification(QStringLiteral("APP_CAN_HANDLE_CMD_LINE_ARGSkrnv3"),
                     QUuid::createUuid().toString().mid(1, 36).toUpper());
    return observer;
}

} // namespace Platform
} // namespace VEK_NAMESPACE
