#pragma once

#include "RecordingCocoa.h"

#include <QApplication>
#include <QTest>

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
