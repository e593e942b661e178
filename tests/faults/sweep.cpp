// Runs the command on small inputs over and over. In each run one thing fails that it asks of the
// system: the nth allocation or the nth operation on a file, for every n until there is none left.
// After each it looks at how the command ended and at what it left in its folder.

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "faults/book.h"

namespace {

namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;  // a folder: names and contents

struct Verb {
    std::string name;
    std::string words;
    bool draws = false;  // a picture takes long
};

// Over an old scene, into a new place, over another, and over the one that is read.
const std::vector<Verb> kVerbs = {
    {"record", "record small.bvh --scene take.scene --poses poses.csv"},
    {"open", "open in.scene --save new.scene"},
    {"merge", "merge in.scene other.scene --save take.scene"},
    {"convert", "convert in.scene --save in.scene"},
    {"render", "render in.scene --time 0 --size 32x32 -o picture.png", true}};

struct Kind {
    std::string name;
    bool kills = false;
    bool isSurvived = false;  // whoever asks again gets what it wants
};
const std::vector<Kind> kKinds = {{"alloc"},
                                  {"eio"},
                                  {"enospc"},
                                  {"eacces"},
                                  {"part", false, true},
                                  {"eintr", false, true},
                                  {"kill", true},
                                  {"cut", true},
                                  {"lost", true}};
// Disks that lie: what they do to a scene cannot be helped, and a sweep must see it.
const std::vector<Kind> kLies = {{"lie"}, {"liar", true}};

constexpr char kCapture[] = R"(HIERARCHY
ROOT Hip
{
 OFFSET 0 0 0
 CHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation
 JOINT Knee
 {
  OFFSET 0 -40 0
  CHANNELS 3 Zrotation Xrotation Yrotation
  End Site
  {
   OFFSET 0 -40 0
  }
 }
}
MOTION
Frames: 3
Frame Time: 0.0333333
0 90 0 0 0 0 0 0 0
1 91 0 1 2 3 10 20 30
2 92 0 4 5 6 11 21 31
)";

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFile(const fs::path& path, const std::string& bytes) {
    if (!std::ofstream(path, std::ios::binary).write(bytes.data(), std::ssize(bytes)).flush())
        throw std::runtime_error(path.string() + ": cannot be written");
}

Files ReadFolder(const fs::path& folder) {
    Files files;
    for (const auto& entry : fs::directory_iterator(folder))
        files[entry.path().filename()] = ReadFile(entry);
    return files;
}

struct Ending {
    int status = 0;  // 128 and the signal, if one ended it
    std::string out;
    std::string error;
    faults::Book book{};
};

// A place to run the command in: a folder with scenes, and another for all else.
class Place {
  public:
    explicit Place(const fs::path& folder) : home_(folder / "home"), scenes_(folder / "scenes") {
        const fs::path documents = home_ / "documents";
        fs::create_directories(documents / "Tarvo Works/Lumiset/data");
        fs::create_directories(scenes_);
        WriteFile(home_ / "lumiset.reg",
                  "Windows Registry Editor Version 5.00\n\n"
                  "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Tarvo Works\\Ostrel tools]\n"
                  "\"datapath\"=\"" +
                      fs::path(COMMAND).parent_path().string() +
                      "\"\n\n"
                      "[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\"
                      "Shell Folders]\n\"Personal\"=\"" +
                      documents.string() + "\"\n");
        WriteFile(BookPath(), std::string(sizeof(faults::Book), '\0'));
    }

    const fs::path& Scenes() const { return scenes_; }

    void Lay(const Files& files) const {
        fs::remove_all(home_ / "tmp");
        fs::remove_all(home_ / "attic");
        fs::create_directory(home_ / "tmp");
        fs::create_directory(home_ / "attic");
        fs::remove(home_ / "documents/Tarvo Works/Lumiset/data/adaptor_3dsmax9");
        for (const auto& entry : fs::directory_iterator(scenes_))
            fs::remove(entry);
        for (const auto& [name, bytes] : files)
            WriteFile(scenes_ / name, bytes);
    }

    bool LeftScratch() const { return !fs::is_empty(home_ / "tmp"); }

    Ending Run(const std::string& words, const std::string& fault) const {
        WriteFile(BookPath(), std::string(sizeof(faults::Book), '\0'));
        Ending ending;
        ending.status = Spawn(words, fault);
        ending.out = ReadFile(home_ / "out");
        ending.error = ReadFile(home_ / "error");
        const std::string book = ReadFile(BookPath());
        std::memcpy(&ending.book, book.data(), std::min(book.size(), sizeof ending.book));
        return ending;
    }

  private:
    std::string BookPath() const { return home_ / "book"; }

