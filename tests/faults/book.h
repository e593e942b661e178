#pragma once

// What the sweeper and the library inside the command tell each other.
namespace faults {

// Of the command's environment: the file that holds the book, the fault ("KIND:N"), and a folder
// on the disk of the scenes for what a power cut would bring back.
inline constexpr char kBookVariable[] = "LUMISET_FAULT_BOOK";
inline constexpr char kFaultVariable[] = "LUMISET_FAULT";
inline constexpr char kAtticVariable[] = "LUMISET_FAULT_ATTIC";

// Mapped by both; it outlives the command.
struct Book {
    long allocations;
    long operations;
    bool struck;
    char what[512];  // the operation that failed, and its file
};

}  // namespace faults
