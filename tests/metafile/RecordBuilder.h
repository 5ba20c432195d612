#pragma once

#include <initializer_list>
#include <string_view>
#include <vector>

#include "core/ByteSink.h"
#include "tests/Support.h"

/// Small metafiles made by hand, a unit per pixel.
namespace tessara::test {

constexpr std::uint32_t Red = 0x0000FF, Green = 0x00FF00, Blue = 0xFF0000, Black = 0, White = 0xFFFFFF,
                        Yellow = 0x00FFFF;

/// A placeable metafile. Parameters are in the order of the file: the reverse of the drawing call's.
class WmfBuilder {
  public:
    WmfBuilder(int width, int height, int unitsPerInch = 96) {
        header_.U32Le(0x9AC6CDD7).Zeros(6).U16Le(Word(width)).U16Le(Word(height));
        header_.U16Le(Word(unitsPerInch)).Zeros(6);
    }
    static WmfBuilder WithoutPlacement() {
        WmfBuilder builder(0, 0);
        builder.header_ = {};
        return builder;
    }

    WmfBuilder& Record(std::uint16_t function, std::initializer_list<int> words,
                       const ByteVector& data = {}) {
        const std::size_t size = 3 + words.size() + (data.size() + 1) / 2;
        records_.U32Le(static_cast<std::uint32_t>(size)).U16Le(function);
        for (const int word : words) records_.U16Le(Word(word));
        records_.Append(data).Zeros(data.size() % 2);
        return *this;
    }
    /// Creates a pen (style 5: none) in the next slot and selects it.
    WmfBuilder& Pen(int style, int width, std::uint32_t color) {
        Record(0x02FA, {style, width, 0, Low(color), High(color)});
        return Record(0x012D, {slots_++});
    }
    WmfBuilder& Brush(int style, std::uint32_t color, int hatch = 0) {
        Record(0x02FC, {style, Low(color), High(color), hatch});
        return Record(0x012D, {slots_++});
    }
    /// No pen and a solid brush.
    WmfBuilder& Fill(std::uint32_t color) { return Pen(5, 0, 0).Brush(0, color); }
    WmfBuilder& Rectangle(int left, int top, int right, int bottom) {
        return Record(0x041B, {bottom, right, top, left});
    }

    /// The file, with an end record unless it is to be broken off.
    ByteVector File(bool complete = true) const {
        ByteWriter file;
        file.Append(header_.Written()).U16Le(1).U16Le(9).U16Le(0x0300).Zeros(12).Append(records_.Written());
        if (complete) file.U32Le(3).U16Le(0);
        return file.TakeBytes();
    }
    ByteVector Records() const { return records_.Written(); }

    static int Low(std::uint32_t value) { return static_cast<int>(value & 0xFFFF); }
    static int High(std::uint32_t value) { return static_cast<int>(value >> 16); }

  private:
    static std::uint32_t Word(int value) { return static_cast<std::uint16_t>(value); }

    ByteWriter header_;
    ByteWriter records_;
    int slots_ = 0;
};

/// An enhanced metafile of a screen of 96 dots per inch, whose frame holds `width` by `height` pixels.
class EmfBuilder {
  public:
    EmfBuilder(int width, int height) : width_(width), height_(height) {}