    int Spawn(const std::string& words, const std::string& fault) const {
        std::istringstream stream(words);
        std::vector<std::string> arguments = {COMMAND};
        arguments.insert(arguments.end(), std::istream_iterator<std::string>(stream), {});
        std::vector<std::string> variables = {
            "LD_PRELOAD=" INJECTOR,
            faults::kBookVariable + ("=" + BookPath()),
            faults::kFaultVariable + ("=" + fault),
            faults::kAtticVariable + ("=" + (home_ / "attic").string()),
            "LUMISET_REGISTRY=" + (home_ / "lumiset.reg").string(),
            "TMPDIR=" + (home_ / "tmp").string(),
            "MESA_SHADER_CACHE_DISABLE=true"};
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addchdir_np(&actions, scenes_.c_str());
        constexpr int kNew = O_WRONLY | O_CREAT | O_TRUNC;
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, (home_ / "out").c_str(), kNew,
                                         0600);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, (home_ / "error").c_str(), kNew,
                                         0600);
        pid_t child = 0;
        const int failed = posix_spawn(&child, COMMAND, &actions, nullptr,
                                       Pointers(arguments).data(), Pointers(variables).data());
        posix_spawn_file_actions_destroy(&actions);
        if (failed != 0)
            throw std::runtime_error(std::string(COMMAND ": ") + std::strerror(failed));
        int status = 0;
        waitpid(child, &status, 0);
        return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    }

    static std::vector<char*> Pointers(std::vector<std::string>& texts) {
        std::vector<char*> pointers;
        for (std::string& text : texts)
            pointers.push_back(text.data());
        pointers.push_back(nullptr);
        return pointers;
    }

    fs::path home_;
    fs::path scenes_;
};

constexpr char kNoFault[] = "none:0";

Ending Do(const Place& place, const std::string& words) {
    Ending ending = place.Run(words, kNoFault);
    if (ending.status != 0) throw std::runtime_error(words + ": " + ending.error);
    return ending;
}

// What each verb finds before it.
Files MakeInputs(const Place& place) {
    place.Lay({{"small.bvh", kCapture}, {"other.bvh", kCapture}});
    Do(place, "record small.bvh --scene in.scene");
    Do(place, "record other.bvh --scene other.scene");
    Files files = ReadFolder(place.Scenes());
    files["take.scene"] = files["other.scene"];
    files["poses.csv"] = "old poses";
    files["picture.png"] = "old picture";
    return files;
}

// A verb's run without a fault, and all that has been seen to be as good as what it left.
struct Clean {
    Files before;
    Files after;
    Ending ending;
    std::mutex guard;
    std::set<std::string> sound;

    const std::string* Before(const std::string& name) const {
        const auto found = before.find(name);
        return found == before.end() ? nullptr : &found->second;
    }
    bool Changes(const std::string& name) const {
        const auto found = after.find(name);
        return found != after.end() && (!before.contains(name) || before.at(name) != found->second);
    }
};

bool IsScene(const std::string& name) {
    return name.ends_with(".scene");
}

bool IsUnfinished(const std::string& name) {
    return name.ends_with(".saving") || name.find(".part") != std::string::npos;
}

// Whether another process finds in the scene what it finds in the one of the clean run.
bool IsAsGood(const Place& place, Clean& clean, const std::string& name, const std::string& bytes) {
    if (bytes == clean.after.at(name)) return true;
    if (!IsScene(name)) return false;
    const std::lock_guard lock(clean.guard);
    if (clean.sound.contains(bytes)) return true;
    const std::string words = "open " + name;
    const Ending found = place.Run(words, kNoFault);
    WriteFile(place.Scenes() / "compared", clean.after.at(name));
    const bool differs = place.Run("diff compared " + name, kNoFault).status != 0;
    fs::rename(place.Scenes() / "compared", place.Scenes() / name);
    const bool isSound =
        !differs && found.status == 0 && found.out == place.Run(words, kNoFault).out;
    if (isSound) clean.sound.insert(bytes);
    return isSound;
}

// What is wrong with a folder that the command has left; empty if nothing is.
std::string FaultInFolder(const Place& place, Clean& clean, bool isDone, bool mayLeave) {
    Files now = ReadFolder(place.Scenes());
    for (const auto& [name, bytes] : clean.after)
        if (!now.contains(name) && (isDone || clean.before.contains(name)))
            return name + " is gone";
    for (const auto& [name, bytes] : now) {
        const std::string* const before = clean.Before(name);
        if (IsUnfinished(name) && !clean.after.contains(name)) {
            if (!mayLeave) return name + " is left behind";
        } else if (!clean.after.contains(name)) {
            return name + " is new";
        } else if (!clean.Changes(name)) {
            if (before == nullptr || bytes != *before) return name + " has changed";
        } else if (!isDone && before != nullptr && bytes == *before) {
            continue;
        } else if (!IsAsGood(place, clean, name, bytes)) {
            return name + (isDone ? " is not what was to be saved" : " is neither old nor new");
        }
    }
    return {};
}

