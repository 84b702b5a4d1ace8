#ifndef KELADJUST_APP_COMMANDS_OVERLAPPEDENCODING_H
#define KELADJUST_APP_COMMANDS_OVERLAPPEDENCODING_H

#include <cstdint>
#include <exception>
#include <functional>
#include <thread>

#include "codecs/Codec.h"
#include "pictures/Adjuster.h"
#include "pictures/RowGate.h"

namespace keladjust::app {

/// Adjusts and encodes the first rows of a picture while its last ones are still being decoded, on
/// a thread of its own. Decoding and encoding take one core each and most of the time of a run.
class OverlappedEncoding final : public DecodeWatcher {
public:
    /// @param accepts asked before the first row, on the thread that decodes, whether this picture
    /// may
    ///                be done so
    OverlappedEncoding(const Codec& writer, const EncodeOptions& options, Adjuster& adjuster,
                       const _AdjustParam& record, std::function<bool(const Photo&)> accepts);
    ~OverlappedEncoding() override { end(); }

    void begin(Photo& photo) override;
    void reach(std::uint32_t rows) noexcept override { gate_.reach(rows); }
    void end() noexcept override;

    /// Whether the picture that has been decoded is adjusted and encoded, too, or failed to be.
    bool isDone() const { return done_; }

    /// The encoded picture.
    ///
    /// @throws Failure, Cancelled, std::bad_alloc
    Bytes takeResult();

private:
    void work(Photo& photo);

    const Codec& writer_;
    const EncodeOptions& options_;
    Adjuster& adjuster_;
    const _AdjustParam& record_;
    std::function<bool(const Photo&)> accepts_;
    RowGate gate_;
    std::thread thread_;
    bool done_ = false;
    Bytes result_;
    std::exception_ptr failure_;
};

}  // namespace keladjust::app

#endif
