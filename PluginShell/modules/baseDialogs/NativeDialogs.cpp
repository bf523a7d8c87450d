#include "NativeDialogs.h"

#include "Assertions.h"
#include "CommonConstants.h"
#include "Scripting.h"

#include <utility>

namespace VEK_NAMESPACE {

namespace {

bool isScriptingMode()
{
    return Singleton<CScripting>::instance().isScriptingMode();
}

/// Whether a script has set this value; if not, the test fails. All getters use this one text.
bool requireAnswer(const QString& answer)
{
    ASSERT(!answer.isEmpty());
    if (answer.isEmpty()) {
        Singleton<CScripting>::instance().fail(
            QStringLiteral("getOpenFileName have't got predefined value"));
    }
    return !answer.isEmpty();
}

} // namespace

CNativeDialogs::CNativeDialogs() = default;

CNativeDialogs::~CNativeDialogs() = default;

QString CNativeDialogs::getOpenFileName(QWidget* parent, const QString& caption, const QString& dir,
                                        const QString& filter, QString* selectedFilter,
                                        QFileDialog::Options options)
{
    Q_UNUSED(options)
    if (!isScriptingMode())
        return QFileDialog::getOpenFileName(parent, caption, dir, filter, selectedFilter);
    if (!requireAnswer(m_openFileName))
        return QString();
    return std::exchange(m_openFileName, QString());
}

QStringList CNativeDialogs::getOpenFileNames(QWidget* parent, const QString& caption,
                                             const QString& dir, const QString& filter,
                                             QString* selectedFilter, QFileDialog::Options options)
{
    Q_UNUSED(options)
    if (!isScriptingMode())
        return QFileDialog::getOpenFileNames(parent, caption, dir, filter, selectedFilter);
    // The single name is tested, and stays.
    if (!requireAnswer(m_openFileName))
        return QStringList();
    return std::exchange(m_openFileNames, QStringList());
}

QString CNativeDialogs::getSaveFileName(QWidget* parent, const QString& caption, const QString& dir,
                                        const QString& filter, QString* selectedFilter,
                                        QFileDialog::Options options)
{
    Q_UNUSED(options)
    if (!isScriptingMode())
        return QFileDialog::getSaveFileName(parent, caption, dir, filter, selectedFilter);
    if (!requireAnswer(m_saveFileName))
        return QString();
    return std::exchange(m_saveFileName, QString());
}

QString CNativeDialogs::getExistingDirectory(QWidget* parent, const QString& caption,
                                             const QString& dir, QFileDialog::Options options)
{
    Q_UNUSED(options)
    if (!isScriptingMode())
        return QFileDialog::getExistingDirectory(parent, caption, dir, QFileDialog::ShowDirsOnly);
    return takeExistingDirectory();
}

QString CNativeDialogs::getFileBrowserDirectory(QWidget* parent, const QString& caption,
                                                const QString& dir, const QString& filter,
                                                QFileDialog::Options options)
{
    Q_UNUSED(filter)
    if (!isScriptingMode())
        return QFileDialog::getExistingDirectory(parent, caption, dir, options);
    return takeExistingDirectory();
}

void CNativeDialogs::setOpenFileName(const QString& fileName)
{
    m_openFileName = fileName;
}

void CNativeDialogs::setOpenFileNames(const QVariantList& fileNames)
{
    m_openFileNames.clear();
    for (const QVariant& fileName : fileNames)
        m_openFileNames << fileName.toString();
}

void CNativeDialogs::setSaveFileName(const QString& fileName)
{
    m_saveFileName = fileName;
}

void CNativeDialogs::setExistingDirectory(const QString& fileName)
{
    m_existingDirectory = fileName;
}

/// The name to save is tested, and stays.
QString CNativeDialogs::takeExistingDirectory()
{
    if (!requireAnswer(m_saveFileName))
        return QString();
    return std::exchange(m_existingDirectory, QString());
}

} // namespace VEK_NAMESPACE
