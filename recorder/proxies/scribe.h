#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "foundation/thrown.h"
#include "recorder/stream/methods.h"
#include "recorder/stream/stream.h"
#include "recorder/tape/tape_writer.h"

namespace recorder {

template <class>
inline constexpr bool kIsTuple = false;
template <class... Values>
inline constexpr bool kIsTuple<std::tuple<Values...>> = true;

// Does it at the end of a scope, however that ends.
template <class Work>
class AtEnd {
  public:
    explicit AtEnd(Work work) : work_(std::move(work)) {}
    ~AtEnd() { work_(); }
    AtEnd(const AtEnd&) = delete;
    AtEnd& operator=(const AtEnd&) = delete;

  private:
    Work work_;
};

// Tells the stream what crosses the boundary in one attachment of a Core: each call before it is
// made, and what it gives or throws behind it. Any thread may call.
class Scribe {
  public:
    explicit Scribe(Stream& stream) : stream_(stream) {}
    Scribe(const Scribe&) = delete;
    Scribe& operator=(const Scribe&) = delete;

    // Makes the call `make`, of which `said` are the values; a tuple that it gives are several that
    // are answered. Proxies are told by their ids.
    template <Operation kOperation, class Make, class... Said>
    std::invoke_result_t<Make> Record(ObjectId on, const Make& make, const Said&... said) {
        const Open open(*this);
        const std::uint64_t call =
            IsHeard() ? TellCall<kOperation>(on, Told(said)...) : std::uint64_t{0};
        try {
            if constexpr (std::is_void_v<std::invoke_result_t<Make>>) {
                make();
                if (IsHeard()) stream_.Answer(call, kOperation, on);
            } else {
                auto result = make();
                if (IsHeard()) TellAnswer<kOperation>(call, on, result);
                return result;
            }
        } catch (...) {
            if (IsHeard()) stream_.Thrown(call, kOperation, on, TVL::ThrownWords());
            throw;
        }
    }

    // Hands a call on as it is. Where nothing is behind any more the answer is nothing.
    template <Operation kOperation, class Target, class... Values>
    auto Pass(ObjectId on, Target* target, Values&&... values) {
        using Result = std::invoke_result_t<decltype(kMethodOf<kOperation>), Target&, Values...>;
        const auto make = [&]() -> Result {
            if (!target) return Result();
            return (target->*kMethodOf<kOperation>)(std::forward<Values>(values)...);
        };
        return Record<kOperation>(on, make, values...);
    }

    ObjectId NewId(ObjectKind kind) { return MakeObjectId(kind, ++lastId_); }

    // Of what crosses as it is, and is known by its address; 0 for null.
    ObjectId IdOf(ObjectKind kind, const void* object);

    // Of proxies on their way across; none where there is no memory.
    template <class Proxy, class Base>
    static std::vector<ObjectId> IdsOf(const std::vector<Base*>& proxies) noexcept try {
        std::vector<ObjectId> ids;
        ids.reserve(proxies.size());
        for (const Base* const each : proxies)
            ids.push_back(each ? static_cast<const Proxy*>(each)->Id() : 0);
        return ids;
    } catch (...) {
        return {};
    }

    void Know(ObjectId object, const ObjectFacts& facts) {
        if (IsHeard()) stream_.Know(object, facts);
    }
    void Note(std::string_view word, std::string_view about) {
        if (IsHeard()) stream_.Note(word, about);
    }

    // Another session has begun: what is called from here on is made and not told.
    void Close() { isHeard_ = false; }

    // No call is being made.
    bool IsIdle() const { return calls_ == 0; }

    // How often that has come to be so.
    std::uint64_t Rests() const { return rests_; }

    void TellObjects(const TapeWriter::TellObject& tell) const;

  private:
    // The thread that counts is one; others, which ought not to call, may be counted wrongly.
    class Open {
      public:
        explicit Open(Scribe& scribe) : scribe_(scribe) { Add(scribe.calls_, 1); }
        ~Open() {
            if (Add(scribe_.calls_, -1) == 0) Add(scribe_.rests_, std::uint64_t{1});
        }
        Open(const Open&) = delete;
        Open& operator=(const Open&) = delete;

      private:
        template <class Number>
        static Number Add(std::atomic<Number>& sum, Number number) {
            const Number now = sum.load(std::memory_order_relaxed) + number;
            sum.store(now, std::memory_order_relaxed);
            return now;
        }
        Scribe& scribe_;
    };

