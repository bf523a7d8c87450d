// Another application, for windows to lose the focus to: tells the number of its one window, and
// goes when its standard input ends.

#include <QApplication>
#include <QSocketNotifier>
#include <QWidget>

#include <cstdio>
#include <unistd.h>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QWidget window;
    window.setGeometry(50, 50, 300, 200);
    window.show();
    std::printf("%llu\n", static_cast<unsigned long long>(window.winId()));
    std::fflush(stdout);

    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, [&application] {
        char byte;
        if (read(STDIN_FILENO, &byte, 1) <= 0)
            application.quit();
    });
    return QApplication::exec();
}
