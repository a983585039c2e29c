#pragma once
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

// Stereo float frames from one decode thread to the mixer; the capacity is a power of two.
// Lock-free for one writer and one reader; the counters never wrap back, so "how much" is a
// subtraction. The storage is made once and never grows, so the mixer never allocates.
class FrameRing {
  public:
    explicit FrameRing(std::size_t capacityFrames)
        : capacity_(capacityFrames), mask_(capacityFrames - 1), data_(capacityFrames * 2) {}

    std::size_t capacity() const { return capacity_; }
    std::uint64_t written() const { return write_.load(std::memory_order_acquire); }
    std::uint64_t read() const { return read_.load(std::memory_order_acquire); }
    std::size_t available() const { return static_cast<std::size_t>(written() - read()); }
    std::size_t space() const { return capacity_ - available(); }

    // Writer side. Returns the frames written.
    std::size_t write(const float* frames, std::size_t count) {
        std::uint64_t w = write_.load(std::memory_order_relaxed);
        count = std::min(count, space());
        for (std::size_t i = 0; i < count; ++i) {
            std::size_t at = static_cast<std::size_t>((w + i) & mask_) * 2;
            data_[at] = frames[2 * i];
            data_[at + 1] = frames[2 * i + 1];
        }
        write_.store(w + count, std::memory_order_release);
        return count;
    }

    // Reader side: the frame at offset i past the read counter, then consume.
    float left(std::size_t i) const { return data_[index(i)]; }
    float right(std::size_t i) const { return data_[index(i) + 1]; }
    void consume(std::size_t count) {
        read_.store(read_.load(std::memory_order_relaxed) + count, std::memory_order_release);
    }

    // Reader side: drops every frame before index, which the writer has written.
    void discardTo(std::uint64_t index) { read_.store(index, std::memory_order_release); }

  private:
    std::size_t index(std::size_t i) const {
        return static_cast<std::size_t>((read_.load(std::memory_order_relaxed) + i) & mask_) * 2;
    }

    std::size_t capacity_;
    std::uint64_t mask_;
    std::vector<float> data_;
    std::atomic<std::uint64_t> write_{0};
    std::atomic<std::uint64_t> read_{0};
};
