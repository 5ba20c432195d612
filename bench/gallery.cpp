// Writes contact sheets of every operation of the imaging pane and of every effect that the program computes
// itself, as each looks at its usual values and at both ends of its range:
//
//     tessara_gallery FOLDER [PHOTOGRAPH]
//
// One sheet for the photograph (a drawn landscape where none is given), one for a drawing with fine lines
// and one for a small icon. Each row of a sheet is the picture itself, then the operation as named in the
// list that is printed. Or the pictures of the manual, one for each effect of the menus:
//
//     tessara_gallery --manual help/pictures/effects

#include <cctype>
#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "core/Files.h"
#include "core/Paths.h"
#include "core/Text.h"
#include "core/rastx/Codec.h"
#include "core/rastx/effects/EffectTable.h"
#include "core/rastx/effects/Resample.h"
#include "edit/EffectCatalogue.h"
#include "edit/EffectParameters.h"
#include "edit/OwnEffects.h"

namespace {

using namespace tessara;
using namespace tessara::effects;

Picture Blank(int width, int height, Pixel fill) {
    return Picture::Create(width, height, fill, Alpha::None).Value();
}

/// Draws by a rule: the colour at each place, taken four by four times per pixel.
template <typename Rule>
Picture DrawBy(int width, int height, const Rule& rule) {
    Picture large = Blank(4 * width, 4 * height, kWhite);
    for (int y = 0; y < 4 * height; ++y) {
        const auto row = large.MutableRow(y);
        for (int x = 0; x < 4 * width; ++x)
            row[static_cast<std::size_t>(x)] = rule((x + 0.5f) / 4, (y + 0.5f) / 4);
    }
    return Resample(large, width, height, ResampleQuality::Best).Value();
}

Pixel Mix(Pixel a, Pixel b, float share) {
    const auto mix = [share](int from, int to) {
        return static_cast<std::uint8_t>(from + (to - from) * std::clamp(share, 0.0f, 1.0f));
    };
    return {mix(a.b, b.b), mix(a.g, b.g), mix(a.r, b.r), 255};
}

/// A lake in the evening: sky, sun, hills and their reflection, a tree.
Picture Landscape() {
    constexpr int kWidth = 480, kHeight = 320;
    const auto hill = [](float x) { return 150 - 42 * std::sin(x / 63) - 17 * std::sin(x / 19 + 1); };
    const auto above = [&](float x, float y) {
        const float sun = std::hypot(x - 345, y - 88);
        Pixel color = Mix({150, 80, 40, 255}, {120, 190, 255, 255}, y / 190);
        color = Mix({190, 240, 255, 255}, color, sun < 26 ? 0.0f : (sun - 26) / 70);
        if (y > hill(x)) color = Mix({90, 70, 60, 255}, {60, 110, 70, 255}, (y - hill(x)) / 60);
        if (y > 178 + 10 * std::sin(x / 40))
            color = Mix({40, 140, 90, 255}, {30, 90, 40, 255}, (y - 178) / 30);
        return color;
    };
    return DrawBy(kWidth, kHeight, [&](float x, float y) {
        const bool leaf =
            std::hypot((x - 95) / 1.1f, y - 112) < 52 + 5 * std::sin(std::atan2(y - 112, x - 95) * 9);
        const std::uint32_t grain =
            RandomOf(static_cast<std::uint32_t>(y) * 512 + static_cast<std::uint32_t>(x));
        const float light = static_cast<float>(grain & 31) / 300 + (y < 100 + x / 8 ? 0.0f : 0.3f);
        if (leaf)
            return Mix({50, 170, 100, 255}, {20, 50, 20, 255}, light + std::hypot(x - 80, y - 95) / 200);
        if (std::abs(x - 95) < 8 && y > 112 && y < 225)
            return Mix({50, 80, 120, 255}, {20, 30, 50, 255}, (x - 87) / 16);
        if (y > 215) {
            const float ripple = 2.5f * std::sin(y * y / 900 + x / 30);
            return Mix(above(x + ripple, 430 - y), {120, 80, 50, 255}, 0.25f + 0.2f * std::sin(y / 2.2f));
        }
        return above(x, y);
    });
}

/// Five by seven dots a letter, a row of five bits each.
struct Letter {
    char name;
    unsigned char rows[7];
};
constexpr Letter kLetters[] = {{'T', {31, 4, 4, 4, 4, 4, 4}},       {'E', {31, 16, 16, 30, 16, 16, 31}},
                               {'S', {15, 16, 16, 14, 1, 1, 30}},   {'A', {14, 17, 17, 31, 17, 17, 17}},
                               {'R', {30, 17, 17, 30, 20, 18, 17}}, {'P', {30, 17, 17, 30, 16, 16, 16}},
                               {'O', {14, 17, 17, 17, 17, 17, 14}}};

void Write(Picture& picture, const char* text, int left, int top, int scale, Pixel color) {
    for (; *text; ++text, left += 6 * scale)
        for (const Letter& letter : kLetters)
            for (int y = 0; letter.name == *text && y < 7 * scale; ++y)
                for (int x = 0; x < 5 * scale; ++x)
                    if (letter.rows[y / scale] >> (4 - x / scale) & 1)
                        picture.MutableRow(top + y)[static_cast<std::size_t>(left + x)] = color;
}

/// Letters in several sizes, thin lines at many angles and flat colours, nothing of it antialiased.
Picture Drawing() {
    Picture picture = Blank(360, 240, kWhite);
    for (int y = 0; y < 240; ++y) {
        const auto row = picture.MutableRow(y);
        for (int x = 0; x < 360; ++x) {
            Pixel& pixel = row[static_cast<std::size_t>(x)];
            if (std::hypot(x - 280, y - 70) < 52) pixel = {40, 60, 220, 255};
            if (std::hypot(x - 280, y - 70) < 30) pixel = {60, 210, 250, 255};
            if (x > 30 && x < 150 && y > 140 && y < 220) pixel = {200, 120, 40, 255};
            if (y > 140 && std::abs(x - 250) < (y - 140) / 2 && y < 225) pixel = {90, 160, 60, 255};
            for (int i = 1; i < 9; ++i)
                if (x > 150 && x < 230 && std::abs(y - 230 + (x - 150) * i / 5) < 1) pixel = kBlack;
        }
    }
    Write(picture, "TESSARA", 15, 15, 4, kBlack);
    Write(picture, "PRO", 15, 60, 6, {160, 40, 40, 255});
    Write(picture, "TESSARA PRO", 140, 65, 1, kBlack);
    Write(picture, "TESSARA", 45, 165, 2, kWhite);
    return picture;
}

Picture Icon() {
    return DrawBy(32, 32, [](float x, float y) {
        const float distance = std::hypot(x - 16, y - 16);
        if (distance > 15) return kWhite;
        if (distance > 13) return Pixel{120, 60, 20, 255};
        if (std::abs(x - y) < 3 || std::abs(x + y - 32) < 3) return kWhite;
        return Mix({250, 170, 60, 255}, {150, 70, 30, 255}, y / 32);
    });
}

/// A short name of the values, for the printed list.
std::string Describe(const Effect& effect, const ArgumentValues& values) {
    std::string text(effect.name);
    for (std::size_t i = 0; i < effect.arguments.size(); ++i) {
        char number[32];
        std::snprintf(number, sizeof number, " %g", values[i]);
        text += number;
    }
    return text;
}

struct Shown {
    std::string description;
    std::function<Result<Picture>(const Picture&)> apply;
};

/// What an effect is shown with beside its usual values; none where it has no arguments.
std::vector<ArgumentValues> BothEnds(const Effect& effect) {
    if (effect.arguments.empty()) return {};
    if (effect.name == "FxColorize") return {{-250, 0, 0}, {0, 250, 0}};
    if (effect.name == "FxColorBalance") return {{-60, 0, 0}, {0, 0, 60}};
    const ArgumentValues usual = effect.Usual();
    if (effect.name == "FxRotate") return {{30, usual[1], 0}, {90, usual[1], 0}};
    ArgumentValues lowest = usual, highest = usual;
    for (std::size_t i = 0; i < effect.arguments.size(); ++i) {
        if (effect.arguments[i].kind == ArgumentKind::Color) continue;
        lowest[i] = effect.arguments[i].lowest;
        highest[i] = effect.arguments[i].highest;
    }
    return {lowest, highest};
}

Picture ApplyOwn(const Picture& picture, int code, double depth) {
    Picture target = picture;
    OwnEffects(picture, target, {}).ApplyOwnEffect(code, depth, [] {});
    return target;
}

/// Every effect at its usual values and at both ends; of the own ones the lowest depth that changes anything.
std::vector<Shown> Everything() {
    std::vector<Shown> shown;
    for (const Effect& effect : EffectTable()) {
        std::vector<ArgumentValues> choices = BothEnds(effect);
        choices.insert(choices.begin(), effect.Usual());
        for (const ArgumentValues& values : choices)
            shown.push_back({Describe(effect, values), [&effect, values](const Picture& picture) {
                                 return effect.apply(picture, values, {.threads = 1, .seed = 7});
                             }});
    }
    for (const EffectEntry& entry : EffectEntries()) {
        const EffectParameters* effect = FindEffectParameters(entry.code);
        if (!entry.visible || !effect || !effect->IsOwnEffect()) continue;
        const EffectSlider slider = effect->Slider();
        for (const int value : {slider.Value, slider.SmallChange, slider.Max})
            shown.push_back({EffectCaptionOf(entry.caption) + " " + std::to_string(value),
                             [code = entry.code, value](const Picture& picture) -> Result<Picture> {
                                 return ApplyOwn(picture, code, value / 100.0);
                             }});
    }
    return shown;
}

void Paste(Picture& sheet, const Picture& picture, int left, int top) {
    for (int y = 0; y < picture.Height(); ++y)
        std::ranges::copy(picture.Row(y), sheet.MutableRow(top + y).begin() + left);
}

/// The picture made to fit into a cell; a small one is shown in large dots.
Picture FitInto(const Picture& picture, int width, int height) {
    const double scale = std::min(static_cast<double>(width) / picture.Width(),
                                  static_cast<double>(height) / picture.Height());
    if (scale >= 1) return picture;
    return Resample(picture, static_cast<int>(picture.Width() * scale),
                    static_cast<int>(picture.Height() * scale), ResampleQuality::Best)
        .Value();
}

/// Where an effect shows best with other sliders than most.
struct ManualChoice {
    int code;
    std::array<int, 3> sliders;
};
constexpr ManualChoice kManualChoices[] = {
    {1, {20, 35, 0}},   {10, {0, 2, 0}},     {12, {0, 5, 0}},   {30, {0, 90, 0}},  {107, {0, 30, 0}},
    {200, {80, 60, 0}}, {204, {50, 0, -50}}, {215, {0, 40, 0}}, {216, {0, 40, 0}}, {219, {0, 100, 0}},
    {221, {0, 1, 0}},   {222, {0, 2, 0}},    {230, {0, 2, 0}},
};

/// What the effect dialog is set to for the manual.
EffectChoice ChoiceForTheManual(const EffectParameters& effect) {
    const auto row = std::ranges::find(kManualChoices, effect.code, &ManualChoice::code);
    if (row != std::end(kManualChoices)) return {row->sliders};
    const EffectSlider slider = effect.Slider();
    const bool showsFromTheStart = slider.Value > (slider.Min + slider.Max) / 4;
    const int value = showsFromTheStart ? slider.Value : (slider.Min + 2 * slider.Max) / 3;
    return {{value, value, value}};
}

Picture ForTheManual(const EffectEntry& entry, const Picture& picture) {
    Rastx pane;
    pane.SetImage(picture);
    if (entry.kind != EffectKind::Dialog) {
        const double argument = entry.kind == EffectKind::AskColor ? RGB(255, 255, 255) : entry.argument;
        Ignore(pane.Run(*FindEffect(entry.operation), {argument, double(RGB(255, 255, 255))}));
        return pane.Image();
    }
    const EffectParameters& effect = *FindEffectParameters(entry.code);
    const EffectChoice choice = ChoiceForTheManual(effect);
    if (!effect.IsOwnEffect()) {
        RunPaneEffect(effect, choice, pane);
        return pane.Image();
    }
    return ApplyOwn(picture, effect.code, choice.sliders[1] / effect.divisor);
}

/// "Ripple : Sine" as "ripple-sine".
std::string FileNameOf(std::string_view caption) {
    std::string name;
    for (const char c : EffectCaptionOf(caption)) {
        if (std::isalnum(static_cast<unsigned char>(c)))
            name += LowerCase(c);
        else if (!name.empty() && name.back() != '-')
            name += '-';
    }
    name.erase(name.find_last_not_of('-') + 1);
    return name;
}

/// A picture of every effect that the menus show, and one of the picture that they start from.
bool WriteForTheManual(const std::string& folder, const Picture& picture) {
    const Codec* jpg = FindCodec({}, "jpg");
    const auto write = [&](const std::string& name, const Picture& shown) {
        return ReplaceFile(folder + "/" + name + ".jpg",
                           [&](ByteSink& sink) { return jpg->encode(shown, {.quality = 90}, sink); })
            .Ok();
    };
    bool written = write("original", picture);
    for (const EffectEntry& entry : EffectEntries()) {
        const bool changes = entry.kind == EffectKind::Direct || entry.kind == EffectKind::AskColor ||
                             entry.kind == EffectKind::Dialog;
        if (!changes || !entry.visible) continue;
        written &= write(FileNameOf(entry.caption),
                         FitInto(ForTheManual(entry, picture), picture.Width(), picture.Height()));
    }
    return written;
}

bool WriteSheet(const std::string& path, const Picture& picture, const std::vector<Shown>& shown, int columns,
                int cellWidth, int cellHeight) {
    constexpr int kGap = 4;
    const int rows = (static_cast<int>(shown.size()) + columns - 1) / columns;
    Picture sheet = Blank(columns * (cellWidth + kGap) + kGap, rows * (cellHeight + kGap) + kGap, Grey(96));
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const auto result = shown[i].apply(picture);
        if (!result) return false;
        const int column = static_cast<int>(i) % columns;
        const int row = static_cast<int>(i) / columns;
        std::printf("%s row %d column %d: %s\n", path.c_str(), row + 1, column + 1,
                    shown[i].description.c_str());
        Paste(sheet, FitInto(result.Value(), cellWidth, cellHeight), kGap + column * (cellWidth + kGap),
              kGap + row * (cellHeight + kGap));
    }
    const Codec* png = FindCodec({}, "png");
    return ReplaceFile(path, [&](ByteSink& sink) { return png->encode(sheet, {}, sink); }).Ok();
}

Result<Picture> Load(const std::string& path) {
    TRY_ASSIGN(const FileBytes file, FileBytes::Read(path));
    return DecodeFile(file.View(), ExtensionOf(path));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: tessara_gallery FOLDER [PHOTOGRAPH] or --manual FOLDER\n");
        return 2;
    }
    const std::string folder = argv[1];
    const Picture landscape = Landscape();
    if (folder == "--manual" && argc > 2)
        return WriteForTheManual(argv[2], FitInto(landscape, 120, 80)) ? 0 : 1;
    const Result<Picture> photo = argc > 2 ? Load(argv[2]) : Result<Picture>(landscape);
    if (!photo) {
        std::fprintf(stderr, "%s: %s\n", argv[2], photo.Error().message.c_str());
        return 1;
    }
    const Picture fitted = FitInto(photo.Value(), 300, 240);
    const bool written =
        WriteSheet(folder + "/photograph.png", fitted, Everything(), 6, fitted.Width(), fitted.Height()) &&
        WriteSheet(folder + "/drawing.png", Drawing(), Everything(), 6, 300, 200) &&
        WriteSheet(folder + "/icon.png", Icon(), Everything(), 12, 36, 36);
    return written ? 0 : 1;
}
