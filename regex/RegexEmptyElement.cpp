#include "regex/RegexEmptyElement.h"

namespace mirodate {

RegexEmptyElement::~RegexEmptyElement() = default;

} // namespace mirodate
