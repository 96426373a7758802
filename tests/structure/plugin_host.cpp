// plugin_host PLUGIN
//
// A program that knows nothing of the library loads and unloads a plug-in again and again. What is
// left of the plug-in is nothing, and what it brought is the same library each time.

#include <dlfcn.h>

#include <cstdio>

namespace {

template <class Result>
Result Call(void* plugin, const char* name) {
    return reinterpret_cast<Result (*)()>(dlsym(plugin, name))();
}

int Fail(int round, const char* what) {
    std::printf("round %d: %s\n", round, what);
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    void* registry = nullptr;
    for (int round = 1; round <= 10; ++round) {
        void* plugin = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
        if (plugin == nullptr) return Fail(round, dlerror());
        void* const found = Call<void*>(plugin, "Come");
        if (registry != nullptr && found != registry) return Fail(round, "another registry");
        registry = found;
        // Counted by the plug-in itself, from 0 if it is a new one.
        if (Call<int>(plugin, "EndedOnes") != 1) return Fail(round, "no new plug-in, or no object");
        if (Call<unsigned int>(plugin, "Go") != 0) return Fail(round, "the class is still there");
        if (dlclose(plugin) != 0) return Fail(round, dlerror());
        if (dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD) != nullptr) return Fail(round, "it stays");
    }
    return 0;
}
