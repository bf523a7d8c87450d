#pragma once

#include <QString>

class ScriptClasses;

/// The tables of a guide, which stand between the lines "<!-- CLASS: GROUP -->", or "<!-- CLASS
/// -->" for functions in no group, and "<!-- end -->".
class GuideTables
{
public:
    explicit GuideTables(const ScriptClasses& classes);

    /// Returns \a guide with the tables of now. Each group of our classes has one; otherwise the
    /// result is null, with errorMessage().
    QString updated(const QString& guide);
    QString errorMessage() const { return m_errorMessage; }

private:
    const ScriptClasses& m_classes;
    QString m_errorMessage;
};
