#include "ArchiveBzip2_p.h"

#include "CommonConstants.h"

#include <quazip/quazip.h>
#include <quazip/quazipfile.h>
#include <quazip/quazipfileinfo.h>

#include <array>

#include <bzlib.h>

namespace VEK_NAMESPACE {

namespace {

struct Decompressor
{
    Decompressor() { isReady = BZ2_bzDecompressInit(&stream, 0, 0) == BZ_OK; }
    ~Decompressor() { BZ2_bzDecompressEnd(&stream); }
    Q_DISABLE_COPY(Decompressor)

    bz_stream stream = {};
    bool isReady = false;
};

} // namespace

bool canBeRead(QuaZip& zip)
{
    constexpr quint16 bzip2 = 12;
    QuaZipFileInfo64 info;
    if (!zip.getCurrentFileInfo(&info) || info.method != bzip2)
        return true;

    QuaZipFile packed(&zip);
    int method = 0;
    int level = 0;
    if (!packed.open(QIODevice::ReadOnly, &method, &level, true))
        return true;
    Decompressor decompressor;
    bz_stream& stream = decompressor.stream;
    std::array<char, 4096> in; // NOLINT(*-member-init): read before it is used
    std::array<char, 65536> out; // NOLINT(*-member-init): only written
    quint64 unpacked = 0;
    int result = decompressor.isReady ? BZ_OK : BZ_MEM_ERROR;
    while (result == BZ_OK && unpacked < info.uncompressedSize) {
        // What is missing at the end of the output is still to come from the input.
        if (stream.avail_in == 0 && (stream.avail_out > 0 || unpacked == 0)) {
            const qint64 size = packed.read(in.data(), qint64(in.size()));
            if (size <= 0)
                return false;
            stream.next_in = in.data();
            stream.avail_in = unsigned(size);
        }
        stream.next_out = out.data();
        stream.avail_out = unsigned(out.size());
        result = BZ2_bzDecompress(&stream);
        unpacked += out.size() - stream.avail_out;
    }
    return true;
}

} // namespace VEK_NAMESPACE
