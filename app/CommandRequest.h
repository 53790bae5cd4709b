#pragma once
// What a command text asks for, as read from its tokens. Acting on it is the
// main window's business; reading it is pure.
#include <cstdint>
#include <string>

namespace mirodate {

struct CommandRequest {
    enum class Kind {
        FirstRun, // "firstrun": install the calendar and tasks replacements
        Restore,  // "reactivate", "" or "calendar": restore the last view
        Request,  // a token list, read into the fields below
    };
    enum Mode { kNoMode = -1, kCalendar = 0, kTasks = 1 };
    enum View { kNoView = -1, kDay = 1, kWeek = 2, kMonth = 3, kAgenda = 4, kDetail = 10 };

    struct Date {
        int year = 0;
        int month = 0;
        int day = 0;
    };

    Kind kind = Kind::Request;
    int mode = kNoMode;
    int view = kNoView;
    bool hasDate = false;
    Date date;
    long dayOffset = 0;
    bool newItem = false;
    bool expectOid = false;
    bool edit = false;
    bool oidGiven = false; // "oid" or "edit" appeared
    std::int64_t oid = 0;
    bool noParam = false;

    // Reads a command text: lower-cases it, recognises the special texts,
    // otherwise reads its space-separated tokens left to right, later tokens
    // overriding earlier ones and unknown tokens ignored.
    static CommandRequest Parse(const std::u16string& text);
};

} // namespace mirodate
