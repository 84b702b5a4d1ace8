#ifndef KELADJUST_FILTERS_LENSCORRECTION_H
#define KELADJUST_FILTERS_LENSCORRECTION_H

namespace keladjust {

/// Frees the maps that lens corrections keep between calls. Calls in flight finish with theirs.
void releaseLensMaps();

}  // namespace keladjust

#endif
