#include "platform/lcdcomm/curllibrary.h"

#include <curl/curl.h>
#include <dlfcn.h>

namespace lcdcomm {

void keepCurlLoaded() {
    [[maybe_unused]] static const bool once = [] {
        curl_global_init(CURL_GLOBAL_DEFAULT);
        Dl_info library{};
        if (dladdr(reinterpret_cast<const void*>(&curl_easy_init), &library) != 0) {
            // The mark stays when the handle goes.
            if (void* handle = dlopen(library.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE)) {
                dlclose(handle);
            }
        }
        return true;
    }();
}

}  // namespace lcdcomm
