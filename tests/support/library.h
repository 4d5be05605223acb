/// The built library as a runtime gets it: loaded at run time, every function bound by its name.
#ifndef KP410_TESTS_LIBRARY_H
#define KP410_TESTS_LIBRARY_H

#include "talmor_kp410_port.h"

#include <dlfcn.h>

class Library
{
public:
    explicit Library(const char* file) : path(file) { load(); }
    ~Library() { unload(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    void reload()
    {
        unload();
        load();
    }
    bool isLoaded() const { return handle != nullptr; }

    template <typename Function>
    Function* bind(const char* name) const
    {
        return reinterpret_cast<Function*>(dlsym(handle, name));
    }

private:
    void load() { handle = dlopen(path, RTLD_NOW | RTLD_LOCAL); }
    void unload()
    {
        if (handle)
            dlclose(handle);
    }

    const char* path;
    void* handle = nullptr;
};

/// A pointer to the library's function or object of this name.
#define BIND(library, name) (library).bind<decltype(::name)>(#name)

#endif
