#include "TranslationCheck_p.h"

#include "CommonConstants.h"

#include <QByteArray>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <vector>

namespace VEK_NAMESPACE {

namespace {

constexpr int magicSize = 16;

enum Section
{
    Contexts = 0x2F,
    Hashes = 0x42,
    Messages = 0x69,
    Dependencies = 0x96
};

/// What a message is made of, each a tag and all but the end with something behind it.
enum Part
{
    End = 1,
    Text16 = 2,
    Translation = 3,
    Context16 = 4,
    Hash = 5,
    SourceText = 6,
    Context = 7,
    Comment = 8
};

class Catalogue
{
public:
    explicit Catalogue(const QByteArray& content)
        : m_content(content)
    {}

    bool isSound()
    {
        if (!readSections() || m_hashes.size() % 8 != 0 || !areContextsSound())
            return false;
        m_seen.assign(size_t(m_messages.size()), false);
        for (int at = 0; at < m_hashes.size(); at += 8) {
            if (!isMessageSound(number(m_hashes, at + 4, 4)))
                return false;
        }
        return true;
    }

    QStringList dependencies() const
    {
        QStringList names;
        QDataStream stream(m_dependencies);
        while (!stream.atEnd() && stream.status() == QDataStream::Ok) {
            QString name;
            stream >> name;
            names += name;
        }
        return names;
    }

private:
    static quint32 number(const QByteArray& bytes, qint64 at, int width)
    {
        quint32 value = 0;
        for (int i = 0; i < width; ++i)
            value = value << 8 | quint8(bytes[int(at + i)]);
        return value;
    }

    bool readSections()
    {
        // An end is marked by a zero, or isn't marked.
        int at = magicSize;
        while (at < m_content.size() - 5) {
            const quint32 tag = number(m_content, at, 1);
            const quint32 size = number(m_content, at + 1, 4);
            at += 5;
            if (tag == 0 || size == 0)
                break;
            if (size > quint32(m_content.size() - at))
                return false;
            const QByteArray section = m_content.mid(at, int(size));
            at += int(size);
            switch (tag) {
            case Contexts:
                m_contexts = section;
                break;
            case Hashes:
                m_hashes = section;
                break;
            case Messages:
                m_messages = section;
                break;
            case Dependencies:
                m_dependencies = section;
                break;
            default:
                break;
            }
        }
        return true;
    }

    /// A table of as many places as its first number says, and at each place names of which each
    /// has its length in front of it, up to one without length.
    bool areContextsSound() const
    {
        if (m_contexts.isEmpty())
            return true;
        const qint64 size = m_contexts.size();
        const qint64 count = size < 2 ? 0 : number(m_contexts, 0, 2);
        const qint64 names = 2 + count * 2;
        if (count == 0 || names > size)
            return false;
        for (qint64 i = 0; i < count; ++i) {
            const qint64 place = number(m_contexts, 2 + i * 2, 2);
            if (place == 0)
                continue;
            qint64 at = names + place * 2;
            qint64 length = 0;
            do {
                if (at >= size)
                    return false;
                length = number(m_contexts, at, 1);
                at += 1 + length;
            } while (length > 0);
        }
        return true;
    }

    bool isMessageSound(qint64 at)
    {
        const qint64 size = m_messages.size();
        if (at > size)
            return false;
        while (at < size && !m_seen[size_t(at)]) {
            m_seen[size_t(at)] = true;
            const quint32 part = number(m_messages, at, 1);
            ++at;
            if (part == Hash) {
                at += 4;
            } else if (part == Translation || (part >= SourceText && part <= Comment)) {
                if (size - at < 4)
                    return false;
                at += 4 + qint64(number(m_messages, at, 4));
            } else {
                return true; // the end, or what QTranslator doesn't read
            }
        }
        return at <= size;
    }

    const QByteArray m_content;
    QByteArray m_contexts;
    QByteArray m_hashes;
    QByteArray m_messages;
    QByteArray m_dependencies;
    std::vector<bool> m_seen;
};

/// The file that QTranslator::load() takes for a name: the one with the usual extension, the one
/// without, and then those of which the end of the name is cut off, part by part.
QString fileOf(QString path)
{
    for (;;) {
        for (const QString& candidate : {path + QStringLiteral(".qm"), path}) {
            const QFileInfo file(candidate);
            if (file.isReadable() && file.isFile())
                return candidate;
        }
        const int slash = path.lastIndexOf(QLatin1Char('/'));
        const int cut =
            qMax(path.lastIndexOf(QLatin1Char('_')), path.lastIndexOf(QLatin1Char('.')));
        if (cut <= slash)
            return {};
        path.truncate(cut);
    }
}

/// A file that depends on itself uses up \a filesLeft as well.
bool isSound(const QString& path, int* filesLeft)
{
    const QString name = fileOf(path);
    QFile file(name);
    if (name.isEmpty() || --*filesLeft < 0 || !file.open(QIODevice::ReadOnly))
        return false;
    Catalogue catalogue(file.readAll());
    file.close();
    if (!catalogue.isSound())
        return false;
    const QDir folder = QFileInfo(name).dir();
    const QStringList dependencies = catalogue.dependencies();
    // QTranslator gives up at the first that fails, too.
    return std::all_of(dependencies.cbegin(), dependencies.cend(), [&](const QString& dependency) {
        return isSound(folder.filePath(dependency), filesLeft);
    });
}

} // namespace

bool isSoundTranslation(const QString& path)
{
    int filesLeft = 100;
    return isSound(path, &filesLeft);
}

} // namespace VEK_NAMESPACE
