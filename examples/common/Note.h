#pragma once

#include <files/Console.h>

/// A line in the console, for whoever looks after the client. In plain English.
inline void Note(const QString &text, CConsole::EMessageCategory category,
                 CConsole::EMessageLevel level = CConsole::ML_Warning)
{
    CConsole::AddMessage(text, category, level, QString(), 0);
}
