// JPEG data read by libjpeg, with its warnings told apart. Internal to the library.
#pragma once

#include <ovCommon/WorkProgress.h>
#include <ovMemory/Memory.h>

namespace ovImages::detail {

/// What the pixels of a JPEG are read as.
enum class JPEG_COLOR : unsigned int { GREY = 1, RGB = 3, CMYK = 4 };

/// What a JPEG says before its pixels.
struct JpegHeader {
    unsigned width = 0;
    unsigned height = 0;
    JPEG_COLOR color = JPEG_COLOR::RGB;
    bool hasAdobe = false;
    unsigned orientation = 1; ///< of EXIF, 1 to 8
};

/// What the library complained of, in its words: the first complaint of each kind.
struct JpegComplaints {
    ovMemory::String error;  ///< nothing can be read
    ovMemory::String damage; ///< pixels are missing or wrong
    ovMemory::String doubt;  ///< stray bytes or broken metadata: every pixel was read
};

/// Reads one JPEG of memory. Nothing throws.
class JpegReader {
public:
    /// @param bytes borrowed until this object is destroyed
    explicit JpegReader(ovMemory::BufferView<const unsigned char> bytes);
    ~JpegReader();
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    /// To be called first, once. @return false with an error
    bool readHeader(JpegHeader& header);

    struct Options {
        bool smoothChroma = true;
        bool stopAtDamage = true; ///< makes damage an error
        ovCommon::WorkProgress progress = {};
    };

    /// Reads all pixels, after the header. Progressive files of more than 500 scans are refused.
    /// @param pixels tight rows of as many channels as the header's colour has
    /// @return false with an error; pixels that were not reached are as they were
    bool readPixels(unsigned char* pixels, const Options& options);

    const JpegComplaints& getComplaints() const;

private:
    struct State;
    ovMemory::UniquePtr<State> _state;
};

} // namespace ovImages::detail
