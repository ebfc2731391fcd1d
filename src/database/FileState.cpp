#include "FileState_p.h"

#include <algorithm>

#ifdef Q_OS_LINUX
#include <fcntl.h>
#include <unistd.h>

namespace {

// The file format says where the bytes are, and which bytes SQLite locks.
constexpr off_t FORMATS = 18; // for writing and for reading
constexpr int ROLLBACK_JOURNAL = 1;
constexpr off_t COUNTER = 24;
constexpr off_t RESERVED_BYTE = 0x40000001; // locked while a connection has changes
constexpr off_t SHARED_BYTES = 0x40000002;  // locked while it reads
constexpr off_t SHARED_SIZE = 510;

// Returns the process that keeps others from locking the bytes, 0 for none, and -1 if that can't be found out. A lock
// that belongs to a descriptor conflicts with those of the own process, too.
pid_t GetLocker(int file, off_t begin, off_t size)
{
    struct flock lock
    {
    };
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = begin;
    lock.l_len = size;
    if (fcntl(file, F_OFD_GETLK, &lock) != 0)
        return -1;
    return lock.l_type == F_UNLCK ? 0 : lock.l_pid;
}

} // namespace

void CFileState::Open(const QString &path)
{
    m_file.close();
    m_file.setFileName(path);
    m_iHandle = m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ? m_file.handle() : -1;
}

bool CFileState::Read(TVersion &version)
{
    std::array<char, COUNTER - FORMATS + sizeof(TVersion)> header{};
    if (m_iHandle < 0 || pread(m_iHandle, header.data(), header.size(), FORMATS) != ssize_t(header.size()) ||
        header[0] != ROLLBACK_JOURNAL || header[1] != ROLLBACK_JOURNAL)
        return false;
    std::copy(header.cbegin() + COUNTER - FORMATS, header.cend(), version.begin());
    const pid_t writer = GetLocker(m_iHandle, RESERVED_BYTE, 1);
    return writer == 0 || (writer > 0 && writer != getpid());
}

CFileState::EMatch CFileState::Match() const
{
    const pid_t reader = m_iHandle < 0 ? 0 : GetLocker(m_iHandle, SHARED_BYTES, SHARED_SIZE);
    return reader == 0 ? Other : reader == getpid() ? Same : Unknown;
}

#else

void CFileState::Open(const QString &) {}

bool CFileState::Read(TVersion &)
{
    return false;
}

CFileState::EMatch CFileState::Match() const
{
    return Unknown;
}

#endif
