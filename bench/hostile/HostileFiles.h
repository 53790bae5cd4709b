#pragma once
// Hostile files of every kind the program reads (store items, the derived
// index, skin archives, language files, the settings file), built on demand
// in a scratch folder beside a small normal setup, and a runner that starts
// the real program on them and measures it. Shared by the whole-program test
// and the benchmark, so that both try the same files.
#include <string>
#include <vector>

namespace mirodate {

struct ProgramRun {
    int exitCode = -1; // -1 when it was killed at the time limit
    std::string out;
    std::string err;
    double ms = 0;
    long maxRssKb = 0;
};

class HostileFiles {
public:
    enum class Mode { List, Start };

    struct Case {
        const char* name;
        const char* description;
        // A piece of the warning the program must print; empty when the file
        // is within every limit and is simply used.
        const char* warning;
        bool list;  // read by `--list` (store, index, settings)
        bool start; // read by a start
    };
    static const std::vector<Case>& Cases();

    // `program` is the built binary; the folder it is in holds the language
    // files and the skins. Everything is made under `scratch`.
    HostileFiles(std::string scratch, const std::string& program);
    ~HostileFiles();
    HostileFiles(const HostileFiles&) = delete;
    HostileFiles& operator=(const HostileFiles&) = delete;

    bool Ready() const { return ready_; }
    // The clean setup: a small store, a settings file, no index.
    void Reset();
    // Writes the hostile file of the case on top of the clean setup.
    bool Apply(const std::string& caseName);
    ProgramRun Run(Mode mode, int timeoutSeconds = 60) const;

    // The content of every store file and of the settings file, to see that
    // nothing was rewritten.
    std::string Snapshot() const;

    const std::string& Store() const { return store_; }
    std::string SettingsPath() const;

private:
    void WriteSettings(const std::string& text) const;
    void WriteSkin(const std::string& fileName, const std::string& bytes) const;
    bool DamageIndex(bool huge) const;

    std::string scratch_;
    std::string programDir_;
    std::string store_;
    bool ready_ = false;
};

} // namespace mirodate
