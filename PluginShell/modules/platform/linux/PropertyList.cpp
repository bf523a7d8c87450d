#include "CommonConstants.h"
#include "PlatformServices_p.h"
#include "PropertyListCheck_p.h"

#include <QFile>

#include <memory>

#include <plist/plist.h>

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

struct PropertyListDeleter
{
    void operator()(void* list) const { plist_free(list); }
};

QByteArray readFile(const QString& path)
{
    QFile file(path);
    if (!isPropertyListFile(path) || !file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray content = file.readAll();
    const bool hasByteOrderMark = content.startsWith("\xEF\xBB\xBF"); // unknown to the parser
    return hasByteOrderMark ? content.mid(3) : content;
}

} // namespace

QString propertyListText(const QString& file, const QString& key)
{
    const QByteArray content = readFile(file);
    if (!isHarmlessPropertyList(content))
        return {};

    plist_t parsed = nullptr;
    plist_from_memory(content.constData(), uint32_t(content.size()), &parsed);
    const std::unique_ptr<void, PropertyListDeleter> list(parsed);
    if (!list || plist_get_node_type(list.get()) != PLIST_DICT)
        return {};
    const plist_t entry = plist_dict_get_item(list.get(), key.toUtf8().constData());
    if (!entry || plist_get_node_type(entry) != PLIST_STRING)
        return {};
    return QString::fromUtf8(plist_get_string_ptr(entry, nullptr));
}

} // namespace Platform
} // namespace VEK_NAMESPACE
