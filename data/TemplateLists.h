#pragma once
// The two user-editable lists the editors offer: subject templates
// ("MDSubjects.txt") and locations ("MDLocations.txt"). Both are UTF-16 LE
// files with a byte-order mark, entries separated by "\r\n", kept in the
// program's directory, or in $XDG_DATA_HOME/mirodate/ when the program's
// directory is not writable (as for an installed program).
#include <string>
#include <vector>

namespace mirodate {

class TemplateLists {
public:
    // Locations sorted in ascending order; subjects in file order.
    static void LoadLocations(std::vector<std::u16string>& list);
    static void LoadSubjects(std::vector<std::u16string>& list);
    // Replace a whole file with the mark and the given text.
    static bool SaveLocations(const std::u16string& text);
    static bool SaveSubjects(const std::u16string& text);
    // Appends a location unless its text followed by "\r\n" already occurs
    // anywhere in the file (a case-sensitive substring test: "Office" is
    // known once "Main Office" is).
    static void AddLocation(const std::u16string& text);

    // Whether the whole list may be replaced: the file is absent, or one we
    // can read (within the size limit and starting with the mark). A file we
    // cannot read is never overwritten.
    static bool SubjectsReplaceable();
    static bool LocationsReplaceable();
    static std::string SubjectsPath();
    static std::string LocationsPath();

    // The folder that holds both files.
    static std::string Directory();
    // Tests point the lists at a folder of their own; empty restores the default.
    static void SetDirectory(const std::string& directory);

private:
    static std::string PathOf(const char* fileName);
};

} // namespace mirodate