    EmfBuilder& Record(std::uint32_t type, std::initializer_list<int> numbers, const ByteVector& data = {}) {
        const std::size_t padded = (data.size() + 3) / 4 * 4;
        records_.U32Le(type).U32Le(static_cast<std::uint32_t>(8 + 4 * numbers.size() + padded));
        for (const int number : numbers) records_.I32Le(number);
        records_.Append(data).Zeros(padded - data.size());
        return *this;
    }
    /// A record that begins with its bounds.
    EmfBuilder& Bounded(std::uint32_t type, std::initializer_list<int> numbers, const ByteVector& data = {}) {
        ByteWriter rest;
        for (const int number : numbers) rest.I32Le(number);
        rest.Append(data);
        return Record(type, {0, 0, 0, 0}, rest.Written());
    }
    EmfBuilder& Pen(int style, int width, std::uint32_t color) {
        Record(38, {slot_, style, width, 0, static_cast<int>(color)});
        return Record(37, {slot_++});
    }
    EmfBuilder& Brush(int style, std::uint32_t color, int hatch = 0) {
        Record(39, {slot_, style, static_cast<int>(color), hatch});
        return Record(37, {slot_++});
    }
    EmfBuilder& Fill(std::uint32_t color) { return Pen(5, 0, 0).Brush(0, color); }
    EmfBuilder& Rectangle(int left, int top, int right, int bottom) {
        return Record(43, {left, top, right, bottom});
    }
    EmfBuilder& Bounds(int left, int top, int right, int bottom) {
        bounds_ = {left, top, right, bottom};
        return *this;
    }
    EmfBuilder& NoFrame() {
        framed_ = false;
        return *this;
    }

    ByteVector File(bool complete = true) const {
        ByteWriter file;
        file.U32Le(1).U32Le(108);
        for (const int edge : bounds_) file.I32Le(edge);
        const auto hundredths = [&](int pixels) { return framed_ ? (pixels * 2540 + 48) / 96 : 0; };
        file.U32Le(0).U32Le(0).I32Le(hundredths(width_)).I32Le(hundredths(height_)).Text(" EMF");
        file.U32Le(0x10000).U32Le(0).U32Le(0).U16Le(9).U16Le(0).U32Le(0).U32Le(0).U32Le(0);
        file.U32Le(1920).U32Le(1440).U32Le(508).U32Le(381).Zeros(12).U32Le(508000).U32Le(381000);
        file.Append(records_.Written());
        if (complete) file.U32Le(14).U32Le(20).U32Le(0).U32Le(16).U32Le(20);
        return file.TakeBytes();
    }

  private:
    int width_, height_;
    std::vector<int> bounds_{0, 0, -1, -1};
    bool framed_ = true;
    ByteWriter records_;
    int slot_ = 1;
};

/// A bitmap of 24 bits per pixel from a sketch, as records carry it: header and bits, bottom row first.
inline ByteVector Dib(std::string_view sketch) {
    const Picture picture = Draw(sketch);
    ByteWriter dib;
    dib.U32Le(40).I32Le(picture.Width()).I32Le(picture.Height()).U16Le(1).U16Le(24).Zeros(24);
    for (int y = picture.Height(); y-- > 0;) {
        for (const Pixel pixel : picture.Row(y)) dib.U8(pixel.b).U8(pixel.g).U8(pixel.r);
        dib.Zeros(static_cast<std::size_t>(picture.Width()) % 4);
    }
    return dib.TakeBytes();
}

/// Where dark pixels lie.
struct Ink {
    int left = 1 << 20, top = 1 << 20, right = -1, bottom = -1;
    int Width() const { return right - left + 1; }
    int Height() const { return bottom - top + 1; }
};

inline Ink InkOf(const Picture& picture) {
    Ink ink;
    for (int y = 0; y < picture.Height(); ++y)
        for (int x = 0; x < picture.Width(); ++x)
            if (picture.At(x, y).g < 128)
                ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x),
                       std::max(ink.bottom, y)};
    return ink;
}

/// What colour the quarters of a picture have amid them: "RG BW".
inline std::string Quarters(const Picture& picture) {
    Picture quarters = Draw("WW WW");
    for (int y : {0, 1})
        for (int x : {0, 1})
            quarters.MutableRow(y)[static_cast<std::size_t>(x)] =
                picture.At((11 * x + 4) * picture.Width() / 20, (11 * y + 4) * picture.Height() / 20);
    return Sketch(quarters);
}

/// A stroke of 16-bit coordinates.
inline ByteVector Points(std::initializer_list<int> coordinates) {
    ByteWriter points;
    for (const int value : coordinates) points.U16Le(static_cast<std::uint16_t>(value));
    return points.TakeBytes();
}

}  // namespace tessara::test
