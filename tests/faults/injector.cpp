// Loaded into the command ahead of all else, it counts what the command asks of the system from
// the first line of `main` to the end of the process, and lets the nth fail. It takes no memory and
// throws nothing, since it stands below what does.
//
// An allocation counts if it is made on the main thread and the nearest caller outside the C and
// C++ libraries lies in the program, in a module beside it, or in libpng or zlib, which work for
// them; what the loader and the renderer allocate for themselves is left out. A file counts unless
// it is the system's own.

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>
#include <unwind.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <initializer_list>
#include <string_view>

extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);
}

namespace {

#define EXPORTED extern "C" __attribute__((visibility("default")))
// The function of that name that the command would have called.
#define REAL(name) (Next<decltype(&::name)>(#name))

template <class Function>
Function Next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

// What the sweep reads when the process has ended, however it did.
struct Book {
    long allocations;
    long operations;
    bool struck;
    char what[512];  // what failed, and where
};

Book unread;
Book* book = &unread;
char kind[16] = "none";
long nth = 0;
char ourFolder[PATH_MAX] = "";
thread_local bool isCounted = false;  // on the main thread, once `main` has begun

bool Is(std::string_view name) {
    return name == kind;
}

bool Contains(const char* text, std::initializer_list<const char*> parts) {
    return std::any_of(parts.begin(), parts.end(),
                       [&](const char* part) { return std::strstr(text, part) != nullptr; });
}

void Note(const char* what, const char* file) {
    book->struck = true;
    std::snprintf(book->what, sizeof book->what, "%s %.480s", what, file);
}

constexpr int kMostFiles = 256;

// The path behind a file descriptor, or the absolute one of a name.
struct Path {
    char text[PATH_MAX] = "";

