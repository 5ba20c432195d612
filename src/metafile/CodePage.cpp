#include "metafile/CodePage.h"

#include <algorithm>
#include <array>
#include <memory>

namespace tessara::metafile {
namespace {

struct Charset {
    unsigned number;
    const char* name;  ///< as the C library's converter knows it
};

constexpr const char* kWestern = "CP1252";
constexpr Charset kCharsets[] = {
    {0, kWestern},   {1, kWestern},   {77, "MACINTOSH"}, {128, "CP932"},  {129, "CP949"},  {130, "JOHAB"},
    {134, "CP936"},  {136, "CP950"},  {161, "CP1253"},   {162, "CP1254"}, {163, "CP1258"}, {177, "CP1255"},
    {178, "CP1256"}, {186, "CP1257"}, {204, "CP1251"},   {222, "CP874"},  {238, "CP1250"}, {255, "CP437"},
};

class Converter {
  public:
    explicit Converter(const char* charset) : handle_(iconv_open("UTF-16LE", charset)) {}
    ~Converter() {
        if (Open()) iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    /// The UTF-16 units of exactly these bytes; none if they are no whole character.
    QString Convert(Bytes character) {
        if (!Open()) return {};
        iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        std::array<char, 4> in{};
        std::copy(character.begin(), character.end(), in.begin());
        std::array<char, 16> out{};
        char* from = in.data();
        char* to = out.data();
        std::size_t inLeft = character.size();
        std::size_t outLeft = out.size();
        if (iconv(handle_, &from, &inLeft, &to, &outLeft) == static_cast<std::size_t>(-1)) return {};
        iconv(handle_, nullptr, nullptr, &to, &outLeft);
        QString text;
        for (std::size_t i = 0; i + 1 < out.size() - outLeft; i += 2)
            text += QChar(static_cast<ushort>(static_cast<std::uint8_t>(out[i]) |
                                              static_cast<std::uint8_t>(out[i + 1]) << 8));
        return text;
    }

  private:
    bool Open() const { return handle_ != reinterpret_cast<iconv_t>(-1); }
    iconv_t handle_;
};

const char* NameOf(unsigned charset) {
    const auto* found = std::ranges::find(kCharsets, charset, &Charset::number);
    return found == std::end(kCharsets) ? kWestern : found->name;
}

/// The places 0x20 to 0x7E and 0xA1 to 0xFE of the Symbol font, after the table of the PostScript font of
/// that name; a blank where there is nothing.
constexpr std::u32string_view kSymbolLow =
    U" !∀#∃%&∋()∗+,−./0123456789:;<=>?≅ΑΒΧΔΕΦΓΗΙϑΚΛΜΝΟΠΘΡΣΤΥςΩΞΨΖ[∴]⊥_‾αβχδεφγηιϕκλμνοπθρστυϖωξψζ{|}∼";
constexpr std::u32string_view kSymbolHigh =
    U"ϒ′≤⁄∞ƒ♣♦♥♠↔←↑→↓°±″≥×∝∂•÷≠≡≈…⏐⎯↵ℵℑℜ℘⊗⊕∅∩∪⊃⊇⊄⊂⊆∈∉∠∇®©™∏√⋅¬∧∨⇔⇐⇑⇒⇓◊〈®©™∑⎛⎜⎝⎡⎢⎣⎧⎨⎩⎪ 〉∫⌠⎮⌡⎞⎟⎠⎤⎥⎦⎫⎬⎭";

struct Dingbat {
    std::uint8_t code;
    char32_t character;
};

/// The bullets, boxes, arrows and marks of Wingdings that documents use.
constexpr Dingbat kWingdings[] = {
    {0x22, U'✂'}, {0x28, U'☎'}, {0x2A, U'✉'}, {0x3F, U'✍'}, {0x4A, U'☺'}, {0x4C, U'☹'}, {0x6C, U'●'},
    {0x6D, U'❍'}, {0x6E, U'■'}, {0x6F, U'□'}, {0x70, U'❐'}, {0x71, U'❑'}, {0x72, U'❒'}, {0x73, U'⬧'},
    {0x74, U'⧫'}, {0x75, U'◆'}, {0x76, U'❖'}, {0x77, U'⬥'}, {0x78, U'⌧'}, {0x9E, U'·'}, {0x9F, U'•'},
    {0xA1, U'○'}, {0xA4, U'◉'}, {0xA6, U'❍'}, {0xA7, U'▪'}, {0xA8, U'◻'}, {0xAA, U'✦'}, {0xAB, U'★'},
    {0xAC, U'✶'}, {0xB2, U'✧'}, {0xD7, U'⌫'}, {0xD8, U'➢'}, {0xDF, U'←'}, {0xE0, U'→'}, {0xE1, U'↑'},
    {0xE2, U'↓'}, {0xE8, U'➔'}, {0xEF, U'⇦'}, {0xF0, U'⇨'}, {0xF1, U'⇧'}, {0xF2, U'⇩'}, {0xFB, U'✗'},
    {0xFC, U'✓'}, {0xFD, U'☒'}, {0xFE, U'☑'},
};

char32_t FromSymbolTable(std::uint8_t byte) {
    const auto within = [](std::u32string_view table, unsigned index) {
        return index < table.size() ? table[index] : U' ';
    };
    return byte < 0xA1 ? within(kSymbolLow, byte - 0x20u) : within(kSymbolHigh, byte - 0xA1u);
}

}  // namespace

DecodedText DecodeText(Bytes bytes, unsigned charset) {
    constexpr unsigned kSymbols = 2;
    Converter converter(charset == kSymbols ? "LATIN1" : NameOf(charset));
    DecodedText decoded;
    for (std::size_t i = 0; i < bytes.size();) {
        QString character;
        std::size_t length = 1;
        for (; length <= std::min<std::size_t>(2, bytes.size() - i); ++length) {
            character = converter.Convert(bytes.subspan(i, length));
            if (!character.isEmpty()) break;
        }
        if (character.isEmpty()) {
            character = QChar(char16_t{bytes[i]});
            length = 1;
        }
        decoded.text += character;
        decoded.bytesOfUnit.push_back(static_cast<int>(length));
        decoded.bytesOfUnit.resize(static_cast<std::size_t>(decoded.text.size()), 0);
        i += length;
    }
    return decoded;
}

bool IsSymbolFont(const QString& face, unsigned charset) {
    constexpr unsigned kSymbols = 2;
    return charset == kSymbols || face.compare(QLatin1String("Symbol"), Qt::CaseInsensitive) == 0 ||
           face.startsWith(QLatin1String("Wingdings"), Qt::CaseInsensitive);
}

char32_t SymbolOf(const QString& face, char32_t code) {
    if (code >= 0xF000 && code <= 0xF0FF) code -= 0xF000;
    if (code < 0x20 || code > 0xFF) return code;
    const auto byte = static_cast<std::uint8_t>(code);
    if (!face.startsWith(QLatin1String("Wingdings"), Qt::CaseInsensitive)) {
        const bool symbol = face.compare(QLatin1String("Symbol"), Qt::CaseInsensitive) == 0;
        return symbol ? FromSymbolTable(byte) : code;
    }
    const auto* found = std::ranges::find(kWingdings, byte, &Dingbat::code);
    return found == std::end(kWingdings) ? U'▪' : found->character;
}

}  // namespace tessara::metafile
