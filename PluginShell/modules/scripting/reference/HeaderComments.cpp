#include "HeaderComments.h"

#include <QFile>
#include <QRegularExpression>

namespace {

/// Splits at the commas that are outside of all brackets.
QStringList splitParameters(const QString& text)
{
    QStringList parts;
    int depth = 0;
    int start = 0;
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('(') || c == QLatin1Char('<') || c == QLatin1Char('{')) {
            ++depth;
        } else if (c == QLatin1Char(')') || c == QLatin1Char('>') || c == QLatin1Char('}')) {
            --depth;
        } else if (c == QLatin1Char(',') && depth == 0) {
            parts << text.mid(start, i - start);
            start = i + 1;
        }
    }
    parts << text.mid(start);
    return parts;
}

QString defaultValue(const QString& parameter)
{
    const int assignment = parameter.indexOf(QLatin1Char('='));
    if (assignment < 0)
        return QString();
    const QString value = parameter.mid(assignment + 1).trimmed();
    return value == QLatin1String("QString()") ? QStringLiteral("\"\"") : value;
}

/// Makes Markdown of comment lines.
QStringList paragraphsOf(const QStringList& lines)
{
    static const QRegularExpression code(QStringLiteral("\\\\[acp] (\\w+)"));

    QStringList paragraphs;
    const QStringList texts =
        lines.join(QLatin1Char('\n')).split(QStringLiteral("\n\n"), QString::SkipEmptyParts);
    for (QString text : texts) {
        text.replace(QLatin1Char('\n'), QLatin1Char(' '));
        if (text.startsWith(QLatin1String("\\sa ")))
            continue;
        for (QRegularExpressionMatch match = code.match(text); match.hasMatch();
             match = code.match(text)) {
            text.replace(match.capturedStart(), match.capturedLength(),
                         QLatin1Char('`') + plainParameterName(match.captured(1))
                             + QLatin1Char('`'));
        }
        paragraphs << text;
    }
    return paragraphs;
}

} // namespace

QString plainParameterName(const QString& name)
{
    static const QRegularExpression marked(QStringLiteral("^(?:p|b|str)([A-Z])(.*)$"));
    const QRegularExpressionMatch match = marked.match(name);
    return match.hasMatch() ? match.captured(1).toLower() + match.captured(2) : name;
}

bool HeaderComments::read(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        m_errorMessage = QStringLiteral("%1: %2").arg(path, file.errorString());
        return false;
    }

    static const QRegularExpression classStart(
        QStringLiteral("^(?:class|struct)\\s+(?:[A-Z_]+\\s+)?(\\w+)(?:\\s+final)?\\s*(?::.*)?$"));
    static const QRegularExpression complete(QStringLiteral("[;{}:]$|^#|^Q_[A-Z]+$"));
    ClassComment* current = nullptr;
    QStringList comment;
    QString declaration;
    int number = 0;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine());
        const QString text = line.trimmed();
        ++number;
        const QRegularExpressionMatch match = classStart.match(line.trimmed());
        if (text.startsWith(QLatin1String("///"))) {
            const QString words = text.mid(3).trimmed();
            if (words == QLatin1String("@{")) {
                if (current && !beginGroup(comment, current)) {
                    m_errorMessage =
                        QStringLiteral("%1:%2: @{ without a \\name").arg(path).arg(number);
                    return false;
                }
                comment.clear();
            } else if (words == QLatin1String("@}")) {
                m_group.clear();
                comment.clear();
            } else {
                comment << words;
            }
        } else if (match.hasMatch() && !line.startsWith(QLatin1Char(' '))) {
            current = &m_classes[match.captured(1)];
            current->paragraphs = paragraphsOf(comment);
            comment.clear();
            declaration.clear();
        } else if (line.startsWith(QLatin1String("};"))) {
            current = nullptr;
            m_group.clear();
        } else if (text.isEmpty() || text.startsWith(QLatin1String("//"))) {
            comment.clear();
        } else {
            const int remark = text.indexOf(QLatin1String(" ///<"));
            declaration += QLatin1Char(' ') + text.left(remark);
            if (complete.match(declaration.trimmed()).hasMatch()) {
                if (current)
                    endDeclaration(declaration, comment, current);
                comment.clear();
                declaration.clear();
            }
        }
    }
    return true;
}

const ClassComment* HeaderComments::classComment(const QString& name) const
{
    const auto found = m_classes.constFind(name);
    return found == m_classes.constEnd() ? nullptr : &*found;
}

bool HeaderComments::beginGroup(const QStringList& comment, ClassComment* of)
{
    const QString start = QStringLiteral("\\name ");
    if (comment.isEmpty() || !comment.first().startsWith(start))
        return false;

    GroupComment group;
    group.title = comment.first().mid(start.size());
    group.text = paragraphsOf(comment.mid(1)).join(QLatin1Char(' '));
    m_group = group.title;
    of->groups << group;
    return true;
}

void HeaderComments::endDeclaration(const QString& declaration, const QStringList& comment,
                                    ClassComment* of) const
{
    static const QRegularExpression function(QStringLiteral("(\\w+)\\s*\\((.*)\\)[^()]*$"));
    const QRegularExpressionMatch match = function.match(declaration);
    if (!match.hasMatch())
        return;

    FunctionComment result;
    result.text = paragraphsOf(comment).join(QLatin1Char(' '));
    result.group = m_group;
    const QStringList parameters = splitParameters(match.captured(2));
    for (const QString& parameter : parameters)
        result.defaults << defaultValue(parameter);
    of->functions[match.captured(1)] << result;
}