    explicit Path(int file) {
        char link[32];
        std::snprintf(link, sizeof link, "/proc/self/fd/%d", file);
        const ssize_t length = readlink(link, text, sizeof text - 1);
        text[std::max<ssize_t>(length, 0)] = '\0';
    }
    explicit Path(const char* name) {
        if (name[0] != '/' && getcwd(text, sizeof text) != nullptr) std::strcat(text, "/");
        std::strncat(text, name, sizeof text - std::strlen(text) - 1);
    }
    bool IsSystems() const {
        for (const char* folder : {"/usr/", "/etc/", "/lib", "/proc/", "/sys/", "/dev/", "pipe:"})
            if (std::strncmp(text, folder, std::strlen(folder)) == 0) return true;
        return text[0] == '\0';
    }
};

// What the disk does not have yet. The contents of a file are there as far as its last sync, names
// once their folder has been synced.
struct Unsynced {
    char path[PATH_MAX];
    off_t synced;
};
struct NameChange {
    char from[PATH_MAX];  // empty if the name was made
    char to[PATH_MAX];    // empty if the name was removed
    char old[PATH_MAX];   // what stood under the lost name
};
Unsynced contents[kMostFiles];
NameChange names[kMostFiles];
int contentCount = 0;
int nameCount = 0;
int atticCount = 0;

void NoteWritten(const char* path) {
    for (int i = 0; i < contentCount; ++i)
        if (std::strcmp(contents[i].path, path) == 0) {
            contents[i].synced = 0;
            return;
        }
    if (contentCount == kMostFiles) std::abort();
    std::strcpy(contents[contentCount].path, path);
    contents[contentCount++].synced = 0;
}

void NoteName(const char* from, const char* to, const char* lost) {
    if (nameCount == kMostFiles) std::abort();
    NameChange& change = names[nameCount++];
    std::strcpy(change.from, from);
    std::strcpy(change.to, to);
    change.old[0] = '\0';
    const char* const attic = std::getenv("LUMISET_FAULT_ATTIC");
    if (attic == nullptr || access(lost, F_OK) != 0) return;
    std::snprintf(change.old, sizeof change.old, "%s/%d", attic, atticCount++);
    if (link(lost, change.old) != 0) change.old[0] = '\0';
}

bool IsIn(const char* path, const char* folder) {
    const std::size_t length = std::strlen(folder);
    return std::strncmp(path, folder, length) == 0 && path[length] == '/' &&
           std::strchr(path + length + 1, '/') == nullptr;
}

void NoteSync(int file) {
    const Path path(file);
    struct stat status {};
    if (fstat(file, &status) != 0) return;
    for (int i = 0; i < contentCount; ++i)
        if (std::strcmp(contents[i].path, path.text) == 0) contents[i].synced = status.st_size;
    const auto isSynced = [&](const NameChange& change) {
        return IsIn(change.from[0] != '\0' ? change.from : change.to, path.text);
    };
    if (S_ISDIR(status.st_mode))
        nameCount = static_cast<int>(std::remove_if(names, names + nameCount, isSynced) - names);
}

void NoteRename(const char* from, const char* to) {
    for (int i = 0; i < contentCount; ++i)
        if (std::strcmp(contents[i].path, from) == 0) std::strcpy(contents[i].path, to);
}

void DropContents() {
    for (int i = 0; i < contentCount; ++i)
        if (truncate(contents[i].path, contents[i].synced) != 0) continue;
}

void TakeNamesBack() {
    while (nameCount > 0) {
        const NameChange& change = names[--nameCount];
        if (change.from[0] == '\0')
            unlinkat(AT_FDCWD, change.to, 0);
        else if (change.to[0] != '\0')
            REAL(rename)(change.to, change.from);
        if (change.old[0] != '\0')
            REAL(rename)(change.old, change.to[0] != '\0' ? change.to : change.from);
    }
}

// Ends the process as power does. `kill` leaves what the system has been told, `cut` loses
// contents that were not synced, and `lost` names as well.
[[noreturn]] void Die() {
    if (Is("cut") || Is("lost") || Is("liar")) DropContents();
    if (Is("lost")) TakeNamesBack();
    raise(SIGKILL);
    std::abort();
}

enum class Answer { kDo, kFail, kPart, kPretend };

// What becomes of an operation that is about to begin.
Answer Ask(const char* what, const Path& path, bool canBePart = false) {
    if (!isCounted || path.IsSystems()) return Answer::kDo;
    if (Is("liar") && std::strncmp(what, "fsync", 5) == 0 && nth > 0) return Answer::kPretend;
    if (++book->operations != nth || Is("alloc")) return Answer::kDo;
    Note(what, path.text);
    if (Is("kill") || Is("cut") || Is("lost") || Is("liar")) Die();
    if (Is("lie")) return Contains(what, {"open", "read", "stat"}) ? Answer::kDo : Answer::kPretend;
    if (Is("part")) return canBePart ? Answer::kPart : Answer::kDo;
    errno = Is("eio") ? EIO : Is("enospc") ? ENOSPC : Is("eacces") ? EACCES : EINTR;
    return Is("eintr") && !canBePart ? Answer::kDo : Answer::kFail;
}

void NoteOpened(const char* name, bool makes) {
    const Path path(name);
    if (!isCounted || path.IsSystems()) return;
    NoteWritten(path.text);
    if (makes) NoteName("", path.text, "");
}

enum class Module { kOurs, kLibrary, kSystems };

Module ModuleOf(const char* name) {
    if (Contains(name, {"/fault_injector.", "/libc.", "/libstdc++.", "/libgcc_s.", "/libm."}))
        return Module::kLibrary;
    if (name[0] == '\0' || Contains(name, {ourFolder, "/libpng", "/libz."})) return Module::kOurs;
    return Module::kSystems;
}

struct Caller {
    int frames = 0;
    Module module = Module::kSystems;
    char place[160] = "";  // as addr2line wants it
};

_Unwind_Reason_Code Look(_Unwind_Context* context, void* data) {
    constexpr int kOwnFrames = 2;  // Fails, and what it stands in
    auto& caller = *static_cast<Caller*>(data);
    if (caller.frames++ < kOwnFrames) return _URC_NO_REASON;
    dl_find_object found{};
    const auto address = _Unwind_GetIP(context);
    if (_dl_find_object(reinterpret_cast<void*>(address), &found) != 0) return _URC_END_OF_STACK;
    caller.module = ModuleOf(found.dlfo_link_map->l_name);
    if (caller.module == Module::kLibrary) return _URC_NO_REASON;
    std::snprintf(caller.place, sizeof caller.place, "%s %#lx", found.dlfo_link_map->l_name,
                  address - found.dlfo_link_map->l_addr);
    return _URC_END_OF_STACK;
}

__attribute__((noinline)) bool Fails() {
    if (!isCounted) return false;
    isCounted = false;
    Caller caller;
    _Unwind_Backtrace(&Look, &caller);
    isCounted = true;
    if (caller.module == Module::kSystems) return false;
    if (++book->allocations != nth || !Is("alloc")) return false;
    Note("allocation", caller.place);
    errno = ENOMEM;
    return true;
}

}  // namespace

