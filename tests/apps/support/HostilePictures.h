#ifndef KELADJUST_TESTS_HOSTILEPICTURES_H
#define KELADJUST_TESTS_HOSTILEPICTURES_H

#include <string>
#include <vector>

#include "files/Bytes.h"

/// Files that claim far more than they hold, made byte by byte.
namespace keladjust::test {

struct HostilePicture {
    std::string name;
    app::Bytes bytes;
    std::string complaint;  ///< what the program says of it; empty: it is adjusted
};

/// One of each kind: sizes that lie in every format, rows and tiles without measure, thousands of
/// scans, texts and profiles that unpack to millions of letters, metadata that points nowhere; and
/// those that are what they claim, one colour all over, packed into a hundred bytes.
std::vector<HostilePicture> hostilePictures();

/// The largest pictures that a hundred bytes may decode to.
std::vector<HostilePicture> fullestSmallPictures();

}  // namespace keladjust::test

#endif
