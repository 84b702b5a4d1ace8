#ifndef KELADJUST_HOST_RECORD_H
#define KELADJUST_HOST_RECORD_H

#include <keladjust/keladjust.h>

#include <cstddef>
#include <optional>

namespace keladjust {

/// The first `bytes` of a record that a host may have compiled with an older or a newer header:
/// missing slots are at identity, and so must be those that this library does not know, as zeros.
/// @return nothing if they are not, or `record` is null
std::optional<_AdjustParam> readRecord(const _AdjustParam* record, std::size_t bytes);

}  // namespace keladjust

#endif
