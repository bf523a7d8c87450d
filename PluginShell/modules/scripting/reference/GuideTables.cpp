#include "GuideTables.h"

#include "ScriptClass.h"

#include <QMap>
#include <QRegularExpression>
#include <QStringList>

namespace {

/// As it is called, with the values of what can be left out.
QString call(const ScriptFunction& function)
{
    QStringList parameters;
    for (const ScriptParameter& parameter : function.parameters) {
        QString text = parameter.name;
        if (!parameter.defaultValue.isEmpty())
            text += QStringLiteral(" = ") + parameter.defaultValue;
        parameters << text;
    }
    return QStringLiteral("`%1(%2)`").arg(function.name, parameters.join(QStringLiteral(", ")));
}

QString resultType(const ScriptFunction& function)
{
    if (function.result == QLatin1String("void"))
        return QString();
    return function.result == QLatin1String("QObjectOfAnyClass") ? QStringLiteral("object")
                                                                 : function.result;
}

QString cell(QString text)
{
    return text.replace(QLatin1Char('|'), QLatin1String("\\|"));
}

QString wrapped(const QString& text)
{
    constexpr int maxColumns = 105;
    QStringList lines;
    const QStringList words = text.split(QLatin1Char(' '));
    for (const QString& word : words) {
        if (lines.isEmpty() || lines.last().size() + 1 + word.size() > maxColumns)
            lines << word;
        else
            lines.last() += QLatin1Char(' ') + word;
    }
    return lines.join(QLatin1Char('\n'));
}

QString table(const ScriptClass& scriptClass, const ScriptGroup& group)
{
    QStringList rows;
    bool anyResult = false;
    bool isOfSignals = true;
    for (const ScriptFunction& function : scriptClass.functions) {
        if (function.group == group.title) {
            anyResult = anyResult || !resultType(function).isEmpty();
            isOfSignals = isOfSignals && function.kind == ScriptFunction::Signal;
        }
    }
    const QString kind = QLatin1String(isOfSignals ? "Signal" : "Slot");
    rows << (anyResult ? QStringLiteral("| %1 | Result | |\n|---|---|---|")
                       : QStringLiteral("| %1 | |\n|---|---|"))
                .arg(kind);
    for (const ScriptFunction& function : scriptClass.functions) {
        if (function.group != group.title)
            continue;
        QStringList cells = {cell(call(function))};
        if (anyResult)
            cells << cell(resultType(function));
        cells << cell(function.text);
        QString row = QLatin1String("|");
        for (const QString& text : cells)
            row += text.isEmpty() ? QStringLiteral(" |") : QStringLiteral(" %1 |").arg(text);
        rows << row;
    }
    const QString intro =
        group.text.isEmpty() ? QString() : wrapped(group.text) + QStringLiteral("\n\n");
    return intro + rows.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

} // namespace

GuideTables::GuideTables(const ScriptClasses& classes)
    : m_classes(classes)
{}

QString GuideTables::updated(const QString& guide)
{
    QMap<QString, QString> tables;
    for (const ScriptClass& scriptClass : m_classes.classes()) {
        for (const ScriptGroup& group : scriptClass.groups) {
            if (!scriptClass.isOurs)
                continue;
            const QString title =
                group.title.isEmpty() ? QString() : QStringLiteral(": ") + group.title;
            tables.insert(scriptClass.name + title, table(scriptClass, group));
        }
    }

    static const QRegularExpression place(
        QStringLiteral("^<!-- (\\w+(?:: [^>]+)?) -->\\n.*?^<!-- end -->$"),
        QRegularExpression::MultilineOption | QRegularExpression::DotMatchesEverythingOption);
    QString result;
    int end = 0;
    QRegularExpressionMatchIterator places = place.globalMatch(guide);
    while (places.hasNext()) {
        const QRegularExpressionMatch match = places.next();
        const QString title = match.captured(1);
        if (!tables.contains(title)) {
            m_errorMessage =
                QStringLiteral("no table is called \"%1\", or it stands there twice").arg(title);
            return QString();
        }
        result += guide.mid(end, match.capturedStart() - end)
            + QStringLiteral("<!-- %1 -->\n\n%2\n<!-- end -->").arg(title, tables.take(title));
        end = match.capturedEnd();
    }
    if (!tables.isEmpty()) {
        m_errorMessage = QStringLiteral("there is no place \"<!-- %1 -->\"").arg(tables.firstKey());
        return QString();
    }
    return result + guide.mid(end);
}
