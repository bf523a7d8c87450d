#pragma once

#include "Singleton.h"
#include "UtilsDllGlobal.h"

#include <QFileDialog>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace VEK_NAMESPACE {

/// The one door through which the product asks the user for files and folders, reached as
/// Singleton<CNativeDialogs>::instance().
///
/// In a normal run each getter is the static function of QFileDialog of that name; but for
/// getFileBrowserDirectory() the caller's options are not passed on. In scripting mode no dialog is
/// shown: a getter returns what the script set beforehand, once, or fails the test. Which value is
/// tested and which is returned differs for two groups, and scripts are written to that:
/// getOpenFileNames() needs setOpenFileName() beside setOpenFileNames(), and the directory getters
/// need setSaveFileName() beside setExistingDirectory(). GUI thread.
///
/// A script loads the answers to file dialogs through the global "nativeDialogs", which a host
/// makes with CScripting::makeObjectScriptable().
class UTILSDLL_EXPORT CNativeDialogs : public QObject, public Singleton<CNativeDialogs>
{
    Q_OBJECT

public:
    /// Made by Singleton<CNativeDialogs>.
    CNativeDialogs();
    ~CNativeDialogs() override;

    /// \name Questions
    /// All return an empty result if the user cancels. The caller keeps \a parent and
    /// \a selectedFilter; in scripting mode they aren't looked at.
    /// @{

    /// Asks for a file to open.
    QString getOpenFileName(QWidget* parent = nullptr, const QString& caption = QString(),
                            const QString& dir = QString(), const QString& filter = QString(),
                            QString* selectedFilter = nullptr, QFileDialog::Options options = {});
    /// Asks for files to open.
    QStringList getOpenFileNames(QWidget* parent = nullptr, const QString& caption = QString(),
                                 const QString& dir = QString(), const QString& filter = QString(),
                                 QString* selectedFilter = nullptr,
                                 QFileDialog::Options options = {});
    /// Asks for the name of a file to save, and before one is overwritten.
    QString getSaveFileName(QWidget* parent = nullptr, const QString& caption = QString(),
                            const QString& dir = QString(), const QString& filter = QString(),
                            QString* selectedFilter = nullptr, QFileDialog::Options options = {});
    /// Asks for a folder.
    QString getExistingDirectory(QWidget* parent = nullptr, const QString& caption = QString(),
                                 const QString& dir = QString(),
                                 QFileDialog::Options options = QFileDialog::ShowDirsOnly);

    /// Asks for a folder to browse. Passes \a options on, and doesn't use \a filter.
    QString getFileBrowserDirectory(QWidget* parent = nullptr, const QString& caption = QString(),
                                    const QString& dir = QString(),
                                    const QString& filter = QString(),
                                    QFileDialog::Options options = QFileDialog::ShowDirsOnly);

    /// @}

    /// \name Answers, for scripts
    /// Each is one pending value: a second call replaces the first.
    /// @{

    /// The answer to a question for a file to open. One for several files needs it beside
    /// setOpenFileNames().
    Q_INVOKABLE void setOpenFileName(const QString& fileName);
    /// The answer to a question for several files to open, which needs setOpenFileName(), too.
    /// Members that aren't texts are turned into such.
    Q_INVOKABLE void setOpenFileNames(const QVariantList& fileNames);
    /// The answer to a question for a file to save. One for a folder needs it beside
    /// setExistingDirectory().
    Q_INVOKABLE void setSaveFileName(const QString& fileName);
    /// The answer to a question for a folder, which needs setSaveFileName(), too.
    Q_INVOKABLE void setExistingDirectory(const QString& fileName);

    /// @}

private:
    QString takeExistingDirectory();

    QString m_openFileName;
    QString m_saveFileName;
    QString m_existingDirectory;
    QStringList m_openFileNames;
};

} // namespace VEK_NAMESPACE
