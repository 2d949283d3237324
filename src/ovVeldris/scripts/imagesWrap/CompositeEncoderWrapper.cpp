#include <ovImages/CompositeEncoder.h>
#include <ovVeldris/scripts/imagesWrap/CompositeEncoderWrapper.h>
#include <ovVeldris/scripts/imagesWrap/Decoding.h>

namespace ovImagesWrap {

void CompositeEncoderWrapper::updateEnvironment(ovScripts::Environment* environment) {
    using ovImages::CompositeEncoder;
    ovScripts::UserType& type = *environment->getUserType(ovCommonWrap::TYPE_NAME<CompositeEncoder>);
    type.setHelp("Every format of pictures, by content: PNG, JPEG, EXR, HDR.");
    decodingFunctions<CompositeEncoder>(type, environment);
}

} // namespace ovImagesWrap
