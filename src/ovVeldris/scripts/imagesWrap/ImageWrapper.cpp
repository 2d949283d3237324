#include <ovImages/PictureFile.h>
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
    method(
        type, "save",
        [](const Image& self, ovMemory::StringView path, std::optional<bool> raw) {
            return warningOf(ovImages::savePicture(path, self.view(), raw.value_or(false)));
        },
        {"path", "raw"},
        "Writes it as PNG, JPEG, EXR or HDR, by the path's extension. PNG and JPEG hold sRGB, EXR and HDR "
        "light; raw hands over the numbers as they are. Gives a warning of what the file could not hold, or "
        "nil; an error with the reason when it cannot be written.");
}

} // namespace ovImagesWrap
