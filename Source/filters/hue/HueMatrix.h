#ifndef KELADJUST_FILTERS_HUE_HUEMATRIX_H
#define KELADJUST_FILTERS_HUE_HUEMATRIX_H

namespace keladjust {

/// A rotation of colours about the grey axis: each row of the matrix works on the channels as the
/// rows before have left them, blue first and red last.
struct HueMatrix {
    float m00;
    float diagonal;
    float minus;
    float plus;
};

}  // namespace keladjust

#endif
