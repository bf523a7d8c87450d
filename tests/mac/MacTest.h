#pragma once

#include "RecordingCocoa.h"

#include <QApplication>
#include <QDir>
#include <QTest>

/// Autoreleased.
inline NSString* nsString(const QString& text)
{
    return [NSString stringWithUTF8String:text.toUtf8().constData()];
}

/// In the current folder, which is empty at the beginning.
inline QString here(const QString& name)
{
    return QDir::current().absoluteFilePath(name);
}

/// As QTEST_MAIN, in an autorelease pool.
template <typename Test>
int runMacTest(int argc, char** argv)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    int failed = 0;
    {
        QApplication application(argc, argv);
        Test test;
        failed = QTest::qExec(&test, argc, argv);
    }
    [pool release];
    return failed;
}
