#include "app/Launcher.h"

#include <cstdio>

int main(int argc, char** argv) {
    mirodate::Launcher::Options options;
    std::string error;
    if (!mirodate::Launcher::Parse(std::vector<std::string>(argv + 1, argv + argc), options, error)) {
        std::fprintf(stderr,
                     "mirodate-launcher: %s\nusage: mirodate-launcher [--socket PATH] "
                     "calendar|tasks|contacts [FILE]\n",
                     error.c_str());
        return 2;
    }
    return mirodate::Launcher::Run(options);
}
