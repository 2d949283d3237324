// libjpeg itself and not its simpler interface: that one hands out the first warning only, so that damage
// behind a stray byte would go unnoticed.
#include <ovImages/detail/JpegReader.h>

#include <ovImages/detail/Orientation.h>

// In this order: jpeglib.h needs the types of cstdio.
#include <cstdio>

#include <jpeglib.h>

#include <jerror.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <memory>

namespace ovImages::detail {

namespace {

// A progressive file of a few kilobytes can otherwise keep the library busy for minutes.
constexpr int MAX_SCANS = 500;
constexpr int EXIF_MARKER = JPEG_APP0 + 1;
constexpr unsigned MAX_SEGMENT = 0xffff;
constexpr ovMemory::StringView EXIF("Exif\0\0", 6);

// Warnings after which every pixel is as it was written.
constexpr std::array HARMLESS = {
    JWRN_EXTRANEOUS_DATA, // stray bytes between two segments
    JWRN_JFIF_MAJOR,      // a revision of JFIF that there is not
    JWRN_ADOBE_XFORM,     // a transform of colours that there is not
    JWRN_NOT_SEQUENTIAL,  // parameters of a scan that baseline files have no use for
    JWRN_BOGUS_ICC        // a broken colour profile
};

unsigned findOrientation(const jpeg_decompress_struct& file) {
    for (const jpeg_marker_struct* marker = file.marker_list; marker; marker = marker->next) {
        const ovMemory::BufferView<const unsigned char> data(marker->data, marker->data_length);
        if (marker->marker == EXIF_MARKER && data.size() >= EXIF.size() &&
            std::equal(EXIF.begin(), EXIF.end(), data.begin()))
            return readExifOrientation(data.subspan(EXIF.size()));
    }
    return 1;
}

} // namespace

/// The library's records, and the place to go on at when it gives up.
struct JpegReader::State {
    jpeg_decompress_struct file = {};
    jpeg_error_mgr errors = {};
    jpeg_progress_mgr progress = {};
    std::jmp_buf giveUp = {};
    JpegComplaints complaints;
    bool stopAtDamage = false;

    static State& of(j_common_ptr file) { return *static_cast<State*>(file->client_data); }

    static ovMemory::String textOf(j_common_ptr file) {
        std::array<char, JMSG_LENGTH_MAX> text = {};
        file->err->format_message(file, text.data());
        return text.data();
    }

    [[noreturn]] static void onError(j_common_ptr file) {
        State& state = of(file);
        state.complaints.error = textOf(file);
        // The library is C and knows no exceptions. No object with a destructor lives between here and the
        // place that is jumped to.
        std::longjmp(state.giveUp, 1); // NOLINT(cert-err52-cpp)
    }

    static void onMessage(j_common_ptr file, int level) {
        if (level >= 0) // traces
            return;
        State& state = of(file);
        const bool isHarmless = std::ranges::find(HARMLESS, file->err->msg_code) != HARMLESS.end();
        ovMemory::String& kind = isHarmless ? state.complaints.doubt : state.complaints.damage;
        if (kind.empty())
            kind = textOf(file);
        if (!isHarmless && state.stopAtDamage)
            onError(file);
    }

    static void onProgress(j_common_ptr file) {
        if (reinterpret_cast<j_decompress_ptr>(file)->input_scan_number <= MAX_SCANS)
            return;
        State& state = of(file);
        state.complaints.error = "Progressive JPEG image has more than 500 scans";
        std::longjmp(state.giveUp, 1); // NOLINT(cert-err52-cpp)
    }
};

JpegReader::JpegReader(ovMemory::BufferView<const unsigned char> bytes)
    : _state(std::make_unique<State>()) {
    State& state = *_state;
    state.file.err = jpeg_std_error(&state.errors);
    state.errors.error_exit = State::onError;
    state.errors.emit_message = State::onMessage;
    state.file.client_data = &state;
    if (setjmp(state.giveUp) != 0) // NOLINT(cert-err52-cpp)
        return;
    jpeg_create_decompress(&state.file);
    state.progress.progress_monitor = State::onProgress;
    state.file.progress = &state.progress;
    jpeg_save_markers(&state.file, EXIF_MARKER, MAX_SEGMENT);
    jpeg_mem_src(&state.file, bytes.data(), static_cast<unsigned long>(bytes.size()));
}

JpegReader::~JpegReader() {
    jpeg_destroy_decompress(&_state->file);
}

const JpegComplaints& JpegReader::getComplaints() const {
    return _state->complaints;
}

bool JpegReader::readHeader(JpegHeader& header) {
    jpeg_decompress_struct& file = _state->file;
    if (!_state->complaints.error.empty() || setjmp(_state->giveUp) != 0) // NOLINT(cert-err52-cpp)
        return false;
    jpeg_read_header(&file, TRUE);
    if (file.jpeg_color_space == JCS_GRAYSCALE)
        header.color = JPEG_COLOR::GREY;
    else if (file.jpeg_color_space == JCS_CMYK || file.jpeg_color_space == JCS_YCCK)
        header.color = JPEG_COLOR::CMYK;
    else
        header.color = JPEG_COLOR::RGB;
    header.width = file.image_width;
    header.height = file.image_height;
    header.hasAdobe = file.saw_Adobe_marker != FALSE;
    header.orientation = findOrientation(file);
    return true;
}

bool JpegReader::readPixels(unsigned char* pixels, const Options& options) {
    jpeg_decompress_struct& file = _state->file;
    _state->stopAtDamage = options.stopAtDamage;
    if (options.stopAtDamage && !_state->complaints.damage.empty()) {
        _state->complaints.error = _state->complaints.damage;
        return false;
    }
    if (setjmp(_state->giveUp) != 0) // NOLINT(cert-err52-cpp)
        return false;
    // The exact transform, so that the same file gives the same pixels on every processor.
    file.dct_method = JDCT_ISLOW;
    file.do_fancy_upsampling = options.smoothChroma ? TRUE : FALSE;
    if (file.jpeg_color_space == JCS_GRAYSCALE)
        file.out_color_space = JCS_GRAYSCALE;
    else
        file.out_color_space =
            file.jpeg_color_space == JCS_CMYK || file.jpeg_color_space == JCS_YCCK ? JCS_CMYK : JCS_RGB;
    jpeg_start_decompress(&file);
    const std::size_t rowSize =
        std::size_t{file.output_width} * static_cast<unsigned>(file.output_components);
    while (file.output_scanline < file.output_height) {
        JSAMPROW row = pixels + file.output_scanline * rowSize;
        jpeg_read_scanlines(&file, &row, 1);
        if (options.progress)
            options.progress(static_cast<double>(file.output_scanline) / file.output_height);
    }
    jpeg_finish_decompress(&file);
    return true;
}

} // namespace ovImages::detail