// The next save takes away what is a day old and cut, and nothing else.
std::string FaultInNextSave(const Place& place) {
    constexpr std::chrono::hours kTwoDays{48};
    std::vector<fs::path> left;
    for (const auto& entry : fs::directory_iterator(place.Scenes()))
        if (entry.path().extension() == ".saving") left.push_back(entry.path());
    if (left.empty()) return {};
    for (const fs::path& path : left)
        fs::last_write_time(path, fs::file_time_type::clock::now() - kTwoDays);
    Do(place, "open other.scene --save other.scene");
    for (const fs::path& path : left)
        if (fs::exists(path) &&
            place.Run("diff " + path.filename().string() + " other.scene", kNoFault).status > 1)
            return "the next save leaves " + path.filename().string();
    return {};
}

struct Case {
    const Verb* verb;
    const Kind* kind;
    long n;
};

std::string Told(const Case& run) {
    return run.verb->name + ' ' + run.kind->name + ' ' + std::to_string(run.n);
}

struct Verdict {
    std::string fault;  // empty if there is none
    bool struck = false;
    bool isDone = false;
    Ending ending;
};

// What was asked for is done, and what else did not go well is told.
bool HasComplaint(const Ending& ending) {
    return ending.status == 0 && ending.out.find("\nComplaint: ") != std::string::npos;
}

std::string FaultInWords(const Case& run, const Clean& clean, const Ending& ending) {
    if (ending.status > 128) return "ended by signal " + std::to_string(ending.status - 128);
    if (ending.status > 1) return "status " + std::to_string(ending.status);
    if (ending.status == 1 && run.kind->isSurvived) return "refused what has to be survived";
    if (ending.status == 1 &&
        ("\n" + ending.error).find("\nlumiset-headless: ") == std::string::npos)
        return "status 1 and no word of it";
    if (ending.error.find("std::") != std::string::npos) return "no person's words";
    if (ending.status == 0 && ending.out != clean.ending.out && !HasComplaint(ending))
        return "success in other words";
    return {};
}

Verdict Try(const Place& place, Clean& clean, const Case& run) {
    place.Lay(clean.before);
    Verdict verdict;
    verdict.ending = place.Run(run.verb->words, run.kind->name + ':' + std::to_string(run.n));
    const Ending& ending = verdict.ending;
    verdict.struck = ending.book.struck;
    verdict.isDone = ending.status == 0;
    const bool isKilled = run.kind->kills && verdict.struck;
    if (isKilled && ending.status != 128 + SIGKILL) verdict.fault = "was not killed";
    if (!isKilled) verdict.fault = FaultInWords(run, clean, ending);
    const bool mayLeave = isKilled || std::strncmp(ending.book.what, "unlink", 6) == 0;
    if (verdict.fault.empty() && !mayLeave && place.LeftScratch())
        verdict.fault = "a scratch file is left";
    if (verdict.fault.empty())
        verdict.fault = FaultInFolder(place, clean, verdict.isDone, mayLeave);
    if (verdict.fault.empty() && isKilled) verdict.fault = FaultInNextSave(place);
    return verdict;
}

struct Figures {
    long runs = 0;
    long refused = 0;
    long done = 0;
    long complained = 0;
    long killed = 0;
    long faults = 0;

    void Count(const Verdict& verdict) {
        ++runs;
        if (!verdict.fault.empty())
            ++faults;
        else if (verdict.ending.status == 128 + SIGKILL)
            ++killed;
        else if (HasComplaint(verdict.ending))
            ++complained;
        else
            ++(verdict.isDone ? done : refused);
    }
    void Add(const Figures& other) {
        runs += other.runs;
        refused += other.refused;
        done += other.done;
        complained += other.complained;
        killed += other.killed;
        faults += other.faults;
    }
};

void Print(const std::string& title, const Figures& figures) {
    std::printf(
        "%-16s %7ld runs: %7ld refused, %7ld done, %6ld with a complaint, %6ld killed, %5ld "
        "faults\n",
        title.c_str(), figures.runs, figures.refused, figures.done, figures.complained,
        figures.killed, figures.faults);
    std::fflush(stdout);
}

struct Settings {
    fs::path folder;
    std::vector<Kind> kinds = kKinds;
    std::string verb;
    std::string kind;
    long n = 0;  // 0: all of them
    bool isSample = false;
};

