#pragma once

#include "UtilsDllGlobal.h"

#include <QFile>
#include <QFileInfo>
#include <QIODevice>

#include <algorithm>
#include <array>
#include <cstring>

namespace VEK_NAMESPACE {

/// An archive's file, for reading. Its table of contents and its entries are read by turns, a few
/// bytes at a time, so each of the two has a window of its own; a QFile would read both again and
/// again.
class ArchiveFile : public QIODevice
{
public:
    explicit ArchiveFile(const QString& path)
        : m_file(path)
    {}

    bool open(OpenMode mode) override
    {
        // A pipe would wait for somebody who writes to it.
        if (mode != ReadOnly || !QFileInfo(m_file).isFile() || !m_file.open(ReadOnly | Unbuffered))
            return false;
        m_size = m_file.size();
        return QIODevice::open(ReadOnly | Unbuffered);
    }

    void close() override
    {
        QIODevice::close();
        m_file.close();
    }

    qint64 size() const override { return m_size; }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        qint64 read = 0;
        while (read < maxSize) {
            const qint64 at = pos() + read;
            const Window* window = windowAt(at);
            if (!window)
                break;
            const qint64 size = std::min(maxSize - read, window->start + window->size - at);
            std::memcpy(data + read, window->bytes.data() + (at - window->start), size_t(size));
            read += size;
        }
        return read > 0 || maxSize == 0 ? read : -1;
    }

    qint64 writeData(const char*, qint64) override { return -1; }

private:
    struct Window
    {
        qint64 start = 0;
        qint64 size = 0;
        std::array<char, 32768> bytes;

        bool holds(qint64 at) const { return at >= start && at < start + size; }
    };

    /// The window that holds the byte at that place; null at the end, and if it can't be read.
    const Window* windowAt(qint64 at)
    {
        if (at >= m_size) // asked for over and over if the table of contents is damaged
            return nullptr;
        if (m_windows[m_recent].holds(at))
            return &m_windows[m_recent];
        m_recent = 1 - m_recent; // the one that wasn't used last makes room
        Window& window = m_windows[m_recent];
        if (window.holds(at))
            return &window;
        window.size = 0;
        if (!m_file.seek(at))
            return nullptr;
        window.start = at;
        window.size =
            std::max<qint64>(m_file.read(window.bytes.data(), qint64(window.bytes.size())), 0);
        return window.size > 0 ? &window : nullptr;
    }

    QFile m_file;
    qint64 m_size = 0;
    std::array<Window, 2> m_windows;
    size_t m_recent = 0;
};

} // namespace VEK_NAMESPACE
