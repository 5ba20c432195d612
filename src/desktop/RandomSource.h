#pragma once

#include <cstdint>
#include <deque>

namespace tessara {

class RandomSource {
  public:
    virtual ~RandomSource() = default;
    /// A number that nobody can foresee; also the seed of the random effects.
    virtual std::uint32_t Next() = 0;
    /// From 0 to `count` - 1, each as likely as the others.
    int Below(int count) {
        return static_cast<int>((std::uint64_t{Next()} * static_cast<std::uint32_t>(count)) >> 32);
    }
};

/// The system's generator.
class SystemRandom final : public RandomSource {
  public:
    std::uint32_t Next() override;
};

/// Numbers from a list; 0 when they are used up.
class ScriptedRandom final : public RandomSource {
  public:
    std::deque<std::uint32_t> numbers;

    std::uint32_t Next() override {
        if (numbers.empty()) return 0;
        const std::uint32_t number = numbers.front();
        numbers.pop_front();
        return number;
    }
};

}  // namespace tessara
