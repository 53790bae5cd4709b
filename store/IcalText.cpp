#include "store/IcalText.h"

#include <cstring>

namespace mirodate {

namespace {

struct LineSource {
    std::string_view text;
    std::size_t position = 0;
};

// libical asks for at most `size - 1` characters up to and including the next
// line feed; it calls again for the rest of a longer line.
char* NextPiece(char* out, std::size_t size, void* data) {
    auto* source = static_cast<LineSource*>(data);
    if (source->position >= source->text.size() || size < 2)
        return nullptr;
    const std::string_view rest = source->text.substr(source->position, size - 1);
    const std::size_t lineFeed = rest.find('\n');
    const std::size_t length = lineFeed == std::string_view::npos ? rest.size() : lineFeed + 1;
    std::memcpy(out, rest.data(), length);
    out[length] = '\0';
    source->position += length;
    return out;
}

struct ParserFree {
    void operator()(icalparser* parser) const { icalparser_free(parser); }
};

} // namespace

IcalComponentPtr IcalText::Parse(std::string_view text) {
    // A NUL ends the text for libical; keep the same reading.
    const std::size_t nul = text.find('\0');
    LineSource source{text.substr(0, nul)};
    std::unique_ptr<icalparser, ParserFree> parser(icalparser_new());
    if (!parser)
        return nullptr;
    icalparser_set_gen_data(parser.get(), &source);
    const icalerrorstate previous = icalerror_get_error_state(ICAL_MALFORMEDDATA_ERROR);
    icalerror_set_error_state(ICAL_MALFORMEDDATA_ERROR, ICAL_ERROR_NONFATAL);
    IcalComponentPtr root(icalparser_parse(parser.get(), &NextPiece));
    icalerror_set_error_state(ICAL_MALFORMEDDATA_ERROR, previous);
    return root;
}

} // namespace mirodate
