#include "foundation/system/FolderLock.h"

#include "foundation/settings/ProgramFolder.h"
#include "foundation/text/Text.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr qsizetype longestCommand = 200;

bool IsSameFile(int descriptor, const QByteArray& path) {
    struct stat opened {};
    struct stat named {};
    return fstat(descriptor, &opened) == 0 && lstat(path.constData(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

// A lock that we may not open belongs to another user.
bool IsSomebodyElses(const QByteArray& path, int error) {
    struct stat named {};
    return error == EACCES && lstat(path.constData(), &named) == 0 && S_ISREG(named.st_mode);
}

// Opens the lock's file, made where it is missing; where that is not allowed, the one that is there.
int OpenLock(const char* path) {
    constexpr int always = O_CLOEXEC | O_NOFOLLOW;
    const int made = open(path, O_RDWR | O_CREAT | always, S_IRUSR | S_IWUSR);
    return made < 0 && (errno == EACCES || errno == EROFS) ? open(path, O_RDONLY | always) : made;
}

enum class Attempt { Taken, HeldByAnother, Impossible };

// Locks what is open under `descriptor`, which is closed and -1 unless that succeeds.
Attempt Lock(int& descriptor) {
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        return Attempt::Taken;
    const bool isHeld = errno == EWOULDBLOCK;
    close(std::exchange(descriptor, -1));
    return isHeld ? Attempt::HeldByAnother : Attempt::Impossible;
}

void Release(int& descriptor) {
    if (descriptor >= 0)
        close(std::exchange(descriptor, -1));
}

// The file's number as the table of locks writes it; none where there is no such file.
QByteArray NumberOf(const QByteArray& path) {
    struct stat named {};
    return stat(path.constData(), &named) == 0 ? QByteArray::number(quint64{named.st_ino}) : QByteArray();
}

// A line of the table reads "1: FLOCK  ADVISORY  WRITE 4711 fe:00:10953089 0 EOF". The device is not
// compared: some file systems give another one here than to those who ask for the file's own.
QByteArray ProcessIn(const QByteArray& line, const QByteArray& fileNumber) {
    const QByteArrayList words = line.simplified().split(' ');
    const bool isLock = words.size() >= 6 && words[1] == "FLOCK" && words[3] == "WRITE";
    return isLock && words[5].endsWith(':' + fileNumber) ? words[4] : QByteArray();
}

// The process that holds a lock on the file; empty when there is none, or none that the system tells us.
QString ProcessThatLocks(const QByteArray& path) {
    const QByteArray number = NumberOf(path);
    QFile locks(QStringLiteral("/proc/locks"));
    if (number.isEmpty() || !locks.open(QIODevice::ReadOnly))
        return {};
    for (const QByteArray& line :
         locks.readAll().split('\n')) // it has no size, so that atEnd() means nothing
        if (const QByteArray process = ProcessIn(line, number); !process.isEmpty())
            return QString::fromLatin1(process);
    return {};
}

QString CommandOf(const QString& process) {
    QFile file(QStringLiteral("/proc/%1/cmdline").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return Text::OneLine(QString::fromLocal8Bit(file.read(4 * longestCommand).replace('\0', ' ')),
                         longestCommand);
}

} // namespace

FolderLock FolderLock::OfProgram(const ProgramFolder& folder) {
    return {folder.File(QStringLiteral("QiranDecode.lock")), folder.Path()};
}

FolderLock FolderLock::OfKeps(const ProgramFolder& folder) {
    return {folder.File(QStringLiteral("Keps.lock")), folder.KepsFolder()};
}

// No QLockFile: it waits until the disk has its file, which is a good part of the program's start.
FolderLock::FolderLock(const QString& file, const QString& standIn)
    : m_path(QFile::encodeName(file))
    , m_standInPath(QFile::encodeName(standIn)) {}

FolderLock::~FolderLock() {
    Unlock();
}

bool FolderLock::TryLock() {
    if (m_isOurs)
        return true;
    m_isOurs = LockFile() && LockStandIn();
    if (!m_isOurs)
        Unlock();
    return m_isOurs;
}

void FolderLock::Unlock() {
    Release(m_standIn);
    if (m_file >= 0)
        unlink(m_path.constData()); // still locked, so that it is nobody else's
    Release(m_file);
    m_isOurs = false;
}

// False when another holds it.
bool FolderLock::LockFile() {
    for (;;) {
        m_file = OpenLock(m_path.constData());
        if (m_file < 0)
            return !IsSomebodyElses(m_path, errno);
        if (const Attempt attempt = Lock(m_file); attempt != Attempt::Taken)
            return attempt == Attempt::Impossible;
        if (IsSameFile(m_file, m_path))
            return true;
        Release(m_file); // its holder ended this moment and removed it
    }
}

// False when another holds it.
bool FolderLock::LockStandIn() {
    m_standIn = open(m_standInPath.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    return m_standIn < 0 || Lock(m_standIn) != Attempt::HeldByAnother;
}

QString FolderLock::Holder() const {
    QString process = ProcessThatLocks(m_path);
    if (process.isEmpty())
        process = ProcessThatLocks(m_standInPath);
    if (process.isEmpty())
        return QStringLiteral("an unknown process");
    const QString command = CommandOf(process);
    const QString named = QStringLiteral("process ") + process;
    return command.isEmpty() ? named : named + QStringLiteral(" (") + command + u')';
}
