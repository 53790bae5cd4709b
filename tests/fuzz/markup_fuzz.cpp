// Feeds arbitrary UTF-16 (lone surrogates included) to the text box's
// mark-up reader and checks what it gives back: runs that tile the text,
// links and pictures inside it, bounded size; then classifies every link.
#include "ui/LinkTarget.h"
#include "ui/MarkupParser.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::u16string markup(size / 2, u'\0');
    for (std::size_t i = 0; i < markup.size(); ++i)
        markup[i] = static_cast<char16_t>(data[2 * i] | (data[2 * i + 1] << 8));
    const mirodate::MarkupDocument doc = mirodate::MarkupParser::Parse(markup);

    // The runs cover the text exactly, in order.
    std::size_t at = 0;
    for (const mirodate::MarkupRun& run : doc.runs) {
        if (run.begin != at || run.end <= run.begin)
            std::abort();
        if (run.style.link >= static_cast<int>(doc.links.size()))
            std::abort();
        at = run.end;
    }
    if (at != doc.text.size())
        std::abort();
    if (doc.text.size() > mirodate::MarkupParser::kMaxTextBytes + 16)
        std::abort();
    if (doc.images.size() > mirodate::MarkupParser::kMaxImages)
        std::abort();
    for (const mirodate::MarkupLink& link : doc.links) {
        if (link.begin >= link.end || link.end > doc.text.size())
            std::abort();
        mirodate::LinkTarget::Classify(link.target);
    }
    for (const mirodate::MarkupImage& image : doc.images) {
        if (doc.text.compare(image.offset, 3, "\xEF\xBF\xBC") != 0)
            std::abort();
        if (image.width > mirodate::MarkupParser::kMaxImageSide ||
            image.height > mirodate::MarkupParser::kMaxImageSide)
            std::abort();
    }
    mirodate::MarkupParser::ParseColor(markup);
    return 0;
}
