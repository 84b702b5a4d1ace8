#include "lut/LibraryLut.h"

#include <memory>

#include "lut/CubeLut.h"

namespace keladjust {

namespace {

std::unique_ptr<CubeLut> table;

CubeLut& createdTable() {
    if (table == nullptr) table = std::make_unique<CubeLut>();
    return *table;
}

}  // namespace

void buildLibraryLut() noexcept {
    try {
        createdTable().build();
    } catch (...) {
        // The lattice stays unbuilt, which bakes report as null.
    }
}

float* bakeLibraryLut(const _AdjustParam& parameters) noexcept {
    try {
        return createdTable().bake(parameters);
    } catch (...) {
        return nullptr;
    }
}

bool writeLibraryLut(const _AdjustParam& parameters, const char* path) noexcept {
    try {
        CubeLut& lut = createdTable();
        lut.bake(parameters);
        return lut.write(path);
    } catch (...) {
        return false;
    }
}

void destroyLibraryLut() noexcept {
    table.reset();
}

}  // namespace keladjust
