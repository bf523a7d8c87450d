#include "FatalErrors.h"

#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QFile>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <new>

namespace {

const VEK_NAMESPACE::CErrStrings* s_messages = nullptr;

/// Nothing that allocates may be called here.
[[noreturn]] void endWithoutMemory()
{
    s_messages->ShowOutOfMemoryDialog();
    std::_Exit(EXIT_FAILURE);
}

[[noreturn]] void endWithException()
{
    s_messages->ShowUnhandledExceptionDialog();
    std::abort();
}

/// The nearest folder that is there.
QString existingFolder(const QString& path)
{
    QDir folder(path);
    while (!folder.exists()) {
        const QString parent = QFileInfo(folder.absolutePath()).absolutePath();
        if (parent == folder.absolutePath())
            break;
        folder.setPath(parent);
    }
    return folder.absolutePath();
}

} // namespace

FatalErrors::FatalErrors()
{
    s_messages = &m_messages;
    std::set_new_handler(endWithoutMemory);
    std::set_terminate(endWithException);
    QCoreApplication::instance()->installEventFilter(this);
}

FatalErrors::~FatalErrors()
{
    std::set_terminate(std::abort);
    std::set_new_handler(nullptr);
    s_messages = nullptr;
}

bool FatalErrors::hasFreeSpace(const QString& folder, qint64 bytes) const
{
    std::error_code unknown;
    const auto disk =
        std::filesystem::space(QFile::encodeName(existingFolder(folder)).constData(), unknown);
    if (unknown || qint64(disk.available) >= bytes)
        return true;
    m_messages.ShowSmallFreeSpaceDialog();
    return false;
}

bool FatalErrors::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::LanguageChange && object == QCoreApplication::instance())
        m_messages.Retranslate();
    return QObject::eventFilter(object, event);
}
