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
class UTILSDLL_EXPORT CNativeDialogs : public QObject, public Singleton<CNativeDialogs>
{
    Q_OBJECT

public:
    CNativeDialogs();
    ~CNativeDialogs() override;

    /// All getters return an empty result if the user cancels. The caller keeps \a parent and
    /// \a selectedFilter; in scripting mode they aren't looked at.
    QString getOpenFileName(QWidget* parent = nullptr, const QString& caption = QString(),
                            const QString& dir = QString(), const QString& filter = QString(),
                            QString* selectedFilter = nullptr, QFileDialog::Options options = {});
    QStringList getOpenFileNames(QWidget* parent = nullptr, const QString& caption = QString(),
                                 const QString& dir = QString(), const QString& filter = QString(),
                                 QString* selectedFilter = nullptr,
                                 QFileDialog::Options options = {});
    QString getSaveFileName(QWidget* parent = nullptr, const QString& caption = QString(),
                            const QString& dir = QString(), const QString& filter = QString(),
                            QString* selectedFilter = nullptr, QFileDialog::Options options = {});
    QString getExistingDirectory(QWidget* parent = nullptr, const QString& caption = QString(),
                                 const QString& dir = QString(),
                                 QFileDialog::Options options = QFileDialog::ShowDirsOnly);

    /// Passes \a options on, and doesn't use \a filter.
    QString getFileBrowserDirectory(QWidget* parent = nullptr, const QString& caption = QString(),
                                    const QString& dir = QString(),
                                    const QString& filter = QString(),
                                    QFileDialog::Options options = QFileDialog::ShowDirsOnly);

    /// \name Answers, for scripts
    /// Each is one pending value: a second call replaces the first.
    /// @{
    Q_INVOKABLE void setOpenFileName(const QString& fileName);
    Q_INVOKABLE void setOpenFileNames(const QVariantList& fileNames);
    Q_INVOKABLE void setSaveFileName(const QString& fileName);
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
