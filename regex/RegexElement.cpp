#include "regex/RegexElement.h"

namespace mirodate {

RegexElement::~RegexElement() = default;

void RegexElement::Optimize(const RegexCharSet*) {}

} // namespace mirodate
