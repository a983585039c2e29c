#pragma once
#include <cstdint>
#include <random>

// The small 15-bit generator behind segment positions, the plain pick and the random colour
// scheme. Our own, because glibc's rand() gives 31 bits and every "rand() / 32767.0" and
// "rand() % n" of the player assumes 0 to 32767.
class Rand15 {
  public:
    static constexpr int max = 32767;
    void seed(std::uint32_t value) { state_ = value; }
    int next() {
        state_ = state_ * 214013u + 2531011u;
        return static_cast<int>((state_ >> 16) & 0x7fffu);
    }

  private:
    std::uint32_t state_ = 1;
};

// An MT19937 that seeds itself from the system's non-deterministic source on first use, unless
// a test seeded it first.
class LazyMt19937 {
  public:
    std::mt19937& get() {
        if (!seeded_)
            seed(std::random_device{}());
        return gen_;
    }
    void seed(std::uint32_t value) {
        gen_.seed(value);
        seeded_ = true;
    }
    // Uniform integer in the closed range [low, high], without modulo bias.
    int uniform(int low, int high) { return std::uniform_int_distribution<int>(low, high)(get()); }

  private:
    std::mt19937 gen_;
    bool seeded_ = false;
};
