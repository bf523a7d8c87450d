#include "FuzzTarget.h"

#include "CommonConstants.h"
#include "LanguageManager.h"
#include "UtilsDllGlobal.h"

#include <QCoreApplication>
#include <QLocale>
#include <QResource>
#include <QTranslator>

#include <algorithm>
#include <cstring>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

// A catalogue of messages, offered as a language and as Qt's own messages of that language.

using namespace VEK_NAMESPACE;

namespace {

/// A resource tree ":/translations/" of two names for the same file, whose last byte is the last
/// one that can be read: Qt isn't instrumented, but it doesn't get away with reading on.
class ResourceTree
{
public:
    explicit ResourceTree(const QByteArray& content)
    {
        const QByteArray tree = treeOf(content);
        const auto page = std::size_t(sysconf(_SC_PAGESIZE));
        const std::size_t size = (std::size_t(tree.size()) + page - 1) / page * page;
        m_mappedSize = size + page;
        m_pages =
            mmap(nullptr, m_mappedSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        require(m_pages != MAP_FAILED, "there is memory for the resources");
        auto* begin = static_cast<std::uint8_t*>(m_pages);
        mprotect(begin + size, page, PROT_NONE);
        m_tree = begin + size - tree.size();
        std::memcpy(m_tree, tree.constData(), std::size_t(tree.size()));
        require(QResource::registerResource(m_tree), "the resources can be registered");
    }

    ~ResourceTree()
    {
        QResource::unregisterResource(m_tree);
        munmap(m_pages, m_mappedSize);
    }

private:
    Q_DISABLE_COPY(ResourceTree)

    static QByteArray bigEndian(quint32 number, int width = 4)
    {
        QByteArray bytes;
        for (int i = width - 1; i >= 0; --i)
            bytes += char(number >> (8 * i));
        return bytes;
    }

    static quint32 hashOf(const QString& name)
    {
        quint32 hash = 0;
        for (const QChar character : name) {
            hash = (hash << 4) + character.unicode();
            hash ^= (hash & 0xF0000000) >> 23;
            hash &= 0x0FFFFFFF;
        }
        return hash;
    }

    static QByteArray treeOf(const QByteArray& content)
    {
        QStringList files{QStringLiteral("vek_it.qm"), QStringLiteral("qt_it.qm")};
        std::sort(files.begin(), files.end(), [](const QString& left, const QString& right) {
            return hashOf(left) < hashOf(right);
        });

        QByteArray names;
        QByteArray nodes = bigEndian(0) + bigEndian(2, 2) + bigEndian(1) + bigEndian(1);
        const auto addNode = [&](const QString& name, const QByteArray& kind) {
            nodes += bigEndian(quint32(names.size())) + kind;
            names += bigEndian(quint32(name.size()), 2) + bigEndian(hashOf(name));
            for (const QChar character : name)
                names += bigEndian(character.unicode(), 2);
        };
        const QByteArray folder = bigEndian(2, 2) + bigEndian(2) + bigEndian(2);
        const QByteArray file = bigEndian(0, 2) + bigEndian(0, 2) + bigEndian(1, 2) + bigEndian(0);
        addNode(QStringLiteral("translations"), folder);
        addNode(files.at(0), file);
        addNode(files.at(1), file);

        constexpr quint32 headerSize = 20;
        const quint32 nameOffset = headerSize + quint32(nodes.size());
        const quint32 dataOffset = nameOffset + quint32(names.size());
        return "qres" + bigEndian(1) + bigEndian(headerSize) + bigEndian(dataOffset)
            + bigEndian(nameOffset) + nodes + names + bigEndian(quint32(content.size())) + content;
    }

    void* m_pages = nullptr;
    std::size_t m_mappedSize = 0;
    std::uint8_t* m_tree = nullptr;
};

} // namespace

int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static QCoreApplication application(*argc, *argv);
    qCleanupResources_translations();
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const ResourceTree resources(bytesOf(data, size));
    CLanguageManager& manager = *CLanguageManager::instance();
    manager.loadLanguages();
    const QStandardItemModel& model = *manager.model();
    require(model.columnCount() == 4, "the table has its columns");
    require(model.rowCount() == 0 || model.rowCount() == 2, "both files are languages, or none");

    if (model.rowCount() > 0) {
        const QString name = model.index(1, 0).data().toString();
        require(!name.isEmpty() && !model.index(1, 1).data().toString().isEmpty(),
                "a language has a name and a number");
        if (!manager.changeLanguage(1))
            manager.loadLanguageForApp();
        require(manager.currentLanguageIndex() == 0, "the language is found by its number");
        require(QCoreApplication::translate("CLanguageManager", "language name") == name,
                "the language's messages are in use");
        for (const int count : {-1, 0, 1, 2, 5, 100}) {
            (void)QCoreApplication::translate("Window", "%n picture(s)", "", count);
            (void)QCoreApplication::translate("Window", "Open", "menu", count);
        }
        (void)QCoreApplication::translate("", "");
        (void)QCoreApplication::translate("QPlatformTheme", "Cancel");
    }

    // The product's catalogue stays installed beside Qt's; here they would become many.
    qDeleteAll(qApp->findChildren<QTranslator*>());
    manager.model()->clear();
    return 0;
}
