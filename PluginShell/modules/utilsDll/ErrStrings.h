#pragma once

#include "UtilsDllGlobal.h"

#include <QString>

namespace VEK_NAMESPACE {

namespace Platform {
struct AlertText;
}

/// The product's fatal messages, made ready in advance and shown by the operating system's own
/// alert where the product can't go on.
///
/// Keep one object for the life of the program. A Show function blocks until the user has dismissed
/// the alert; it allocates nothing, calls nothing of Qt, and may run in any thread, but not while
/// Retranslate() or ClearData() does. Those two belong to the GUI thread.
class UTILSDLL_EXPORT CErrStrings
{
public:
    /// Makes all texts in the current language.
    CErrStrings();
    ~CErrStrings();

    /// Makes all texts anew in the current language.
    void Retranslate();

    /// From here to the next Retranslate() the Show functions do nothing.
    void ClearData();

    /// The system disk has too little free space to start.
    void ShowSmallFreeSpaceDialog() const;

    /// The product has to close, as there is no memory.
    void ShowOutOfMemoryDialog() const;

    /// There is no memory, and Photoshop around the plug-in should be closed too.
    void ShowOutOfMemoryInPhotoshopDialog() const;

    /// The product has to close after an exception that nobody has caught.
    void ShowUnhandledExceptionDialog() const;

private:
    Q_DISABLE_COPY(CErrStrings)

    void show(const Platform::AlertText* text) const;

    QString m_errorTitle;
    QString m_smallFreeSpaceText;
    QString m_outOfMemoryText;
    QString m_outOfMemoryInPhotoshopText;
    QString m_unhandledExceptionText;

    // The same as the alert takes them, owned.
    Platform::AlertText* m_errorTitleRef = nullptr;
    Platform::AlertText* m_smallFreeSpaceRef = nullptr;
    Platform::AlertText* m_outOfMemoryRef = nullptr;
    Platform::AlertText* m_outOfMemoryInPhotoshopRef = nullptr;
    Platform::AlertText* m_unhandledExceptionRef = nullptr;
};

} // namespace VEK_NAMESPACE
