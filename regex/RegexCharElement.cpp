#include "regex/RegexCharElement.h"

namespace mirodate {

RegexCharElement::RegexCharElement(char16_t c) : char_(c) {
    set_.Add(c);
}

RegexCharElement::~RegexCharElement() = default;

} // namespace mirodate
