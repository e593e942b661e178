// Loaded into the command ahead of all else, it counts what the command asks of the system from
// the first line of `main` to the end of the process, and lets the nth fail.
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
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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
std::string_view kind = "none";
long nth = 0;
char ourFolder[PATH_MAX] = "";
thread_local bool isCounted = false;  // on the main thread, once `main` has begun

// What is asked of the system here is nothing that the command asks.
class Aside {
  public:
    Aside() : was_(std::exchange(isCounted, false)) {}
    ~Aside() { isCounted = was_; }
    Aside(const Aside&) = delete;
    Aside& operator=(const Aside&) = delete;

  private:
    bool was_;
};

using Parts = std::initializer_list<std::string_view>;

bool Contains(std::string_view text, Parts parts) {
    return std::ranges::any_of(parts, [&](auto part) { return text.find(part) != text.npos; });
}

bool IsKind(Parts kinds) {
    return std::ranges::count(kinds, kind) > 0;
}

void Note(const char* what, const char* where) {
    book->struck = true;
    std::snprintf(book->what, sizeof book->what, "%s %.480s", what, where);
}

std::string PathOf(int file) {
    char text[PATH_MAX] = "";
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t length = readlink(link.c_str(), text, sizeof text);
    return {text, static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

std::string PathOf(const char* name) {
    char folder[PATH_MAX] = "";
    if (name[0] == '/' || getcwd(folder, sizeof folder) == nullptr) return name;
    return std::string(folder) + '/' + name;
}

bool IsSystems(std::string_view path) {
    for (const char* folder : {"/usr/", "/etc/", "/lib", "/proc/", "/sys/", "/dev/", "pipe:"})
        if (path.starts_with(folder)) return true;
    return path.empty();
}

// The disk ---------------------------------------------------------------------------------------

// A name that the disk does not know yet is there once its folder has been synced.
struct NameChange {
    std::string from;  // empty if the name was made
    std::string to;    // empty if the name was removed
    std::string old;   // what stood under the lost name; empty if nothing did
};

// What the disk does not have yet.
struct Disk {
    std::map<std::string, off_t> synced;  // of what was written: so many bytes
    std::vector<NameChange> names;
    int attic = 0;  // links that keep what stood under lost names
};
Disk& disk = *new Disk;  // files are closed after the last destructor

void NoteName(const std::string& from, const std::string& to, const std::string& lost) {
    NameChange& change = disk.names.emplace_back(NameChange{from, to, ""});
    const char* const attic = std::getenv("LUMISET_FAULT_ATTIC");
    if (attic == nullptr || access(lost.c_str(), F_OK) != 0) return;
    const std::string kept = std::string(attic) + '/' + std::to_string(disk.attic++);
    if (link(lost.c_str(), kept.c_str()) == 0) change.old = kept;
}

void NoteOpened(const char* name, bool makes) {
    if (!isCounted) return;
    const Aside aside;
    const std::string path = PathOf(name);
    if (IsSystems(path)) return;
    disk.synced[path] = 0;
    if (makes) NoteName("", path, "");
}

void NoteSync(int file) {
    const Aside aside;
    const std::string path = PathOf(file);
    struct stat status {};
    if (fstat(file, &status) != 0) return;
    if (disk.synced.contains(path)) disk.synced[path] = status.st_size;
    if (!S_ISDIR(status.st_mode)) return;
    std::erase_if(disk.names, [&](const NameChange& change) {
        const std::string& name = change.from.empty() ? change.to : change.from;
        return name.substr(0, name.rfind('/')) == path;
    });
}

void NoteRename(const std::string& from, const std::string& to) {
    if (auto written = disk.synced.extract(from)) {
        disk.synced.erase(to);
        written.key() = to;
        disk.synced.insert(std::move(written));
    }
}

void TakeNamesBack() {
    for (; !disk.names.empty(); disk.names.pop_back()) {
        const auto& [from, to, old] = disk.names.back();
        if (from.empty())
            unlinkat(AT_FDCWD, to.c_str(), 0);
        else if (!to.empty())
            REAL(rename)(to.c_str(), from.c_str());
        if (!old.empty()) REAL(rename)(old.c_str(), (to.empty() ? from : to).c_str());
    }
}

// What the disk does when the power goes: `cut` loses contents that were not synced, and `lost`
// names as well.
void LosePower() {
    if (kind != "kill")
        for (const auto& [path, size] : disk.synced)
            if (truncate(path.c_str(), size) != 0) continue;
    if (kind == "lost") TakeNamesBack();
}

[[noreturn]] void Die() {
    LosePower();
    raise(SIGKILL);
    std::abort();
}

// A run that nothing struck loses its power when it is done.
__attribute__((destructor)) void End() {
    isCounted = false;
    if (!book->struck && (kind == "cut" || kind == "lost")) LosePower();
}

// Operations -------------------------------------------------------------------------------------

enum class Answer { kDo, kFail, kPart, kPretend };

// What becomes of an operation on a file that is about to begin.
template <class File>
Answer Ask(const char* what, File file, bool canBePart = false) {
    if (!isCounted) return Answer::kDo;
    const Aside aside;
    const std::string path = PathOf(file);
    if (IsSystems(path)) return Answer::kDo;
    if (kind == "liar" && std::strcmp(what, "fsync") == 0 && nth > 0) return Answer::kPretend;
    if (++book->operations != nth || kind == "alloc") return Answer::kDo;
    Note(what, path.c_str());
    if (IsKind({"kill", "cut", "lost", "liar"})) Die();
    if (kind == "lie")
        return Contains(what, {"open", "read", "stat"}) ? Answer::kDo : Answer::kPretend;
    if (kind == "part") return canBePart ? Answer::kPart : Answer::kDo;
    errno = kind == "eio" ? EIO : kind == "enospc" ? ENOSPC : kind == "eacces" ? EACCES : EINTR;
    return kind == "eintr" && !canBePart ? Answer::kDo : Answer::kFail;
}

template <class File, class Work>
int Done(const char* what, File file, Work work, bool canBePart = false) {
    const Answer answer = Ask(what, file, canBePart);
    if (answer == Answer::kFail) return -1;
    return answer == Answer::kPretend ? 0 : work();
}

template <class Open>
int Opened(const char* name, int flags, Open open) {
    const Answer answer = Ask("open", name);
    if (answer == Answer::kFail || answer == Answer::kPretend) return -1;
    const bool makes = (flags & O_CREAT) != 0 && access(name, F_OK) != 0;
    const int file = open();
    if (file >= 0 && (flags & O_ACCMODE) != O_RDONLY) NoteOpened(name, makes);
    return file;
}

FILE* Opened(const char* name, std::string_view mode, FILE* (*open)(const char*, const char*)) {
    FILE* file = nullptr;
    const bool writes = mode[0] != 'r' || Contains(mode, {"+"});
    Opened(name, (writes ? O_RDWR : O_RDONLY) | (mode[0] != 'r' ? O_CREAT : 0), [&] {
        file = open(name, mode.data());
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
    const Answer answer = Ask(what, file, size > 1 || kind == "eintr");
    if (answer == Answer::kFail) return -1;
    if (answer == Answer::kPretend) return static_cast<ssize_t>(size);
    return work(answer == Answer::kPart ? size / 2 : size);
}

// A file that could not be closed well is closed.
template <class Close>
int Closed(int file, Close close) {
    const Answer answer = Ask("close", file);
    const int reason = errno;
    const int result = close();
    if (answer != Answer::kFail) return result;
    errno = reason;
    return EOF;
}

template <class Work>
int Removed(const char* name, Work work) {
    return Done("unlink", name, [&] {
        if (isCounted && access(name, F_OK) == 0) {
            const Aside aside;
            const std::string path = PathOf(name);
            if (!IsSystems(path)) NoteName(path, "", path);
        }
        return work();
    });
}

// Allocations ------------------------------------------------------------------------------------

enum class Module { kOurs, kLibrary, kSystems };

Module ModuleOf(std::string_view name) {
    if (Contains(name, {"/fault_injector.", "/libc.", "/libstdc++.", "/libgcc_s.", "/libm."}))
        return Module::kLibrary;
    if (name.empty() || Contains(name, {ourFolder, "/libpng", "/libz."})) return Module::kOurs;
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
    const Aside aside;
    Caller caller;
    _Unwind_Backtrace(&Look, &caller);
    if (caller.module == Module::kSystems) return false;
    if (++book->allocations != nth || kind != "alloc") return false;
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
    return Ask("open", name) == Answer::kDo ? REAL(opendir)(name) : nullptr;
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
        while (blocks->iov_len == 0)
            ++blocks;
        return REAL(write)(file, blocks->iov_base, std::min(part, blocks->iov_len));
    });
}

EXPORTED int fsync(int file) {
    const auto sync = [&] {
        const int result = REAL(fsync)(file);
        if (result == 0 && isCounted) NoteSync(file);
        return result;
    };
    return Done("fsync", file, sync, true);
}

EXPORTED int rename(const char* from, const char* to) noexcept {
    return Done("rename", to, [&] {
        if (!isCounted) return REAL(rename)(from, to);
        const Aside aside;
        if (access(from, F_OK) == 0) NoteName(PathOf(from), PathOf(to), to);
        const int result = REAL(rename)(from, to);
        if (result == 0) NoteRename(PathOf(from), PathOf(to));
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
    return Done("chmod", name, [&] { return REAL(fchmodat)(folder, name, mode, flags); });
}

EXPORTED int stat(const char* name, struct stat* status) noexcept {
    return Done("stat", name, [&] { return REAL(stat)(name, status); });
}

EXPORTED int lstat(const char* name, struct stat* status) noexcept {
    return Done("stat", name, [&] { return REAL(lstat)(name, status); });
}

EXPORTED int mkdir(const char* name, mode_t mode) noexcept {
    return Done("mkdir", name, [&] { return REAL(mkdir)(name, mode); });
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
    *time = {1, ++steps * 1000};
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
        kind = std::string_view(fault).substr(0, std::strcspn(fault, ":"));
        nth = std::atol(fault + kind.size() + 1);
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
