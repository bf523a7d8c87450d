#include "BenchmarkFiles.h"

#include <QDir>
#include <QFile>

#include <cmath>
#include <random>
#include <vector>

namespace {

constexpr int mixedSize = 8 << 20;
constexpr int pieceSize = 2048;
constexpr int piecesOfWordsPerPackedOne = 12;

std::vector<QByteArray> vocabulary(std::mt19937& random)
{
    std::vector<QByteArray> words(4096);
    for (QByteArray& word : words) {
        const auto length = int(2 + random() % 9);
        for (int i = 0; i < length; ++i)
            word += char('a' + random() % 26);
        word += ' ';
    }
    return words;
}

QByteArray makeMixedData()
{
    std::mt19937 random(1); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same data always
    const std::vector<QByteArray> words = vocabulary(random);
    QByteArray data;
    data.reserve(mixedSize + pieceSize);
    while (data.size() < mixedSize) {
        const int end = data.size() + pieceSize;
        if (random() % (piecesOfWordsPerPackedOne + 1) == 0) {
            while (data.size() < end)
                data += char(random());
        }
        while (data.size() < end) { // a few words are frequent, as in any language
            const double rank = std::pow(double(random()) / 4294967296.0, 4.0);
            data += words[size_t(rank * double(words.size()))];
        }
    }
    data.truncate(mixedSize);
    return data;
}

} // namespace

const QByteArray& mixedData()
{
    static const QByteArray data = makeMixedData();
    return data;
}

bool writeMixedFile(const QString& path, int kib)
{
    QFile file(path);
    bool written = file.open(QIODevice::WriteOnly);
    for (qint64 left = qint64(kib) << 10; written && left > 0; left -= mixedSize) {
        const qint64 size = qMin(left, qint64(mixedSize));
        written = file.write(mixedData().constData(), size) == size;
    }
    return written && file.flush();
}

bool writeLargeFile(const QString& path)
{
    return writeMixedFile(path, 1 << 20);
}

bool writeSmallFiles(const QString& folder)
{
    std::mt19937 random(2); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same files always
    for (int i = 0; i < 10000; ++i) {
        const QDir part(folder + QStringLiteral("/folder%1").arg(i / 100));
        QFile file(part.filePath(QStringLiteral("file%1.txt").arg(i)));
        const auto size = int(100 + random() % 16285);
        const auto from = int(random() % (mixedSize - 16384));
        if (!part.mkpath(QStringLiteral(".")) || !file.open(QIODevice::WriteOnly)
            || file.write(mixedData().constData() + from, size) != size) {
            return false;
        }
    }
    return true;
}

bool writeTree(const QString& folder, int files)
{
    constexpr int filesOfFolder = 1000;
    for (int i = 0; i < files; ++i) {
        const QDir part(folder + QStringLiteral("/folder%1").arg(i / filesOfFolder));
        QFile file(part.filePath(QStringLiteral("file%1.txt").arg(i)));
        if ((i % filesOfFolder == 0 && !part.mkpath(QStringLiteral(".")))
            || !file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)
            || file.write("0123456789abcdef") != 16) {
            return false;
        }
    }
    return true;
}
