#pragma once

#include "UtilsDllGlobal.h"

#include <QScopedPointer>
#include <QStringList>

#include <list>
#include <string>

/// The receiving end of a command line that another process, a launcher, hands over to an
/// application that it started without arguments.
///
/// The object listens if the process has no argument of its own: it tells everybody that it is up,
/// with a text that names this instance, and takes the first answer, from whichever process it
/// comes. The answer names a UTF-8 file of one argument a line, which is read and deleted; an empty
/// name means that there are none. There is no limit of time, and nobody is told: the application
/// looks at receivedArguments() now and then. An answer that can't be read gives no arguments.
///
/// The constructor wants an application object. Arguments arrive through the event loop of the GUI
/// thread, which all of this belongs to.
class UTILSDLL_EXPORT CApplicationParametersHandler_Abstract
{
public:
    /// \a argc, as main() was called with it, decides whether this process listens: only 1 does.
    /// The application object takes the options that it knows away, so keep a copy. \a argv isn't
    /// read.
    CApplicationParametersHandler_Abstract(int argc, char** argv);
    virtual ~CApplicationParametersHandler_Abstract();

    /// Empty until arguments have arrived; then in the shape of a command line, this program's own
    /// path first. Stays when listening has ended.
    QStringList const& receivedArguments() const;

    /// Sets the received arguments, which are UTF-8. Called when they arrive.
    void onApplicationCommandLineArgumentsReceived(std::list<std::string> const& arguments);

    /// Ends the listening.
    void onArgumentsProcessed() const;

private:
    Q_DISABLE_COPY(CApplicationParametersHandler_Abstract)

    struct Private;
    QScopedPointer<Private> pimpl;
    QStringList m_arguments;
};
