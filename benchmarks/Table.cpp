#include "Table.h"

#include <algorithm>

Table::Table(const QStringList& header, int firstNumber, int firstTextAgain)
    : m_rows{header}
    , m_firstNumber(firstNumber)
    , m_firstTextAgain(firstTextAgain)
{}

QString Table::text(bool markdown) const
{
    QString text = line(m_rows.front(), markdown);
    QStringList rule;
    for (int column = 0; column < m_rows.front().size(); ++column)
        rule << (isNumber(column) ? QStringLiteral("---:") : QStringLiteral("---"));
    if (markdown)
        text += line(rule, markdown);
    for (size_t row = 1; row < m_rows.size(); ++row)
        text += line(m_rows[row], markdown);
    return text;
}

QString Table::line(const QStringList& row, bool markdown) const
{
    if (markdown)
        return QStringLiteral("| %1 |\n").arg(row.join(QStringLiteral(" | ")));

    QString text;
    for (int column = 0; column < row.size(); ++column) {
        const auto widest =
            std::max_element(m_rows.begin(), m_rows.end(), [column](const auto& a, const auto& b) {
                return a.at(column).size() < b.at(column).size();
            });
        const int width = widest->at(column).size();
        text += isNumber(column) ? row.at(column).rightJustified(width)
                                 : row.at(column).leftJustified(width);
        text += QStringLiteral("  ");
    }
    while (text.endsWith(QLatin1Char(' ')))
        text.chop(1);
    return text + QLatin1Char('\n');
}

bool Table::isNumber(int column) const
{
    return column >= m_firstNumber && column < m_firstTextAgain;
}
