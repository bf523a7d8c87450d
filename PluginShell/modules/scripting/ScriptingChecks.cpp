// The script's judgement: images, values, files, settings and message boxes.

#include "CommonConstants.h"
#include "DelayedCall.h"
#include "ExcludeUserInpuEventLoop.h"
#include "ImageComparison.h"
#include "Scripting.h"
#include "Scripting_p.h"
#include "Settings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QWindow>

#include <array>
#include <cstring>

namespace VEK_NAMESPACE {

bool CScripting::loadImages(const QString& path1, const QString& path2, QImage& image1,
                            QImage& image2)
{
    for (const QString& path : {path1, path2}) {
        if (!QFile::exists(path)) {
            log(QStringLiteral("Image [%1] doesn't exist!").arg(path));
            return false;
        }
    }
    image1.load(path1);
    image2.load(path2);
    if (image1.isNull() || image2.isNull()) {
        log(QStringLiteral("Loading image [%1] failed!").arg(image1.isNull() ? path1 : path2));
        return false;
    }
    return true;
}

bool CScripting::isEqualImages(const QString& pathToImage1, const QString& pathToImage2,
                               double diff)
{
    QImage image1;
    QImage image2;
    if (!loadImages(pathToImage1, pathToImage2, image1, image2))
        return false;

    double difference = 0.0;
    const int result = compareImages(image1, image2, &difference, diff);
    switch (result) {
    case 0:
        log(QStringLiteral("Source image(-s) doesn't exist!"));
        return false;
    case 1:
        log(QStringLiteral("Error, pictures must have identical dimensions!"));
        return false;
    default:
        log(QStringLiteral("The difference of the two pictures is %1 !")
                .arg(difference, 0, 'g', -1, QLatin1Char(' ')));
        return result == 2;
    }
}

bool CScripting::isEqualImagesBySize(const QString& pathToImage1, const QString& pathToImage2,
                                     int tolerance)
{
    QImage image1;
    QImage image2;
    if (!loadImages(pathToImage1, pathToImage2, image1, image2))
        return false;

    const int dW = qAbs(image1.width() - image2.width());
    const int dH = qAbs(image1.height() - image2.height());
    if (dW > tolerance || dH > tolerance) {
        log(QStringLiteral("The difference of the two pictures is %1 in width and %2 in height!")
                .arg(dW)
                .arg(dH));
        return false;
    }
    return true;
}

bool CScripting::compare(const QVariant& actual, const QVariant& expected,
                         bool bAbortTestIfCompareFailed)
{
    if (actual == expected)
        return true;

    const QString message =
        QStringLiteral("fail reason: compare actual (%1) != expected (%2)")
            .arg(Private::qVariantToString(actual), Private::qVariantToString(expected));
    if (bAbortTestIfCompareFailed)
        fail(message);
    else
        log(message);
    return false;
}

unsigned int CScripting::dirContentCount(const QString& pathToDir, bool bFilesOnly) const
{
    const QFileInfo info(pathToDir);
    if (!info.isDir() || !info.isReadable())
        return 0;

    const QDir::Filters kind = bFilesOnly ? QDir::Files : QDir::AllEntries;
    const QDir dir(pathToDir);
    return uint(
        dir.entryInfoList(kind | QDir::Readable | QDir::NoDotAndDotDot, QDir::NoSort).size());
}

void CScripting::clearDir(const QString& pathToDir)
{
    const QFileInfo info(pathToDir);
    if (!info.isDir() || !info.isReadable() || !info.isWritable())
        return;

    QDir dir(pathToDir);
    const QStringList names = dir.entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::NoSort);
    for (const QString& name : names) {
        // The bare name is looked up in the current folder, so folders here normally stay. It is
        // meant.
        if (QFileInfo(name).isDir())
            dir.rmdir(name);
        else
            dir.remove(name);
    }
}

bool CScripting::removeFile(const QString& pathToFile)
{
    return QFile::remove(pathToFile);
}

bool CScripting::isFileExist(const QString& pathToFile)
{
    return QFile::exists(pathToFile);
}

bool CScripting::copyFile(const QString& pathToSrcFile, const QString& pathToDestFile)
{
    return QFile::copy(pathToSrcFile, pathToDestFile);
}

bool CScripting::isEqualFiles(const QString& pathToFile1, const QString& pathToFile2)
{
    if (pathToFile1.isEmpty() || pathToFile2.isEmpty())
        return false;

    QFile file1(pathToFile1);
    QFile file2(pathToFile2);
    if (!file1.open(QIODevice::ReadOnly) || !file2.open(QIODevice::ReadOnly)
        || file1.size() != file2.size()) {
        return false;
    }

    // Whole blocks are compared: behind a short last one lie equal bytes of the block before.
    std::array<char, 32768> block1 = {};
    std::array<char, 32768> block2 = {};
    while (!file1.atEnd() && !file2.atEnd()) {
        const qint64 count1 = file1.read(block1.data(), qint64(block1.size()));
        const qint64 count2 = file2.read(block2.data(), qint64(block2.size()));
        if (count1 < 0 || count1 != count2
            || std::memcmp(block1.data(), block2.data(), block1.size()) != 0)
            return false;
    }
    return true;
}

bool CScripting::stringEndsWith(const QString& str, const QString& endsWithStr) const
{
    return str.endsWith(endsWithStr, Qt::CaseSensitive);
}

void CScripting::addShownMessageBox(const QString& message)
{
    if (message.isEmpty()) {
        fail(QStringLiteral("Empty message for message box"));
        return;
    }

    m_shownMessageBoxes << message;
    CExcludeUserInpuEventLoop loop(QCoreApplication::instance(), nullptr);
    CDelayedCall::invoke(1000, &loop, "quit", true);
    loop.exec(0);

    if (m_windowToClose && m_windowToClose->close())
        m_windowToClose.clear();
}

bool CScripting::isMessageBoxShown(const QString& message, int messageBoxNumber)
{
    if (m_shownMessageBoxes.isEmpty())
        return false;
    if (messageBoxNumber == -1)
        return m_shownMessageBoxes.contains(message);
    return messageBoxNumber < m_shownMessageBoxes.size()
        && m_shownMessageBoxes.at(messageBoxNumber) == message;
}

QString CScripting::platformName()
{
    return QStringLiteral("mac_os_x");
}

QVariant CScripting::getSettingValue(const QString& strKey) const
{
    return CSettings(nullptr, false).value(strKey, QVariant());
}

bool CScripting::hasSettingKey(const QString& strKey) const
{
    return CSettings(nullptr, false).contains(strKey);
}

void CScripting::setSettingValue(const QString& strKey, const QVariant& val)
{
    CSettings(nullptr, false).setValue(strKey, val);
}

void CScripting::removeSettingKey(const QString& strKey)
{
    CSettings(nullptr, false).remove(strKey);
}

} // namespace VEK_NAMESPACE
