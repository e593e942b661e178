#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace TVL::Util {

// A stream that is made when it is first used: to make one takes longer than all else that most of
// its owners do. It stands in the memory of that stream and takes no more, so that a side which was
// built with the stream itself in this place finds one, once it is made, and leaves one here. What
// tells them apart is the pointer with which every stream begins, to its class's virtual
// operations: it is never null.
//
//     log.file.open("trace.txt");
//     log.buffer << "begun\n";
//     std::getline(*log.buffer, line);  // `*` and `->` are the stream itself
template <class Stream>
class LateStream {
  public:
    LateStream() noexcept { Forget(); }
    LateStream(const LateStream&) = delete;
    LateStream& operator=(const LateStream&) = delete;
    ~LateStream() {
        static_assert(sizeof(LateStream) == sizeof(Stream) &&
                      alignof(LateStream) == alignof(Stream));
        if (IsMade()) std::destroy_at(Made());
    }

    bool IsMade() const noexcept {
        const void* first = nullptr;
        std::memcpy(&first, memory, sizeof first);
        return first != nullptr;
    }

    Stream& operator*() {
        if (!IsMade()) Make();
        return *Made();
    }
    Stream* operator->() { return &**this; }

    // To write makes the stream; to ask does not.
    template <class Value>
    std::ostream& operator<<(const Value& value) {
        return **this << value;
    }
    std::ostream& operator<<(std::ostream& (*manipulator)(std::ostream&)) {
        return **this << manipulator;
    }
    template <class... Arguments>
    void open(Arguments&&... arguments) {
        (**this).open(std::forward<Arguments>(arguments)...);
    }
    bool is_open() const { return IsMade() && Made()->is_open(); }
    void close() {
        if (IsMade()) Made()->close();
    }
    std::string_view view() const { return IsMade() ? Made()->view() : std::string_view(); }
    std::string str() const { return std::string(view()); }
    void str(const std::string& text) { (**this).str(text); }

  private:
    Stream* Made() { return std::launder(reinterpret_cast<Stream*>(memory)); }
    const Stream* Made() const { return std::launder(reinterpret_cast<const Stream*>(memory)); }

    void Make() {
        try {
            new (memory) Stream;
        } catch (...) {
            Forget();
            throw;
        }
    }
    void Forget() noexcept { std::memset(memory, 0, sizeof(void*)); }

    alignas(Stream) std::byte memory[sizeof(Stream)];
};

}  // namespace TVL::Util
