#pragma once

#include <QString>

/// What the tool says: findings on stderr, one a line as "FILE:LINE: text", so that editors jump to them; results on
/// stdout. All of it in UTF-8, whatever the locale.
class CReport
{
public:
    /// A \a line of 0 stands for the file as a whole.
    void Error(const QString &file, int line, const QString &text);
    /// Something that doesn't make the data wrong.
    void Note(const QString &file, int line, const QString &text);
    void Print(const QString &text);

    bool HasErrors() const { return m_iErrors > 0; }
    /// The program's: 0, or 1 after an error.
    int GetExitCode() const { return HasErrors() ? 1 : 0; }

private:
    int m_iErrors = 0;
};
