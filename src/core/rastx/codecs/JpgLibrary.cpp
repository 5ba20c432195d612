#include "core/rastx/codecs/JpgLibrary.h"

#include <jerror.h>

#include <algorithm>
#include <array>

namespace tessara::jpg {
namespace {

ErrorState& StateOf(j_common_ptr jpeg) {
    return *static_cast<ErrorState*>(jpeg->client_data);
}

[[noreturn]] void EscapeFromError(j_common_ptr jpeg) {
    std::longjmp(StateOf(jpeg).escape, 1);
}

bool IsRestartMarker(int marker) {
    return marker >= JPEG_RST0 && marker <= JPEG_RST0 + 7;
}

/// The library warns once when the data of a scan end early, and makes up grey blocks from there on. Behind a
/// restart marker it finds its way again; later scans only refine what the first has given.
void NoteWarning(j_common_ptr common, int level) {
    if (level >= 0) return;
    ++common->err->num_warnings;
    if (common->err->msg_code != JWRN_HIT_MARKER || !common->is_decompressor) return;
    const auto* jpeg = reinterpret_cast<j_decompress_ptr>(common);
    if (jpeg->input_scan_number > 1 || IsRestartMarker(jpeg->unread_marker)) return;
    ErrorState& state = StateOf(common);
    state.missingFrom = std::min<std::int64_t>(state.missingFrom, jpeg->input_iMCU_row);
}

void KeepQuiet(j_common_ptr) {}

}  // namespace

void InstallErrorState(j_common_ptr jpeg, ErrorState& state) {
    jpeg->err = jpeg_std_error(&state.manager);
    jpeg->client_data = &state;
    state.manager.error_exit = EscapeFromError;
    state.manager.emit_message = NoteWarning;
    state.manager.output_message = KeepQuiet;
}

Failure FailureOf(ErrorState& state, j_common_ptr jpeg) {
    std::array<char, JMSG_LENGTH_MAX> message{};
    state.manager.format_message(jpeg, message.data());
    switch (state.manager.msg_code) {
        case JERR_OUT_OF_MEMORY:
        case JERR_IMAGE_TOO_BIG:
            return TooBig(message.data());
        case JERR_SOF_UNSUPPORTED:
        case JERR_BAD_PRECISION:
        case JERR_CONVERSION_NOTIMPL:
        case JERR_COMPONENT_COUNT:
            return Unsupported(message.data());
        default:
            return Damaged(message.data());
    }
}

}  // namespace tessara::jpg
