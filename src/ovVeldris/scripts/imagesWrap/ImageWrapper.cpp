#include <ovImages/Image.h>
#include <ovVeldris/scripts/commonWrap/Bind.h>
#include <ovVeldris/scripts/imagesWrap/ImageWrapper.h>

namespace ovImagesWrap {

void ImageWrapper::updateEnvironment(ovScripts::Environment* environment) {
    using namespace ovCommonWrap;
    using ovImages::Image;
    ovScripts::UserType& type = *environment->getUserType(TYPE_NAME<Image>);
    type.setHelp("A picture.");
    destructible<Image>(type);
    type.setSizeOf([](const void* image) { return static_cast<const Image*>(image)->getBytes().size(); });
    method(type, "getWidth", &Image::getWidth, {}, "In pixels.");
    method(type, "getHeight", &Image::getHeight, {}, "In pixels.");
}

} // namespace ovImagesWrap
