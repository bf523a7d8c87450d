// Asks the library, from wherever this program lies: for each line of the standard input, a
// question and its arguments between tabs, it writes a line with the answer. An argument "null" is
// a null pointer.

#include "CommonConstants.h"
#include "SystemInformation.h"

#include <QCoreApplication>
#include <QFile>
#include <QList>

#include <cstdio>

namespace {

QString answer(const QList<QByteArray>& words)
{
    const QByteArray question = words.first();
    const auto text = [&words](int i) { return QString::fromUtf8(words.value(i)); };
    const auto pointer = [&words](int i) {
        return words.at(i) == "null" ? nullptr : words.at(i).constData();
    };
    if (question == "bundle")
        return MacOSGetBundlePath(text(1));
    if (question == "resources")
        return MacOSGetBundleResourceDirPath(text(1));
    if (question == "main bundle")
        return MacOSGetMainBundlePath();
    if (question == "plug-ins")
        return VEK_NAMESPACE::getQtPluginsDir(words.value(1) == "true");
    if (question == "name")
        return UtilsDll::currentProcessName();
    if (question == "value")
        return UtilsDll::binaryFileVersionByProcessName(pointer(1), pointer(2));
    if (question == "resolution") {
        int x = -1;
        int y = -1;
        getScreenDpi(&x, &y);
        return QStringLiteral("%1 %2").arg(x).arg(y);
    }
    return QStringLiteral("what?");
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QFile input;
    QFile output;
    if (!input.open(stdin, QIODevice::ReadOnly) || !output.open(stdout, QIODevice::WriteOnly))
        return 1;
    for (QByteArray line = input.readLine(); !line.isEmpty(); line = input.readLine()) {
        line.chop(1);
        output.write(answer(line.split('\t')).toUtf8() + '\n');
        output.flush();
    }
    return 0;
}
