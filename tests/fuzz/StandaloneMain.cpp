#include "FuzzTarget.h"

#include "Files.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <vector>

// Gives a target the files that are named, and those in the folders that are named, without
// libFuzzer. No file at all is a failure.

namespace {

bool run(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s can't be read\n", qPrintable(path));
        return false;
    }
    const QByteArray content = file.readAll();
    // To the byte, so that a sanitizer sees what is read beyond the end.
    const std::vector<std::uint8_t> input(content.cbegin(), content.cend());
    std::printf("%s\n", qPrintable(path));
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(input.data(), input.size());
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    const int pathCount = argc;
    LLVMFuzzerInitialize(&argc, &argv);
    int inputs = 0;
    for (int i = 1; i < pathCount; ++i) {
        const QString path = QString::fromLocal8Bit(argv[i]);
        const QStringList names = QFileInfo(path).isDir()
            ? QDir(path).entryList(QDir::Files | QDir::Hidden)
            : QStringList(QString());
        for (const QString& name : names) {
            if (!run(name.isEmpty() ? path : QDir(path).filePath(name)))
                return EXIT_FAILURE;
            ++inputs;
        }
    }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
