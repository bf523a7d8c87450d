#pragma once

#include <QStringList>

#include <vector>

/// Rows of text in columns, for a terminal or as Markdown.
class Table
{
public:
    /// Columns from \a firstNumber on are set flush right.
    Table(const QStringList& header, int firstNumber, int firstTextAgain);

    void add(const QStringList& row) { m_rows.push_back(row); }
    bool isEmpty() const { return m_rows.size() == 1; }

    QString text(bool markdown) const;

private:
    QString line(const QStringList& row, bool markdown) const;
    bool isNumber(int column) const;

    std::vector<QStringList> m_rows; ///< the first one is the header
    int m_firstNumber;
    int m_firstTextAgain;
};
