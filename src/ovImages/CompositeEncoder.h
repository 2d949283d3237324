// All image formats behind one, and files of any of them.
#pragma once

#include <ovImages/Encoder.h>

namespace ovImages {

/// Decodes whatever it is given by its content (a PNG named .jpg is read as the PNG it is); names only choose
/// the format of what is written. Knows PNG, JPEG, EXR and HDR.
class OV_API CompositeEncoder : public Encoder {
public:
    CompositeEncoder();
    ~CompositeEncoder() override;
    CompositeEncoder(const CompositeEncoder&) = delete;
    CompositeEncoder& operator=(const CompositeEncoder&) = delete;

    /// "Composite".
    ovMemory::StringView getName() const override;
    /// Those of all formats.
    ovMemory::BufferView<const ovMemory::StringView> getExtensions() const override;
    /// Whether any format can.
    bool canDecode(ovMemory::BufferView<const unsigned char> bytes) const override;
    DecodeResult decode(ovMemory::BufferView<const unsigned char> bytes,
                        const DecodeOptions& options = {}) const override;
    /// Without a name to go by, the format that loses nothing: PNG for integers, EXR for half and float.
    EncodeResult encode(const ImageView& view, const EncodeOptions& options = {}) const override;

    /// The format that the bytes begin as, or null. Owned by this object.
    const Encoder* findByContent(ovMemory::BufferView<const unsigned char> bytes) const;

    /// The format of the path's extension, in any case of letters, or null. Owned by this object.
    const Encoder* findByExtension(ovMemory::StringView path) const;

    /// Reads and decodes a file. The error or warning, if any, names the path.
    DecodeResult decodeFile(ovMemory::StringView path, const DecodeOptions& options = {}) const;

    /// Encodes in the format of the path's extension and writes the file as a whole or not at all
    /// (ovResources::writeFileAtomically). The folder must exist.
    /// @return with texts that name the path, and a warning of what the format could not hold
    ovMemory::Result encodeFile(ovMemory::StringView path, const ImageView& view,
                                const EncodeOptions& options = {}) const;

private:
    ovMemory::Buffer<ovMemory::UniquePtr<Encoder>> _encoders;
    ovMemory::Buffer<ovMemory::StringView> _extensions;
};

} // namespace ovImages
