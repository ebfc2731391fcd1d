#pragma once

#include <QFile>
#include <QString>

#include <array>

/// Determines, without asking SQLite, whether a database file has changed. Each commit to a file without a
/// write-ahead log changes a counter in its header. SQLite itself looks there to learn whether its cached pages are
/// still valid.
///
/// The object opens the file a second time, for reading. When a process closes any descriptor of a file, the system
/// drops all locks that the process holds on it. So the object has to live as long as the connection.
///
/// Only on Linux the state can be known, because the locks of the own process can be seen only there.
class CFileState
{
public:
    /// The counter and what SQLite compares beside it.
    using TVersion = std::array<char, 16>;

    /// Opens the file, in place of one that was opened before.
    void Open(const QString &path);

    /// Gets the version of what a selection would find now. Returns false if that isn't known: the file has a
    /// write-ahead log, or this process is changing it and hasn't committed, or the file can't be read.
    bool Read(TVersion &version);

    enum EMatch { Same, Other, Unknown };
    /// Returns whether a connection of this process, which is reading at the moment, has opened the same file: the
    /// file at the path may be another one by now. Unknown while other processes are reading, too.
    EMatch Match() const;

private:
    QFile m_file;
    int m_iHandle = -1;
};
