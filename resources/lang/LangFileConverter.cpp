// Build tool: turns a language source (UTF-8, any line ends) into the file the
// program reads: UTF-16 little-endian with a byte-order mark and CR LF line
// ends. The program searches that text for "\nKey=", so every line must end in
// a line feed, the last one included.
//
// Usage: LangFileConverter <source.txt> <output.txt>
#include "platform/TextUtil.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace {

constexpr char kUtf8Bom[] = "\xEF\xBB\xBF";
constexpr unsigned char kUtf16LeBom[] = {0xFF, 0xFE};
// Language files are small; anything larger is a mistake in the source tree.
constexpr std::size_t kMaxSourceBytes = 4 * 1024 * 1024;

bool ReadWhole(const char* path, std::string& out) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    out.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
}

// Line ends become CR LF; a missing final line end is added.
std::string WithCrLf(const std::string& text) {
    std::string out;
    out.reserve(text.size() + text.size() / 16 + 2);
    for (char c : text) {
        if (c == '\r')
            continue;
        if (c == '\n')
            out.push_back('\r');
        out.push_back(c);
    }
    if (!out.empty() && out.back() != '\n')
        out += "\r\n";
    return out;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s <source.txt> <output.txt>\n", argv[0]);
        return 2;
    }
    const char* sourcePath = argv[1];
    const std::string outputPath = argv[2];

    std::string source;
    if (!ReadWhole(sourcePath, source)) {
        std::fprintf(stderr, "%s: cannot read\n", sourcePath);
        return 1;
    }
    if (source.size() > kMaxSourceBytes) {
        std::fprintf(stderr, "%s: larger than %zu bytes\n", sourcePath, kMaxSourceBytes);
        return 1;
    }
    if (source.rfind(kUtf8Bom, 0) == 0)
        source.erase(0, sizeof kUtf8Bom - 1);

    const std::u16string wide = mirodate::Utf8ToUtf16(WithCrLf(source));
    // Invalid UTF-8 turns into U+FFFD and does not survive the round trip.
    if (mirodate::Utf16ToUtf8(wide) != WithCrLf(source)) {
        std::fprintf(stderr, "%s: not valid UTF-8\n", sourcePath);
        return 1;
    }

    const std::string bytes = std::string(reinterpret_cast<const char*>(kUtf16LeBom), sizeof kUtf16LeBom) +
                              mirodate::EncodeUtf16Le(wide);

    // Write beside the target and rename, so that a failed run never leaves a
    // half-written file that looks up to date.
    const std::string tempPath = outputPath + ".tmp";
    {
        std::ofstream out(tempPath, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.close();
        if (!out) {
            std::fprintf(stderr, "%s: cannot write\n", tempPath.c_str());
            std::remove(tempPath.c_str());
            return 1;
        }
    }
    if (std::rename(tempPath.c_str(), outputPath.c_str()) != 0) {
        std::fprintf(stderr, "%s: cannot replace\n", outputPath.c_str());
        std::remove(tempPath.c_str());
        return 1;
    }
    return 0;
}
