#include "frei0r/LoadedFilter.h"

#include <dlfcn.h>

#include <stdexcept>

extern "C" {
#include <frei0r.h>
}

namespace keladjust::test {

template <class Function>
Function* LoadedFilter::function(const char* name) const {
    void* found = dlsym(module_, name);
    if (found == nullptr) throw std::runtime_error(std::string("there is no ") + name);
    return reinterpret_cast<Function*>(found);
}

LoadedFilter::LoadedFilter() : module_(dlopen(KELADJUST_FREI0R_FILTER, RTLD_NOW | RTLD_LOCAL)) {
    if (module_ == nullptr) throw std::runtime_error(dlerror());
    if (function<decltype(f0r_init)>("f0r_init")() != 1) throw std::runtime_error("refused");
}

LoadedFilter::~LoadedFilter() {
    function<decltype(f0r_deinit)>("f0r_deinit")();
    dlclose(module_);
}

std::vector<Parameter> LoadedFilter::parameters() const {
    f0r_plugin_info_t plugin{};
    function<decltype(f0r_get_plugin_info)>("f0r_get_plugin_info")(&plugin);
    std::vector<Parameter> parameters;
    for (int index = 0; index < plugin.num_params; ++index) {
        f0r_param_info_t info{};
        function<decltype(f0r_get_param_info)>("f0r_get_param_info")(&info, index);
        parameters.push_back({info.name, info.type, info.explanation});
    }
    return parameters;
}

int LoadedFilter::indexOf(const std::string& name) const {
    const auto all = parameters();
    for (std::size_t index = 0; index < all.size(); ++index) {
        if (all[index].name == name) return static_cast<int>(index);
    }
    throw std::runtime_error("there is no parameter " + name);
}

Instance::Instance(const LoadedFilter& filter, FrameSize size)
    : filter_(filter),
      instance_(
          filter.function<decltype(f0r_construct)>("f0r_construct")(size.width, size.height)) {
    if (instance_ == nullptr) throw std::runtime_error("no instance");
}

Instance::~Instance() {
    filter_.function<decltype(f0r_destruct)>("f0r_destruct")(instance_);
}

void Instance::set(const std::string& name, double share) {
    filter_.function<decltype(f0r_set_param_value)>("f0r_set_param_value")(instance_, &share,
                                                                           filter_.indexOf(name));
}

void Instance::set(const std::string& name, const char* text) {
    filter_.function<decltype(f0r_set_param_value)>("f0r_set_param_value")(instance_, &text,
                                                                           filter_.indexOf(name));
}

double Instance::share(const std::string& name) const {
    double share = -1;
    filter_.function<decltype(f0r_get_param_value)>("f0r_get_param_value")(instance_, &share,
                                                                           filter_.indexOf(name));
    return share;
}

std::string Instance::text(const std::string& name) const {
    const char* text = nullptr;
    filter_.function<decltype(f0r_get_param_value)>("f0r_get_param_value")(instance_, &text,
                                                                           filter_.indexOf(name));
    return text;
}

Frame Instance::adjusted(const Frame& frame) const {
    Frame result(frame.size());
    filter_.function<decltype(f0r_update)>("f0r_update")(instance_, 0, frame.data(), result.data());
    return result;
}

}  // namespace keladjust::test