    bool IsHeard() const { return isHeard_.load(std::memory_order_relaxed); }

    template <Operation kOperation, class... Values>
    std::uint64_t TellCall(ObjectId on, const Values&... values) {
        return stream_.Call(kOperation, on, values...);
    }

    template <Operation kOperation, class Result>
    void TellAnswer(std::uint64_t call, ObjectId on, const Result& result) {
        const auto tell = [&](const auto&... values) {
            const auto put = [&](const auto&... told) {
                stream_.Answer(call, kOperation, on, told...);
            };
            put(Told(values)...);
        };
        if constexpr (kIsTuple<Result>)
            std::apply(tell, result);
        else
            tell(result);
    }

    // A value as the stream takes it.
    template <class Value>
    decltype(auto) Told(const Value& value) {
        if constexpr (std::is_same_v<Value, TVL::CMesh>)
            return stream_.Know(value);
        else if constexpr (std::is_same_v<Value, std::string>)
            return std::string_view(value);
        else if constexpr (std::is_same_v<Value, float>)
            return double{value};
        else if constexpr (std::is_same_v<Value, std::vector<int>>)
            return TextOf(value);
        else if constexpr (std::is_same_v<Value, void*>)
            return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(value));
        else if constexpr (std::is_pointer_v<Value>)
            return value ? value->Id() : ObjectId{0};
        else
            return (value);
    }

    static std::string TextOf(const std::vector<int>& numbers) noexcept;

    Stream& stream_;
    std::atomic<bool> isHeard_ = true;
    std::atomic<int> calls_ = 0;
    std::atomic<std::uint64_t> rests_ = 0;
    std::atomic<std::uint64_t> lastId_ = 0;
    mutable std::mutex mutex_;
    std::map<std::pair<ObjectKind, const void*>, ObjectId> known_;
};

// Stands for an object of the other side; with null behind it, for one that is gone.
template <class Base, class Real = Base>
class Proxy : public Base {
  public:
    Proxy(const Proxy&) = delete;
    Proxy& operator=(const Proxy&) = delete;

    ObjectId Id() const { return id_; }
    Real* Behind() const { return real_; }

  protected:
    Proxy(Scribe& scribe, ObjectId id, Real* real) : scribe_(scribe), id_(id), real_(real) {}
    ~Proxy() = default;

    template <Operation kOperation, class... Values>
    auto Pass(Values&&... values) {
        return scribe_.Pass<kOperation>(id_, real_, std::forward<Values>(values)...);
    }

    Scribe& scribe_;
    ObjectId id_;
    Real* real_;
};

// The same for one that has extensions.
template <class Base, class Real = Base>
class ExtendableProxy : public Proxy<Base, Real> {
  public:
    // An argument that this side does not know is handed on as it is.
    std::intptr_t HandleExtension(int id, void* argument) override {
        return Extend(id, argument, {}, [](std::intptr_t result) { return result; });
    }
    std::vector<int> ListExtensions() override {
        return this->template Pass<Operation::CExtendable_ListExtensions>();
    }
    bool HasExtension(int id) override {
        return this->template Pass<Operation::CExtendable_HasExtension>(id);
    }

  protected:
    using Proxy<Base, Real>::Proxy;
    ~ExtendableProxy() = default;

    // `said` tells of the argument, and `translate` makes of what the real object gives what this
    // one gives: a number, or a proxy.
    template <class Translate>
    std::intptr_t Extend(int id, void* argument, const ExtensionValue& said,
                         const Translate& translate) {
        std::intptr_t result = 0;
        const auto make = [&] {
            if (this->real_) result = this->real_->HandleExtension(id, argument);
            const auto given = translate(result);
            if constexpr (std::is_pointer_v<decltype(given)>) {
                result = reinterpret_cast<std::intptr_t>(static_cast<Base*>(given));
                return std::tuple(ExtensionValue{'o', given ? given->Id() : 0, nullptr}, said);
            } else {
                const auto whole = static_cast<std::uint64_t>(result);
                return std::tuple(ExtensionValue{'i', whole, nullptr}, said);
            }
        };
        this->scribe_.template Record<Operation::CExtendable_HandleExtension>(this->id_, make, id,
                                                                              said);
        return result;
    }
};

}  // namespace recorder
