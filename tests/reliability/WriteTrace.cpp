// Preloaded into a process, notes what the process does to the files below a folder, in the order in which it
// is done: the disk that a power cut leaves behind can be made of it.
//
// QIRAN_TRACE_ROOT: the folder, an absolute path. QIRAN_TRACE: the file for the notes, a line each, appended
// to:
//
//     file FILE   a new one, which has no name yet
//     give FILE NAME, rename FROM TO, unlink NAME, link FROM TO   names are below the folder
//     size FILE BYTES, write FILE OFFSET HEX
//     sync FILE NUMBER, syncfolder NUMBER     all that was noted before is being put on the disk
//     synced NUMBER                           and now it is there
//
// FILE is the inode's number, which holds until another file is created with it.

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

namespace {

std::mutex order; // held from before a change until it is noted
std::atomic<int> syncs = 0;

std::string Root() {
    const char* root = std::getenv("QIRAN_TRACE_ROOT");
    return root == nullptr ? std::string() : std::string(root) + '/';
}

// The name below the folder; empty for what is elsewhere.
std::string NameOf(const char* path) {
    static const std::string root = Root();
    return !root.empty() && std::string_view(path).starts_with(root) ? path + root.size() : std::string();
}

// Whether an open file lies in the folder, or is the folder.
bool IsOurs(int descriptor) {
    std::array<char, 4096> path{};
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = readlink(link.c_str(), path.data(), path.size());
    return length > 0 && !Root().empty() &&
           (std::string(path.data(), static_cast<std::size_t>(length)) + '/').starts_with(Root());
}

void Note(const std::string& line) {
    static const int notes = static_cast<int>(syscall(SYS_openat, AT_FDCWD, std::getenv("QIRAN_TRACE"),
                                                      O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600));
    const std::string whole = line + '\n';
    if (syscall(SYS_write, notes, whole.data(), whole.size()) != static_cast<long>(whole.size()))
        std::abort();
}

struct stat StatusOf(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0)
        std::abort();
    return status;
}

int Open(const char* path, int flags, mode_t mode) {
    const bool isUnnamed = (flags & O_TMPFILE) == O_TMPFILE;
    const std::string name = NameOf(isUnnamed ? (std::string(path) + "/.").c_str() : path);
    const std::scoped_lock lock(order);
    struct stat before {};
    const bool isNew = !name.empty() && stat(path, &before) != 0;
    const int descriptor = static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
    if (descriptor < 0 || name.empty() || (flags & O_ACCMODE) == O_RDONLY)
        return descriptor;
    const std::string file = std::to_string(StatusOf(descriptor).st_ino);
    if (isUnnamed)
        Note("file " + file);
    else if (isNew)
        Note("file " + file + "\ngive " + file + ' ' + name);
    else if ((flags & O_TRUNC) != 0 && before.st_size > 0)
        Note("size " + file + " 0");
    return descriptor;
}

ssize_t Write(int descriptor, const void* bytes, size_t count, off_t offset) {
    const auto* const data = static_cast<const unsigned char*>(bytes);
    const std::scoped_lock lock(order);
    const bool isNoted = IsOurs(descriptor);
    off_t place = offset;
    if (isNoted && offset < 0)
        place = (fcntl(descriptor, F_GETFL) & O_APPEND) != 0 ? StatusOf(descriptor).st_size
                                                             : lseek(descriptor, 0, SEEK_CUR);
    const ssize_t written = offset < 0 ? syscall(SYS_write, descriptor, bytes, count)
                                       : syscall(SYS_pwrite64, descriptor, bytes, count, offset);
    if (!isNoted || written <= 0)
        return written;
    std::string line =
        "write " + std::to_string(StatusOf(descriptor).st_ino) + ' ' + std::to_string(place) + ' ';
    for (ssize_t i = 0; i < written; ++i) {
        constexpr std::string_view digits = "0123456789abcdef";
        line += digits[data[i] >> 4];
        line += digits[data[i] & 15];
    }
    Note(line);
    return written;
}

int SetSize(int descriptor, off_t size) {
    const std::scoped_lock lock(order);
    const long done = syscall(SYS_ftruncate, descriptor, size);
    if (done == 0 && IsOurs(descriptor))
        Note("size " + std::to_string(StatusOf(descriptor).st_ino) + ' ' + std::to_string(size));
    return static_cast<int>(done);
}

int Sync(int descriptor, long call) {
    std::string number;
    if (IsOurs(descriptor)) {
        const std::scoped_lock lock(order);
        number = std::to_string(++syncs);
        const struct stat status = StatusOf(descriptor);
        Note(S_ISDIR(status.st_mode) ? "syncfolder " + number
                                     : "sync " + std::to_string(status.st_ino) + ' ' + number);
    }
    const long done = syscall(call, descriptor);
    if (!number.empty() && done == 0) {
        const std::scoped_lock lock(order);
        Note("synced " + number);
    }
    return static_cast<int>(done);
}

// A change of names, which is noted where it was done.
template <class Change>
int Rename(const std::string& note, bool isNoted, Change change) {
    const std::scoped_lock lock(order);
    const int done = change();
    if (done == 0 && isNoted)
        Note(note);
    return done;
}

} // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    return Open(path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    return Open(path, flags, mode);
}

ssize_t write(int descriptor, const void* bytes, size_t count) {
    return Write(descriptor, bytes, count, -1);
}

ssize_t pwrite64(int descriptor, const void* bytes, size_t count, off64_t offset) {
    return Write(descriptor, bytes, count, offset);
}

int ftruncate(int descriptor, off_t size) {
    return SetSize(descriptor, size);
}

int ftruncate64(int descriptor, off64_t size) {
    return SetSize(descriptor, size);
}

int fsync(int descriptor) {
    return Sync(descriptor, SYS_fsync);
}

int fdatasync(int descriptor) {
    return Sync(descriptor, SYS_fdatasync);
}

int rename(const char* from, const char* to) {
    return Rename("rename " + NameOf(from) + ' ' + NameOf(to), !NameOf(from).empty(),
                  [&] { return static_cast<int>(syscall(SYS_rename, from, to)); });
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
    return Rename("rename " + NameOf(from) + ' ' + NameOf(to), !NameOf(from).empty(), [&] {
        return static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
    });
}

int unlink(const char* path) {
    return Rename("unlink " + NameOf(path), !NameOf(path).empty(),
                  [&] { return static_cast<int>(syscall(SYS_unlink, path)); });
}

int link(const char* from, const char* to) {
    return Rename("link " + NameOf(from) + ' ' + NameOf(to), !NameOf(from).empty(),
                  [&] { return static_cast<int>(syscall(SYS_link, from, to)); });
}

// Gives an unnamed file its name.
int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) {
    struct stat status {};
    const bool isOurs = !NameOf(to).empty() && stat(from, &status) == 0;
    return Rename("give " + std::to_string(status.st_ino) + ' ' + NameOf(to), isOurs, [&] {
        return static_cast<int>(syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
    });
}
}