class Sweep {
  public:
    explicit Sweep(const Settings& settings) : settings_(settings) {
        for (unsigned i = 0; i < std::max(1U, std::thread::hardware_concurrency()); ++i)
            places_.emplace_back(settings.folder / std::to_string(i));
        inputs_ = MakeInputs(places_.front());
    }

    Figures All() {
        Figures all;
        for (const Verb& verb : kVerbs)
            if (IsWanted(verb)) all.Add(One(verb));
        Print("all", all);
        return all;
    }

  private:
    bool IsWanted(const Verb& verb) const {
        const fs::path renderer = fs::path(COMMAND).replace_filename("headless_viewport.so");
        if (verb.draws && !fs::exists(renderer)) return false;
        return settings_.verb.empty() || settings_.verb == verb.name;
    }

    Figures One(const Verb& verb) {
        Clean clean;
        clean.before = inputs_;
        places_.front().Lay(inputs_);
        clean.ending = Do(places_.front(), verb.words);
        clean.after = ReadFolder(places_.front().Scenes());
        Figures all;
        for (const Kind& kind : settings_.kinds) {
            if (!settings_.kind.empty() && settings_.kind != kind.name) continue;
            const Figures figures = OneKind(verb, kind, clean);
            Print(verb.name + ' ' + kind.name, figures);
            all.Add(figures);
        }
        return all;
    }

    // Every nth until one has nothing left to fail.
    Figures OneKind(const Verb& verb, const Kind& kind, Clean& clean) {
        Figures figures;
        const long stride = settings_.isSample ? Stride(verb, kind) : 1;
        std::atomic<long> next = settings_.n > 0 ? settings_.n : 1 + stride / 2;
        std::atomic<bool> isOver = false;
        std::mutex guard;
        const auto work = [&](const Place& place) {
            while (!isOver) {
                const Case run{&verb, &kind, next.fetch_add(stride)};
                const Verdict verdict = Try(place, clean, run);
                if (!verdict.struck || settings_.n > 0) isOver = true;
                const std::lock_guard lock(guard);
                if (verdict.struck || !verdict.fault.empty()) figures.Count(verdict);
                Tell(run, verdict);
            }
        };
        std::vector<std::thread> workers;
        for (std::size_t i = 0; i < (settings_.n > 0 ? 1 : places_.size()); ++i)
            workers.emplace_back(work, std::cref(places_[i]));
        for (std::thread& worker : workers)
            worker.join();
        return figures;
    }

    static long Stride(const Verb& verb, const Kind& kind) {
        constexpr long kAllocations = 97;
        constexpr long kOperations = 5;
        constexpr long kSlower = 5;
        return (kind.name == "alloc" ? kAllocations : kOperations) * (verb.draws ? kSlower : 1);
    }

    void Tell(const Case& run, const Verdict& verdict) const {
        if (verdict.fault.empty() && settings_.n == 0) return;
        std::printf("%s: ./dev faults %s: %s%s%s\n", verdict.fault.empty() ? "sound" : "FAULT",
                    Told(run).c_str(), verdict.ending.book.what, verdict.fault.empty() ? "" : ": ",
                    verdict.fault.c_str());
        if (settings_.n > 0)
            std::printf("status %d\n%s%s", verdict.ending.status, verdict.ending.out.c_str(),
                        verdict.ending.error.c_str());
        std::fflush(stdout);
    }

    const Settings& settings_;
    std::vector<Place> places_;
    Files inputs_;
};

constexpr char kUsage[] = "fault_sweep FOLDER [--sample | --lies] [VERB [KIND [N]]]";

template <class Named>
void CheckName(const std::vector<Named>& known, const std::string& name) {
    if (!name.empty() && std::ranges::find(known, name, &Named::name) == known.end())
        throw std::runtime_error(name + " is unknown: " + kUsage);
}

Settings Read(std::vector<std::string> words) {
    constexpr std::size_t kMostWords = 4;
    if (words.empty()) throw std::runtime_error(kUsage);
    Settings settings;
    settings.isSample = std::erase(words, "--sample") > 0;
    if (std::erase(words, "--lies") > 0) settings.kinds = kLies;
    words.resize(kMostWords);
    settings.folder = fs::absolute(words[0]);
    settings.verb = words[1];
    settings.kind = words[2];
    settings.n = std::atol(words[3].c_str());
    CheckName(kVerbs, settings.verb);
    CheckName(settings.kinds, settings.kind);
    return settings;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Settings settings = Read({argv + 1, argv + argc});
        const Figures figures = Sweep(settings).All();
        const bool areExpected = settings.kinds.front().name == kLies.front().name;
        return (figures.faults > 0) == areExpected ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << "faults: " << error.what() << '\n';
        return 2;
    }
}
