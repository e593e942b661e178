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
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <map>
#include <string>
#include <type_traits>
#include <utility>

extern "C" void* __libc_malloc(size_t);

namespace fs = std::filesystem;

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

Book* book = nullptr;
std::string_view kind = "none";
long nth = 0;
std::string& ourFolder = *new std::string;
thread_local bool isCounted = false;  // on the main thread, once `main` has begun

// What is asked of the system here is nothing that the command asks.
class Aside {
  public:
    Aside() : was_(std::exchange(isCounted, false)) {}
    ~Aside() { isCounted = was_; }
    Aside& operator=(Aside&&) = delete;

  private:
    bool was_;
};

using Parts = std::initializer_list<std::string_view>;

bool Contains(std::string_view text, Parts parts) {
    return std::ranges::any_of(parts, [&](auto part) { return text.find(part) != text.npos; });
}

void Note(const char* what, const char* where) {
    book->struck = true;
    std::snprintf(book->what, sizeof book->what, "%s %.480s", what, where);
}

std::string PathOf(int file) {
    std::error_code none;
    return fs::read_symlink("/proc/self/fd/" + std::to_string(file), none);
}

std::string PathOf(const char* name) {
    return fs::absolute(name);
}

bool IsSystems(std::string_view path) {
    for (const char* folder : {"/usr/", "/etc/", "/lib", "/proc/", "/sys/", "/dev/", "pipe:"})
        if (path.starts_with(folder)) return true;
    return path.empty();
}

// Where the sweep keeps what belongs to no disk.
fs::path Home() {
    return std::getenv("LUMISET_FAULT_HOME");
}

// The disk ---------------------------------------------------------------------------------------

// What the disk has of the files that were written, by their inodes: so many bytes. Files are
// closed after the last destructor.
auto& synced = *new std::map<ino_t, off_t>;

// The attic has the names that the disk has in the folder of the run, as links to what stands under
// them.
void Replace(const fs::path& folder, const fs::path& source) {
    for (const auto& entry : fs::directory_iterator(folder))
        fs::remove(entry);
    for (const auto& entry : fs::directory_iterator(source))
        fs::create_hard_link(entry, folder / entry.path().filename());
}

// The first write to an empty file may be to a new one, which has the inode of another that is
// gone.
void NoteWrite(int file) {
    const Aside aside;
    struct stat status {};
    if (fstat(file, &status) != 0) return;
    off_t& size = synced[status.st_ino];
    if (status.st_size == 0) size = 0;
}

void NoteSync(int file) {
    const Aside aside;
    struct stat status {};
    if (fstat(file, &status) == 0) synced[status.st_ino] = status.st_size;
    if (kind == "lost" && fs::equivalent(PathOf(file), ".")) Replace(Home() / "attic", ".");
}

// What the disk does when the power goes: `cut` loses contents that were not synced, and `lost`
// names as well.
void LosePower() {
    if (kind == "kill") return;
    for (const auto& entry : fs::directory_iterator(".")) {
        struct stat status {};
        if (stat(entry.path().c_str(), &status) != 0 || !synced.contains(status.st_ino)) continue;
        const off_t size = std::min(status.st_size, synced[status.st_ino]);
        fs::resize_file(entry, static_cast<std::uintmax_t>(size));
    }
    if (kind == "lost") Replace(".", Home() / "attic");
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
Answer Ask(const char* what, File file) {
    if (!isCounted) return Answer::kDo;
    const Aside aside;
    const std::string path = PathOf(file);
    if (IsSystems(path) || ++book->operations != nth || kind == "alloc") return Answer::kDo;
    Note(what, path.c_str());
    if (Contains("kill cut lost", {kind})) Die();
    if (kind == "lie")
        return Contains(what, {"open", "read", "stat"}) ? Answer::kDo : Answer::kPretend;
    const bool canBePart = Contains("read write fsync", {what});
    if (kind == "part") return canBePart ? Answer::kPart : Answer::kDo;
    errno = kind == "eio" ? EIO : kind == "enospc" ? ENOSPC : kind == "eacces" ? EACCES : EINTR;
    return kind == "eintr" && !canBePart ? Answer::kDo : Answer::kFail;
}

template <class File, class Result, class... Given>
Result Done(const char* what, File file, Result (*work)(Given...),
            std::type_identity_t<Given>... given) {
    const Answer answer = Ask(what, file);
    if (answer == Answer::kDo || answer == Answer::kPart) return work(given...);
    if constexpr (std::is_pointer_v<Result>)
        return nullptr;
    else
        return answer == Answer::kPretend ? 0 : -1;
}

// A write, or a read, that may come to its half.
template <class Work>
ssize_t Moved(const char* what, int file, size_t size, Work work) {
    if (isCounted && *what == 'w') NoteWrite(file);
    const Answer answer = Ask(what, file);
    if (answer == Answer::kFail) return -1;
    if (answer == Answer::kPretend) return static_cast<ssize_t>(size);
    return work(answer == Answer::kPart ? (size + 1) / 2 : size);
}

// A file that could not be closed well is closed.
template <class File>
int Closed(int number, File file, int (*close)(File)) {
    const bool isFailing = Ask("close", number) == Answer::kFail;
    const int reason = errno;
    const int result = close(file);
    if (isFailing) errno = reason;
    return isFailing ? EOF : result;
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

EXPORTED int open(const char* name, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return Done("open", name, Next<int (*)(const char*, int, mode_t)>("open"), name, flags, mode);
}

EXPORTED FILE* fopen(const char* name, const char* mode) {
    return Done("open", name, REAL(fopen), name, mode);
}

EXPORTED FILE* fopen64(const char* name, const char* mode) {
    return Done("open", name, REAL(fopen64), name, mode);
}

EXPORTED DIR* opendir(const char* name) {
    return Done("open", name, REAL(opendir), name);
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
    const int result = Done("fsync", file, REAL(fsync), file);
    if (result == 0 && isCounted) NoteSync(file);
    return result;
}

EXPORTED int rename(const char* from, const char* to) noexcept {
    return Done("rename", to, REAL(rename), from, to);
}

EXPORTED int remove(const char* name) noexcept {
    return Done("unlink", name, REAL(remove), name);
}

EXPORTED int fchmodat(int folder, const char* name, mode_t mode, int flags) noexcept {
    return Done("chmod", name, REAL(fchmodat), folder, name, mode, flags);
}

EXPORTED int stat(const char* name, struct stat* status) noexcept {
    return Done("stat", name, REAL(stat), name, status);
}

EXPORTED int lstat(const char* name, struct stat* status) noexcept {
    return Done("stat", name, REAL(lstat), name, status);
}

EXPORTED int mkdir(const char* name, mode_t mode) noexcept {
    return Done("mkdir", name, REAL(mkdir), name, mode);
}

EXPORTED int close(int file) {
    return Closed(file, file, REAL(close));
}

EXPORTED int fclose(FILE* file) {
    return Closed(fileno(file), file, REAL(fclose));
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

int Main(int argc, char** argv, char** environment) {
    const int file = open((Home() / "book").c_str(), O_RDWR | O_CLOEXEC);
    void* const mapped = mmap(nullptr, sizeof *book, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (mapped == MAP_FAILED) std::abort();
    close(file);
    book = static_cast<Book*>(mapped);
    const char* const fault = std::getenv("LUMISET_FAULT");
    kind = std::string_view(fault).substr(0, std::strcspn(fault, ":"));
    nth = std::atol(fault + kind.size() + 1);
    ourFolder = fs::read_symlink("/proc/self/exe").parent_path().string() + '/';
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
