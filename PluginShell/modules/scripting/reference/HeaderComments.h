#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

/// What the documentation comments of a header say about one function of a class.
struct FunctionComment
{
    QString text; ///< one paragraph, with parameters and code as in Markdown
    QString group;
    QStringList defaults; ///< for each parameter its default value, or an empty text
};

/// Functions that stand between "\name" and "@}" in a class.
struct GroupComment
{
    QString title;
    QString text;
};

struct ClassComment
{
    QStringList paragraphs;
    QVector<GroupComment> groups;
    QHash<QString, QVector<FunctionComment>> functions; ///< by name
};

/// Reads the comments of classes that are written as those of this library: "///" above the
/// declaration, which begins a line. Of Doxygen's commands it knows \a, \c, \p, \name with its
/// braces, and \sa, which is for readers of the C++ and left out here; others stay in the text.
class HeaderComments
{
public:
    /// False, with errorMessage(), for a file that can't be read or a group without a name.
    bool read(const QString& path);
    QString errorMessage() const { return m_errorMessage; }

    /// \a name is without its namespace. Null if no header has the class.
    const ClassComment* classComment(const QString& name) const;

private:
    bool beginGroup(const QStringList& comment, ClassComment* of);
    void endDeclaration(const QString& declaration, const QStringList& comment,
                        ClassComment* of) const;

    QHash<QString, ClassComment> m_classes;
    QString m_group;
    QString m_errorMessage;
};

/// The name of a parameter as scripts' readers see it: without the marks of its type, as in
/// "pParentWindow", "bChecked" and "strText".
QString plainParameterName(const QString& name);
