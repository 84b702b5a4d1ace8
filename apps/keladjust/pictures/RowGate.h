#ifndef KELADJUST_APP_PICTURES_ROWGATE_H
#define KELADJUST_APP_PICTURES_ROWGATE_H

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <mutex>

namespace keladjust::app {

/// A picture will have no more rows than it has. What went wrong is told elsewhere.
class NoMoreRows : public std::exception {};

/// How many rows of a picture are there, for a thread that waits for them while another one makes
/// them, from the first one down.
class RowGate {
public:
    void reach(std::uint32_t rows) noexcept {
        change([&] { rows_ = rows; });
    }

    /// Sends away who waits for rows that are not there yet.
    void close() noexcept {
        change([&] { closed_ = true; });
    }

    /// Returns as soon as so many rows are there.
    ///
    /// @throws NoMoreRows
    void waitFor(std::uint32_t rows) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return rows_ >= rows || closed_; });
        if (rows_ < rows) throw NoMoreRows();
    }

private:
    template <class Change>
    void change(Change change) noexcept {
        {
            const std::lock_guard lock(mutex_);
            change();
        }
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::uint32_t rows_ = 0;
    bool closed_ = false;
};

}  // namespace keladjust::app

#endif
