#pragma once

#include <files/Console.h>

/// Writes a line to the console, in plain English, for those who maintain the client.
inline void Note(const QString &text, CConsole::EMessageCategory category,
                 CConsole::EMessageLevel level = CConsole::ML_Warning)
{
    CConsole::AddMessage(text, category, level, QString(), 0);
}
