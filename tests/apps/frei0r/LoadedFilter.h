#ifndef KELADJUST_TESTS_LOADEDFILTER_H
#define KELADJUST_TESTS_LOADEDFILTER_H

#include <string>
#include <vector>

#include "frei0r/Frames.h"

namespace keladjust::test {

/// A parameter as a host is told of it.
struct Parameter {
    std::string name;
    int type;
    std::string explanation;
};

/// The filter's file, loaded as a host does: initialized when made, unloaded in the end.
class LoadedFilter {
public:
    LoadedFilter();
    ~LoadedFilter();
    LoadedFilter(const LoadedFilter&) = delete;
    LoadedFilter& operator=(const LoadedFilter&) = delete;

    std::vector<Parameter> parameters() const;
    int indexOf(const std::string& name) const;

private:
    friend class Instance;

    template <class Function>
    Function* function(const char* name) const;

    void* module_;
};

/// An instance of it.
class Instance {
public:
    Instance(const LoadedFilter& filter, FrameSize size);
    ~Instance();
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    void set(const std::string& name, double share);
    void set(const std::string& name, const char* text);
    double share(const std::string& name) const;
    std::string text(const std::string& name) const;
    Frame adjusted(const Frame& frame) const;

private:
    const LoadedFilter& filter_;
    void* instance_;
};

}  // namespace keladjust::test

#endif
