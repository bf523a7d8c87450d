#pragma once

#include "AcceptanceRun.h"

#include <QString>
#include <QStringList>

#include <optional>

/// What the host is told to do, by its own command line or by one that was handed over.
struct CommandLine
{
    QString text; ///< asked for by --help or --version
    bool tellState = false;
    QString image;
    std::optional<AcceptanceRun::Options> run;

    /// The program's name comes first. Nothing, with an \a error, if it makes no sense.
    static std::optional<CommandLine> parse(const QStringList& arguments, QString* error);
};