EXPORTED void* malloc(size_t size) noexcept {
    return Fails() ? nullptr : __libc_malloc(size);
}

EXPORTED void* calloc(size_t count, size_t size) noexcept {
    return Fails() ? nullptr : __libc_calloc(count, size);
}

EXPORTED void* realloc(void* block, size_t size) noexcept {
    return Fails() ? nullptr : __libc_realloc(block, size);
}

EXPORTED void* aligned_alloc(size_t alignment, size_t size) noexcept {
    return Fails() ? nullptr : __libc_memalign(alignment, size);
}

namespace {

template <class Open>
int Opened(const char* name, int flags, Open open) {
    const Answer answer = Ask("open", Path(name));
    if (answer == Answer::kFail || answer == Answer::kPretend) return -1;
    const bool makes = (flags & O_CREAT) != 0 && access(name, F_OK) != 0;
    const int file = open();
    if (file >= 0 && (flags & O_ACCMODE) != O_RDONLY) NoteOpened(name, makes);
    return file;
}

FILE* Opened(const char* name, const char* mode, FILE* (*open)(const char*, const char*)) {
    FILE* file = nullptr;
    const int flags = mode[0] == 'r' && std::strchr(mode, '+') == nullptr ? O_RDONLY
                      : mode[0] == 'r'                                    ? O_RDWR
                                                                          : O_RDWR | O_CREAT;
    Opened(name, flags, [&] {
        file = open(name, mode);
        return file == nullptr ? -1 : 0;
    });
    return file;
}

mode_t ModeOf(int flags, va_list arguments) {
    return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
}

// A write, or a read, that may come to its half.
template <class Work>
ssize_t Moved(const char* what, int file, size_t size, Work work) {
    const Answer answer = Ask(what, Path(file), size > 1 || Is("eintr"));
    if (answer == Answer::kFail) return -1;
    if (answer == Answer::kPretend) return static_cast<ssize_t>(size);
    return work(answer == Answer::kPart ? size / 2 : size);
}

// A file that could not be closed well is closed.
template <class Close>
int Closed(int file, Close close) {
    const Answer answer = Ask("close", Path(file));
    const int reason = errno;
    const int result = close();
    if (answer != Answer::kFail) return result;
    errno = reason;
    return EOF;
}

template <class Work>
int Removed(const char* name, Work work) {
    const Path path(name);
    const Answer answer = Ask("unlink", path);
    if (answer == Answer::kFail) return -1;
    if (answer == Answer::kPretend) return 0;
    if (isCounted && !path.IsSystems() && access(name, F_OK) == 0)
        NoteName(path.text, "", path.text);
    return work();
}

template <class Work>
int Done(const char* what, const Path& path, Work work) {
    const Answer answer = Ask(what, path);
    if (answer == Answer::kFail) return -1;
    return answer == Answer::kPretend ? 0 : work();
}

}  // namespace

EXPORTED int open(const char* name, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return Opened(name, flags, [&] { return REAL(open)(name, flags, mode); });
}

EXPORTED int openat(int folder, const char* name, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return Opened(name, flags, [&] { return REAL(openat)(folder, name, flags, mode); });
}

EXPORTED FILE* fopen(const char* name, const char* mode) {
    return Opened(name, mode, REAL(fopen));
}

EXPORTED FILE* fopen64(const char* name, const char* mode) {
    return Opened(name, mode, REAL(fopen64));
}

EXPORTED DIR* opendir(const char* name) {
    return Ask("open", Path(name)) == Answer::kDo ? REAL(opendir)(name) : nullptr;
}

EXPORTED ssize_t read(int file, void* bytes, size_t size) {
    return Moved("read", file, size, [&](size_t part) { return REAL(read)(file, bytes, part); });
}

EXPORTED ssize_t write(int file, const void* bytes, size_t size) {
    return Moved("write", file, size, [&](size_t part) { return REAL(write)(file, bytes, part); });
}

EXPORTED ssize_t writev(int file, const iovec* blocks, int count) {
    size_t size = 0;
    for (int i = 0; i < count; ++i)
        size += blocks[i].iov_len;
    return Moved("write", file, size, [&](size_t part) {
        if (part == size) return REAL(writev)(file, blocks, count);
        const iovec& first = *std::find_if(blocks, blocks + count,
                                           [](const iovec& block) { return block.iov_len > 0; });
        return REAL(write)(file, first.iov_base, std::min(part, first.iov_len));
    });
}

