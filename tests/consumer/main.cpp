// A host's first steps with the installed library.

#include <DelayedCall.h>
#include <Scripting.h>
#include <Settings.h>
#include <TemporarySettings.h>

#include <QApplication>
#include <QFile>

#include <cstdio>
#include <cstdlib>

bool libraryAndHostShareSingletons();

int main(int argc, char** argv)
{
    QApplication application(argc, argv);

    const auto require = [](bool condition, const char* what) {
        if (!condition) {
            std::fprintf(stderr, "consumer: not so: %s\n", what);
            std::exit(1);
        }
    };

    require(libraryAndHostShareSingletons(), "library and host share singletons");
    CDelayedCall& delayedCall = Singleton<CDelayedCall>::instance();
    Q_UNUSED(delayedCall)

    vek::CTemporarySettings overlay(nullptr);
    vek::CSettings::setTemporarySettings(overlay);
    vek::CSettings().setValue(QStringLiteral("answer"), 42);
    require(vek::CSettings().value(QStringLiteral("answer")) == 42, "a setting can be read back");
    vek::CSettings::removeTemporarySettings();

    require(qInitResources_vek() == 1 && QFile::exists(QStringLiteral(":/qss/mac.qss")),
            "the resource tree is there");
    require(!Singleton<vek::CScripting>::instance().isScriptingMode(), "no test runs");

    CDelayedCall::invoke(0, &application, "quit", true);
    require(QApplication::exec() == 0, "a delayed call ends the application");
    std::puts("consumer: ok");
    return 0;
}
