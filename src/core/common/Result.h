#pragma once
// Result<T>: a value or the Message that explains why there is none.
// std::expected where the standard library has it; a small stand-in with the
// same interface otherwise (clang's fuzzing build reads libstdc++ headers whose
// std::expected it cannot see).

#include "common/Messages.h"

#include <utility>
#include <variant>

#if defined(__has_include)
#if __has_include(<expected>)
#include <expected>
#endif
#endif

namespace tarvel {

#if defined(__cpp_lib_expected)

// A class rather than an alias so that a dropped result is a compile warning.
template <class T>
class [[nodiscard]] Result : public std::expected<T, Message> {
public:
    using std::expected<T, Message>::expected;
    Result(std::expected<T, Message> e) : std::expected<T, Message>(std::move(e)) {}
};
using Failure = std::unexpected<Message>;

#else

class Failure {
public:
    explicit Failure(Message m) : message_(std::move(m)) {}
    const Message& error() const& { return message_; }
    Message&& error() && { return std::move(message_); }

private:
    Message message_;
};

template <class T>
class [[nodiscard]] Result {
public:
    Result(const T& v) : state_(std::in_place_index<0>, v) {}
    Result(T&& v) : state_(std::in_place_index<0>, std::move(v)) {}
    Result(Failure f) : state_(std::in_place_index<1>, std::move(f).error()) {}
    template <class U>
        requires(std::is_constructible_v<T, U&&> && !std::is_same_v<std::decay_t<U>, Failure> &&
                 !std::is_same_v<std::decay_t<U>, Result>)
    Result(U&& v) : state_(std::in_place_index<0>, T(std::forward<U>(v))) {}

    bool has_value() const { return state_.index() == 0; }
    explicit operator bool() const { return has_value(); }
    T& value() & { return std::get<0>(state_); }
    const T& value() const& { return std::get<0>(state_); }
    T&& value() && { return std::get<0>(std::move(state_)); }
    T& operator*() & { return value(); }
    const T& operator*() const& { return value(); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }
    const Message& error() const { return std::get<1>(state_); }

private:
    std::variant<T, Message> state_;
};

template <>
class [[nodiscard]] Result<void> {
public:
    Result() = default;
    Result(Failure f) : failed_(true), message_(std::move(f).error()) {}
    bool has_value() const { return !failed_; }
    explicit operator bool() const { return has_value(); }
    void value() const {}
    const Message& error() const { return message_; }

private:
    bool failed_ = false;
    Message message_;
};

#endif

using Status = Result<void>;

inline Failure fail(MessageId id, std::string arg = {}) { return Failure(Message{id, std::move(arg)}); }
inline Failure fail(Message m) { return Failure(std::move(m)); }

}  // namespace tarvel
