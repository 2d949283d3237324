#include <ovImages/Image.h>
#include <ovVeldris/scripts/commonWrap/Bind.h>
#include <ovVeldris/scripts/imagesWrap/ImageViewWrapper.h>

namespace ovImagesWrap {

void ImageViewWrapper::updateEnvironment(ovScripts::Environment* environment) {
    using namespace ovCommonWrap;
    using ovImages::ImageView;
    ovScripts::UserType& type = *environment->getUserType(TYPE_NAME<ImageView>);
    type.setHelp("A view of a picture, which it keeps alive.");
    destructible<ImageView>(type);
    method(
        type, "getWidth", [](const ImageView& self) { return self.width; }, {}, "In pixels.");
    method(
        type, "getHeight", [](const ImageView& self) { return self.height; }, {}, "In pixels.");
    staticFunction(
        type, "new",
        [](const ovImages::Image& image) {
            return toScript(std::make_unique<ImageView>(image.view())).keeping(0);
        },
        {"image"}, "A view of the whole picture.")
        .setResult(ovScripts::FUNCTION_PARAMETER_TYPE::USER_DATA, type.getFullName());
}

} // namespace ovImagesWrap
