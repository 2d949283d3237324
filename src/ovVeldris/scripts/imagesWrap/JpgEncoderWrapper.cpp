#include <ovImages/JpgEncoder.h>
#include <ovVeldris/scripts/imagesWrap/Decoding.h>
#include <ovVeldris/scripts/imagesWrap/JpgEncoderWrapper.h>

namespace ovImagesWrap {

void JpgEncoderWrapper::updateEnvironment(ovScripts::Environment* environment) {
    using namespace ovCommonWrap;
    using ovImages::JpgEncoder;
    ovScripts::UserType& type = *environment->getUserType(TYPE_NAME<JpgEncoder>);
    type.setHelp("JPEG, in memory.");
    staticFunction(
        type, "encode",
        [](const ovImages::Image& image) {
            const ovImages::ImageView view = image.view();
            ovImages::EncodeResult result = JpgEncoder().encode(view, {.subsampling = 0, .quality = 0.92f});
            if (!result)
                throw ArgumentError(result.error);
            return std::make_unique<FileBytes>(std::move(result.bytes));
        },
        {"image"},
        "A whole file, of quality 0.92 and full colour; an error with the reason when it cannot be.");
    decodingFunctions<JpgEncoder>(type, environment);
}

} // namespace ovImagesWrap
