#include "ErrStrings.h"

#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <QObject>

namespace VEK_NAMESPACE {

namespace {

void replace(Platform::AlertText*& prepared, Platform::AlertTextPointer text)
{
    Platform::AlertTextDeleter()(prepared);
    prepared = text.release();
}

} // namespace

CErrStrings::CErrStrings()
{
    Retranslate();
}

CErrStrings::~CErrStrings()
{
    ClearData();
}

void CErrStrings::Retranslate()
{
    m_errorTitle = QObject::tr("Error");
    m_smallFreeSpaceText = QObject::tr("Mac free space drive message");
    m_outOfMemoryText = QObject::tr("Out of memory. Program will be closed.");
    m_outOfMemoryInPhotoshopText =
        QObject::tr("%1 has run out of memory. The application may now become unstable. Please "
                    "close %2 and Photoshop, quit all other programs running, and try again.")
            .arg(g_appTitle, g_appTitle);
    m_unhandledExceptionText = QObject::tr("Unhandled exception. Program will be closed.");

    ClearData();
    replace(m_errorTitleRef, Platform::makeAlertText(m_errorTitle));
    replace(m_smallFreeSpaceRef, Platform::makeAlertText(m_smallFreeSpaceText));
    replace(m_outOfMemoryRef, Platform::makeAlertText(m_outOfMemoryText));
    replace(m_outOfMemoryInPhotoshopRef, Platform::makeAlertText(m_outOfMemoryInPhotoshopText));
    replace(m_unhandledExceptionRef, Platform::makeAlertText(m_unhandledExceptionText));
}

void CErrStrings::ClearData()
{
    replace(m_errorTitleRef, nullptr);
    replace(m_smallFreeSpaceRef, nullptr);
    replace(m_outOfMemoryRef, nullptr);
    replace(m_outOfMemoryInPhotoshopRef, nullptr);
    replace(m_unhandledExceptionRef, nullptr);
}

void CErrStrings::ShowSmallFreeSpaceDialog() const
{
    show(m_smallFreeSpaceRef);
}

void CErrStrings::ShowOutOfMemoryDialog() const
{
    show(m_outOfMemoryRef);
}

void CErrStrings::ShowOutOfMemoryInPhotoshopDialog() const
{
    show(m_outOfMemoryInPhotoshopRef);
}

void CErrStrings::ShowUnhandledExceptionDialog() const
{
    show(m_unhandledExceptionRef);
}

void CErrStrings::show(const Platform::AlertText* text) const
{
    if (m_errorTitleRef && text)
        Platform::showAlert(*m_errorTitleRef, *text);
}

} // namespace VEK_NAMESPACE
