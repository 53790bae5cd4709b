#pragma once
// Where the program finds and keeps its files (XDG base directories).
#include <string>

namespace mirodate {

class Paths {
public:
    // $XDG_CONFIG_HOME/mirodate (default ~/.config/mirodate).
    static std::string ConfigDir();
    // $XDG_DATA_HOME/mirodate (default ~/.local/share/mirodate).
    static std::string DataDir();
    // $XDG_CACHE_HOME/mirodate (default ~/.cache/mirodate).
    static std::string CacheDir();
    // $XDG_RUNTIME_DIR, or /tmp/mirodate-<uid> (created with mode 0700).
    static std::string RuntimeDir();
    // The directory of the running executable (/proc/self/exe).
    static std::string ProgramDir();
    // The first of ProgramDir(), ProgramDir()/../share/mirodate and the
    // configured <prefix>/share/mirodate that holds `fileName`; ProgramDir()
    // when none does.
    static std::string FindResourceDir(const std::string& fileName);
    // Creates a directory and its parents; true when it exists afterwards.
    static bool MakeDirs(const std::string& path, unsigned mode = 0755);
    static bool FileExists(const std::string& path);
};

} // namespace mirodate
