// Records that draw text.

#include "metafile/CodePage.h"
#include "metafile/WmfPlayer.h"

namespace tessara::metafile {

void WmfPlayer::DrawText(Bytes text, TextCall call, ByteReader* advances) {
    const DecodedText decoded = DecodeText(text, State().font.charset);
    call.text = decoded.text;
    if (advances && advances->Left() >= 2 * text.size()) {
        for (const int bytes : decoded.bytesOfUnit) {
            double advance = 0;
            for (int i = 0; i < bytes; ++i) advance += advances->I16Le();
            call.advances.push_back(advance);
        }
    }
    context_.DrawText(call);
}

void WmfPlayer::TextOut(ByteReader& reader) {
    const std::size_t count = reader.U16Le();
    const Bytes text = reader.TakeUpTo(count);
    reader.Skip(count % 2);
    TextCall call;
    call.reference = ReadYX(reader);
    DrawText(text, call, nullptr);
}

void WmfPlayer::ExtendedTextOut(ByteReader& reader) {
    constexpr unsigned kFillBox = 2, kClipToBox = 4;
    TextCall call;
    call.reference = ReadYX(reader);
    const std::size_t count = reader.U16Le();
    const unsigned options = reader.U16Le();
    call.fillBox = (options & kFillBox) != 0;
    call.clipToBox = (options & kClipToBox) != 0;
    if (call.fillBox || call.clipToBox) {
        const double left = reader.I16Le();
        const double top = reader.I16Le();
        const double right = reader.I16Le();
        call.box = QRectF(QPointF(left, top), QPointF(right, reader.I16Le()));
    }
    const Bytes text = reader.TakeUpTo(count);
    reader.Skip(count % 2);
    DrawText(text, call, &reader);
}

}  // namespace tessara::metafile
