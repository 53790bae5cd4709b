#pragma once
// Timed input for a headless run, one command a line:
//   wait MS | down X Y | move X Y | up X Y | tap X Y | drag X1 Y1 X2 Y2 MS |
//   key NAME | key ctrl+NAME | key shift+NAME | text STRING |
//   compose [STRING] | screenshot PATH | quit
// `compose` shows STRING as an input method's composition in progress (its
// caret at the end); without STRING the composition ends.
// Blank lines and lines starting with '#' are ignored. The parsed script is a
// list of primitive actions that ScriptPlayer feeds to the window system
// whenever it is idle.
#include "platform/Display.h"

#include <cstdint>
#include <string>
#include <vector>

namespace mirodate {

struct ScriptAction {
    enum class Kind { Input, Wait, Screenshot, Quit };
    Kind kind = Kind::Input;
    DisplayEvent event;             // Input
    std::uint32_t milliseconds = 0; // Wait
    std::string path;               // Screenshot
    int line = 0;                   // where it came from, for messages
};

class HeadlessScript {
public:
    // False with "line N: what is wrong" in `error` for the first bad line.
    static bool Parse(const std::string& text, std::vector<ScriptAction>& actions, std::string& error);
    static bool Load(const std::string& path, std::vector<ScriptAction>& actions, std::string& error);
};

// Pointer moves of a drag are this far apart in time.
constexpr std::uint32_t kDragStepMs = 16;

} // namespace mirodate
