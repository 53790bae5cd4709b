#pragma once
// The restriction language of item collections: a parsed tree and its test
// on an item. Fields [Start], [End], [DueDate], [StartDate], [Complete];
// operators <=, >=, =, and <> (with True/False only); AND binds tighter than
// OR; parentheses. "<N" is the day number N and compares with the day of the
// field (its DATE truncated toward zero). An absent date matches nothing.
#include "data/PimRecord.h"

#include <limits>
#include <memory>
#include <string>
#include <string_view>

namespace mirodate {

class Restriction {
public:
    // The window of start times an occurrence must lie in to match, as far
    // as the comparisons on [Start] and [End] tell; days as DATE values.
    struct Window {
        double startFrom = -std::numeric_limits<double>::infinity();
        double startBefore = std::numeric_limits<double>::infinity();
        double endFrom = -std::numeric_limits<double>::infinity();
    };

    Restriction();
    ~Restriction();
    Restriction(Restriction&&) noexcept;
    Restriction& operator=(Restriction&&) noexcept;

    // False with a message for text that is not a restriction. An empty
    // text (or only blanks) matches everything.
    bool Parse(std::u16string_view text, std::string& error);
    bool Matches(const PimRecord& item) const;
    Window GetWindow() const;

    struct Node;

private:
    std::unique_ptr<Node> root_;
};

} // namespace mirodate
