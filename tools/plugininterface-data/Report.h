#pragma once

#include <QString>

/// The output of the tool: findings on stderr, each a line "FILE:LINE: text", from which an editor can open the file
/// there; results on stdout. All in UTF-8, whatever the locale.
class CReport
{
public:
    /// Prints an error. A \a line of 0 stands for the whole file.
    void Error(const QString &file, int line, const QString &text);
    /// Prints a finding that doesn't make the data wrong.
    void Note(const QString &file, int line, const QString &text);
    /// Prints a result; it is an error if that fails.
    void Print(const QString &text);

    bool HasErrors() const { return m_iErrors > 0; }
    /// Returns the program's exit code: 0, or 1 after an error.
    int GetExitCode() const { return HasErrors() ? 1 : 0; }

private:
    int m_iErrors = 0;
};
