// What every image file format offers: recognising, decoding and encoding bytes in memory.
#pragma once

#include <ovCommon/WorkProgress.h>
#include <ovImages/Image.h>
#include <ovMemory/Result.h>

namespace ovImages {

/// How to decode. Formats that a field says nothing about ignore it.
struct DecodeOptions {
    /// Turns the picture upright as its EXIF orientation says (JPEG, PNG). Off: rows as they are stored.
    bool applyOrientation = true;
    /// Data that ends early or fails a check is an error. Off: what could be read is returned, the rest of
    /// the pixels 0 (JPEG: grey), and the result's warning tells; headers must be sound in any case.
    bool refuseDamaged = true;
    /// Doubtful data is an error: stray bytes and broken metadata (JPEG), which cost no pixel and which other
    /// readers pass over. Off, which is the default: it is read, and the result's warning tells.
    bool strict = false;
    /// Interpolates subsampled colour smoothly (JPEG). Off: repeats it, which is faster and blocky.
    bool smoothChroma = true;
    /// The most bytes of decoded pixels, checked before they are allocated; above MAX_IMAGE_BYTES that holds.
    std::size_t maxBytes = MAX_IMAGE_BYTES;
    /// The layer to read of a file with several (EXR): "diffuse" for diffuse.R, diffuse.G, diffuse.B. Empty:
    /// the unnamed layer, or else the only one with colours.
    ovMemory::String layer = {};
    /// Is told the share of the rows that are decoded. Interlaced and progressive files give several shares
    /// or none, since they have no rows until late.
    ovCommon::WorkProgress progress = {};
};

/// How to encode. Formats ignore what does not concern them.
struct EncodeOptions {
    /// Resolution of a JPEG's colour: 0 full (4:4:4), 1 half across (4:2:2), 2 half both ways (4:2:0).
    unsigned subsampling = 0;
    /// Quality of a JPEG, from 0 (worst) to 1.
    float quality = 0.92f;
};

/// What a file says that its picture shows (the attribute "envmap" of EXR).
enum class PICTURE_VIEW : unsigned int {
    UNTOLD = 0,   ///< nothing is said
    PANORAMA = 1, ///< all directions by longitude and latitude
    CUBE = 2      ///< six faces below each other: CUBE_LAYOUT::EXR_STRIP
};

inline constexpr ovMemory::EnumEntry<PICTURE_VIEW> PICTURE_VIEW_ENTRIES[] = {
    {PICTURE_VIEW::UNTOLD, "UNTOLD"},
    {PICTURE_VIEW::PANORAMA, "PANORAMA"},
    {PICTURE_VIEW::CUBE, "CUBE"},
};
constexpr ovMemory::EnumTable<PICTURE_VIEW> enumTable(PICTURE_VIEW) {
    return {"PICTURE_VIEW", PICTURE_VIEW_ENTRIES};
}

/// A decoded picture, or why there is none.
///
/// Of bytes, the texts hold no path; of a file they do, and the place is the path.
struct DecodeResult : ovMemory::Result {
    ovMemory::UniquePtr<Image> image; ///< null on failure
    PICTURE_VIEW view = PICTURE_VIEW::UNTOLD;

    explicit operator bool() const { return image != nullptr; }
};

/// An encoded picture, or why there is none.
/// The warning tells what the format could not hold.
struct EncodeResult : ovMemory::Result {
    ovMemory::Buffer<unsigned char> bytes; ///< the whole file; empty on failure

    explicit operator bool() const { return !bytes.empty(); }
};

/// One file format. Objects have no state: any number of threads may share one. Nothing throws; whatever the
/// bytes are, decoding ends, allocates no more pixels than the options allow and returns a whole picture or
/// an error.
class OV_API Encoder {
public:
    virtual ~Encoder() = default;

    /// The format's short name in capitals, such as "PNG".
    virtual ovMemory::StringView getName() const = 0;

    /// Lower-case extensions without the dot, the usual one first. They live as long as the encoder.
    virtual ovMemory::BufferView<const ovMemory::StringView> getExtensions() const = 0;

    /// Whether the bytes begin as files of this format do. Says nothing about the rest.
    virtual bool canDecode(ovMemory::BufferView<const unsigned char> bytes) const = 0;

    /// Decodes a whole file held in memory.
    virtual DecodeResult decode(ovMemory::BufferView<const unsigned char> bytes,
                                const DecodeOptions& options = {}) const = 0;

    /// Encodes a picture. A component type that the format lacks is an error that tells which ones it has
    /// (use convertImage first); alpha that it lacks is dropped with a warning unless it is 1 everywhere.
    virtual EncodeResult encode(const ImageView& view, const EncodeOptions& options = {}) const = 0;
};

} // namespace ovImages
