#include "regex/RegexClassElement.h"

namespace mirodate {

RegexClassElement::RegexClassElement(RegexCharSet set) : set_(std::move(set)) {}

RegexClassElement::~RegexClassElement() = default;

} // namespace mirodate
