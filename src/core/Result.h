#pragma once

#include <cassert>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace tessara {

/// What went wrong, in the few kinds that a caller can act on.
enum class FailureKind { Damaged, Unsupported, TooBig, CannotRead, CannotWrite, BadArgument };

struct Failure {
    FailureKind kind;
    std::string message;
};

/// A value, or the reason why there is none. Asking for the value of a failure is a mistake of the caller.
template <typename T>
class [[nodiscard]] Result {
  public:
    Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
    Result(Failure failure) : state_(std::in_place_index<1>, std::move(failure)) {}

    bool Ok() const { return state_.index() == 0; }
    explicit operator bool() const { return Ok(); }

    T& Value() & {
        assert(Ok());
        return *std::get_if<0>(&state_);
    }
    const T& Value() const& {
        assert(Ok());
        return *std::get_if<0>(&state_);
    }
    T&& Value() && {
        assert(Ok());
        return std::move(*std::get_if<0>(&state_));
    }
    const Failure& Error() const {
        assert(!Ok());
        return *std::get_if<1>(&state_);
    }

  private:
    std::variant<T, Failure> state_;
};

template <>
class [[nodiscard]] Result<void> {
  public:
    Result() = default;
    Result(Failure failure) : failure_(std::move(failure)) {}

    bool Ok() const { return !failure_; }
    explicit operator bool() const { return Ok(); }
    const Failure& Error() const {
        assert(!Ok());
        return *failure_;
    }

  private:
    std::optional<Failure> failure_;
};

inline Failure Damaged(std::string message) {
    return {FailureKind::Damaged, std::move(message)};
}
inline Failure Unsupported(std::string message) {
    return {FailureKind::Unsupported, std::move(message)};
}
inline Failure TooBig(std::string message) {
    return {FailureKind::TooBig, std::move(message)};
}
inline Failure CannotRead(std::string message) {
    return {FailureKind::CannotRead, std::move(message)};
}
inline Failure CannotWrite(std::string message) {
    return {FailureKind::CannotWrite, std::move(message)};
}
inline Failure BadArgument(std::string message) {
    return {FailureKind::BadArgument, std::move(message)};
}

/// Marks the place where a failure is deliberately passed over.
template <typename T>
void Ignore(const Result<T>&) {}

#define TESSARA_JOIN_(a, b) a##b
#define TESSARA_JOIN(a, b) TESSARA_JOIN_(a, b)

/// Passes a failure of `expression` up to the caller.
#define TRY(expression)                                              \
    do {                                                             \
        if (auto tried = (expression); !tried) return tried.Error(); \
    } while (false)

/// Declares or assigns `target` from `expression`, or passes its failure up to the caller.
#define TRY_ASSIGN(target, expression) TRY_ASSIGN_(target, expression, TESSARA_JOIN(tried_, __LINE__))
#define TRY_ASSIGN_(target, expression, tried) \
    auto tried = (expression);                 \
    if (!tried) return tried.Error();          \
    target = std::move(tried).Value()

}  // namespace tessara
