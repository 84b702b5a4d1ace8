#ifndef KELADJUST_APP_FILES_BYTES_H
#define KELADJUST_APP_FILES_BYTES_H

#include <vector>

namespace keladjust::app {

/// What a file holds.
using Bytes = std::vector<unsigned char>;

}  // namespace keladjust::app

#endif
