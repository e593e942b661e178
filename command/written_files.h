#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "platform/interrupt.h"
#include "platform/whole_file.h"

// The files that the command writes.
namespace headless {

// A file as a person named it; the path is empty where none was named.
struct NamedFile {
    std::string option;
    std::string path;
};

// Refuses, before anything is done, to write two files in one place, or one in the place of a file
// that is to be kept.
void KeepApart(const std::vector<NamedFile>& kept, const std::vector<NamedFile>& written);

// The same for a file that is written as the work goes on, and one that is expected already.
void KeepFromBooked(const NamedFile& written);

// Which of these the file's name ends in, by its place; refused if in none. They are in small
// letters; capitals do as well.
std::size_t NeedEnding(const NamedFile& written, const std::vector<std::string>& endings);

// Which of the files that a verb is to write stand: the book of this process, since a verb can end
// anywhere. A file is written whole or not at all.
void ExpectFile(const std::string& file);
void NoteSaved(const std::string& file);

// Of what this verb makes it is told that it was not saved, also where no file was named for it.
void TellInAnyCase();

// The end of what a person reads of a verb that did its work: a line for each file that was saved.
void TellSaved(std::ostream& out);

// The end of the line that a verb fails with: that nothing was saved, or what was saved before.
// Nothing where no file was to be written. Asks for no memory.
void TellWhatStands(std::ostream& out);

// The system's folder for files that pass, and a new folder in it or another, whose name begins so.
// Both throw a Failure where there is none.
std::string FolderForPassing();
std::string NewFolder(const std::string& parent, const std::string& name);

// A new folder for files that pass, which goes with all that is in it.
class PassingFolder {
  public:
    PassingFolder(const std::string& parent, const std::string& name)
        : path_(NewFolder(parent, name)) {}
    ~PassingFolder();
    PassingFolder(const PassingFolder&) = delete;
    PassingFolder& operator=(const PassingFolder&) = delete;

    const std::string& Path() const { return path_; }

  private:
    std::string path_;
};

// All that a stream still gives; nothing if it cannot be read to its end.
std::optional<std::string> RestOf(std::istream& stream);

// All that a file holds. Throws a Failure if it cannot be read to its end.
std::string TextOfFile(const std::string& path);

// A file that the Core writes for the command: it is there only if the work on it came to its end,
// and takes the place of `target` at Keep. Without a target it lies in the system's folder for such
// files, and goes. While it lives, Ctrl-C ends no process that would leave it there; the work is to
// ask for that.
class CoreFile {
  public:
    // Throws a Failure if nothing can be written there.
    explicit CoreFile(const std::string& target);

    const std::string& Path() const { return file_.Path(); }

    // Throws a Failure if it cannot take its place.
    void Keep();

    // The text with the target's name in place of the file's own, which no person knows.
    std::string Named(std::string text) const;

  private:
    platform::Interrupt interrupt_;
    std::string target_;
    platform::WholeFile file_;
};

}  // namespace headless
