// A host that has the library write its colour table, and says whether it did.

#include <keladjust/keladjust.h>

int main(int count, char** values) {
    if (count != 2) return 2;
    const _AdjustParam settings{};
    return writeLut3DFile(settings, values[1]) ? 0 : 1;
}