EXPORTED int fsync(int file) {
    const Answer answer = Ask("fsync", Path(file), true);
    if (answer == Answer::kFail) return -1;
    if (answer == Answer::kPretend) return 0;
    const int result = REAL(fsync)(file);
    if (result == 0 && isCounted) NoteSync(file);
    return result;
}

EXPORTED int rename(const char* from, const char* to) noexcept {
    const Path fromPath(from);
    const Path toPath(to);
    return Done("rename", toPath, [&] {
        if (isCounted && access(from, F_OK) == 0) NoteName(fromPath.text, toPath.text, to);
        const int result = REAL(rename)(from, to);
        if (result == 0 && isCounted) NoteRename(fromPath.text, toPath.text);
        return result;
    });
}

EXPORTED int unlinkat(int folder, const char* name, int flags) noexcept {
    if (folder != AT_FDCWD) return REAL(unlinkat)(folder, name, flags);
    return Removed(name, [&] { return REAL(unlinkat)(folder, name, flags); });
}

EXPORTED int remove(const char* name) noexcept {
    return Removed(name, [&] { return REAL(remove)(name); });
}

EXPORTED int fchmodat(int folder, const char* name, mode_t mode, int flags) noexcept {
    return Done("chmod", Path(name), [&] { return REAL(fchmodat)(folder, name, mode, flags); });
}

EXPORTED int stat(const char* name, struct stat* status) noexcept {
    return Done("stat", Path(name), [&] { return REAL(stat)(name, status); });
}

EXPORTED int lstat(const char* name, struct stat* status) noexcept {
    return Done("stat", Path(name), [&] { return REAL(lstat)(name, status); });
}

EXPORTED int mkdir(const char* name, mode_t mode) noexcept {
    return Done("mkdir", Path(name), [&] { return REAL(mkdir)(name, mode); });
}

EXPORTED int close(int file) {
    return Closed(file, [&] { return REAL(close)(file); });
}

EXPORTED int fclose(FILE* file) {
    return Closed(fileno(file), [&] { return REAL(fclose)(file); });
}

// A clock that moves by one step each time it is looked at, so that two runs are alike.
EXPORTED int clock_gettime(clockid_t clock, timespec* time) noexcept {
    static long steps = 0;
    if (!isCounted || clock != CLOCK_MONOTONIC) return REAL(clock_gettime)(clock, time);
    time->tv_sec = 1;
    time->tv_nsec = ++steps * 1000;
    return 0;
}

namespace {

constexpr unsigned kLongestRun = 60;  // seconds, until a command counts as hanging

int (*realMain)(int, char**, char**);

void OpenBook(const char* path) {
    const int file = REAL(open)(path, O_RDWR | O_CLOEXEC);
    void* const mapped = mmap(nullptr, sizeof *book, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (mapped == MAP_FAILED) std::abort();
    REAL(close)(file);
    book = static_cast<Book*>(mapped);
}

int Main(int argc, char** argv, char** environment) {
    if (const char* const path = std::getenv("LUMISET_FAULT_BOOK")) OpenBook(path);
    if (const char* const fault = std::getenv("LUMISET_FAULT")) {
        const char* const colon = std::strchr(fault, ':');
        std::snprintf(kind, sizeof kind, "%.*s", static_cast<int>(colon - fault), fault);
        nth = std::atol(colon + 1);
    }
    const ssize_t length = readlink("/proc/self/exe", ourFolder, sizeof ourFolder - 1);
    ourFolder[std::max<ssize_t>(length, 0)] = '\0';
    if (char* const slash = std::strrchr(ourFolder, '/')) slash[1] = '\0';
    alarm(kLongestRun);
    isCounted = true;
    return realMain(argc, argv, environment);
}

}  // namespace

EXPORTED int __libc_start_main(int (*main)(int, char**, char**), int argc, char** argv,
                               void (*init)(), void (*fini)(), void (*rtldFini)(), void* stackEnd) {
    using Start = int (*)(int (*)(int, char**, char**), int, char**, void (*)(), void (*)(),
                          void (*)(), void*);
    realMain = main;
    return Next<Start>("__libc_start_main")(&Main, argc, argv, init, fini, rtldFini, stackEnd);
}
