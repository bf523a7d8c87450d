#pragma once

#include <QString>
#include <QVector>

class ScriptClasses;

/// A variable or a function that the script engine's global object has.
struct ScriptGlobal
{
    QString declaration; ///< in TypeScript, without "declare" and the semicolon
    QString text;
};

/// The TypeScript declarations of \a globals and of the classes.
QString typeScriptDeclarations(const QVector<ScriptGlobal>& globals, const ScriptClasses& classes);
