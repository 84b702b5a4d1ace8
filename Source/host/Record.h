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

/// What counts of a record that was passed by value. A caller that was compiled with an older
/// header passes no more than the slots of version 0.2, and behind them lies what happens to lie
/// there: so those of them that came later are at identity here, whatever the caller is.
_AdjustParam recordByValue(const _AdjustParam& passed);

}  // namespace keladjust

#endif
