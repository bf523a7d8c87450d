#pragma once

#include "SoapAccess_p.h"
#include "SoapTree_p.h"

namespace VEK_NAMESPACE::soap {

enum class Kind
{
    Base,
    Simple,
    Array,
    Struct
};

/// What the parse() functions do: reads the node into \a value, which is of that kind.
bool parse(QtSoapType& value, const QDomNode& node, Kind kind);

/// A new value of the node's type, null if it can't be read.
QtSoapType* readNode(const QDomNode& node);

/// Makes values of a tree's elements, and follows references between them.
class Reader
{
public:
    enum Context
    {
        /// A message of its own.
        OwnContext,

        /// While a registered handler reads what a reader has given it, references lead from there
        /// to that reader's tree, and its limits go for both.
        ContextOfThread
    };

    Reader(const Tree& tree, Context context);
    ~Reader();

    /// Null, with the reason in error(), if the element can't be read. \a type is that of an
    /// element which declares none.
    ValuePointer read(int element, const QtSoapQName& type = QtSoapQName());

    bool readInto(QtSoapType& value, int element, Kind kind);

    QString error() const { return m_error; }

private:
    Q_DISABLE_COPY(Reader)

    struct Budget
    {
        int depth = 0;
        qint64 made = 0; // values
        qint64 allowed = 0;
        qint64 repeated = 0; // values inside of copies, which share them
        int reread = 0; // elements, by handlers
    };
    struct Target
    {
        ValuePointer value; // null if a handler made it
        qint64 size = 0; // values
    };

    bool fail(const QString& error);
    bool isReference(int element) const;
    Reader* findTarget(int element, int* target);
    ValuePointer readReference(int element, const QtSoapQName& type);
    ValuePointer readTarget(int element, const QtSoapQName& type, bool isCopied);
    ValuePointer readElement(int element, const QtSoapQName& type);
    bool fill(QtSoapType& value, int element, Kind kind, const QtSoapQName& type);
    bool fillSimple(QtSoapSimpleType& value, int element, QtSoapType::Type type);
    bool fillArray(QtSoapArray& array, int element);
    bool fillStruct(QtSoapStruct& structure, int element);
    QtSoapQName declaredType(int element, const QtSoapQName& otherwise) const;
    bool isNull(int element) const;

    const Tree& m_tree;
    Reader* const m_previous;
    Reader* const m_outer;
    Budget m_ownBudget;
    Budget& m_budget;
    QHash<int, Target> m_targets;
    QSet<int> m_beingRead;
    QString m_error;
};

} // namespace VEK_NAMESPACE::soap
