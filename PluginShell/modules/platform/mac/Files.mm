#import "Cocoa_p.h"
#include "CommonConstants.h"
#include "PlatformServices_p.h"
#import "Text_p.h"

#include <QFile>

namespace VEK_NAMESPACE {
namespace Platform {

std::optional<QByteArray> readUtf8File(const QString& path)
{
    @autoreleasepool {
        NSData* content =
            [[NSString stringWithContentsOfFile:toNSString(path)
                                       encoding:NSUTF8StringEncoding
                                          error:nullptr] dataUsingEncoding:NSUTF8StringEncoding];
        if (!content)
            return std::nullopt;
        return QByteArray(static_cast<const char*>([content bytes]), int([content length]));
    }
}

bool removeFile(const QString& path)
{
    @autoreleasepool {
        return [[NSFileManager defaultManager] removeItemAtPath:toNSString(path) error:nullptr];
    }
}

bool hasTrash(const QString& file)
{
    @autoreleasepool {
        NSURL* trash =
            [[NSFileManager defaultManager] URLForDirectory:NSTrashDirectory
                                                   inDomain:NSUserDomainMask
                                          appropriateForURL:[NSURL fileURLWithPath:toNSString(file)]
                                                     create:NO
                                                      error:nullptr];
        return trash && QFile::exists(fromNSString([trash path]));
    }
}

bool moveToTrash(const QString& file)
{
    // The path is put in as it stands; one with a quote gives a script that doesn't compile.
    const QString script = QStringLiteral("set deleteFile to \"%1\"\n"
                                          "set posixFile to POSIX file deleteFile\n"
                                          "tell application \"Finder\"\n"
                                          "move posixFile to trash\n"
                                          "end tell")
                               .arg(file);
    @autoreleasepool {
        NSAppleScript* appleScript =
            [[[NSAppleScript alloc] initWithSource:toNSString(script)] autorelease];
        return [appleScript executeAndReturnError:nullptr] != nil;
    }
}

void showInFileManager(const QList<QUrl>& files)
{
    @autoreleasepool {
        NSMutableArray* urls = [NSMutableArray array];
        for (const QUrl& file : files)
            [urls addObject:[NSURL fileURLWithPath:toNSString(file.toLocalFile())]];
        [[NSWorkspace sharedWorkspace] activateFileViewerSelectingURLs:urls];
    }
}

QDateTime creationTime(const QString& file)
{
    @autoreleasepool {
        NSDate* date = [[[NSFileManager defaultManager] attributesOfItemAtPath:toNSString(file)
                                                                         error:nullptr]
            objectForKey:NSFileCreationDate];
        if (!date)
            return {};
        constexpr NSUInteger units = NSYearCalendarUnit | NSMonthCalendarUnit | NSDayCalendarUnit
            | NSHourCalendarUnit | NSMinuteCalendarUnit | NSSecondCalendarUnit;
        NSDateComponents* parts = [[NSCalendar currentCalendar] components:units fromDate:date];
        if (!parts)
            return {};
        return QDateTime(QDate(int([parts year]), int([parts month]), int([parts day])),
                         QTime(int([parts hour]), int([parts minute]), int([parts second]), 0),
                         Qt::LocalTime);
    }
}

} // namespace Platform
} // namespace VEK_NAMESPACE
