#include "ui/HeadlessScript.h"

#include "platform/TextUtil.h"
#include "platform/VirtualKeys.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <fstream>
#include <sstream>

namespace mirodate {

namespace {
// Longest single wait, so that a typo cannot stall a run for weeks.
constexpr long long kMaxWaitMs = 24LL * 60 * 60 * 1000;
// Largest coordinate a pointer line may name.
constexpr long long kMaxCoordinate = 32767;

bool ParseInteger(const std::string& token, long long low, long long high, long long& value) {
    if (token.empty() || token.size() > 12)
        return false;
    size_t i = 0;
    bool negative = false;
    if (token[0] == '-' || token[0] == '+') {
        negative = token[0] == '-';
        i = 1;
    }
    if (i == token.size())
        return false;
    long long v = 0;
    for (; i < token.size(); ++i) {
        if (!std::isdigit(static_cast<unsigned char>(token[i])))
            return false;
        v = v * 10 + (token[i] - '0');
    }
    value = negative ? -v : v;
    return value >= low && value <= high;
}

struct KeyName {
    const char* name;
    std::uint32_t key;
};
constexpr KeyName kKeys[] = {{"left", VK_LEFT},     {"right", VK_RIGHT},   {"up", VK_UP},
                             {"down", VK_DOWN},     {"return", VK_RETURN}, {"enter", VK_RETURN},
                             {"escape", VK_ESCAPE}, {"back", VK_BACK},     {"backspace", VK_BACK},
                             {"tab", VK_TAB},       {"space", VK_SPACE},   {"home", VK_HOME},
                             {"end", VK_END},       {"delete", VK_DELETE}};

DisplayEvent Pointer(DisplayEvent::Type type, int x, int y) {
    DisplayEvent event;
    event.type = type;
    event.x = x;
    event.y = y;
    return event;
}

// The text after the command word, as written (one separating blank removed).
std::string RestOfLine(const std::string& line, const std::string& command) {
    size_t start = line.find(command);
    start += command.size();
    while (start < line.size() && (line[start] == ' ' || line[start] == '\t'))
        ++start;
    return line.substr(start);
}
} // namespace

bool HeadlessScript::Parse(const std::string& text, std::vector<ScriptAction>& actions, std::string& error) {
    actions.clear();
    std::istringstream input(text);
    std::string line;
    int number = 0;
    auto fail = [&](const std::string& what) {
        error = "line " + std::to_string(number) + ": " + what;
        actions.clear();
        return false;
    };
    while (std::getline(input, line)) {
        ++number;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        std::istringstream words(line);
        std::vector<std::string> tokens;
        for (std::string word; words >> word;)
            tokens.push_back(word);
        if (tokens.empty() || tokens[0][0] == '#')
            continue;
        const std::string command = ToLowerAscii(tokens[0]);
        const size_t args = tokens.size() - 1;
        auto add = [&](ScriptAction action) {
            action.line = number;
            actions.push_back(std::move(action));
        };
        auto coordinates = [&](size_t first, int& x, int& y) {
            long long vx = 0, vy = 0;
            if (!ParseInteger(tokens[first], -kMaxCoordinate, kMaxCoordinate, vx) ||
                !ParseInteger(tokens[first + 1], -kMaxCoordinate, kMaxCoordinate, vy))
                return false;
            x = static_cast<int>(vx);
            y = static_cast<int>(vy);
            return true;
        };
        auto input = [&](DisplayEvent event) {
            ScriptAction action;
            action.event = std::move(event);
            add(std::move(action));
        };
        auto wait = [&](std::uint32_t ms) {
            ScriptAction action;
            action.kind = ScriptAction::Kind::Wait;
            action.milliseconds = ms;
            add(std::move(action));
        };

        if (command == "wait") {
            long long ms = 0;
            if (args != 1 || !ParseInteger(tokens[1], 0, kMaxWaitMs, ms))
                return fail("expected: wait MS");
            wait(static_cast<std::uint32_t>(ms));
        } else if (command == "down" || command == "move" || command == "up" || command == "tap") {
            int x = 0, y = 0;
            if (args != 2 || !coordinates(1, x, y))
                return fail("expected: " + command + " X Y");
            using T = DisplayEvent::Type;
            if (command == "down" || command == "tap")
                input(Pointer(T::PointerDown, x, y));
            if (command == "move")
                input(Pointer(T::PointerMove, x, y));
            if (command == "up" || command == "tap")
                input(Pointer(T::PointerUp, x, y));
        } else if (command == "drag") {
            int x1 = 0, y1 = 0, x2 = 0, y2 = 0;
            long long ms = 0;
            if (args != 5 || !coordinates(1, x1, y1) || !coordinates(3, x2, y2) ||
                !ParseInteger(tokens[5], 0, kMaxWaitMs, ms))
                return fail("expected: drag X1 Y1 X2 Y2 MS");
            using T = DisplayEvent::Type;
            input(Pointer(T::PointerDown, x1, y1));
            const long long steps = std::max<long long>(1, ms / kDragStepMs);
            for (long long i = 1; i <= steps; ++i) {
                const long long step = ms * i / steps - ms * (i - 1) / steps;
                if (step > 0)
                    wait(static_cast<std::uint32_t>(step));
                input(Pointer(T::PointerMove, static_cast<int>(x1 + (x2 - x1) * i / steps),
                              static_cast<int>(y1 + (y2 - y1) * i / steps)));
            }
            input(Pointer(T::PointerUp, x2, y2));
        } else if (command == "key") {
            if (args != 1)
                return fail("expected: key NAME");
            // Modifiers in front, joined by '+': ctrl+a, shift+left, ctrl+shift+end.
            std::vector<std::uint32_t> modifiers;
            std::string name = tokens[1];
            for (size_t plus; (plus = name.find('+')) != std::string::npos && plus + 1 < name.size();) {
                const std::string modifier = ToLowerAscii(name.substr(0, plus));
                if (modifier == "ctrl" || modifier == "control")
                    modifiers.push_back(VK_CONTROL);
                else if (modifier == "shift")
                    modifiers.push_back(VK_SHIFT);
                else
                    return fail("unknown modifier \"" + modifier + "\"");
                name = name.substr(plus + 1);
            }
            const std::string lower = ToLowerAscii(name);
            std::uint32_t key = 0;
            std::string typed;
            for (const KeyName& k : kKeys)
                if (lower == k.name)
                    key = k.key;
            if (!key && name.size() == 1 && std::isalnum(static_cast<unsigned char>(name[0]))) {
                key = static_cast<std::uint32_t>(std::toupper(static_cast<unsigned char>(name[0])));
                // A held Ctrl makes a shortcut, not a typed character.
                if (std::find(modifiers.begin(), modifiers.end(), VK_CONTROL) == modifiers.end()) {
                    typed = name;
                    const bool shifted =
                        std::find(modifiers.begin(), modifiers.end(), VK_SHIFT) != modifiers.end();
                    if (shifted)
                        typed[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(typed[0])));
                }
            }
            if (!key)
                return fail("unknown key \"" + tokens[1] + "\"");
            auto press = [&](std::uint32_t code, DisplayEvent::Type type) {
                DisplayEvent event;
                event.type = type;
                event.key = code;
                input(event);
            };
            for (std::uint32_t modifier : modifiers)
                press(modifier, DisplayEvent::Type::KeyDown);
            press(key, DisplayEvent::Type::KeyDown);
            if (!typed.empty()) {
                DisplayEvent text;
                text.type = DisplayEvent::Type::Text;
                text.text = typed;
                input(text);
            }
            press(key, DisplayEvent::Type::KeyUp);
            for (auto it = modifiers.rbegin(); it != modifiers.rend(); ++it)
                press(*it, DisplayEvent::Type::KeyUp);
        } else if (command == "compose") {
            DisplayEvent event;
            event.type = DisplayEvent::Type::Composition;
            event.text = args ? RestOfLine(line, tokens[0]) : std::string();
            const std::u16string units = Utf8ToUtf16(event.text);
            for (size_t i = 0; i < units.size(); ++i)
                if (!(units[i] >= 0xDC00 && units[i] <= 0xDFFF))
                    ++event.compositionCursor;
            input(event);
        } else if (command == "text") {
            const std::string rest = RestOfLine(line, tokens[0]);
            if (rest.empty())
                return fail("expected: text STRING");
            DisplayEvent event;
            event.type = DisplayEvent::Type::Text;
            event.text = rest;
            input(event);
        } else if (command == "screenshot") {
            const std::string path = RestOfLine(line, tokens[0]);
            if (path.empty())
                return fail("expected: screenshot PATH");
            ScriptAction action;
            action.kind = ScriptAction::Kind::Screenshot;
            action.path = path;
            add(std::move(action));
        } else if (command == "quit") {
            if (args != 0)
                return fail("expected: quit");
            ScriptAction action;
            action.kind = ScriptAction::Kind::Quit;
            add(std::move(action));
        } else {
            return fail("unknown command \"" + tokens[0] + "\"");
        }
    }
    return true;
}

bool HeadlessScript::Load(const std::string& path, std::vector<ScriptAction>& actions, std::string& error) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        error = "cannot read " + path;
        return false;
    }
    std::ostringstream text;
    text << file.rdbuf();
    if (!Parse(text.str(), actions, error)) {
        error = path + ": " + error;
        return false;
    }
    return true;
}

} // namespace mirodate
