#include "SoapReader_p.h"

#include "SoapLexical_p.h"
#include "SoapNames_p.h"

#include <limits>
#include <typeinfo>

namespace VEK_NAMESPACE::soap {

namespace {

thread_local Reader* currentReader = nullptr;

QString tooDeep()
{
    return QStringLiteral("The values nest deeper than %1 levels").arg(maximumValueDepth);
}

QString tooMuch()
{
    return QStringLiteral("The references repeat too much");
}

/// Numbers such as those of "[1,2]", -1 for one that is left out.
bool readBrackets(const QString& text, QVector<int>* numbers, QString* error)
{
    const QString brackets = trimmed(text);
    *error = QStringLiteral("\"%1\" isn't a size or position of an array").arg(brackets.left(100));
    if (!brackets.startsWith(QLatin1Char('[')) || !brackets.endsWith(QLatin1Char(']')))
        return false;
    const QString inside = brackets.mid(1, brackets.size() - 2);
    if (inside.count(QLatin1Char(',')) >= maximumDimensions) {
        *error = QStringLiteral("An array has more than %1 dimensions").arg(maximumDimensions);
        return false;
    }
    numbers->clear();
    const QStringList parts = inside.split(QLatin1Char(','));
    for (const QString& part : parts) {
        const QString digits = trimmed(part);
        const bool isSigned =
            digits.startsWith(QLatin1Char('-')) || digits.startsWith(QLatin1Char('+'));
        qlonglong number = -1;
        if (!digits.isEmpty() && (isSigned || !toLongLong(digits, &number)))
            return false;
        if (number > std::numeric_limits<int>::max())
            return false;
        numbers->append(static_cast<int>(number));
    }
    error->clear();
    return true;
}

/// Takes a position in each dimension, or a single one.
bool readPosition(const QtSoapAccess::ArrayData& data, const QString& text, Position* position,
                  QString* error)
{
    QVector<int> numbers;
    if (!readBrackets(text, &numbers, error))
        return false;
    *error = QStringLiteral("\"%1\" isn't a position in the array").arg(text.left(100));
    if (numbers.contains(-1))
        return false;
    if (numbers.size() == data.dimensions) {
        for (int i = 0; i < numbers.size(); ++i)
            (*position)[static_cast<size_t>(i)] = numbers.at(i);
    } else if (numbers.size() != 1 || !data.fromSingle(numbers.first(), position)) {
        return false;
    }
    if (!data.isInside(*position))
        return false;
    error->clear();
    return true;
}

/// A copy that shares its members; null if it isn't exactly one of our own types.
ValuePointer copyOf(const QtSoapType& value)
{
    QtSoapType* copy = nullptr;
    if (typeid(value) == typeid(QtSoapSimpleType))
        copy = new QtSoapSimpleType(static_cast<const QtSoapSimpleType&>(value));
    else if (typeid(value) == typeid(QtSoapArray))
        copy = new QtSoapArray(static_cast<const QtSoapArray&>(value));
    else if (typeid(value) == typeid(QtSoapStruct))
        copy = new QtSoapStruct(static_cast<const QtSoapStruct&>(value));
    return ValuePointer(copy);
}

} // namespace

bool parse(QtSoapType& value, const QDomNode& node, Kind kind)
{
    if (QtSoapAccess::isPlaceholder(value))
        return false;

    QScopedPointer<Tree> tree(new Tree);
    int element = 0;
    if (!tree->read(node.toElement())) {
        value.clear();
        QtSoapAccess::setError(value, tree->error());
        return false;
    }

    // References that lead out of the element need all of the document.
    bool isComplete = true;
    for (const QString& id : tree->references())
        isComplete = isComplete && tree->elementWithId(id) >= 0;
    const QDomElement root = isComplete ? QDomElement() : node.ownerDocument().documentElement();
    if (!root.isNull() && root != node) {
        QScopedPointer<Tree> whole(new Tree);
        const int found = whole->read(root) ? whole->find(node.toElement()) : -1;
        if (found >= 0) {
            tree.swap(whole);
            element = found;
        }
    }

    Reader reader(*tree, Reader::ContextOfThread);
    const bool isRead = reader.readInto(value, element, kind);
    if (!isRead)
        QtSoapAccess::setError(value, reader.error());
    return isRead;
}

QtSoapType* readNode(const QDomNode& node)
{
    Tree tree;
    if (!tree.read(node.toElement()))
        return nullptr;
    ValuePointer value;
    {
        Reader reader(tree, Reader::ContextOfThread);
        value = reader.read(0);
    }
    return value.take();
}

Reader::Reader(const Tree& tree, Context context)
    : m_tree(tree)
    , m_previous(currentReader)
    , m_outer(context == ContextOfThread ? currentReader : nullptr)
    , m_budget(m_outer ? m_outer->m_budget : m_ownBudget)
{
    currentReader = this;
    if (!m_outer)
        m_budget.allowed = tree.size() + maximumExpansion;
}

Reader::~Reader()
{
    currentReader = m_previous;
}

ValuePointer Reader::read(int element, const QtSoapQName& type)
{
    if (m_budget.depth >= maximumValueDepth) {
        fail(tooDeep());
        return ValuePointer();
    }
    ++m_budget.depth;
    ValuePointer value;
    const QString id = m_tree.attribute(element, QStringLiteral("id"));
    if (isReference(element))
        value = readReference(element, type);
    else if (!id.isEmpty() && m_tree.isReferredTo(id) && !m_beingRead.contains(element))
        value = readTarget(element, type, false);
    else
        value = readElement(element, type);
    --m_budget.depth;
    return value;
}

bool Reader::readInto(QtSoapType& value, int element, Kind kind)
{
    value.clear();
    if (m_budget.depth >= maximumValueDepth)
        return fail(tooDeep());

    Reader* reader = this;
    int target = element;
    if (isReference(element)) {
        reader = findTarget(element, &target);
        if (!reader) {
            const QString href = m_tree.attribute(element, QStringLiteral("href"));
            value.setName(m_tree.name(element));
            value.setHref(href);
            return fail(
                QStringLiteral("The reference \"%1\" can't be followed").arg(href.left(100)));
        }
    }
    const bool isMarked = !reader->m_beingRead.contains(target);
    reader->m_beingRead.insert(target);
    const int levels = m_outer ? 0 : 1; // the outer reader has counted this one
    m_budget.depth += levels;
    const bool isRead = reader->fill(value, target, kind, typeQName(value.type()));
    m_budget.depth -= levels;
    if (isMarked)
        reader->m_beingRead.remove(target);
    if (!isRead)
        return fail(reader->m_error);
    if (target != element || reader != this) {
        value.setName(m_tree.name(element));
        value.setId(QString());
    }
    return true;
}

bool Reader::fail(const QString& error)
{
    m_error = error;
    return false;
}

bool Reader::isReference(int element) const
{
    return !m_tree.attribute(element, QStringLiteral("href")).isNull()
        && !m_tree.hasChildren(element) && isBlank(m_tree.text(element));
}

Reader* Reader::findTarget(int element, int* target)
{
    const QString href = m_tree.attribute(element, QStringLiteral("href"));
    if (!href.startsWith(QLatin1Char('#')))
        return nullptr;
    const QString id = href.mid(1);
    for (Reader* reader = this; reader; reader = reader->m_outer) {
        *target = reader->m_tree.elementWithId(id);
        if (*target >= 0)
            return reader->m_beingRead.contains(*target) ? nullptr : reader;
    }
    return nullptr;
}

ValuePointer Reader::readReference(int element, const QtSoapQName& type)
{
    int target = -1;
    Reader* reader = findTarget(element, &target);
    if (!reader) {
        ValuePointer value(new QtSoapSimpleType(m_tree.name(element)));
        value->setHref(m_tree.attribute(element, QStringLiteral("href")));
        return value;
    }
    ValuePointer value = reader->readTarget(target, declaredType(element, type), true);
    if (!value) {
        fail(reader->m_error);
        return value;
    }
    value->setName(m_tree.name(element));
    value->setId(QString());
    return value;
}

ValuePointer Reader::readTarget(int element, const QtSoapQName& type, bool isCopied)
{
    const Target known = m_targets.value(element);
    if (known.value) {
        m_budget.repeated += known.size;
        if (m_budget.repeated > maximumExpansion) {
            fail(tooMuch());
            return ValuePointer();
        }
        return isCopied ? copyOf(*known.value) : known.value;
    }
    if (known.size > 0 && ++m_budget.reread > maximumRereads) {
        fail(tooMuch());
        return ValuePointer();
    }

    // A target may be a reference itself, and so on.
    if (m_budget.depth >= maximumValueDepth) {
        fail(tooDeep());
        return ValuePointer();
    }
    ++m_budget.depth;
    const qint64 before = m_budget.made + m_budget.repeated;
    m_beingRead.insert(element);
    ValuePointer value =
        isReference(element) ? readReference(element, type) : readElement(element, type);
    m_beingRead.remove(element);
    --m_budget.depth;
    if (!value)
        return value;

    // What a handler has made can't be copied: it reads the element again for each reference.
    const ValuePointer copy = copyOf(*value);
    Target target;
    target.size = m_budget.made + m_budget.repeated - before;
    if (copy)
        target.value = value;
    m_targets.insert(element, target);
    return isCopied && copy ? copy : value;
}

ValuePointer Reader::readElement(int element, const QtSoapQName& type)
{
    if (++m_budget.made > m_budget.allowed) {
        fail(tooMuch());
        return ValuePointer();
    }
    const QtSoapQName declared = declaredType(element, type);
    if (QtSoapAccess::hasHandlers()) {
        QtSoapTypeConstructorBase* handler = QtSoapAccess::handler(declared);
        if (!handler && declared.name().isEmpty())
            handler = QtSoapAccess::handler(m_tree.name(element));
        if (handler) {
            const QDomDocument document = m_tree.toDom(element);
            ValuePointer value(handler->createObject(document.documentElement()));
            if (!value) {
                const QString error = handler->errorString();
                fail(error.isEmpty() ? QStringLiteral("The element \"%1\" can't be read")
                                           .arg(m_tree.name(element).name())
                                     : error);
            }
            return value;
        }
    }

    const QtSoapType::Type known = typeOf(declared);
    const bool isArray = known == QtSoapType::Array
        || !m_tree.attribute(element, QStringLiteral("arrayType"), encodingUri()).isNull();
    ValuePointer value;
    bool isRead = false;
    const bool isStruct =
        known == QtSoapType::Struct || (known == QtSoapType::Other && m_tree.hasChildren(element));
    if (isArray && !isNull(element)) {
        value = ValuePointer(new QtSoapArray);
        isRead = fill(*value, element, Kind::Array, declared);
    } else if (isStruct && !isNull(element)) {
        value = ValuePointer(new QtSoapStruct);
        isRead = fill(*value, element, Kind::Struct, declared);
    } else {
        value = ValuePointer(new QtSoapSimpleType);
        isRead = fill(*value, element, Kind::Simple, declared);
    }
    return isRead ? value : ValuePointer();
}

bool Reader::fill(QtSoapType& value, int element, Kind kind, const QtSoapQName& type)
{
    value.setName(m_tree.name(element));
    value.setId(m_tree.attribute(element, QStringLiteral("id")));

    const QtSoapQName declared = declaredType(element, type);
    QtSoapType::Type known = typeOf(declared);
    if (kind == Kind::Simple && (known == QtSoapType::Array || known == QtSoapType::Struct))
        known = QtSoapType::Other;
    QtSoapAccess::setType(value, known);
    QtSoapAccess::setDeclaredType(value, known == QtSoapType::Other ? declared : QtSoapQName());
    switch (kind) {
    case Kind::Base:
        return true;
    case Kind::Simple:
        return fillSimple(static_cast<QtSoapSimpleType&>(value), element, known);
    case Kind::Array:
        return fillArray(static_cast<QtSoapArray&>(value), element);
    case Kind::Struct:
        return fillStruct(static_cast<QtSoapStruct&>(value), element);
    }
    return false;
}

bool Reader::fillSimple(QtSoapSimpleType& value, int element, QtSoapType::Type type)
{
    if (isNull(element)) {
        QtSoapAccess::setNull(value);
        return true;
    }
    if (m_tree.hasChildren(element)) {
        return fail(QStringLiteral("The element \"%1\" of a simple type has elements inside")
                        .arg(m_tree.name(element).name()));
    }
    QString text = m_tree.text(element);
    if (!keepsWhiteSpace(type))
        text = trimmed(text);
    if (!isOfType(type, text)) {
        return fail(
            QStringLiteral("\"%1\" in the element \"%2\" isn't a value of the type \"%3\"")
                .arg(text.left(100), m_tree.name(element).name(), QtSoapType::typeToName(type)));
    }
    QtSoapAccess::setText(value, text);
    return true;
}

bool Reader::fillArray(QtSoapArray& array, int element)
{
    QtSoapAccess::ArrayData& data = QtSoapAccess::data(array);
    data = QtSoapAccess::ArrayData();
    data.failed = true;

    QtSoapQName memberType;
    QString error;
    const QString arrayType = m_tree.attribute(element, QStringLiteral("arrayType"), encodingUri());
    if (!arrayType.isNull()) {
        const int rank = arrayType.indexOf(QLatin1Char('['));
        const int size = arrayType.lastIndexOf(QLatin1Char('['));
        QVector<int> sizes;
        if (!readBrackets(arrayType.mid(qMax(size, 0)), &sizes, &error))
            return fail(error);
        data.dimensions = sizes.size();
        for (int i = 0; i < sizes.size(); ++i)
            data.sizes[static_cast<size_t>(i)] = sizes.at(i);

        const QtSoapQName stated = m_tree.resolve(element, arrayType.left(rank));
        data.memberType = typeOf(stated);
        if (data.memberType == QtSoapType::Other && stated.name() != QLatin1String("anyType")
            && stated.name() != QLatin1String("ur-type")) {
            data.memberTypeName = stated;
        }
        data.rank = trimmed(arrayType.mid(rank, size - rank));
        for (const QChar character : qAsConst(data.rank)) {
            if (!QStringLiteral("[], ").contains(character)) {
                return fail(
                    QStringLiteral("\"%1\" isn't the type of an array").arg(arrayType.left(100)));
            }
        }
        if (!data.rank.isEmpty())
            memberType = typeQName(QtSoapType::Array);
        else if (data.memberType != QtSoapType::Other)
            memberType = stated;
        else
            memberType = data.memberTypeName;
    }

    Position position{{0, 0, 0, 0, 0}};
    const QString offset = m_tree.attribute(element, QStringLiteral("offset"), encodingUri());
    if (!offset.isNull() && m_tree.hasChildren(element)
        && !readPosition(data, offset, &position, &error)) {
        return fail(error);
    }
    bool isPlace = true;
    for (int child = m_tree.firstChild(element); child >= 0; child = m_tree.nextSibling(child)) {
        const QString own = m_tree.attribute(child, QStringLiteral("position"), encodingUri());
        if (!own.isNull()) {
            if (!readPosition(data, own, &position, &error)) {
                data.members.clear();
                return fail(error);
            }
        } else if (!isPlace || !data.isInside(position)) {
            data.members.clear();
            return fail(QStringLiteral("The array \"%1\" has more members than its size")
                            .arg(m_tree.name(element).name()));
        }
        const ValuePointer value = read(child, memberType);
        if (!value) {
            data.members.clear();
            return false;
        }
        data.put(position, value);
        isPlace = data.next(&position);
    }
    data.failed = false;
    return true;
}

bool Reader::fillStruct(QtSoapStruct& structure, int element)
{
    QtSoapAccess::StructData& data = QtSoapAccess::data(structure);
    data.clear();
    for (int child = m_tree.firstChild(element); child >= 0; child = m_tree.nextSibling(child)) {
        const ValuePointer value = read(child);
        if (!value) {
            data.clear();
            data.failed = true;
            return false;
        }
        data.append(value);
    }
    const QString text = m_tree.text(element);
    if (!isBlank(text))
        data.text = text;
    return true;
}

QtSoapQName Reader::declaredType(int element, const QtSoapQName& otherwise) const
{
    const QString type = m_tree.schemaInstanceAttribute(element, QStringLiteral("type"));
    if (type.isNull()) {
        const QtSoapQName name = m_tree.name(element);
        return name.uri() == encodingUri() && typeOf(name) != QtSoapType::Other ? name : otherwise;
    }
    const QtSoapQName declared = m_tree.resolve(element, type);
    const bool isAnything = isSchemaUri(declared.uri())
        && (declared.name() == QLatin1String("anyType")
            || declared.name() == QLatin1String("ur-type"));
    return isAnything ? QtSoapQName() : declared;
}

bool Reader::isNull(int element) const
{
    for (const QString& name : {QStringLiteral("nil"), QStringLiteral("null")}) {
        const QString value = trimmed(m_tree.schemaInstanceAttribute(element, name));
        if (value == QLatin1String("1") || value == QLatin1String("true"))
            return true;
    }
    return false;
}

} // namespace VEK_NAMESPACE::soap
