#ifndef KELADJUST_LUT_CUBEFILE_H
#define KELADJUST_LUT_CUBEFILE_H

#include <array>
#include <cstddef>
#include <cstdio>
#include <memory>

namespace keladjust {

/// A text cube file being written: the header, then one line for each colour. Lines end as the
/// platform ends lines of text; digits depend on no locale.
class CubeFile {
public:
    /// Opens and truncates the file and writes the header. If `path` is null or cannot be opened,
    /// says so on standard output.
    explicit CubeFile(const char* path);
    /// Writes what is left and closes the file. Failed writes go unnoticed.
    ~CubeFile();
    CubeFile(const CubeFile&) = delete;
    CubeFile& operator=(const CubeFile&) = delete;

    bool isOpen() const { return file_ != nullptr; }

    /// Needs an open file.
    void writeColour(float red, float green, float blue);

private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    void flush();

    std::unique_ptr<std::FILE, Close> file_;
    std::size_t used_ = 0;
    std::array<char, 1 << 16> block_;
};

}  // namespace keladjust

#endif
