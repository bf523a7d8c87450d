#include "HandedOverCommandLine.h"

namespace {

constexpr int lookEveryMs = 100;
constexpr int lastLook = 600;

} // namespace

HandedOverCommandLine::HandedOverCommandLine(int argc, char** argv, QObject* parent)
    : QObject(parent)
    , CApplicationParametersHandler_Abstract(argc, argv)
{
    if (argc != 1)
        return;
    connect(&m_looking, &QTimer::timeout, this, &HandedOverCommandLine::look);
    m_looking.start(lookEveryMs);
}

void HandedOverCommandLine::look()
{
    const QStringList arguments = receivedArguments();
    if (arguments.isEmpty() && ++m_looks < lastLook)
        return;
    m_looking.stop();
    onArgumentsProcessed();
    if (!arguments.isEmpty())
        Q_EMIT arrived(arguments);
}
