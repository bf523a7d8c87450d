#pragma once

#include "Files.h"

#include <QByteArray>
#include <QString>

#include <zlib.h>

#include <deque>

/// Writes ZIP archives field by field, also such as no honest tool makes. What add() returns may be
/// changed at will before the archive is written.
class ArchiveWriter
{
public:
    enum Method
    {
        Stored = 0,
        Deflated = 8
    };

    enum Flag
    {
        Encrypted = 1,
        NamesAreUtf8 = 0x800
    };

    struct Entry
    {
        QByteArray name;
        quint32 mode = 0; ///< file type and permissions of Unix; 0 if none are stored
        quint16 method = Deflated;
        quint16 flags = NamesAreUtf8;
        quint32 checkSum = 0;
        quint64 size = 0; ///< unpacked, as it is declared
        quint64 packedSize = 0; ///< as it is declared
        QByteArray packed;
        int localMethod = -1; ///< in the header in front of the data, if it isn't the same there
        int sharesDataOf = -1; ///< the entry before whose header and data are this one's as well
        quint64 offset = 0;
    };

    Entry& add(const QByteArray& name, const QByteArray& contents = {}, quint32 mode = 0,
               Method method = Deflated)
    {
        Entry entry;
        entry.name = name;
        entry.mode = mode;
        entry.method = method;
        entry.checkSum = checkSumOf(contents);
        entry.size = quint64(contents.size());
        entry.packed = method == Stored ? contents : deflated(contents);
        entry.packedSize = quint64(entry.packed.size());
        m_entries.push_back(entry);
        return m_entries.back();
    }

    Entry& addLink(const QByteArray& name, const QByteArray& target)
    {
        return add(name, target, 0120777, Stored);
    }

    /// Zeros in units of 64 MiB, a thousand times smaller when they are packed.
    Entry& addZeros(const QByteArray& name, int units)
    {
        const QByteArray unit(64 << 20, '\0');
        const QByteArray packed = deflated(unit, Z_FULL_FLUSH);
        const quint32 checkSum = checkSumOf(unit);
        Entry& entry = add(name);
        const QByteArray end = entry.packed;
        entry.packed.clear();
        for (int i = 0; i < units; ++i) {
            entry.packed += packed;
            entry.checkSum = quint32(crc32_combine(entry.checkSum, checkSum, unit.size()));
        }
        entry.packed += end;
        entry.size = quint64(units) * quint64(unit.size());
        entry.packedSize = quint64(entry.packed.size());
        return entry;
    }

    QByteArray bytes()
    {
        QByteArray archive;
        for (Entry& entry : m_entries) {
            entry.offset = quint64(archive.size());
            if (entry.sharesDataOf >= 0) {
                entry.offset = m_entries[std::size_t(entry.sharesDataOf)].offset;
                continue;
            }
            Entry local = entry;
            if (entry.localMethod >= 0)
                local.method = quint16(entry.localMethod);
            archive += "PK\3\4" + fields(local);
            const QByteArray extra = zip64Sizes(entry);
            append(archive, entry.name.size(), 2);
            append(archive, extra.size(), 2);
            archive += entry.name + extra + entry.packed;
        }
        const quint64 directory = quint64(archive.size());
        for (const Entry& entry : m_entries) {
            archive += "PK\1\2";
            append(archive, (3 << 8) + 45, 2); // made on Unix
            archive += fields(entry);
            const QByteArray extra = zip64Sizes(entry);
            append(archive, entry.name.size(), 2);
            append(archive, extra.size(), 2);
            append(archive, 0, 6); // no comment, first volume, internal attributes
            append(archive, quint64(entry.mode) << 16, 4);
            append(archive, entry.offset, 4);
            archive += entry.name + extra;
        }
        const quint64 directorySize = quint64(archive.size()) - directory;
        const quint64 count = m_entries.size();
        if (count > 0xffff) {
            const quint64 end = quint64(archive.size());
            archive += "PK\6\6";
            append(archive, 44, 8);
            append(archive, (3 << 8) + 45, 2);
            append(archive, 45, 2);
            append(archive, 0, 8); // first volume
            append(archive, count, 8);
            append(archive, count, 8);
            append(archive, directorySize, 8);
            append(archive, directory, 8);
            archive += "PK\6\7";
            append(archive, 0, 4);
            append(archive, end, 8);
            append(archive, 1, 4);
        }
        archive += "PK\5\6";
        append(archive, 0, 4); // first volume
        append(archive, qMin<quint64>(count, 0xffff), 2);
        append(archive, qMin<quint64>(count, 0xffff), 2);
        append(archive, directorySize, 4);
        append(archive, directory, 4);
        append(archive, 0, 2);
        return archive;
    }

    /// Makes an entry one of ten characters that are packed with bzip2, of which no more than \a
    /// size bytes are there.
    static void packWithBzip2(Entry& entry, int size)
    {
        const QByteArray text(10, 'a');
        entry.method = 12;
        entry.checkSum = checkSumOf(text);
        entry.size = quint64(text.size());
        entry.packed = QByteArray::fromHex("425a68393141592653595978d18b000002410001002000"
                                           "20002100820b1772453850905978d18b")
                           .left(size);
        entry.packedSize = quint64(entry.packed.size());
    }

    bool write(const QString& path) { return writeFile(path, bytes()); }

    static quint32 checkSumOf(const QByteArray& bytes)
    {
        return quint32(
            crc32(0, reinterpret_cast<const Bytef*>(bytes.constData()), uInt(bytes.size())));
    }

    static QByteArray deflated(const QByteArray& bytes, int flush = Z_FINISH)
    {
        z_stream stream = {};
        if (deflateInit2(&stream, 9, Z_DEFLATED, -15, 9, Z_DEFAULT_STRATEGY) != Z_OK)
            qFatal("can't deflate");
        QByteArray packed(int(deflateBound(&stream, uLong(bytes.size()))) + 16, Qt::Uninitialized);
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.constData()));
        stream.avail_in = uInt(bytes.size());
        stream.next_out = reinterpret_cast<Bytef*>(packed.data());
        stream.avail_out = uInt(packed.size());
        deflate(&stream, flush);
        packed.resize(int(stream.total_out));
        deflateEnd(&stream);
        return packed;
    }

private:
    static void append(QByteArray& bytes, quint64 number, int size)
    {
        for (int i = 0; i < size; ++i)
            bytes += char(number >> (8 * i));
    }

    /// What the local header and the table of contents have in common.
    static QByteArray fields(const Entry& entry)
    {
        QByteArray bytes;
        append(bytes, 45, 2); // needs ZIP64 at most
        append(bytes, entry.flags, 2);
        append(bytes, entry.method, 2);
        append(bytes, 0x00210000, 4); // 1980-01-01
        append(bytes, entry.checkSum, 4);
        append(bytes, needsZip64(entry) ? 0xffffffff : entry.packedSize, 4);
        append(bytes, needsZip64(entry) ? 0xffffffff : entry.size, 4);
        return bytes;
    }

    static bool needsZip64(const Entry& entry)
    {
        return entry.size >= 0xffffffff || entry.packedSize >= 0xffffffff;
    }

    static QByteArray zip64Sizes(const Entry& entry)
    {
        QByteArray extra;
        if (needsZip64(entry)) {
            append(extra, 1, 2);
            append(extra, 16, 2);
            append(extra, entry.size, 8);
            append(extra, entry.packedSize, 8);
        }
        return extra;
    }

    std::deque<Entry> m_entries; // which keeps references valid
};
